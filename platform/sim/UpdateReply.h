// The update service's reply as it goes over the wire.
#pragma once

#include "platform/posix/UpdateWire.h"

#include <string>

namespace sim {

// `how` is the value of update.reply: "whole", or one of the ways to get it wrong.
std::string encodeReply(const os::UpdateStatus &status, const std::string &how);

} // namespace sim
