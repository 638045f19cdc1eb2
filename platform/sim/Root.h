#pragma once

#include <string>

namespace sim {

// The folder that stands for the panel's "/": SYSSET_ROOT, or a folder of the user's own.
std::string panelRoot();
// The folder of the running panel's own files, and its socket in there.
std::string runFolder();
std::string socketPath();

// The environment variable's value, empty if there is none.
std::string environment(const char *name);

} // namespace sim
