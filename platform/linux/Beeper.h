// The board's beeper: an input device that plays tones (kernel, Documentation/input/event-codes,
// EV_SND).
#pragma once

#include "platform/linux/Journal.h"
#include "platform/posix/FileDescriptor.h"

#include <chrono>

namespace board {

// One thread at a time. No function waits.
class Beeper
{
public:
    // Plays `hertz` until the next call; 0 is silence. The device is looked for when there is none,
    // at most every five seconds. False if there is no device or it refuses.
    bool play(int hertz);

private:
    using Clock = std::chrono::steady_clock;

    bool find();
    bool write(int hertz);

    os::FileDescriptor m_device;
    Clock::time_point m_nextSearch;
    Fault m_fault;
};

} // namespace board
