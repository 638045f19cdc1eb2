#include "platform/sim/ServiceThread.h"

#include <pthread.h>
#include <utility>

namespace sim {

void ServiceThread::post(std::chrono::milliseconds delay, std::function<void()> action)
{
    const std::lock_guard lock(mutex_);
    if (stopping_)
        return;
    actions_.emplace(Clock::now() + delay, std::move(action));
    if (!thread_.joinable())
        thread_ = std::thread([this] { run(); });
    changed_.notify_all();
}

bool ServiceThread::forget(std::chrono::milliseconds patience)
{
    std::unique_lock lock(mutex_);
    actions_.clear();
    return changed_.wait_for(lock, patience, [this] { return !busy_; });
}

bool ServiceThread::stop(std::chrono::milliseconds patience)
{
    std::unique_lock lock(mutex_);
    stopping_ = true;
    actions_.clear();
    changed_.notify_all();
    if (!thread_.joinable())
        return true;
    const bool idle = changed_.wait_for(lock, patience, [this] { return !busy_; });
    std::thread thread = std::move(thread_);
    lock.unlock();
    if (idle)
        thread.join();
    else
        thread.detach();
    return idle;
}

void ServiceThread::run()
{
    pthread_setname_np(pthread_self(), name_.c_str());
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        if (actions_.empty() || actions_.begin()->first > Clock::now()) {
            waitForWork(lock);
            continue;
        }
        const auto action = std::move(actions_.extract(actions_.begin()).mapped());
        busy_ = true;
        lock.unlock();
        action();
        lock.lock();
        busy_ = false;
        changed_.notify_all();
    }
}

void ServiceThread::waitForWork(std::unique_lock<std::mutex> &lock)
{
    if (actions_.empty())
        changed_.wait(lock);
    else
        changed_.wait_until(lock, Clock::time_point(actions_.begin()->first));
}

} // namespace sim
