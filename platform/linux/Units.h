// Units of systemd that this program may start (org.freedesktop.systemd1(5)). Any thread.
#pragma once

#include <chrono>

namespace board {

// Has the unit started; its end is not waited for. False if systemd refuses or does not answer
// within `timeout`.
bool startUnit(const char *unit, std::chrono::milliseconds timeout);

// The same for a unit that does its work and ends; waits for its end within `timeout`. False also
// if it failed or has not ended by then.
bool runUnit(const char *unit, std::chrono::milliseconds timeout);

} // namespace board
