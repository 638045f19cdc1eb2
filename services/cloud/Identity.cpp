#include "services/cloud/Identity.h"

#include <algorithm>
#include <openssl/ec.h>
#include <openssl/err.h>

namespace cloud {
namespace {

constexpr int MOST_CERTIFICATES = 8;

const unsigned char *bytesOf(const std::string &text)
{
    return reinterpret_cast<const unsigned char *>(text.data());
}

std::time_t timeOf(const ASN1_TIME *time)
{
    std::tm fields{};
    return ASN1_TIME_to_tm(time, &fields) == 1 ? timegm(&fields) : 0;
}

std::string textOf(BIO *source)
{
    char *data = nullptr;
    const long size = BIO_get_mem_data(source, &data);
    return size > 0 ? std::string(data, static_cast<std::size_t>(size)) : std::string();
}

std::string encode(const std::vector<unsigned char> &bytes)
{
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char *>(text.data()), bytes.data(),
                                     static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(size));
    return text;
}

// "" for what is no base64.
std::string decode(std::string text)
{
    const auto isBlank = [](char c) { return c == '\n' || c == '\r' || c == ' ' || c == '\t'; };
    text.erase(std::remove_if(text.begin(), text.end(), isBlank), text.end());
    if (text.empty() || text.size() % 4 != 0)
        return "";
    std::string bytes(text.size() / 4 * 3, '\0');
    const int size = EVP_DecodeBlock(reinterpret_cast<unsigned char *>(bytes.data()), bytesOf(text),
                                     static_cast<int>(text.size()));
    bytes.resize(size > 0 ? static_cast<std::size_t>(size)
                          : 0); // with what "=" stands for as zeros
    return bytes;
}

bool setSubject(X509_REQ *request, const std::string &device, const Identity *former)
{
    if (former != nullptr) {
        const Certificates old = readCertificates(former->pem);
        return !old.empty() &&
               X509_REQ_set_subject_name(request, X509_get_subject_name(old.front().get())) == 1;
    }
    X509_NAME *name = X509_REQ_get_subject_name(request);
    return X509_NAME_add_entry_by_NID(name, NID_commonName, MBSTRING_ASC, bytesOf(device),
                                      static_cast<int>(device.size()), -1, 0) == 1;
}

Identity describe(const std::string &pem, const X509 *certificate)
{
    return {pem, timeOf(X509_get0_notBefore(certificate)), timeOf(X509_get0_notAfter(certificate))};
}

// The panel's certificate first.
std::string write(EVP_PKEY *key, X509 *own, STACK_OF(X509) * all)
{
    const Bio text(BIO_new(BIO_s_mem()));
    bool isWritten =
        PEM_write_bio_PrivateKey(text.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1 &&
        PEM_write_bio_X509(text.get(), own) == 1;
    for (int i = 0; i < sk_X509_num(all); ++i)
        if (X509 *each = sk_X509_value(all, i); each != own)
            isWritten = isWritten && PEM_write_bio_X509(text.get(), each) == 1;
    return isWritten ? textOf(text.get()) : "";
}

Pkcs7 readPkcs7(const std::string &bytes)
{
    const unsigned char *at = bytesOf(bytes);
    Pkcs7 read(d2i_PKCS7(nullptr, &at, static_cast<long>(bytes.size())));
    const bool isSigned = read && PKCS7_type_is_signed(read.get()) && read->d.sign != nullptr &&
                          read->d.sign->cert != nullptr;
    return isSigned ? std::move(read) : nullptr;
}

X509 *certificateFor(EVP_PKEY *key, STACK_OF(X509) * all)
{
    for (int i = 0; i < sk_X509_num(all); ++i)
        if (X509_check_private_key(sk_X509_value(all, i), key) == 1)
            return sk_X509_value(all, i);
    return nullptr;
}

} // namespace

std::optional<Identity> readIdentity(const std::string &pem)
{
    const Key key = readKey(pem);
    const Certificates all = readCertificates(pem);
    const bool isPair =
        key && !all.empty() && X509_check_private_key(all.front().get(), key.get()) == 1;
    ERR_clear_error();
    return isPair ? std::optional(describe(pem, all.front().get())) : std::nullopt;
}

Key readKey(const std::string &pem)
{
    const Bio source(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    // Without a callback of its own OpenSSL would ask at the terminal for a password.
    const auto noPassword = [](char *, int, int, void *) { return -1; };
    return Key(PEM_read_bio_PrivateKey(source.get(), nullptr, noPassword, nullptr));
}

std::string makeKey()
{
    const Key key(EVP_EC_gen("P-256"));
    const Bio text(BIO_new(BIO_s_mem()));
    const bool isWritten = key && PEM_write_bio_PrivateKey(text.get(), key.get(), nullptr, nullptr,
                                                           0, nullptr, nullptr) == 1;
    return isWritten ? textOf(text.get()) : "";
}

std::string makeRequest(EVP_PKEY *key, const std::string &device, const Identity *former)
{
    const Request request(X509_REQ_new());
    if (key == nullptr || !request || !setSubject(request.get(), device, former) ||
        X509_REQ_set_pubkey(request.get(), key) != 1 ||
        X509_REQ_sign(request.get(), key, EVP_sha256()) <= 0)
        return "";
    unsigned char *bytes = nullptr;
    const int size = i2d_X509_REQ(request.get(), &bytes);
    if (size <= 0)
        return "";
    const std::vector<unsigned char> der(bytes, bytes + size);
    OPENSSL_free(bytes);
    return encode(der);
}

std::optional<Identity> takeAnswer(EVP_PKEY *key, const std::string &answer, std::time_t now)
{
    const Pkcs7 read = readPkcs7(decode(answer));
    STACK_OF(X509) *all = read ? read->d.sign->cert : nullptr;
    const bool isFew = all != nullptr && sk_X509_num(all) <= MOST_CERTIFICATES;
    X509 *own = isFew ? certificateFor(key, all) : nullptr;
    ERR_clear_error();
    if (own == nullptr)
        return std::nullopt;
    const Identity identity = describe(write(key, own, all), own);
    const bool isUsable = !identity.pem.empty() && !identity.isOver(now);
    return isUsable ? std::optional(identity) : std::nullopt;
}

} // namespace cloud
