// What is installed on the panel besides the program.
#pragma once

#include "platform/services.h"

#include <vector>

namespace board {

// First the system (os-release(5)) and the kernel (uname(2)); then every line NAME=VERSION of the
// files *.conf in /usr/share/sysset/versions.d and, for what is installed on the data partition,
// /mnt/data/sysset/versions.d, in the order of the files' names. A file of the data partition
// replaces one of the same name. Lines that begin with # or ; are comments; at most 200 entries.
// Any thread.
std::vector<dsl::VersionEntry_T> installedVersions();

} // namespace board
