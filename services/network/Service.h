// All of netServer.
#pragma once

#include "services/network/Cellular.h"
#include "services/network/Configuration.h"
#include "services/network/Door.h"
#include "services/network/Modems.h"
#include "services/network/Network.h"
#include "services/network/Pinger.h"

namespace network {

class Service
{
public:
    // Throws std::runtime_error if the bus does not let it serve.
    Service(GDBusConnection *bus, const Configuration &configuration);

private:
    Modems m_modems;
    Network m_network;
    Cellular m_cellular;
    Pinger m_pinger;
    Door m_door;
};

} // namespace network
