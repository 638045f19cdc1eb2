// netServer: the network service of an operator panel.
#include "platform/paths.h"
#include "services/common/BusService.h"
#include "services/common/Journal.h"
#include "services/common/Options.h"
#include "services/network/Configuration.h"
#include "services/network/Service.h"

#include <exception>

namespace {

constexpr const char *NAME = "org.sysset.Network1";

constexpr const char *HELP =
    "Usage: netServer [--help] [--version]\n"
    "\n"
    "Serves Ethernet, Wi-Fi and 4G to the settings program, on the system bus, by way of\n"
    "NetworkManager and ModemManager. Is run by sysset-network.service; reads the section\n"
    "[network] of /etc/sysset/panel.conf.\n"
    "\n"
    "  --help      print this and end\n"
    "  --version   print the version and end\n"
    "\n"
    "SYSSET_ROOT in the environment is put before every path.\n";

std::shared_ptr<void> makeService(GDBusConnection *bus)
{
    const auto configuration = network::readConfiguration(panelPath("/etc/sysset/panel.conf"));
    return std::make_shared<network::Service>(bus, configuration);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1)
        return service::answerOption(argv[1], HELP, "netServer", SYSSET_VERSION);
    try {
        service::serveOnBus(NAME, makeService);
        return 0;
    } catch (const std::exception &exception) {
        service::warn(exception.what());
        return 1;
    }
}
