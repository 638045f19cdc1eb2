// The program itself, whatever panel it is linked with.
#pragma once

#include <functional>

// Loads what every window needs: pictures and the substitutes of fonts. After the QApplication is
// constructed, once. GUI thread.
void loadAppearance();

// Runs the settings program: answers --help, --version and an unknown option, builds and shows the
// window, obeys the other options, runs the event loop. `prepare` makes the panel ready before
// anything is built and returns 0, or the status to exit with; it may be empty. `shown` is called
// once, when the window has been shown and before anything modal can open.
// Returns the exit status only if nothing has been built; else the program's end restarts the panel
// and leaves with exit status 0.
int runProgram(int argc, char **argv, const std::function<void()> &shown,
               const std::function<int()> &prepare = {});
