#pragma once

#include "platform/sim/Json.h"
#include "platform/sim/UpdateServer.h"

#include <chrono>
#include <memory>

namespace sim {

// The panel's update service, another program on a panel: checks project and firmware files and
// installs them, asked over a UDP socket on the loopback interface. docs/porting says what it
// answers. It starts with the first request that this process sends to anyone.
class UpdateService
{
public:
    // Has the service run before a request is sent, and see to what was set before. If its usual
    // port is taken it answers at the next free one, which requests of this process find. If the
    // port that the environment names is taken, somebody else's service answers there and this one
    // stays out. The panel is not locked.
    void ensureRunning();
    // What follows from a change of the state from outside. The panel is locked.
    void stateChanged(const Json &before, const Json &state);

    // Ends the service, an install under way included, until the next request. Returns false if
    // its thread still runs after `patience`. The panel is not locked.
    bool forget(std::chrono::milliseconds patience);
    // The same, for good.
    bool stop(std::chrono::milliseconds patience);

private:
    std::shared_ptr<UpdateServer> start(Json &state);

    // All touched with the panel locked.
    std::shared_ptr<UpdateServer> m_server;
    bool m_staysOut = false;
    bool m_stopped = false;
};

} // namespace sim
