// The processes of this system, for GetProcessPIDByName() of a panel.
#pragma once

#include <string>

namespace os {

// Looks `name` up in /proc: what COS::CosOsState::GetProcessPIDByName answers where the process
// table is the real one. Same argument, result and thread.
int scanProcessTable(const std::string &name);

} // namespace os
