// The end of the program, which is always a restart of the panel. GUI thread.
#pragma once

// Gives everything that was written its time to reach the disk.
void settle();

// Restarts the panel, by its hardware reset (1) or by the operating system (0), and ends the
// program with exit status 0: there is no way back to a shell.
[[noreturn]] void reboot(int hardware);
