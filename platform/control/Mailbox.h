#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace control {

// A queue of work for the thread that this object lives in, under a lock of its own: the memory of
// a functor that is queued with Qt alone cannot be checked for data races.
class Mailbox : public QObject
{
    Q_OBJECT

public:
    ~Mailbox() override;

    // Calls `work` from the event loop of the object's thread, in the order of the calls; it is
    // dropped if the object is destroyed before. Any thread.
    void post(std::function<void()> work);

private:
    Q_INVOKABLE void run();
    std::function<void()> take();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_works;
};

} // namespace control
