#include "platform/posix/Schedule.h"

#include <algorithm>

namespace os {
namespace {

// To the first tick of the task's own grid after `now`.
void skipPast(Task &task, Tick now)
{
    if (task.next <= now)
        task.next += ((now - task.next) / task.period + 1) * task.period;
}

} // namespace

bool Schedule::add(Task task)
{
    if (find(task.name) != m_tasks.end())
        return false;
    task.id = ++m_lastId;
    m_tasks.push_back(std::move(task));
    return true;
}

bool Schedule::remove(const std::string &name)
{
    const auto task = find(name);
    if (task == m_tasks.end())
        return false;
    m_tasks.erase(task);
    return true;
}

std::optional<Tick> Schedule::nextDue() const
{
    std::optional<Tick> due;
    for (const Task &task : m_tasks) {
        if ((!due || task.next < *due) && !isUnderWay(task.name))
            due = task.next;
    }
    return due;
}

std::optional<Task> Schedule::claim(Tick now)
{
    const std::optional<Tick> due = nextDue();
    if (!due || *due > now)
        return std::nullopt;
    const auto task = std::find_if(m_tasks.begin(), m_tasks.end(), [&](const Task &candidate) {
        return candidate.next == *due && !isUnderWay(candidate.name);
    });
    skipPast(*task, now);
    m_underWay.push_back(task->name);
    return *task;
}

bool Schedule::begin(const Task &claimed)
{
    const auto task = find(claimed.name);
    if (task == m_tasks.end() || task->id != claimed.id)
        return false;
    if (task->left == 1)
        m_tasks.erase(task);
    else if (task->left > 1)
        --task->left;
    return true;
}

void Schedule::finish(const std::string &name, Tick now)
{
    m_underWay.erase(std::find(m_underWay.begin(), m_underWay.end(), name));
    const auto task = find(name);
    if (task != m_tasks.end())
        skipPast(*task, now);
}

std::vector<Task>::iterator Schedule::find(const std::string &name)
{
    return std::find_if(m_tasks.begin(), m_tasks.end(),
                        [&](const Task &task) { return task.name == name; });
}

bool Schedule::isUnderWay(const std::string &name) const
{
    return std::find(m_underWay.begin(), m_underWay.end(), name) != m_underWay.end();
}

} // namespace os
