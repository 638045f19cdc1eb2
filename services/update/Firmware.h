// Firmware: a bundle on a U-disk, which RAUC writes into the slot that is not running.
#pragma once

#include "services/update/Checked.h"
#include "services/update/Settings.h"

#include <functional>
#include <string>

namespace updates {

// Looks at a file: form, signature, and whether it is newer than the project in force. Reads its
// end only. A model that is not the board's is no error here: the operator is told both.
Checked checkFirmware(const std::string &path, const Settings &settings);

// Has it written and started on trial from the next start on. `goesOn` is called with the percent
// that are written; false stops watching, RAUC goes on. Returns os::UpdateError.
int installFirmware(const Checked &checked, const std::function<bool(int percent)> &goesOn,
                    std::string &why);

} // namespace updates
