// Download of PLC program files older than those that the PLC library reads: they are deciphered
// and sent over the serial port that they name.
#pragma once

#include <string>

// Sends the program file `path` (bytes of a file name). The directory "/tmp/unzip_temp" is there;
// the deciphered file is in it meanwhile. Blocks until the PLC has all of it or it is given up.
// g_Progress follows. On the download worker's thread, one at a time.
// Returns 0 once the PLC has confirmed it; -8 if the file cannot be read or deciphered, -22 if it
// is no program file or not as long as it says, -21 if the port does not open or cannot be set up
// so, else what LegacyExchange::send() returns.
int downloadLegacyProgram(const std::string &path);
