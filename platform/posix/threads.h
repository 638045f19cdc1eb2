// Threads of the services, and their end with the process.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace os {

// How long the end of the process waits for a service's calls that are under way.
constexpr std::chrono::seconds PATIENCE_AT_EXIT{1};

// Runs `body` on a thread of its own that shows as `name` (15 bytes at most, see
// pthread_setname_np(3)). Nobody joins it: `body` tells its owner that it is done, and the owner
// is never destroyed. An exception out of `body` ends the program (std::terminate).
// Returns false if the system gives no thread. Any thread.
bool startThread(const char *name, std::function<void()> body);

// Sleeps on `changed` until `isOver()`, at most `waitMs` milliseconds; as long as it takes if that
// is negative. Returns whether it is over. Any thread that holds `lock`.
template <typename IsOver>
bool waitUntilOver(std::condition_variable &changed, std::unique_lock<std::mutex> &lock, int waitMs,
                   IsOver isOver)
{
    if (waitMs >= 0)
        return changed.wait_for(lock, std::chrono::milliseconds(waitMs), isOver);
    changed.wait(lock, isOver);
    return true;
}

} // namespace os
