#include "platform/control/Mailbox.h"

#include <utility>

namespace control {

Mailbox::~Mailbox()
{
    const std::lock_guard lock(m_mutex); // other threads have written what is left
    m_works.clear();
}

void Mailbox::post(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    m_works.push_back(std::move(work));
    QMetaObject::invokeMethod(this, "run", Qt::QueuedConnection);
}

// One piece of work for each queued call: work may run an event loop of its own.
void Mailbox::run()
{
    take()();
}

std::function<void()> Mailbox::take()
{
    const std::lock_guard lock(m_mutex);
    auto work = std::move(m_works.front());
    m_works.pop_front();
    return work;
}

} // namespace control
