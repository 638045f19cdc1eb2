// The small services: notify client, versions, digest, process lookup.
#include "platform/cos_process.h"
#include "platform/posix/ProcessTable.h"
#include "platform/services.h"
#include "platform/sim/NetDevices.h"
#include "platform/sim/Panel.h"

#include <QCryptographicHash>

#include <unistd.h>

using sim::Json;
using sim::panel;
using sim::text;

namespace dsl {

CNotifyClient::CNotifyClient()
{
    panel().call("dsl.CNotifyClient.connect", Json(), [](Json &) { return 0; });
}

CNotifyClient::~CNotifyClient()
{
    panel().call("dsl.CNotifyClient.disconnect", Json(), [](Json &) { return 0; });
}

int getVersionList(std::vector<VersionEntry_T> &list, unsigned int timeoutMs)
{
    constexpr int NO_ANSWER = -2;
    return panel().callWithin("dsl.getVersionList", Json::array({timeoutMs}), timeoutMs, NO_ANSWER,
                              [&](const Json &state) {
                                  list.clear();
                                  for (const Json &entry : state["versions"])
                                      list.push_back({text(entry, "name"), text(entry, "version")});
                                  return 0;
                              });
}

} // namespace dsl

namespace cbl {

int md5String(const std::string &input, std::string &output)
{
    return panel().call("cbl.md5String", Json::array({input}), [&](Json &) {
        const auto bytes = QByteArray::fromStdString(input);
        output = QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex().toStdString();
        return 0;
    });
}

} // namespace cbl

namespace COS {

// The simulated network service lives in this process.
int CosOsState::GetProcessPIDByName(const std::string &name)
{
    return panel().call("COS.GetProcessPIDByName", Json::array({name}), [&](Json &state) {
        if (name != "netServer")
            return os::scanProcessTable(name);
        return sim::serviceRuns(state) ? static_cast<int>(getpid()) : -1;
    });
}

} // namespace COS
