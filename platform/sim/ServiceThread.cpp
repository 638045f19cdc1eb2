#include "platform/sim/ServiceThread.h"

#include <pthread.h>
#include <utility>

namespace sim {

void ServiceThread::post(std::chrono::milliseconds delay, std::function<void()> action)
{
    const std::lock_guard lock(m_mutex);
    if (m_stopping)
        return;
    m_actions.emplace(Clock::now() + delay, std::move(action));
    if (!m_thread.joinable())
        m_thread = std::thread([this] { run(); });
    m_changed.notify_all();
}

bool ServiceThread::forget(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    m_actions.clear();
    return m_changed.wait_for(lock, timeout, [this] { return !m_busy; });
}

bool ServiceThread::stop(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    m_stopping = true;
    m_actions.clear();
    m_changed.notify_all();
    if (!m_thread.joinable())
        return true;
    const bool idle = m_changed.wait_for(lock, timeout, [this] { return !m_busy; });
    std::thread thread = std::move(m_thread);
    lock.unlock();
    if (idle)
        thread.join();
    else
        thread.detach();
    return idle;
}

void ServiceThread::run()
{
    pthread_setname_np(pthread_self(), m_name.c_str());
    std::unique_lock lock(m_mutex);
    while (!m_stopping) {
        if (m_actions.empty() || m_actions.begin()->first > Clock::now()) {
            waitForWork(lock);
            continue;
        }
        const auto action = std::move(m_actions.extract(m_actions.begin()).mapped());
        m_busy = true;
        lock.unlock();
        action();
        lock.lock();
        m_busy = false;
        m_changed.notify_all();
    }
}

void ServiceThread::waitForWork(std::unique_lock<std::mutex> &lock)
{
    if (m_actions.empty())
        m_changed.wait(lock);
    else
        m_changed.wait_until(lock, Clock::time_point(m_actions.begin()->first));
}

} // namespace sim
