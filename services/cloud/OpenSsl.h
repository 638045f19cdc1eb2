// Owners of OpenSSL's objects, and text in PEM.
#pragma once

#include <memory>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <string>
#include <vector>

namespace cloud {

template <typename T, void (*Free)(T *)>
struct SslDeleter
{
    void operator()(T *object) const { Free(object); }
};

using Key = std::unique_ptr<EVP_PKEY, SslDeleter<EVP_PKEY, EVP_PKEY_free>>;
using X509Pointer = std::unique_ptr<X509, SslDeleter<X509, X509_free>>;
using Request = std::unique_ptr<X509_REQ, SslDeleter<X509_REQ, X509_REQ_free>>;
using Pkcs7 = std::unique_ptr<PKCS7, SslDeleter<PKCS7, PKCS7_free>>;
using Context = std::unique_ptr<SSL_CTX, SslDeleter<SSL_CTX, SSL_CTX_free>>;
using Bio = std::unique_ptr<BIO, SslDeleter<BIO, BIO_free_all>>;
using Certificates = std::vector<X509Pointer>;

// All certificates of a text, those before the first that is broken.
Certificates readCertificates(const std::string &pem);
// What OpenSSL says of its last fault, which is forgotten with it; "" without one.
std::string lastFault();

} // namespace cloud
