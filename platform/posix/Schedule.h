// Which periodic task is due when, counted in ticks. Knows no clock and no thread; its owner
// guards it.
#pragma once

#include "platform/cos_thread.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace os {

using Tick = std::int64_t;

struct Task
{
    COS::CCosRateTimer::Function function = nullptr;
    void *argument = nullptr;
    std::string name;
    Tick period = 1;
    Tick next = 0; // the tick of the next call
    int left = -1; // calls that are left; -1 for ever
    int mode = 0;
    std::uint64_t id = 0; // tells tasks apart that had the same name; given by add()
};

class Schedule
{
public:
    // False if the name is in use.
    bool add(Task task);
    // False if there is no task of that name.
    bool remove(const std::string &name);
    void clear() { m_tasks.clear(); }

    // The next tick at which a task is due that may be called then, perhaps a past one.
    std::optional<Tick> nextDue() const;

    // The task that is overdue for longest at `now`, of several the one that was added first. Its
    // name is under way until finish(): nothing else of that name is claimed.
    std::optional<Task> claim(Tick now);
    // The claimed call starts: counts it and forgets the task with its last one. False, and there
    // is nothing to call, if the task has been removed since.
    bool begin(const Task &claimed);
    // The claimed call has ended; the calls that a task of this name missed meanwhile are dropped.
    void finish(const std::string &name, Tick now);

    // True if no call is under way.
    bool isQuiet() const { return m_underWay.empty(); }

private:
    std::vector<Task>::iterator find(const std::string &name);
    bool isUnderWay(const std::string &name) const;

    std::vector<Task> m_tasks; // in the order of their adding
    std::vector<std::string> m_underWay;
    std::uint64_t m_lastId = 0;
};

} // namespace os
