// Who vouches for an update.
#pragma once

#include <string>

namespace updates {

// Whether `signature` (CMS as DER, RFC 5652, detached) is over `bytes` and made by a certificate
// that the PEM file `keyring` knows or vouches for. "" if so, else what is wrong. A certificate
// that is over is taken: the clock of a panel is an operator's.
std::string signatureFault(const std::string &bytes, const std::string &signature,
                           const std::string &keyring);

} // namespace updates
