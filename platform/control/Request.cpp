#include "platform/control/Request.h"

#include <algorithm>
#include <charconv>

namespace control {

Request parseRequest(const std::string &line)
{
    const Json json = parseJson(line);
    const auto textIn = [](const Json &value) { return value.is_string(); };
    if (!json.is_object() || !textIn(json.value("verb", Json())))
        throw BadRequest("a request is {\"verb\": \"...\", \"args\": [\"...\"]}");
    const Json args = json.value("args", Json::array());
    if (!args.is_array() || !std::all_of(args.begin(), args.end(), textIn))
        throw BadRequest("args must be a list of texts");
    return {json["verb"].get<std::string>(), args.get<std::vector<std::string>>()};
}

Json refuseRequest(const Request &request)
{
    throw BadRequest("no such verb: " + request.verb);
}

int parseNumber(const std::string &text, const std::string &what)
{
    int number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end)
        throw BadRequest(what + " must be a whole number, not " + text);
    return number;
}

std::string okReply(const Json &value)
{
    return dumpJson({{"ok", true}, {"value", value}}) + "\n";
}

std::string errorReply(const std::string &error)
{
    return dumpJson({{"ok", false}, {"error", error}}) + "\n";
}

} // namespace control
