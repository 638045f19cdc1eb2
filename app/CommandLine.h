// The words that the program is started with.
#pragma once

#include <optional>

class MainWin;

// Answers --help and --version on standard output, an unknown option on standard error. Words that
// are no options, Qt's own options and what stands behind -p and -d are let pass. Returns the
// status to exit with; nothing if the program is to start. Before the QApplication is made.
std::optional<int> answerCommandLine(int argc, char **argv);

// "-p PASSWORD" asks for the password, "-d WORD" opens an update page of `window`. An option with
// nothing behind it is ignored. After the QApplication has taken its own options out. GUI thread.
void obeyOptions(int argc, char **argv, MainWin *window);
