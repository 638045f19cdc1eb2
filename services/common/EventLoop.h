#pragma once

#include "services/common/Event.h"

#include <functional>

namespace service {

// The life of a service on libsystemd's event loop: has `make` make what serves and call `serve`,
// which tells systemd that the service is ready and returns after SIGTERM or SIGINT. Feeds the
// watchdog. Returns the program's exit status; an exception out of `make` is told to the journal.
// Before there are threads, so that all of them leave the two signals to the loop.
int runOnEventLoop(
    const std::function<void(sd_event *event, const std::function<void()> &serve)> &make);

} // namespace service
