#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace sim {

// Work for the thread that this object lives in. Unlike a queued call of Qt's, what is handed over
// passes through a lock that a thread checker can see.
class Mailbox : public QObject
{
    Q_OBJECT

public:
    ~Mailbox() override;

    // Has the object's thread do `work` from its event loop; work is done in the order of the
    // calls, and dropped if the object is destroyed before. Any thread.
    void post(std::function<void()> work);

private:
    Q_INVOKABLE void run();
    std::function<void()> take();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_works;
};

} // namespace sim
