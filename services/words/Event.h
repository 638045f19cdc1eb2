#pragma once

#include "services/common/Event.h"

namespace words {

using service::Event;
using service::require;
using service::Source;

} // namespace words
