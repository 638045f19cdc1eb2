#pragma once

#include <string>

namespace sim {

// Whether the platform has an operation of this name ("netT.setIp"); a `fail` or `delay` of any
// other is refused.
bool isOperation(const std::string &name);

} // namespace sim
