// netServer: the network service of an operator panel.
#include "platform/paths.h"
#include "services/common/Journal.h"
#include "services/common/Options.h"
#include "services/network/Configuration.h"
#include "services/network/Service.h"

#include <glib-unix.h>
#include <stdexcept>
#include <systemd/sd-daemon.h>

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

using MainLoop = std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)>;

gboolean onSignal(gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
    return G_SOURCE_CONTINUE;
}

gboolean onWatchdog(gpointer)
{
    sd_notify(0, "WATCHDOG=1");
    return G_SOURCE_CONTINUE;
}

void feedWatchdog()
{
    std::uint64_t time = 0; // us
    if (sd_watchdog_enabled(0, &time) > 0)
        g_timeout_add_seconds(static_cast<guint>(time / 2000000), onWatchdog, nullptr);
}

// Another one that has the name is not pushed aside; systemd starts this one again.
void onNameLost(GDBusConnection *, const char *, gpointer loop)
{
    service::warn(std::string("the bus does not give the name ") + NAME);
    onSignal(loop);
}

void serve()
{
    const MainLoop loop(g_main_loop_new(nullptr, FALSE), g_main_loop_unref);
    g_unix_signal_add(SIGTERM, onSignal, loop.get());
    g_unix_signal_add(SIGINT, onSignal, loop.get());
    network::Error error;
    const network::Object<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error));
    if (!bus)
        throw std::runtime_error("no system bus: " + error.text());
    const network::Service service(bus.get(),
                                   network::readConfiguration(panelPath("/etc/sysset/panel.conf")));
    g_bus_own_name_on_connection(bus.get(), NAME, G_BUS_NAME_OWNER_FLAGS_DO_NOT_QUEUE, nullptr,
                                 onNameLost, loop.get(), nullptr);
    feedWatchdog();
    g_main_loop_run(loop.get());
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 1)
        return service::answerOption(argv[1], HELP, "netServer", SYSSET_VERSION);
    try {
        serve();
        return 0;
    } catch (const std::exception &exception) {
        service::warn(exception.what());
        return 1;
    }
}
