// The section [words] of /etc/sysset/panel.conf.
#pragma once

#include <string>

namespace words {

struct Settings
{
    int port = 1502; // 0: any that is free
    bool mayClockBeSet = true;
};

// Reads the file. What is missing, broken or out of range keeps its default; all but a missing file
// or key is said in the journal.
Settings readSettings(const std::string &path);

} // namespace words
