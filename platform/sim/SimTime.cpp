// COS, the panel's clock: the host's, shifted by what the panel was set to.
#include "platform/cos_time.h"
#include "platform/sim/Panel.h"

#include <ctime>

using sim::Json;
using sim::panel;

namespace {

std::int64_t hostClock()
{
    return static_cast<std::int64_t>(std::time(nullptr));
}

std::int64_t panelClock(const Json &state)
{
    return hostClock() + state.at("clock").at("offset").get<std::int64_t>();
}

Json toJson(const COS::SYS_TIME_T &time)
{
    return {{"year", time.year}, {"month", time.month},   {"day", time.day},
            {"hour", time.hour}, {"minute", time.minute}, {"second", time.second}};
}

} // namespace

namespace COS {

std::int64_t CosTime::GetTimeStamp()
{
    return panel().call("COS.GetTimeStamp", Json(),
                        [](const Json &state) { return panelClock(state); });
}

int CosTime::GetSysLocalTime(SYS_TIME_T &time)
{
    return panel().call("COS.GetSysLocalTime", Json(), [&](const Json &state) {
        time = TimeStampToZoneTime(panelClock(state));
        return 0;
    });
}

int CosTime::SetSysLocalTime(const SYS_TIME_T &time)
{
    return panel().call("COS.SetSysLocalTime", Json::array({toJson(time)}), [&](Json &state) {
        const std::int64_t stamp = TimeToTimeStamp(time);
        if (stamp == -1)
            return -1;
        panel().keep(state["clock"]["offset"], stamp - hostClock());
        return 0;
    });
}

} // namespace COS
