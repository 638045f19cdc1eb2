#pragma once

#include "platform/sim/Json.h"

#include <string>
#include <vector>

namespace sim {

// A request to the panel from outside: a verb and its arguments, as typed.
struct Request
{
    std::string verb;
    std::vector<std::string> args;
};

// Reads {"verb": "...", "args": ["...", ...]}; "args" may be missing. Throws BadRequest.
Request parseRequest(const std::string &line);

// Does what `get`, `set`, `usb`, `hotplug`, `fail`, `delay` or `calls` asks for and returns the
// reply's value, null where there is none. Throws BadRequest. Any thread.
Json runRequest(const Request &request);

// `text` as a whole number; `what` names it in the BadRequest that is thrown if it is none.
int parseNumber(const std::string &text, const std::string &what);

// The lines that answer a request.
std::string okReply(const Json &value);
std::string errorReply(const std::string &error);

} // namespace sim
