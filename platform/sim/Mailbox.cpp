#include "platform/sim/Mailbox.h"

#include <utility>

namespace sim {

Mailbox::~Mailbox()
{
    const std::lock_guard lock(mutex_); // sees what other threads did last
    works_.clear();
}

void Mailbox::post(std::function<void()> work)
{
    const std::lock_guard lock(mutex_);
    works_.push_back(std::move(work));
    QMetaObject::invokeMethod(this, "run", Qt::QueuedConnection);
}

// One piece of work a call, since work may run an event loop of its own.
void Mailbox::run()
{
    take()();
}

std::function<void()> Mailbox::take()
{
    const std::lock_guard lock(mutex_);
    auto work = std::move(works_.front());
    works_.pop_front();
    return work;
}

} // namespace sim
