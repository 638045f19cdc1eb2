#include "services/common/BusService.h"

#include "services/common/GLib.h"
#include "services/common/Journal.h"

#include <cstdint>
#include <glib-unix.h>
#include <malloc.h>
#include <stdexcept>
#include <systemd/sd-daemon.h>

namespace service {
namespace {

using MainLoop = std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)>;

gboolean onStop(gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
    return G_SOURCE_CONTINUE;
}

gboolean onWatchdog(gpointer)
{
    sd_notify(0, "WATCHDOG=1");
    ::malloc_trim(0); // what a start, or many objects of other services, have taken for a moment
    return G_SOURCE_CONTINUE;
}

void feedWatchdog()
{
    std::uint64_t time = 0; // us
    if (sd_watchdog_enabled(0, &time) > 0)
        g_timeout_add_seconds(static_cast<guint>(time / 2000000), onWatchdog, nullptr);
}

// systemd starts this one again.
void onNameLost(GDBusConnection *, const char *name, gpointer loop)
{
    warn(std::string("the bus does not give the name ") + name);
    onStop(loop);
}

} // namespace

void serveOnBus(const char *name, const MakeService &make)
{
    const MainLoop loop(g_main_loop_new(nullptr, FALSE), g_main_loop_unref);
    g_unix_signal_add(SIGTERM, onStop, loop.get());
    g_unix_signal_add(SIGINT, onStop, loop.get());
    Error error;
    const Object<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error));
    if (!bus)
        throw std::runtime_error("no system bus: " + error.text());
    const std::shared_ptr<void> serving = make(bus.get());
    g_bus_own_name_on_connection(bus.get(), name, G_BUS_NAME_OWNER_FLAGS_DO_NOT_QUEUE, nullptr,
                                 onNameLost, loop.get(), nullptr);
    feedWatchdog();
    g_main_loop_run(loop.get());
}

} // namespace service
