// The update service's requests and replies as they go over the wire: a request is a command in
// four bytes and a path or nothing, numbers are little-endian. docs/porting/updates.md.
#pragma once

#include <string>

namespace os {

enum UpdateCommand {
    UPDATE_START = 6, // installs a file
    UPDATE_POLL = 7,  // how far is it
    UPDATE_CHECK = 12 // what is this file
};

// Error numbers of a reply.
enum UpdateError {
    UPDATE_DONE = 0,
    UPDATE_BAD_FILE = -1,     // damaged, not signed, gone or changed
    UPDATE_NO_PLACE = -2,     // the panel's disk does not take it
    UPDATE_IDLE = -3,         // nothing has been installed since the service's start
    UPDATE_UNFIT_VERSION = -9 // newer than its counterpart
};

struct UpdateStatus
{
    int state = 0; // 1: an install is under way
    int percent = 0;
    int error = 0; // UpdateError
    std::string model;
};

constexpr std::size_t UPDATE_MODEL_OFFSET = 12;
constexpr std::size_t UPDATE_MODEL_SIZE = 256;

// 268 bytes: three numbers of 32 bits, and the model in 256, filled up with zeros, at least one.
std::string encodeUpdateStatus(const UpdateStatus &status);

} // namespace os
