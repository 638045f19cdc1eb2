// JSON from outside, and back.
#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace control {

using Json = nlohmann::json;

// A request that makes no sense; what() says why, for a person. Nothing has changed.
struct BadRequest : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// JSON from outside. Throws BadRequest if `text` is none, or is nested deeper than any request.
Json parseJson(const std::string &text);
// The text of `value` on one line. Bytes that are no UTF-8 (a Wi-Fi name may hold any) are
// replaced by U+FFFD.
std::string dumpJson(const Json &value);

} // namespace control
