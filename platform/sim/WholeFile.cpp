#include "platform/sim/WholeFile.h"

#include <cstdio>
#include <fstream>

namespace sim {

bool writeWholeFile(const std::string &path, const std::string &bytes)
{
    const std::string part = path + ".new";
    std::ofstream stream(part, std::ios::binary);
    stream << bytes;
    stream.close();
    return stream && std::rename(part.c_str(), path.c_str()) == 0;
}

} // namespace sim
