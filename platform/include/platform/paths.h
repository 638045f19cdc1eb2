// Where the panel's own files are.
#pragma once

#include <string>

// The path under which the program reaches `absolute` ("/mnt/data/prj"): the value of the
// environment variable SYSSET_ROOT, empty on a panel, put before it. Every absolute path of the
// program's own goes through here, so that a desktop run touches nothing outside its own folder.
// Paths that arrive from outside (a U-disk's mount path) are used as they come.
// Any thread, as long as nobody changes the environment meanwhile.
std::string panelPath(const std::string &absolute);
