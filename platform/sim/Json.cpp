#include "platform/sim/Json.h"

#include <utility>

namespace sim {
namespace {

constexpr int MAX_DEPTH = 16;
constexpr std::size_t KEPT_VALUES = 1000;

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

void appendLatest(Json &list, Json value)
{
    list.push_back(std::move(value));
    if (list.size() > KEPT_VALUES)
        list.erase(list.begin());
}

} // namespace sim
