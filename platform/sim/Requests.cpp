#include "platform/sim/Requests.h"

#include "platform/board.h"
#include "platform/sim/Panel.h"

namespace sim {
namespace {

using control::parseNumber;
using Args = std::vector<std::string>;

bool isClear(const Args &args)
{
    return args.size() == 1 && args[0] == "clear";
}

void plug(const std::string &action, int type, const std::string &path)
{
    if (action == "insert")
        panel().media().insert(type, path);
    else if (action == "remove")
        panel().media().remove(type, path);
    else
        throw BadRequest("either insert or remove, not " + action);
}

Json get(const Args &args)
{
    return panel().get(args.empty() ? std::string() : args[0]);
}

Json set(const Args &args)
{
    panel().set(args[0], parseJson(args[1]));
    return nullptr;
}

Json usb(const Args &args)
{
    plug(args[0], PLATFORM::DEV_UDISK, args[1]);
    return nullptr;
}

Json hotplug(const Args &args)
{
    plug(args[0], parseNumber(args[1], "CODE"), args[2]);
    return nullptr;
}

Json fail(const Args &args)
{
    if (isClear(args))
        panel().clearFailures();
    else if (args.size() == 1)
        throw BadRequest("fail OPERATION CODE [COUNT], or fail clear");
    else
        panel().fail(args[0], parseNumber(args[1], "CODE"),
                     args.size() > 2 ? parseNumber(args[2], "COUNT") : -1);
    return nullptr;
}

Json delay(const Args &args)
{
    if (isClear(args))
        panel().clearDelays();
    else if (args.size() == 1)
        throw BadRequest("delay OPERATION MS, or delay clear");
    else
        panel().delay(args[0], parseNumber(args[1], "MS"));
    return nullptr;
}

Json calls(const Args &args)
{
    if (args.empty())
        return panel().calls();
    if (!isClear(args))
        throw BadRequest("calls, or calls clear");
    panel().clearCalls();
    return nullptr;
}

struct Verb
{
    const char *name;
    std::size_t least;
    std::size_t most;
    Json (*run)(const Args &args);
};

constexpr Verb VERBS[] = {{"get", 0, 1, get},         {"set", 2, 2, set},   {"usb", 2, 2, usb},
                          {"hotplug", 3, 3, hotplug}, {"fail", 1, 3, fail}, {"delay", 1, 2, delay},
                          {"calls", 0, 1, calls}};

} // namespace

Json runRequest(const control::Request &request)
{
    for (const Verb &verb : VERBS) {
        if (request.verb != verb.name)
            continue;
        if (request.args.size() < verb.least || request.args.size() > verb.most)
            throw BadRequest(request.verb + ": wrong number of arguments");
        return verb.run(request.args);
    }
    return control::refuseRequest(request);
}

} // namespace sim
