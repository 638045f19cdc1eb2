// Downloads a PLC program file into the PLC at the panel's serial port.
#pragma once

#include <cstddef>
#include <string>

// Room for the name of what failed.
constexpr std::size_t PLC_TRACE_SIZE = 256;

// Reads the program file `path` (bytes of a file name) and takes the PLC through all steps of the
// download. A file of the older format, or a step that answers -14, leads to
// downloadLegacyProgram(). `failed` receives the trace line of the step that failed, ended by a
// zero; it stays empty where none did. g_Progress.nPercent follows; it is 100 after the steps, and
// what an older download has left after that.
// Returns 0; else the library's negative number, or one of its own: -4 (the PLC asks for a download
// password and the file has none), -15 (the file cannot be read), or what downloadLegacyProgram()
// says. A positive number of a step that was tried three times does not stop the download. One call
// at a time, on a QThread that can wait for minutes.
int UpdatePLCprogram(const std::string &path, char (&failed)[PLC_TRACE_SIZE]);
