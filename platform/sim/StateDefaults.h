#pragma once

#include "platform/sim/Json.h"

namespace sim {

// The built-in panel: an Ethernet, a Wi-Fi and a 4G device, all services up, two COM ports in use.
Json defaultState();

} // namespace sim
