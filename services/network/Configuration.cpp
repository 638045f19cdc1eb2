#include "services/network/Configuration.h"

#include "services/common/Journal.h"

#include <cerrno>
#include <ini.h>
#include <net/if.h>
#include <string_view>

namespace network {
namespace {

int onValue(void *kept, const char *section, const char *name, const char *value)
{
    if (std::string_view(section) != "network")
        return 1;
    const std::string_view text(value);
    if (std::string_view(name) == "ethernet" && text.size() < IF_NAMESIZE)
        static_cast<Configuration *>(kept)->ethernet = text;
    else
        service::warn(std::string("panel.conf: [network] ") + name + "=" + value + " is not taken");
    return 1;
}

} // namespace

Configuration readConfiguration(const std::string &path)
{
    Configuration configuration;
    errno = 0;
    const int line = ini_parse(path.c_str(), onValue, &configuration);
    if (line < 0 && errno != ENOENT)
        service::warn(path + " cannot be read");
    else if (line > 0)
        service::warn(path + ": line " + std::to_string(line) + " is not understood");
    return configuration;
}

} // namespace network
