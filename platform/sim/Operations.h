#pragma once

#include <string>

namespace sim {

// Whether the platform has an operation of this name ("netT.setIp"), so that a slip in an order to
// fail or delay one is told at once rather than never noticed.
bool isOperation(const std::string &name);

} // namespace sim
