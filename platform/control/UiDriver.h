#pragma once

#include "platform/control/Request.h"

namespace control {

// Whether the request is one for the GUI thread: `ui` and `quit`.
bool isUiRequest(const Request &request);

// Runs the request and returns the reply's value. The events of a press or a drag are queued, and
// handled after this returns. Throws BadRequest. GUI thread.
Json runUiRequest(const Request &request);

// Ends the event loop, those of open dialogs included, and the delays of platform calls. GUI
// thread.
void endProgram();

} // namespace control
