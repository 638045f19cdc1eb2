// The end of the program, which is always a restart of the panel. GUI thread.
#pragma once

#include <functional>
#include <vector>

// The end of something that runs beside the GUI thread: tells it to stop, waits at most `waitMs`
// milliseconds and returns whether it has ended. Called again until it has.
using Stop = std::function<bool(int waitMs)>;

// Stops all of `running` and waits for their ends in this order, nine seconds altogether. Returns
// whether all have ended. From the call on nothing reaches a widget: no input, no timer, and no
// call of another thread, which does not wait for it either. `takesLong` is called if it takes more
// than a second.
bool stopAll(const std::vector<Stop> &running, const std::function<void()> &takesLong);

// Writes all that is buffered to the disks, and gives them half a second for it.
void syncDisks();

// Restarts the panel, by its hardware reset (1) or by the operating system (0), and ends the
// program with exit status 0: there is no way back to a shell. `quiet` says that no thread of the
// program runs any more; else no destructor and no atexit(3) handler runs, at_quick_exit(3)
// handlers alone.
[[noreturn]] void reboot(int hardware, bool quiet = true);
