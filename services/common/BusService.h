// The life of a service of ours on the system bus.
#pragma once

#include <functional>
#include <gio/gio.h>
#include <memory>

namespace service {

// Makes what serves; may throw std::exception. It is destroyed before the bus is left.
using MakeService = std::function<std::shared_ptr<void>(GDBusConnection *bus)>;

// Serves under `name` on the system bus, feeding systemd's watchdog, until SIGTERM or SIGINT, or
// until the bus takes or refuses the name: another one that has it is not pushed aside. Throws
// std::runtime_error without a bus, and what `make` throws.
void serveOnBus(const char *name, const MakeService &make);

} // namespace service
