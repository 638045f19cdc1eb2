// Downloads a PLC program file into the PLC at the panel's serial port.
#pragma once

#include <cstddef>
#include <string>

// Room for the name of what failed.
constexpr std::size_t PLC_TRACE_SIZE = 256;

// Reads the program file `path` (bytes of a file name) and takes the PLC through all steps of the
// download; a file of the older format goes over the serial line by itself. `failed` receives the
// trace line of the step that failed, ended by a zero; it stays empty where none did. Writes
// g_Progress as it goes and leaves its percent at 100.
// Returns 0; else the library's negative number, or one of its own: -4 (the PLC asks for a download
// password and the file has none), -15 (the file cannot be read), or what
// downloadLegacyProgram() says of an older file. A positive number of a step that was tried three
// times does not stop the download. One call at a time, on the thread that can wait for minutes.
int UpdatePLCprogram(const std::string &path, char (&failed)[PLC_TRACE_SIZE]);
