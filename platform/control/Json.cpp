#include "platform/control/Json.h"

namespace control {
namespace {

constexpr int MAX_DEPTH = 16;

} // namespace

Json parseJson(const std::string &text)
{
    const auto limitDepth = [](int depth, Json::parse_event_t, Json &) {
        if (depth > MAX_DEPTH)
            throw BadRequest("the JSON is nested too deep");
        return true;
    };
    try {
        return Json::parse(text, limitDepth);
    } catch (const Json::exception &) {
        throw BadRequest("this is no JSON: " + text.substr(0, 80));
    }
}

std::string dumpJson(const Json &value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace control
