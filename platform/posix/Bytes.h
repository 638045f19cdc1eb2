// Numbers as the services write them: 32 bits, little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace os {

// `bytes` has four bytes from `offset` on.
inline std::uint32_t numberFrom(const std::string &bytes, std::size_t offset)
{
    std::uint32_t number = 0;
    for (std::size_t i = 4; i > 0; --i)
        number = number << 8 | static_cast<unsigned char>(bytes[offset + i - 1]);
    return number;
}

inline std::string toBytes(std::uint32_t number)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i, number >>= 8)
        bytes.push_back(static_cast<char>(number & 0xFF));
    return bytes;
}

} // namespace os
