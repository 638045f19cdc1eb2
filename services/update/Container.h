// A project file and its seal: what is in it, and what its bytes must be. docs/porting/updates.md
// has the layout.
#pragma once

#include "platform/posix/OpenFile.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace updates {

enum class Kind : std::uint16_t { PROJECT = 1, LOGO = 2 };

using Digest = std::array<unsigned char, 32>; // SHA-256

constexpr std::uint64_t CHUNK = 1U << 20; // bytes of content that one digest vouches for

struct Container
{
    std::string model;
    std::uint32_t version = 0;
    Kind kind = Kind::PROJECT;
    std::uint32_t entries = 0;       // files and folders of the content,
    std::uint64_t unpackedBytes = 0; // and what the files hold
    std::uint64_t contentOffset = 0; // in the file
    std::uint64_t contentBytes = 0;
    std::vector<Digest> digests;
    std::string signedBytes; // what the signature is over: all of the above
    std::string signature;   // CMS, DER; empty without one
};

// Reads the beginning of a file. Nothing if that is not a seal of this format, lies about the
// file's size, or is beyond a limit: 1 GiB of content, 4 GiB and 100,000 entries unpacked.
std::optional<Container> readContainer(const os::OpenFile &file);

// Hands out the content, each chunk once its digest has been checked.
class Content
{
public:
    // Both must outlive this.
    Content(const os::OpenFile &file, const Container &container)
        : m_file(file), m_container(container)
    {
    }

    bool isAtEnd() const { return m_next == m_container.digests.size(); }
    std::uint64_t bytesRead() const;
    // The next chunk; nothing if it cannot be read or is not what was sealed. Not at the end.
    std::optional<std::string> next();

private:
    const os::OpenFile &m_file;
    const Container &m_container;
    std::size_t m_next = 0;
};

} // namespace updates
