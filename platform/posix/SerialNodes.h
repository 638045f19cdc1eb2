// The device nodes of the panel's serial ports.
#pragma once

#include <string>

namespace os {

struct SerialNode
{
    int port; // 0 or 1
    int mode; // 0 RS-232, 1 RS-422, 2 RS-485
    const char *name;
    const char *path; // as on a panel, see panelPath()
    int switchTo;     // what the board's driver is told; negative for nothing
};

// The node of a port in a mode, or of a port's name ("RS232_1"); null if there is none. Any thread.
const SerialNode *serialNode(int port, int mode);
const SerialNode *serialNode(const std::string &name);

// RS-422 and RS-485 of the first port share a node: tells the board's driver, by the open node
// `fd`, which of them it is. A node without such a switch needs none. False if the driver refuses,
// with errno set.
bool switchSerialMode(int fd, const SerialNode &node);

} // namespace os
