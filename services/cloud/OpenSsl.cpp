#include "services/cloud/OpenSsl.h"

#include <openssl/err.h>

namespace cloud {

Certificates readCertificates(const std::string &pem)
{
    const Bio source(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    Certificates found;
    while (X509 *next = PEM_read_bio_X509(source.get(), nullptr, nullptr, nullptr))
        found.emplace_back(next);
    ERR_clear_error();
    return found;
}

std::string lastFault()
{
    const unsigned long error = ERR_peek_last_error();
    ERR_clear_error();
    const char *reason = error == 0 ? nullptr : ERR_reason_error_string(error);
    return reason == nullptr ? std::string() : std::string(reason);
}

} // namespace cloud
