#pragma once

#include "platform/sim/Json.h"

#include <string>

namespace sim {

// The scenario of that name: a file of the scenarios' folder (SYSSET_SCENARIO_DIR, else that of
// the source) by its bare name ("bare"), or any file if there is a slash in it. Throws BadRequest,
// naming the file, if it cannot be read or is no JSON.
Json loadScenario(const std::string &name);

} // namespace sim
