// The common helpers for GLib under this service's name.
#pragma once

#include "services/common/GLib.h"

namespace network {

using service::Calls;
using service::Error;
using service::Handlers;
using service::Object;
using service::share;
using service::Timer;
using service::toString;
using service::Variant;

} // namespace network
