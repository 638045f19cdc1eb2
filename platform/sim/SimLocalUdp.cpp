// CBB: requests to the panel's local services go over a real socket, here as on a panel.
#include "platform/local_udp.h"
#include "platform/posix/Bytes.h"
#include "platform/posix/LocalUdp.h"
#include "platform/sim/Panel.h"

using sim::Json;
using sim::panel;

namespace CBB {

int CbbLocalUdp::request(const std::string &endpoint, const std::string &body, std::string &reply,
                         unsigned int timeoutMs)
{
    const bool hasCommand = body.size() >= 4;
    const Json command = hasCommand ? Json(static_cast<int>(os::numberFrom(body, 0))) : Json();
    const std::string payload = hasCommand ? body.substr(4) : std::string();
    reply.clear();
    return panel().callOutside("CBB.request", Json::array({endpoint, command, payload, timeoutMs}),
                               timeoutMs, ERR_TIMEOUT, [&](unsigned int timeLeftMs) {
                                   panel().update().ensureRunning();
                                   return os::exchangeDatagram(os::localUdpPort(endpoint), body,
                                                               reply, timeLeftMs);
                               });
}

} // namespace CBB
