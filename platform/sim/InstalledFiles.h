#pragma once

namespace sim {

// Puts the files that the program's installation brings to a panel into the panel's root. A folder
// that is there already, even an empty one, is left alone. If that fails, says why on standard
// error: the program does without them, as on a panel where they are missing.
void installFiles();

} // namespace sim
