// Measures the cipher of older PLC programs beside the same one of OpenSSL, both keyed afresh for
// each block.

#include "bench/Statistics.h"
#include "update/RC4Cryptor.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <openssl/evp.h>
#include <openssl/provider.h>
#include <vector>

namespace {

constexpr int RUNS = 21;
constexpr double LIMIT = 2; // half the speed
constexpr std::size_t BLOCK = 1024;
constexpr std::size_t SIZE = BLOCK * 16 * 1024;

using Data = std::vector<unsigned char>;

void require(bool done, const char *what)
{
    if (done)
        return;
    std::fprintf(stderr, "bench-cipher: OpenSSL has no %s\n", what);
    std::_Exit(1);
}

class OpenSslRc4
{
public:
    explicit OpenSslRc4(const std::string &key) : m_key(key)
    {
        require(OSSL_PROVIDER_load(nullptr, "legacy") != nullptr, "legacy provider");
        EVP_CIPHER *cipher = EVP_CIPHER_fetch(nullptr, "RC4", nullptr);
        require(cipher != nullptr, "RC4");
        EVP_EncryptInit_ex2(m_context, cipher, nullptr, nullptr, nullptr);
        EVP_CIPHER_CTX_set_key_length(m_context, static_cast<int>(key.size()));
        EVP_CIPHER_free(cipher);
    }
    OpenSslRc4(const OpenSslRc4 &) = delete;
    OpenSslRc4 &operator=(const OpenSslRc4 &) = delete;
    ~OpenSslRc4() { EVP_CIPHER_CTX_free(m_context); }

    void cryptBlock(unsigned char *data, std::size_t size)
    {
        const auto *key = reinterpret_cast<const unsigned char *>(m_key.data());
        int written = 0;
        EVP_EncryptInit_ex2(m_context, nullptr, key, nullptr, nullptr);
        EVP_EncryptUpdate(m_context, data, &written, data, static_cast<int>(size));
    }

private:
    const std::string m_key;
    EVP_CIPHER_CTX *m_context = EVP_CIPHER_CTX_new();
};

template <typename Cipher>
double millisecondsOf(Cipher &cipher, Data &data)
{
    return bench::timed([&] {
        for (std::size_t at = 0; at < data.size(); at += BLOCK)
            cipher.cryptBlock(data.data() + at, BLOCK);
    });
}

} // namespace

int main()
{
    RC4Cryptor own(legacyProgramKey());
    OpenSslRc4 yardstick(legacyProgramKey());
    Data data(SIZE);
    millisecondsOf(own, data);
    millisecondsOf(yardstick, data);
    require(std::all_of(data.begin(), data.end(), [](unsigned char byte) { return byte == 0; }),
            "such RC4");
    std::vector<double> ownMs;
    std::vector<double> yardstickMs;
    for (int run = 0; run < RUNS; ++run) {
        ownMs.push_back(millisecondsOf(own, data));
        yardstickMs.push_back(millisecondsOf(yardstick, data));
    }
    const bool kept = bench::report("deciphering 16 MB beside OpenSSL", bench::median(ownMs),
                                    bench::median(yardstickMs), "ms", LIMIT);
    return kept ? EXIT_SUCCESS : EXIT_FAILURE;
}
