// JSON as the simulated panel reads and writes it.
#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace sim {

using Json = nlohmann::json;

// A request that makes no sense; what() says why, for a person. Nothing has changed.
struct BadRequest : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// JSON from outside. Throws BadRequest if `text` is none, or is nested deeper than any state.
Json parseJson(const std::string &text);
// The text of `value` on one line. Bytes that are no UTF-8 (a Wi-Fi name may hold any) are
// replaced by U+FFFD.
std::string dumpJson(const Json &value);

// Appends to a list of things that happened, and drops the oldest of more than a thousand.
void appendLatest(Json &list, Json value);

} // namespace sim
