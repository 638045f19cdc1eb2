// An older PLC program file once it is deciphered; docs/decisions/0008-legacy-plc-download.md has
// its layout.
#pragma once

#include "platform/serial_line.h"

#include <QByteArray>

#include <optional>

struct LegacyProgram
{
    PLATFORM::SerialSettings line; // as the header has it, not yet checked
    QByteArray bytes;
};

// Reads the deciphered file `fd`, which stays open. Its length goes to g_Progress.nTotal (cut to 31
// bits). Nothing if it does not begin as a program file
// does, or what follows the header is empty, longer than 16 MiB or not as long as the header says.
std::optional<LegacyProgram> readLegacyProgram(int fd);
