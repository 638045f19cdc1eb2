// Who vouches for an update.
#pragma once

#include <optional>
#include <string>

namespace updates {

// Whether `signature` (CMS as DER, RFC 5652, detached) is over `bytes` and made by a certificate
// that the PEM file `keyring` knows or vouches for. "" if so, else what is wrong. A certificate
// that is over is taken: the clock of a panel is an operator's.
std::string signatureFault(const std::string &bytes, const std::string &signature,
                           const std::string &keyring);

// What a CMS (DER) holds and is signed, whoever signed it, and what is wrong with that as above.
struct SignedText
{
    std::string text;
    std::string fault;
};

// Nothing if it is no such CMS.
std::optional<SignedText> openSigned(const std::string &cms, const std::string &keyring);

} // namespace updates
