#include "services/common/Journal.h"

#include <algorithm>
#include <cstdio>
#include <system_error>
#include <systemd/sd-daemon.h>

namespace service {

namespace {

// A byte that is no UTF-8 would hide the whole line from who reads the journal.
std::string plain(std::string line)
{
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < ' ' || c >= 0x7f; }, '?');
    return line;
}

} // namespace

void say(const std::string &line)
{
    std::fprintf(stderr, SD_INFO "%s\n", plain(line).c_str());
}

void warn(const std::string &line)
{
    std::fprintf(stderr, SD_WARNING "%s\n", plain(line).c_str());
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

} // namespace service
