// JSON as the simulated panel keeps it.
#pragma once

#include "platform/control/Json.h"

namespace sim {

using control::BadRequest;
using control::dumpJson;
using control::Json;
using control::parseJson;

// Appends to a list of things that happened, and drops the oldest of more than a thousand.
void appendLatest(Json &list, Json value);

} // namespace sim
