#include "platform/sim/Root.h"

#include <cstdlib>
#include <filesystem>

namespace sim {
namespace {

std::filesystem::path ownFolder()
{
    const std::filesystem::path xdg = environment("XDG_STATE_HOME");
    const std::filesystem::path home = environment("HOME");
    return (xdg.empty() ? home / ".local/state" : xdg) / "sysset-sim";
}

} // namespace

std::string panelRoot()
{
    const std::filesystem::path root = environment("SYSSET_ROOT");
    return std::filesystem::absolute(root.empty() ? ownFolder() : root).string();
}

std::string runFolder()
{
    return panelRoot() + "/run";
}

std::string socketPath()
{
    return runFolder() + "/panel.sock";
}

std::string environment(const char *name)
{
    const char *value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody changes it then
    return value == nullptr ? std::string() : value;
}

} // namespace sim
