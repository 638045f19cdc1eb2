#include "platform/sim/UpdateService.h"

#include "platform/posix/LocalUdp.h"
#include "platform/sim/Panel.h"

#include <iostream>
#include <utility>

namespace sim {
namespace {

constexpr const char *ENDPOINT = "DownLoad";
constexpr std::chrono::seconds SETTLE_TIMEOUT(1);
constexpr int PORTS_TRIED = 100;

// Binds the port that requests go to, else, unless the environment names that one, the next free
// one, and sends requests there. Returns the port; 0 if there is none.
int bindPort(UpdateServer &server)
{
    const int first = os::localUdpPort(ENDPOINT);
    if (server.bind(first))
        return first;
    for (int port = first + 1; port <= first + PORTS_TRIED; ++port) {
        if (os::moveLocalUdpPort(ENDPOINT, port) == port && server.bind(port))
            return port;
    }
    os::moveLocalUdpPort(ENDPOINT, 0);
    return 0;
}

} // namespace

void UpdateService::ensureRunning()
{
    const auto server = panel().locked([&](Json &state) { return start(state); });
    if (server)
        server->settle(SETTLE_TIMEOUT);
}

std::shared_ptr<UpdateServer> UpdateService::start(Json &state)
{
    if (m_server || m_isPortTaken || m_stopped)
        return m_server;
    const auto server = std::make_shared<UpdateServer>();
    const int port = bindPort(*server);
    if (port == 0) {
        m_isPortTaken = true;
        std::cerr << "the simulated update service stays out: it cannot have port " +
                         std::to_string(os::localUdpPort(ENDPOINT)) + "\n";
        return nullptr;
    }
    state["update"]["port"] = port;
    server->start();
    if (!state["update"]["alive"].get<bool>())
        server->setAlive(false);
    return m_server = server;
}

void UpdateService::stateChanged(const Json &before, const Json &state)
{
    const Json &alive = state.at("update").at("alive");
    if (m_server && before.at("update").at("alive") != alive)
        m_server->setAlive(alive.get<bool>());
}

bool UpdateService::forget(std::chrono::milliseconds timeout)
{
    const auto server = panel().locked([&](const Json &) {
        m_isPortTaken = false;
        os::moveLocalUdpPort(ENDPOINT, 0);
        return std::exchange(m_server, nullptr);
    });
    return !server || server->stop(timeout);
}

bool UpdateService::stop(std::chrono::milliseconds timeout)
{
    panel().locked([&](const Json &) { m_stopped = true; });
    return forget(timeout);
}

} // namespace sim
