#include "services/words/Settings.h"

#include "services/words/Journal.h"

#include <charconv>
#include <filesystem>
#include <ini.h>
#include <string_view>

namespace words {
namespace {

constexpr int LARGEST_PORT = 65535;

bool takePort(Settings &settings, std::string_view value)
{
    const char *begin = value.data();
    const char *end = begin + value.size();
    const auto result = std::from_chars(begin, end, settings.port);
    return result.ec == std::errc() && result.ptr == end && settings.port >= 0 &&
           settings.port <= LARGEST_PORT;
}

bool takeClock(Settings &settings, std::string_view value)
{
    settings.mayClockBeSet = value == "yes";
    return value == "yes" || value == "no";
}

bool take(Settings &settings, std::string_view name, std::string_view value)
{
    if (name == "port")
        return takePort(settings, value);
    return name == "clock" && takeClock(settings, value);
}

int onValue(void *kept, const char *section, const char *name, const char *value)
{
    auto &settings = *static_cast<Settings *>(kept);
    Settings changed = settings;
    if (std::string_view(section) != "words")
        return 1;
    if (take(changed, name, value))
        settings = changed;
    else
        warn(std::string("panel.conf: [words] ") + name + "=" + value + " is not taken");
    return 1;
}

} // namespace

Settings readSettings(const std::string &path)
{
    Settings settings;
    std::error_code none;
    const auto kind = std::filesystem::status(path, none).type();
    if (kind == std::filesystem::file_type::not_found)
        return settings;
    const bool isFile = kind == std::filesystem::file_type::regular;
    const int line = isFile ? ini_parse(path.c_str(), onValue, &settings) : -1;
    if (line < 0)
        warn(path + " cannot be read");
    else if (line > 0)
        warn(path + ": line " + std::to_string(line) + " is not understood");
    return settings;
}

} // namespace words
