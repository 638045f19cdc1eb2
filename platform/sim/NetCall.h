// What all network-client calls share: their arguments in the call log, the time-out, and the
// errors without the service or the device.
#pragma once

#include "platform/net.h"
#include "platform/sim/NetDevices.h"
#include "platform/sim/Panel.h"

#include <string>
#include <utility>

namespace sim {

inline Json noArgs()
{
    return Json::array();
}

// One request to the service: `body(state)` answers it if the service runs. `args` are the
// in-arguments before the flag and the time-out.
template <typename Body>
int netCall(const char *op, Json args, bool flag, unsigned int timeoutMs, Body &&body)
{
    args.push_back(flag);
    args.push_back(timeoutMs);
    return panel().callWithin(op, std::move(args), timeoutMs, netT::ERR_TIMEOUT, [&](Json &state) {
        return serviceRuns(state) ? static_cast<int>(body(state)) : netT::ERR_NO_SERVICE;
    });
}

// The same for a request about one device: `body(state, device)` answers it if the device is
// there. `args` are the in-arguments between its name and the flag.
template <typename Body>
int deviceCall(const char *op, const std::string &name, const Json &args, bool flag,
               unsigned int timeoutMs, Body &&body)
{
    Json all = Json::array({name});
    all.insert(all.end(), args.begin(), args.end());
    return netCall(op, std::move(all), flag, timeoutMs, [&](Json &state) -> int {
        Json *device = findDevice(state, name);
        if (device == nullptr || !isPresent(*device))
            return netT::ERR_NO_DEVICE;
        return body(state, *device);
    });
}

// The same for a request that means the only device of its kind ("WIFI", "4G").
template <typename Body>
int kindCall(const char *op, const char *kind, Json args, bool flag, unsigned int timeoutMs,
             Body &&body)
{
    return netCall(op, std::move(args), flag, timeoutMs, [&](Json &state) -> int {
        Json *device = presentDevice(state, kind);
        return device == nullptr ? int(netT::ERR_NO_DEVICE) : body(state, *device);
    });
}

} // namespace sim
