// How far the PLC download is.
#pragma once

#include <atomic>
#include <cstdint>

// Four 32-bit numbers that the download writes and the PLC page's timer reads and moves on. A lost
// update only makes the bar jump.
struct ProgressRecord
{
    std::atomic<std::int32_t> nFirst{0};  // not used
    std::atomic<std::int32_t> nSecond{0}; // not used
    std::atomic<std::int32_t> nPercent{0};
    std::atomic<std::int32_t> nTotal{0}; // bytes of the deciphered file
};

extern ProgressRecord g_Progress;
