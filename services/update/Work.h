// What may wait for a disk, away from the event loop.
#pragma once

#include "platform/posix/FileDescriptor.h"
#include "services/common/Event.h"

#include <functional>
#include <thread>

namespace updates {

// One work at a time, in a thread of its own. Used in the event loop's thread.
class Work
{
public:
    explicit Work(sd_event *event);
    // Waits for the end of the work; `done` is not called then.
    ~Work();
    Work(const Work &) = delete;
    Work &operator=(const Work &) = delete;

    bool isBusy() const { return m_thread.joinable(); }
    // Does `work` in the thread, then calls `done` in the loop, which may start the next one. Not
    // while it is busy.
    void start(std::function<void()> work, std::function<void()> done);

private:
    static int onDone(sd_event_source *, int fd, unsigned events, void *self);

    os::FileDescriptor m_ended; // eventfd(2)
    service::Source m_source;
    std::function<void()> m_done;
    std::thread m_thread;
};

} // namespace updates
