#pragma once

#include "platform/sim/Requests.h"

namespace sim {

// Whether the request is one for the GUI thread: `ui` and `quit`.
bool isUiRequest(const Request &request);

// Does it: tells what the windows show, or puts the events of a finger into the queue, to be
// handled when this returns. Throws BadRequest. GUI thread.
Json runUiRequest(const Request &request);

// Ends the event loop, with the dialogs that run in it, and the delays of platform calls. The
// program then ends as it always does. The GUI thread.
void endProgram();

} // namespace sim
