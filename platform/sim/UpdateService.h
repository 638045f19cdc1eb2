#pragma once

#include "platform/sim/Json.h"
#include "platform/sim/UpdateServer.h"

#include <chrono>
#include <memory>

namespace sim {

// The panel's update service, another program on a panel: checks project and firmware files and
// installs them, asked over a UDP socket on the loopback interface. docs/porting describes its
// answers. It starts before the first request of this process.
class UpdateService
{
public:
    // Starts the service before a request is sent, and waits until it has followed update.alive. If
    // its usual port is taken it answers at the next free one, where requests of this process are
    // sent then. If the port that the environment names is taken, another service answers there and
    // this one does not start. The panel is not locked.
    void ensureRunning();
    // What follows from a change of the state from outside. The panel is locked.
    void stateChanged(const Json &before, const Json &state);

    // Ends the service, a running install with it, until the next request. Returns false if
    // its thread still runs after `timeout`. The panel is not locked.
    bool forget(std::chrono::milliseconds timeout);
    // The same, for good.
    bool stop(std::chrono::milliseconds timeout);

private:
    std::shared_ptr<UpdateServer> start(Json &state);

    // All touched with the panel locked.
    std::shared_ptr<UpdateServer> m_server;
    bool m_isPortTaken = false;
    bool m_stopped = false;
};

} // namespace sim
