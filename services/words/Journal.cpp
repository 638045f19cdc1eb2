#include "services/words/Journal.h"

#include <cstdio>
#include <system_error>
#include <systemd/sd-daemon.h>

namespace words {

void say(const std::string &line)
{
    std::fprintf(stderr, SD_INFO "%s\n", line.c_str());
}

void warn(const std::string &line)
{
    std::fprintf(stderr, SD_WARNING "%s\n", line.c_str());
}

std::string reason(int error)
{
    return std::generic_category().message(error);
}

void Trouble::set(int error)
{
    if (error != 0 && !m_bFailing)
        warn(m_what + ": " + reason(error));
    else if (error == 0 && m_bFailing)
        say(m_what + ": works again");
    m_bFailing = error != 0;
}

} // namespace words
