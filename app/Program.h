// The program itself, whatever panel it is linked with.
#pragma once

#include <functional>

// What every window needs beside the QApplication, which must exist: artwork, fonts, and no plugins
// yet. GUI thread, once.
void dressApplication();

// Runs the settings program: builds and shows the window, obeys the options, runs the event loop.
// Never returns: the program's end restarts the panel and leaves with exit status 0. `shown` is
// called once, when the window has been shown and before anything modal can open.
[[noreturn]] void runProgram(int argc, char **argv, const std::function<void()> &shown);
