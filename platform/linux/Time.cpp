// COS: the clock, which timedated sets together with the hardware clock.
#include "platform/cos_time.h"
#include "platform/linux/Journal.h"
#include "platform/linux/SystemBus.h"

#include <ctime>

namespace {

constexpr int FAILED = -1;
constexpr std::int64_t US_PER_SECOND = 1000000;
constexpr bool ASK_NOBODY = false;
constexpr bool NOT_RELATIVE = false;
constexpr std::chrono::milliseconds TIMEOUT(2000); // for all together: the GUI thread waits

// org.freedesktop.timedate1(5)
constexpr const char *SERVICE = "org.freedesktop.timedate1";
constexpr const char *PATH = "/org/freedesktop/timedate1";
constexpr const char *SYNCHRONISED = "org.freedesktop.timedate1.AutomaticTimeSyncEnabled";

using Clock = std::chrono::steady_clock;

std::chrono::milliseconds leftTo(Clock::time_point deadline)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
}

board::SystemBus::Outcome setClock(std::int64_t stamp, std::chrono::milliseconds timeout)
{
    return board::systemBus().call({SERVICE, PATH, SERVICE, "SetTime"}, timeout,
                                   [&](sdbus::MethodCall &call) {
                                       call << stamp * US_PER_SECOND << NOT_RELATIVE << ASK_NOBODY;
                                   });
}

bool endSynchronisation(std::chrono::milliseconds timeout)
{
    return bool(
        board::systemBus().call({SERVICE, PATH, SERVICE, "SetNTP"}, timeout,
                                [](sdbus::MethodCall &call) { call << false << ASK_NOBODY; }));
}

// timedated takes a clock only once the unit that synchronises it has ended.
bool setClockBefore(std::int64_t stamp, Clock::time_point deadline)
{
    constexpr int AGAIN_MS = 50;
    auto outcome = setClock(stamp, leftTo(deadline));
    if (outcome.error == SYNCHRONISED && !endSynchronisation(leftTo(deadline)))
        return false;
    while (outcome.error == SYNCHRONISED && Clock::now() < deadline) {
        COS::CosTime::SleepCos(AGAIN_MS);
        outcome = setClock(stamp, leftTo(deadline));
    }
    if (!outcome)
        board::journal(board::Severity::Warning, "the clock is not set: " + outcome.error);
    return bool(outcome);
}

} // namespace

namespace COS {

std::int64_t CosTime::GetTimeStamp()
{
    return std::time(nullptr);
}

int CosTime::GetSysLocalTime(SYS_TIME_T &time)
{
    time = TimeStampToZoneTime(GetTimeStamp());
    return 0;
}

int CosTime::SetSysLocalTime(const SYS_TIME_T &time)
{
    const std::int64_t stamp = TimeToTimeStamp(time);
    if (stamp == -1)
        return FAILED;
    return setClockBefore(stamp, Clock::now() + TIMEOUT) ? 0 : FAILED;
}

} // namespace COS
