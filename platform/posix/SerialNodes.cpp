#include "platform/posix/SerialNodes.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <sys/ioctl.h>

namespace os {
namespace {

// _IOW('w', 1, int) of the board's driver: 1 makes the line RS-422, 0 RS-485.
constexpr unsigned long MODE_REQUEST = 0x40047701;
constexpr int NO_SWITCH = -1;

constexpr SerialNode NODES[] = {
    {0, 0, "RS232_1", "/dev/THAL/tty/com1-232", NO_SWITCH},
    {0, 1, "RS422_1", "/dev/THAL/tty/com1-422", 1},
    {0, 2, "RS485_1", "/dev/THAL/tty/com1-422", 0},
    {1, 0, "RS232_2", "/dev/THAL/tty/com2-232", NO_SWITCH},
    {1, 2, "RS485_2", "/dev/THAL/tty/com2-485", NO_SWITCH},
};

template <typename Condition>
const SerialNode *find(Condition condition)
{
    const auto *found = std::find_if(std::begin(NODES), std::end(NODES), condition);
    return found == std::end(NODES) ? nullptr : found;
}

} // namespace

const SerialNode *serialNode(int port, int mode)
{
    return find([=](const SerialNode &node) { return node.port == port && node.mode == mode; });
}

const SerialNode *serialNode(const std::string &name)
{
    return find([&](const SerialNode &node) { return node.name == name; });
}

bool switchSerialMode(int fd, const SerialNode &node)
{
    int switchTo = node.switchTo;
    if (switchTo == NO_SWITCH || ioctl(fd, MODE_REQUEST, &switchTo) == 0)
        return true;
    // A line that has no switch, such as a pseudo-terminal, needs none.
    return errno == ENOTTY;
}

} // namespace os
