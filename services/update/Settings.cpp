#include "services/update/Settings.h"

#include "platform/paths.h"
#include "platform/posix/Facts.h"
#include "platform/posix/SmallFile.h"
#include "services/common/Journal.h"

#include <cerrno>
#include <charconv>
#include <ini.h>
#include <sstream>
#include <string_view>

namespace updates {
namespace {

constexpr std::string_view VERSION_KEY = "IMAGE_VERSION=";

bool take(Settings &settings, std::string_view name, std::string_view value)
{
    if (name == "keyring" && !value.empty() && value.front() == '/') {
        settings.keyring = value;
        return true;
    }
    settings.mayBeUnsigned = name == "unsigned" && value == "yes";
    return name == "unsigned" && (value == "yes" || value == "no");
}

int onValue(void *kept, const char *section, const char *name, const char *value)
{
    auto &settings = *static_cast<Settings *>(kept);
    const bool isMachine = std::string_view(section) == "machine";
    if (isMachine && std::string_view(name) == "model")
        settings.model = value;
    if (isMachine && std::string_view(name) == "board")
        settings.board = value;
    if (std::string_view(section) == "update" && !take(settings, name, value))
        service::warn(std::string("panel.conf: [update] ") + name + "=" + value + " is not taken");
    return 1;
}

} // namespace

Settings readSettings(const std::string &path)
{
    Settings settings;
    errno = 0;
    const int line = ini_parse(path.c_str(), onValue, &settings);
    if (line < 0 && errno != ENOENT)
        service::warn(path + " cannot be read");
    else if (line > 0)
        service::warn(path + ": line " + std::to_string(line) + " is not understood");
    if (settings.model.empty())
        settings.model = board::boardModel();
    if (settings.board.empty())
        settings.board = board::boardModel();
    settings.keyring = panelPath(settings.keyring);
    return settings;
}

std::optional<std::uint64_t> wholeNumber(std::string_view text)
{
    std::uint64_t number = 0;
    const char *const begin = text.data();
    const char *const end = begin + text.size();
    const auto [stop, error] = std::from_chars(begin, end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<std::uint64_t> firmwareVersion()
{
    auto text = board::readFile(panelPath("/etc/os-release"));
    if (!text)
        text = board::readFile(panelPath("/usr/lib/os-release"));
    std::istringstream lines(text.value_or(std::string()));
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, VERSION_KEY.size(), VERSION_KEY) != 0)
            continue;
        std::string value = line.substr(VERSION_KEY.size());
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
            value = value.substr(1, value.size() - 2);
        return wholeNumber(value);
    }
    return std::nullopt;
}

} // namespace updates
