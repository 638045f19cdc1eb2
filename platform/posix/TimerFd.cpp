#include "platform/posix/TimerFd.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sys/timerfd.h>

namespace os {
namespace {

constexpr std::int64_t NS_PER_SECOND = 1000000000;

void arm(int fd, std::int64_t nanoseconds)
{
    itimerspec spec{};
    spec.it_value.tv_sec = static_cast<time_t>(nanoseconds / NS_PER_SECOND);
    spec.it_value.tv_nsec = static_cast<long>(nanoseconds % NS_PER_SECOND);
    ::timerfd_settime(fd, TFD_TIMER_ABSTIME, &spec, nullptr);
}

} // namespace

bool TimerFd::open()
{
    m_fd = FileDescriptor(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC));
    return m_fd.isOpen();
}

void TimerFd::close()
{
    const FileDescriptor closing = std::move(m_fd);
}

void TimerFd::set(Moment moment)
{
    // 0 would disarm the timer.
    arm(m_fd.get(), std::max<std::int64_t>(moment.time_since_epoch().count(), 1));
}

void TimerFd::clear()
{
    arm(m_fd.get(), 0);
}

void TimerFd::wait() const
{
    std::uint64_t expirations = 0;
    while (::read(m_fd.get(), &expirations, sizeof expirations) < 0 && errno == EINTR)
        continue;
}

} // namespace os
