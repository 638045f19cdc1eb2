// Operating-system layer: processes.
#pragma once

#include <string>

namespace COS {

class CosOsState
{
public:
    // The number of a running process whose name (the file name of its program, as in
    // /proc/PID/comm or the first word of /proc/PID/cmdline, proc(5)) is `name`; the lowest if
    // there are several. The kernel keeps 15 bytes of a name: a longer one is found by cmdline
    // only. A process that has ended but that its parent has not asked about (a zombie) does not
    // run. Returns it, 1 or more; -1 if there is none. Any thread.
    static int GetProcessPIDByName(const std::string &name);
};

} // namespace COS
