#include "platform/posix/TimerFd.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sys/timerfd.h>

namespace posix {
namespace {

constexpr std::int64_t kNsPerSecond = 1000000000;

void arm(int fd, std::int64_t nanoseconds)
{
    itimerspec spec{};
    spec.it_value.tv_sec = static_cast<time_t>(nanoseconds / kNsPerSecond);
    spec.it_value.tv_nsec = static_cast<long>(nanoseconds % kNsPerSecond);
    ::timerfd_settime(fd, TFD_TIMER_ABSTIME, &spec, nullptr);
}

} // namespace

bool TimerFd::open()
{
    fd_ = FileDescriptor(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC));
    return fd_.isOpen();
}

void TimerFd::close()
{
    const FileDescriptor closing = std::move(fd_);
}

void TimerFd::set(Moment moment)
{
    // 0 would disarm the timer.
    arm(fd_.get(), std::max<std::int64_t>(moment.time_since_epoch().count(), 1));
}

void TimerFd::clear()
{
    arm(fd_.get(), 0);
}

void TimerFd::wait() const
{
    std::uint64_t expirations = 0;
    while (::read(fd_.get(), &expirations, sizeof expirations) < 0 && errno == EINTR)
        continue;
}

} // namespace posix
