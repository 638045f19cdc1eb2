// What a program on the simulated panel does around its own work.
#pragma once

namespace sim {

// Prepares the panel: its root folder (SYSSET_ROOT, set if it is not), the lock that keeps a
// second program off it, the screen (SYSSET_LCD) and the scenario (SYSSET_SCENARIO). From then on
// the program leaves the panel's state in run/last.json when it exits. To be called once, before
// anything else.
// Returns 0; else the status to exit with, the reason being on standard error: 1 if the root
// cannot be used or another program uses it, 2 if a variable makes no sense.
int startFromEnvironment();

// Serves the panel's control socket to the end of the program and says "panel ready" on standard
// error. To be called once, on the GUI thread, when the window is shown. Returns false, the reason
// being on standard error, if the socket cannot be opened.
bool serveControl();

} // namespace sim
