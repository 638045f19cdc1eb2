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
        const std::lock_guard lock(mutex_);
        ++value_;
        changed_.notify_all();
    }
    int value() const
    {
        const std::lock_guard lock(mutex_);
        return value_;
    }
    // False only if it takes longer than any loaded machine.
    bool reaches(int value) const
    {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(60), [&] { return value_ >= value; });
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    int value_ = 0;
};
