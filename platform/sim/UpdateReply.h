// The update service's reply as it goes over the wire.
#pragma once

#include <string>

namespace sim {

struct UpdateStatus
{
    int state = 0; // 1: an install is under way
    int percent = 0;
    int error = 0;
    std::string model;
};

// The 268 bytes of `status`: three numbers of 32 bits, little-endian, and the model in 256 bytes,
// filled up with zeros, at least one. `how` is the value of update.reply: "whole", or one of the
// ways to get it wrong.
std::string encodeReply(const UpdateStatus &status, const std::string &how);

} // namespace sim
