#pragma once

#include <string>

namespace sim {

// Writes `path`, whole or not at all: beside it, then by rename(2). Returns whether it succeeded.
bool writeWholeFile(const std::string &path, const std::string &bytes);

} // namespace sim
