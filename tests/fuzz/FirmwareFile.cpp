// The end of a firmware file: bytes as they are, as a CMS, and as the manifest in an unsigned one.
#include "services/update/Bundle.h"

#include <cstdint>
#include <cstdlib>
#include <openssl/cms.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// Vouches for the bundle of the corpus and, as its key is gone, for no other.
constexpr const char *KEYRING = R"(-----BEGIN CERTIFICATE-----
MIIBuDCCAV2gAwIBAgIUGkLwhCkCJUxZxXZ0LRb122LDYZ8wCgYIKoZIzj0EAwIw
KDEUMBIGA1UECgwLUGFuZWwgbWFrZXIxEDAOBgNVBAMMB1VwZGF0ZXMwIBcNMjYx
MTIzMTM0MTI5WhgPMjA2NjExMTMxMzQxMjlaMCgxFDASBgNVBAoMC1BhbmVsIG1h
a2VyMRAwDgYDVQQDDAdVcGRhdGVzMFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAE
Gr1nldBTJehyyzuqH/sTmV+jfs0iTbkIzYz+GBf4X/SIqL+98qS+uitQ9j5d7CiU
RcuFTa4xw5S2pdoxUGdH+qNjMGEwHQYDVR0OBBYEFFY71fEXiPnVKVVF5NErpw5G
RWczMB8GA1UdIwQYMBaAFFY71fEXiPnVKVVF5NErpw5GRWczMA8GA1UdEwEB/wQF
MAMBAf8wDgYDVR0PAQH/BAQDAgIEMAoGCCqGSM49BAMCA0kAMEYCIQD3TCM47BbU
/DJb0xxAa87KpsjUaSTWusmASH8I0iwjgQIhAOf/hevdR229l0HLwH33HGswLwgW
3bWB5dqHuGx7WXR8
-----END CERTIFICATE-----
)";
constexpr std::uint64_t VERSION = 20261123; // of that bundle

class MemoryFile
{
public:
    std::string put(const std::string &bytes) const
    {
        if (::ftruncate(m_fd, 0) != 0 ||
            ::pwrite(m_fd, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
            std::abort();
        return "/proc/self/fd/" + std::to_string(m_fd);
    }

private:
    const int m_fd = ::memfd_create("firmware", MFD_CLOEXEC);
};

std::string withLength(std::string cms)
{
    const std::size_t size = cms.size();
    for (int shift = 56; shift >= 0; shift -= 8)
        cms += static_cast<char>(size >> shift);
    return cms;
}

std::string holding(const std::string &manifest)
{
    BIO *const text = BIO_new_mem_buf(manifest.data(), static_cast<int>(manifest.size()));
    CMS_ContentInfo *const cms = CMS_data_create(text, CMS_BINARY);
    unsigned char *der = nullptr;
    const int size = i2d_CMS_ContentInfo(cms, &der);
    const std::string bytes(reinterpret_cast<char *>(der), static_cast<std::size_t>(size));
    OPENSSL_free(der);
    CMS_ContentInfo_free(cms);
    BIO_free(text);
    return bytes;
}

void read(const std::string &bytes, const std::string &keyring)
{
    static const MemoryFile firmware;
    const auto bundle = updates::readBundle(os::OpenFile(firmware.put(bytes)), keyring);
    if (!bundle)
        return;
    if (bundle->model.empty() || bundle->model.find('\n') != std::string::npos ||
        bundle->imageBytes == 0)
        std::abort();
    if (bundle->fault.empty() && (bundle->model != "KV070" || bundle->version != VERSION))
        std::abort(); // forged
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const std::string keyring = MemoryFile().put(KEYRING);
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    read(bytes, keyring);
    read(withLength(bytes), keyring);
    read(withLength(holding(bytes)), ""); // whose key does not matter, and takes time to read
    return 0;
}
