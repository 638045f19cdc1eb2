#pragma once

#include "services/common/Journal.h"

namespace words {

using service::reason;
using service::say;
using service::Trouble;
using service::warn;

} // namespace words
