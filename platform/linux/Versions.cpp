#include "platform/linux/Versions.h"

#include "platform/paths.h"
#include "platform/posix/SmallFile.h"

#include <map>
#include <sstream>
#include <sys/utsname.h>

namespace board {
namespace {

constexpr std::size_t MOST_ENTRIES = 200;
constexpr const char *FOLDERS[] = {"/usr/share/sysset/versions.d/", "/mnt/data/sysset/versions.d/"};

using Entries = std::vector<dsl::VersionEntry_T>;

// Lines NAME=VALUE; a value may stand in quotes, as os-release(5) has them.
Entries assignmentsIn(const std::string &path)
{
    Entries entries;
    std::istringstream lines(readFile(path).value_or(std::string()));
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t equals = line.find('=');
        const std::string name = trimmed(line.substr(0, equals));
        if (equals == std::string::npos || name.empty() || name.front() == '#' ||
            name.front() == ';')
            continue;
        std::string value = trimmed(line.substr(equals + 1));
        if (value.size() >= 2 && value.front() == value.back() &&
            (value.front() == '"' || value.front() == '\''))
            value = value.substr(1, value.size() - 2);
        entries.push_back({name, value});
    }
    return entries;
}

std::string osRelease()
{
    for (const dsl::VersionEntry_T &entry : assignmentsIn(panelPath("/etc/os-release"))) {
        if (entry.name == "PRETTY_NAME")
            return entry.version;
    }
    return {};
}

bool isConf(const std::string &name)
{
    constexpr const char *SUFFIX = ".conf";
    return name.size() > 5 && name.compare(name.size() - 5, 5, SUFFIX) == 0;
}

std::map<std::string, std::string> versionFiles()
{
    std::map<std::string, std::string> files;
    for (const char *folder : FOLDERS) {
        for (const std::string &name : namesIn(panelPath(folder))) {
            if (isConf(name))
                files[name] = panelPath(folder) + name;
        }
    }
    return files;
}

} // namespace

std::vector<dsl::VersionEntry_T> installedVersions()
{
    Entries entries;
    const std::string system = osRelease();
    if (!system.empty())
        entries.push_back({"System", system});
    utsname kernel{};
    if (::uname(&kernel) == 0)
        entries.push_back({"Kernel", kernel.release});
    for (const auto &[name, path] : versionFiles()) {
        const Entries more = assignmentsIn(path);
        entries.insert(entries.end(), more.begin(), more.end());
    }
    if (entries.size() > MOST_ENTRIES)
        entries.resize(MOST_ENTRIES);
    return entries;
}

} // namespace board
