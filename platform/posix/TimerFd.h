// A moment that one thread sleeps for and that others can move (timerfd_create(2)).
#pragma once

#include "platform/posix/FileDescriptor.h"

#include <chrono>

namespace os {

// CLOCK_MONOTONIC, on Linux the clock of std::chrono::steady_clock.
using Moment = std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds>;

class TimerFd
{
public:
    // False if the system gave no timer.
    bool open();
    void close();

    // Wakes the sleeper at `moment`, at once if that has passed. A moment that was set before is
    // forgotten, and moving it wakes nobody: that is why this is no condition variable.
    void set(Moment moment);
    // Lets the sleeper sleep until the next set().
    void clear();

    // Sleeps until the moment that is set has come. One thread at a time.
    void wait() const;

private:
    FileDescriptor m_fd;
};

} // namespace os
