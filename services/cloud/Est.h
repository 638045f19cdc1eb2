// Requests to a certificate service over EST (RFC 7030).
#pragma once

#include "services/cloud/EstMessage.h"

namespace cloud {

// Asks for a certificate and waits, at most 7 s: by simpleenroll as device and salt, or, with a
// former identity, by simplereenroll. A thread at a time.
EstAnswer enrol(const EstRequest &request);

} // namespace cloud
