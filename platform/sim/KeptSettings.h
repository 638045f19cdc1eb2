// What a panel remembers without power: its words, the backlight's brightness, the buzzer's
// settings and the offset of its clock to the host's.
#pragma once

#include "platform/sim/Json.h"
#include "platform/sim/ServiceThread.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <string>

namespace sim {

// Where the running panel keeps them.
std::string keptFile();

// What `state` holds of them, as a part of the state tree. An unreadable word (null) is an ordered
// fault, not a setting, and is left out.
Json keptPart(const Json &state);

// What `file` holds, as a part of the state tree to lay over the defaults. Empty if there is no
// such file, or, with the reason on standard error, if it is of another version or damaged.
Json loadKept(const std::string &file);

// Writes them down a moment after each change, from a thread of its own.
class KeptSettings
{
public:
    // From now on changes lead to writes of what `state` gives into `file`, whole or not at all
    // (rename(2)). `state` is called on the own thread, and by stop(). Once.
    void start(std::string file, std::function<Json()> state);

    // Says that a kept value has changed; returns at once. Without start() nothing is kept. Any
    // thread, but not at the same time as start().
    void changed();

    // Writes what is not written yet, and ends the thread, as ServiceThread::stop().
    void stop(std::chrono::milliseconds timeout);

private:
    void write();

    std::string m_file;
    std::function<Json()> m_state;
    std::atomic<bool> m_unwritten{false};
    std::mutex m_writing;
    ServiceThread m_thread{"keeper"};
};

} // namespace sim
