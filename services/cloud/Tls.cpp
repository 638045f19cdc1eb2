#include "services/cloud/Tls.h"

#include <openssl/err.h>
#include <openssl/x509v3.h>

namespace cloud {
namespace {

TlsFault &faultOf(SSL_CTX *context)
{
    return *static_cast<TlsFault *>(SSL_CTX_get_app_data(context));
}

int onVerified(int isGood, X509_STORE_CTX *store)
{
    const auto *ssl =
        static_cast<SSL *>(X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx()));
    if (isGood == 0)
        faultOf(SSL_get_SSL_CTX(ssl)) = {
            std::string("the server's certificate: ") +
                X509_verify_cert_error_string(X509_STORE_CTX_get_error(store)),
            true, false};
    return isGood;
}

// Alerts that are about a certificate: RFC 8446, 6.2.
bool isAboutCertificate(int alert)
{
    switch (alert) {
    case SSL_AD_BAD_CERTIFICATE:
    case SSL_AD_UNSUPPORTED_CERTIFICATE:
    case SSL_AD_CERTIFICATE_REVOKED:
    case SSL_AD_CERTIFICATE_EXPIRED:
    case SSL_AD_CERTIFICATE_UNKNOWN:
    case SSL_AD_UNKNOWN_CA:
    case SSL_AD_ACCESS_DENIED:
        return true;
    default:
        return false;
    }
}

void onInfo(const SSL *ssl, int where, int value)
{
    const int alert = value & 0xff;
    const bool isFatal = value >> 8 == SSL3_AL_FATAL;
    if (where != SSL_CB_READ_ALERT || !isFatal)
        return;
    faultOf(SSL_get_SSL_CTX(ssl)) = {std::string("the server says: ") +
                                         SSL_alert_desc_string_long(value),
                                     false, isAboutCertificate(alert)};
}

bool setTrust(SSL_CTX *context, const std::string &pem)
{
    if (pem.empty())
        return SSL_CTX_set_default_verify_paths(context) == 1;
    const Certificates anchors = readCertificates(pem);
    for (const X509Pointer &each : anchors)
        X509_STORE_add_cert(SSL_CTX_get_cert_store(context), each.get());
    return !anchors.empty();
}

bool setName(SSL_CTX *context, const std::string &host)
{
    X509_VERIFY_PARAM *parameters = SSL_CTX_get0_param(context);
    // As libcurl: what is trusted need not be a root.
    X509_VERIFY_PARAM_set_flags(parameters, X509_V_FLAG_PARTIAL_CHAIN);
    X509_VERIFY_PARAM_set_hostflags(parameters, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
    return X509_VERIFY_PARAM_set1_ip_asc(parameters, host.c_str()) == 1 ||
           X509_VERIFY_PARAM_set1_host(parameters, host.data(), host.size()) == 1;
}

bool setIdentity(SSL_CTX *context, const std::string &pem)
{
    const Bio source(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    const Key key(PEM_read_bio_PrivateKey(source.get(), nullptr, nullptr, nullptr));
    Certificates all = readCertificates(pem);
    if (!key || all.empty() || SSL_CTX_use_certificate(context, all.front().get()) != 1 ||
        SSL_CTX_use_PrivateKey(context, key.get()) != 1)
        return false;
    for (std::size_t i = 1; i < all.size(); ++i)
        if (SSL_CTX_add1_chain_cert(context, all[i].get()) != 1)
            return false;
    return true;
}

} // namespace

Context makeContext(const std::string &host, const std::string &trust, const std::string &identity,
                    TlsFault &fault)
{
    Context made(SSL_CTX_new(TLS_client_method()));
    if (!made)
        return nullptr;
    SSL_CTX *context = made.get();
    SSL_CTX_set_app_data(context, &fault);
    SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
    SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
    SSL_CTX_set_mode(context, SSL_MODE_RELEASE_BUFFERS);
    SSL_CTX_set_verify(context, SSL_VERIFY_PEER, onVerified);
    SSL_CTX_set_info_callback(context, onInfo);
    if (!setTrust(context, trust))
        fault = {"the resource file has no certificate", true, false};
    else if (!setName(context, host) || !setIdentity(context, identity))
        fault = {"TLS: " + lastFault(), false, false};
    ERR_clear_error();
    return fault.why.empty() ? std::move(made) : nullptr;
}

} // namespace cloud
