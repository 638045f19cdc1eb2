// The cipher of older PLC program files: RC4 (RFC 6229 has its test vectors), restarted at every
// block of 1024 bytes. Enciphering and deciphering are the same.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

class RC4Cryptor
{
public:
    // `key` has 1 to 256 bytes.
    explicit RC4Cryptor(const std::string &key);
    RC4Cryptor(const RC4Cryptor &) = delete;
    RC4Cryptor &operator=(const RC4Cryptor &) = delete;
    virtual ~RC4Cryptor() = default;

    // Enciphers or deciphers `size` bytes in place, with a state built afresh from the key: two
    // blocks of one size meet the same key stream.
    void cryptBlock(unsigned char *data, std::size_t size);

private:
    static void swapBytes(std::uint8_t &first, std::uint8_t &second)
    {
        const std::uint8_t former = first;
        first = second;
        second = former;
    }

    void scheduleKey();

    // Single bytes: faster than the same permutation in wider words, see bench/cipher.cpp.
    std::array<std::uint8_t, 256> m_state{};
    std::array<std::uint8_t, 256> m_key{}; // repeated to the length of the state
};

// The key of the program files: ten decimal digits that the build supplies.
std::string legacyProgramKey();

// Deciphers the regular file `source` into `target`, which is made, or emptied, readable and
// writable for its owner alone; a link is not followed there. Returns 0; -1 if one of them cannot
// be opened or is no regular file, if `source` is larger than a program can be (16 MiB and the
// header), or if reading or writing fails. Any thread.
int decipherFile(const std::string &source, const std::string &target);
