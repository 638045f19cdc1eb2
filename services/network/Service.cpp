#include "services/network/Service.h"

#include "platform/paths.h"

namespace network {
namespace {

constexpr const char *FOLDER = "/mnt/data/network";
constexpr const char *SETTINGS = "/mnt/data/network/netserver/settings.conf";

} // namespace

Service::Service(GDBusConnection *bus, const Configuration &configuration)
    : m_modems(bus,
               [this] {
                   m_network.disableModems();
                   m_cellular.changed();
               }),
      m_network(bus, m_modems, Settings(panelPath(SETTINGS)), panelPath(FOLDER),
                configuration.ethernet,
                [this](const std::vector<Record> &records) {
                    m_door.tellDevices(records);
                    m_cellular.changed(); // which of the modems is the one that is shown
                }),
      m_cellular(m_network, m_modems,
                 [this](const ModemStatus &status) { m_door.tellModem(status); }),
      m_door(bus, m_network, m_cellular, m_pinger)
{
}

} // namespace network
