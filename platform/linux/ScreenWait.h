#pragma once

namespace board {

// Returns 0 as soon as the framebuffer can be drawn on: a driver may bring it late, and Qt ends a
// program that has no screen. At once where the program draws on something else (QT_QPA_PLATFORM is
// not "linuxfb"). The wait is told to the journal once, and to the service manager all along
// (EXTEND_TIMEOUT_USEC, sd_notify(3)). Before there are other threads.
int waitForScreen();

} // namespace board
