#include "platform/paths.h"

#include <cstdlib>

std::string panelPath(const std::string &absolute)
{
    // Safe as long as nobody changes the environment, which is what the header asks for.
    const char *root = std::getenv("SYSSET_ROOT"); // NOLINT(concurrency-mt-unsafe)
    return root ? root + absolute : absolute;
}
