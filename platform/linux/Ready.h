#pragma once

namespace board {

// Tells the service manager that the window is shown (sd_notify(3)); does nothing where there is
// none.
void tellReady();

} // namespace board
