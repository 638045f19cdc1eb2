// What the panel proves itself with: a key made here, and the certificates that belong to it.
#pragma once

#include "services/cloud/OpenSsl.h"

#include <ctime>
#include <optional>
#include <string>

namespace cloud {

// Key and certificates, one text in PEM: the key, the panel's certificate, then those between it
// and its authority. Times are those of the panel's certificate.
struct Identity
{
    std::string pem;
    std::time_t from = 0;
    std::time_t until = 0;

    bool isOver(std::time_t now) const { return now >= until; }
    // Two thirds of the life: when it is to be renewed.
    std::time_t renewal() const { return from + (until - from) / 3 * 2; }
};

// Nothing if it is no such text, or if the certificate is another key's.
std::optional<Identity> readIdentity(const std::string &pem);

// A key on P-256 (RFC 5480), in PEM; "" if OpenSSL cannot.
std::string makeKey();
// The first key of a text; null if it has none.
Key readKey(const std::string &pem);
// A request in PKCS #10, DER in base64 (RFC 7030, 4.2.1), for the device's name or, where there is
// an identity, for that one's subject; "" if it cannot be made.
std::string makeRequest(EVP_PKEY *key, const std::string &device, const Identity *former);
// What the answer to a request brings (RFC 7030, 4.2.3: certificates in a PKCS #7 without a
// signature, DER in base64). Nothing if it is none, or has no certificate for the key, or one that
// is over.
std::optional<Identity> takeAnswer(EVP_PKEY *key, const std::string &answer, std::time_t now);

} // namespace cloud
