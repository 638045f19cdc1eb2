// Requests to the panel's update service.
#pragma once

#include <string>

// What the service answers: 268 bytes, little-endian.
//
//     offset  size  field
//          0     4  state
//          4     4  percent
//          8     4  error number
//         12   256  model text, ended by a zero
struct UpdateStatus
{
    enum State { INSTALLING = 1 };

    int state = 0;
    int percent = 0;
    int nErrNumber = 0; // 0 success
    std::string model;  // bytes as the service sends them
};

enum UpdateCommand {
    UPDATE_INSTALL = 6, // start the install of a file
    UPDATE_POLL = 7,    // how far is it?
    UPDATE_CHECK = 12,  // what is this file?
};

enum UpdateResult {
    UPDATE_ANSWERED = 0,
    UPDATE_FAILED = -1,    // no answer in time, or no service
    UPDATE_TOO_SHORT = -2, // an answer too short to hold an error number
};

// What `reply` says, bytes as they came: what a short one lacks is zero, what a long one has more
// is left alone, and a model without an end is cut off at its 256 bytes. Any thread.
UpdateStatus parseUpdateStatus(const std::string &reply);

// Asks the service and waits at most `timeoutMs` for its answer, which goes to `status` as
// parseUpdateStatus() reads it. Returns an UpdateResult. Any thread.
UpdateResult askUpdateService(UpdateCommand command, const std::string &payload,
                              unsigned int timeoutMs, UpdateStatus &status);
