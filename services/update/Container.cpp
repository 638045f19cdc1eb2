#include "services/update/Container.h"

#include "platform/posix/Bytes.h"
#include "platform/posix/UpdateFile.h"

#include <algorithm>
#include <openssl/sha.h>
#include <string_view>

namespace updates {
namespace {

// Behind the header.
constexpr std::size_t FORMAT_OFFSET = 48;
constexpr std::size_t KIND_OFFSET = 52;
constexpr std::size_t ENTRIES_OFFSET = 56;
constexpr std::size_t CONTENT_OFFSET = 60;
constexpr std::size_t UNPACKED_OFFSET = 64; // 8 bytes
constexpr std::size_t DIGESTS_OFFSET = 72;
constexpr std::size_t SIGNATURE_SIZE_SIZE = 4;

constexpr std::uint32_t FORMAT = 1;
constexpr std::uint32_t MOST_CONTENT = 1U << 30;
constexpr std::uint64_t MOST_UNPACKED = 1ULL << 32;
constexpr std::uint32_t MOST_ENTRIES = 100000;
constexpr std::uint32_t MOST_SIGNATURE = 16384;

std::uint64_t longFrom(const std::string &bytes, std::size_t offset)
{
    return std::uint64_t(os::numberFrom(bytes, offset + 4)) << 32 | os::numberFrom(bytes, offset);
}

// The fixed part; false if that cannot be one.
bool takeFixed(const std::string &bytes, std::uint64_t fileSize, Container &container)
{
    if (bytes.size() < DIGESTS_OFFSET ||
        bytes.compare(0, os::UPDATE_MAGIC.size(), os::UPDATE_MAGIC) != 0 ||
        os::numberFrom(bytes, FORMAT_OFFSET) != FORMAT ||
        os::numberFrom(bytes, os::UPDATE_LENGTH_OFFSET) + os::UPDATE_HEADER_SIZE != fileSize)
        return false;
    const std::string model =
        bytes.substr(os::UPDATE_FILE_MODEL_OFFSET, os::UPDATE_FILE_MODEL_SIZE);
    container.model = model.substr(0, model.find('\0'));
    container.version = os::numberFrom(bytes, os::UPDATE_VERSION_OFFSET);
    const std::uint32_t kind = os::numberFrom(bytes, KIND_OFFSET);
    container.kind = static_cast<Kind>(kind);
    container.entries = os::numberFrom(bytes, ENTRIES_OFFSET);
    container.contentBytes = os::numberFrom(bytes, CONTENT_OFFSET);
    container.unpackedBytes = longFrom(bytes, UNPACKED_OFFSET);
    return (kind == std::uint32_t(Kind::PROJECT) || kind == std::uint32_t(Kind::LOGO)) &&
           container.entries <= MOST_ENTRIES && container.unpackedBytes <= MOST_UNPACKED &&
           container.contentBytes > 0 && container.contentBytes <= MOST_CONTENT;
}

std::vector<Digest> digestsIn(const std::string &bytes)
{
    std::vector<Digest> digests(bytes.size() / sizeof(Digest));
    for (std::size_t i = 0; i < digests.size(); ++i)
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(i * sizeof(Digest)), sizeof(Digest),
                    digests[i].begin());
    return digests;
}

} // namespace

std::optional<Container> readContainer(const os::OpenFile &file)
{
    Container container;
    const std::string fixed = file.read(0, DIGESTS_OFFSET);
    if (!takeFixed(fixed, file.size(), container))
        return std::nullopt;
    const std::size_t size = (container.contentBytes + CHUNK - 1) / CHUNK * sizeof(Digest);
    const std::string rest = file.read(DIGESTS_OFFSET, size + SIGNATURE_SIZE_SIZE);
    if (rest.size() != size + SIGNATURE_SIZE_SIZE)
        return std::nullopt;
    const std::uint32_t signatureSize = os::numberFrom(rest, size);
    const std::uint64_t signatureOffset = DIGESTS_OFFSET + rest.size();
    container.contentOffset = signatureOffset + signatureSize;
    if (signatureSize > MOST_SIGNATURE ||
        container.contentOffset + container.contentBytes != file.size())
        return std::nullopt;
    container.signature = file.read(signatureOffset, signatureSize);
    container.digests = digestsIn(rest.substr(0, size));
    container.signedBytes = fixed.substr(0, os::UPDATE_LENGTH_OFFSET) +
                            fixed.substr(os::UPDATE_HEADER_SIZE) + rest.substr(0, size);
    return container.signature.size() == signatureSize ? std::optional(container) : std::nullopt;
}

std::uint64_t Content::bytesRead() const
{
    return std::min<std::uint64_t>(m_next * CHUNK, m_container.contentBytes);
}

std::optional<std::string> Content::next()
{
    const std::uint64_t size = std::min(CHUNK, m_container.contentBytes - bytesRead());
    std::string bytes = m_file.read(m_container.contentOffset + bytesRead(), size);
    if (bytes.size() != size)
        return std::nullopt;
    Digest digest{};
    SHA256(reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size(), digest.data());
    if (digest != m_container.digests[m_next])
        return std::nullopt;
    ++m_next;
    return bytes;
}

} // namespace updates
