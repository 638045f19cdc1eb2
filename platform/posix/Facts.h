// What the board says about itself: device tree, DMI, kernel. Each fact is a text, empty where the
// board does not know it. Any thread; each call reads anew.
#pragma once

#include <string>

namespace board {

// The model: the device tree's, else DMI's product.
std::string boardModel();

// The serial number: the device tree's, else DMI's product serial.
std::string boardSerial();

// The processor's own identifier: of the SoC bus, the device tree or /proc/cpuinfo, else DMI's
// UUID. Nothing that a copy of the panel's files would carry along.
std::string processorId();

// The MAC address of the first Ethernet device of the board, by name.
std::string ethernetMac();

} // namespace board
