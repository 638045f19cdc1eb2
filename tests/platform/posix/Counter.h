// What the tests of the services wait with.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

// Counts calls of one thread for another; with reaches(1) it is a gate.
class Counter
{
public:
    void add()
    {
        const std::lock_guard lock(m_mutex);
        ++m_value;
        m_changed.notify_all();
    }
    int value() const
    {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }
    // False only if it takes longer than any loaded machine.
    bool reaches(int value) const
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(60), [&] { return m_value >= value; });
    }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    int m_value = 0;
};
