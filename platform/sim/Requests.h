#pragma once

#include "platform/control/Request.h"
#include "platform/sim/Json.h"

namespace sim {

// Does what `get`, `set`, `usb`, `hotplug`, `fail`, `delay` or `calls` asks for and returns the
// reply's value, null where there is none. Throws BadRequest. Any thread.
Json runRequest(const control::Request &request);

} // namespace sim
