#include "platform/paths.h"

#include <cstdlib>

std::string panelPath(const std::string &absolute)
{
    const char *root = std::getenv("SYSSET_ROOT");
    return root ? root + absolute : absolute;
}
