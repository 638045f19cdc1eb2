// Requests to the program from outside, one a line, and the lines that answer them.
#pragma once

#include "platform/control/Json.h"

#include <functional>
#include <string>
#include <vector>

namespace control {

// A verb and its arguments, as typed.
struct Request
{
    std::string verb;
    std::vector<std::string> args;
};

// Does what a request asks for and returns the reply's value, null where there is none. Throws
// BadRequest.
using Handler = std::function<Json(const Request &request)>;

// Reads {"verb": "...", "args": ["...", ...]}; "args" may be missing. Throws BadRequest.
Request parseRequest(const std::string &line);

// The Handler that knows no verb.
Json refuseRequest(const Request &request);

// `text` as a whole number; `what` names it in the BadRequest that is thrown if it is none.
int parseNumber(const std::string &text, const std::string &what);

// The lines that answer a request.
std::string okReply(const Json &value);
std::string errorReply(const std::string &error);

} // namespace control
