// The program itself, whatever panel it is linked with.
#pragma once

#include <functional>

// Loads what every window needs: pictures and the substitutes of fonts. After the QApplication is
// constructed, once. GUI thread.
void loadAppearance();

// Runs the settings program: builds and shows the window, obeys the options, runs the event loop.
// Never returns: the program's end restarts the panel and leaves with exit status 0. `shown` is
// called once, when the window has been shown and before anything modal can open.
[[noreturn]] void runProgram(int argc, char **argv, const std::function<void()> &shown);
