#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace sim {

// A thread that runs actions one after the other, each at its time, and does not wake in between.
// It starts with the first action. All functions: any thread.
class ServiceThread
{
public:
    // `name` is what pthread_getname_np says, at most 15 bytes.
    explicit ServiceThread(std::string name) : m_name(std::move(name)) {}
    ~ServiceThread() { stop(std::chrono::seconds(5)); }
    ServiceThread(const ServiceThread &) = delete;
    ServiceThread &operator=(const ServiceThread &) = delete;

    // Runs `action` after `delay`; actions of the same moment in the order of the calls.
    // After stop() nothing is done any more.
    void post(std::chrono::milliseconds delay, std::function<void()> action);

    // Drops the actions that wait, and waits for the one that runs, but no longer than `timeout`:
    // it may be waiting for the caller. Returns false if it still runs. Not to be called from an
    // action.
    bool forget(std::chrono::milliseconds timeout);

    // The same, and ends the thread. If it does not end in time it runs on until the process ends,
    // and this object must not be destroyed.
    bool stop(std::chrono::milliseconds timeout);

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void waitForWork(std::unique_lock<std::mutex> &lock);

    const std::string m_name;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::multimap<Clock::time_point, std::function<void()>> m_actions;
    std::thread m_thread;
    bool m_busy = false;
    bool m_stopping = false;
};

} // namespace sim
