#include "services/update/Signature.h"

#include <array>
#include <memory>
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

namespace updates {
namespace {

template <auto Free>
struct Deleter
{
    template <typename T>
    void operator()(T *object) const
    {
        Free(object);
    }
};
using Bio = std::unique_ptr<BIO, Deleter<BIO_free_all>>;
using Cms = std::unique_ptr<CMS_ContentInfo, Deleter<CMS_ContentInfo_free>>;
using Store = std::unique_ptr<X509_STORE, Deleter<X509_STORE_free>>;

Bio reading(const std::string &bytes)
{
    return Bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
}

std::string lastError()
{
    std::array<char, 256> text{};
    ERR_error_string_n(ERR_peek_last_error(), text.data(), text.size());
    ERR_clear_error();
    return text.data();
}

// One CMS and nothing behind it.
Cms parse(const std::string &der)
{
    const auto *at = reinterpret_cast<const unsigned char *>(der.data());
    const unsigned char *const end = at + der.size();
    Cms cms(d2i_CMS_ContentInfo(nullptr, &at, static_cast<long>(der.size())));
    return at == end ? std::move(cms) : nullptr;
}

// A certificate of the keyring may be the signer's own, without an authority behind it.
Store openStore(const std::string &keyring)
{
    Store store(X509_STORE_new());
    if (!store || X509_STORE_load_file(store.get(), keyring.c_str()) != 1)
        return nullptr;
    X509_STORE_set_flags(store.get(), X509_V_FLAG_NO_CHECK_TIME | X509_V_FLAG_PARTIAL_CHAIN);
    return store;
}

// `content`: what a detached one is over, else null.
std::string faultOf(CMS_ContentInfo *cms, BIO *content, const std::string &keyring)
{
    const Store store = openStore(keyring);
    if (!store) {
        ERR_clear_error();
        return "there is no keyring " + keyring;
    }
    if (CMS_verify(cms, nullptr, store.get(), content, nullptr, CMS_BINARY) != 1)
        return "its signature does not hold: " + lastError();
    return {};
}

} // namespace

std::string signatureFault(const std::string &bytes, const std::string &signature,
                           const std::string &keyring)
{
    if (signature.empty())
        return "it is not signed";
    const Cms cms = parse(signature);
    if (!cms || CMS_is_detached(cms.get()) != 1) {
        ERR_clear_error();
        return "its signature is damaged";
    }
    return faultOf(cms.get(), reading(bytes).get(), keyring);
}

std::optional<SignedText> openSigned(const std::string &cms, const std::string &keyring)
{
    const Cms opened = parse(cms);
    ASN1_OCTET_STRING **const content = opened ? CMS_get0_content(opened.get()) : nullptr;
    ERR_clear_error();
    if (content == nullptr || *content == nullptr)
        return std::nullopt;
    const auto *bytes = reinterpret_cast<const char *>(ASN1_STRING_get0_data(*content));
    const auto size = static_cast<std::size_t>(ASN1_STRING_length(*content));
    return SignedText{std::string(bytes, size), faultOf(opened.get(), nullptr, keyring)};
}

} // namespace updates
