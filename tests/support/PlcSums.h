// Checksums of PLC program files, made right again after a change: what lies behind them is then
// reached.
#pragma once

#include <cstdint>
#include <vector>
#include <zlib.h>

namespace plc_sums {

constexpr std::size_t HEADER_SUM = 28;
constexpr std::size_t FIRST_SECTION = 32;

inline void put(std::vector<std::uint8_t> &bytes, std::size_t at, unsigned long sum)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<std::uint8_t>(sum >> 8 * i);
}

inline void mend(std::vector<std::uint8_t> &bytes)
{
    if (bytes.size() < FIRST_SECTION)
        return;
    put(bytes, HEADER_SUM, crc32_z(0, bytes.data(), HEADER_SUM));
    for (std::size_t at = FIRST_SECTION; bytes.size() - at >= 12;) {
        const std::size_t size = bytes[at + 4] | bytes[at + 5] << 8 | bytes[at + 6] << 16;
        if (bytes[at + 7] != 0 || size > bytes.size() - at - 12)
            return;
        const auto sum = crc32_z(0, &bytes[at], 8);
        put(bytes, at + 8, crc32_z(sum, bytes.data() + at + 12, size));
        at += 12 + size;
    }
}

} // namespace plc_sums
