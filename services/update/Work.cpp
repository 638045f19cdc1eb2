#include "services/update/Work.h"

#include <cerrno>
#include <sys/eventfd.h>
#include <utility>

namespace updates {

Work::Work(sd_event *event) : m_ended(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    service::require(m_ended.isOpen() ? 0 : -errno, "eventfd");
    sd_event_source *source = nullptr;
    service::require(sd_event_add_io(event, &source, m_ended.get(), EPOLLIN, onDone, this), "work");
    m_source.reset(source);
}

Work::~Work()
{
    if (isBusy())
        m_thread.join();
}

void Work::start(std::function<void()> work, std::function<void()> done)
{
    m_done = std::move(done);
    m_thread = std::thread([this, work = std::move(work)] {
        work();
        ::eventfd_write(m_ended.get(), 1);
    });
}

int Work::onDone(sd_event_source *, int fd, unsigned, void *self)
{
    eventfd_t count = 0;
    ::eventfd_read(fd, &count);
    auto &work = *static_cast<Work *>(self);
    work.m_thread.join();
    const auto done = std::exchange(work.m_done, nullptr);
    done();
    return 0;
}

} // namespace updates
