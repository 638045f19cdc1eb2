// Starting the panel as the environment says, and what it leaves behind at the program's end.
#pragma once

#include "platform/sim/StateTree.h"

#include <string>

namespace sim {

// The scenario of that name: a file of the scenarios' folder by its bare name ("bare"), or any
// file if there is a slash in it. Throws BadRequest if it cannot be read or is no JSON.
Json loadScenario(const std::string &name);

// Prepares the panel: its root folder (SYSSET_ROOT, set if it is not), the lock that keeps a
// second program off it, the screen (SYSSET_LCD) and the scenario (SYSSET_SCENARIO). From then on
// the program leaves the panel's state in run/last.json when it exits. To be called once, before
// anything else.
// Returns 0; else the status to exit with, the reason being on standard error: 1 if the root
// cannot be used or another program uses it, 2 if a variable makes no sense.
int startFromEnvironment();

} // namespace sim
