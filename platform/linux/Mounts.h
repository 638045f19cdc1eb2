// What is mounted, as the kernel tells it (proc_pid_mountinfo(5)).
#pragma once

#include <string>
#include <vector>

namespace board {

struct Mount
{
    std::string id;   // the kernel's number of this mount, given to no other one while it is there
    std::string path; // bytes
};

// The mounts below `folder` that `mountinfo`, the text of such a file, lists, in its order. Lines
// that are none are skipped; of several mounts on one path the last counts, which covers the
// others.
std::vector<Mount> mountsBelow(const std::string &folder, const std::string &mountinfo);

} // namespace board
