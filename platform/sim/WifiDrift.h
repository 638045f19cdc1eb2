#pragma once

#include "platform/sim/Json.h"

#include <random>

namespace sim {

// One step of the access points in the state's "wifi": every level changes a little, and now and
// then one goes out of range ("away") or comes back.
void driftWifi(Json &wifi, std::minstd_rand &random);

} // namespace sim
