#include "platform/posix/Schedule.h"

#include <algorithm>

namespace posix {
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
    if (find(task.name) != tasks_.end())
        return false;
    task.id = ++lastId_;
    tasks_.push_back(std::move(task));
    return true;
}

bool Schedule::remove(const std::string &name)
{
    const auto task = find(name);
    if (task == tasks_.end())
        return false;
    tasks_.erase(task);
    return true;
}

std::optional<Tick> Schedule::nextDue() const
{
    std::optional<Tick> due;
    for (const Task &task : tasks_) {
        if (!isUnderWay(task.name) && (!due || task.next < *due))
            due = task.next;
    }
    return due;
}

std::optional<Task> Schedule::claim(Tick now)
{
    const std::optional<Tick> due = nextDue();
    if (!due || *due > now)
        return std::nullopt;
    const auto task = std::find_if(tasks_.begin(), tasks_.end(), [&](const Task &candidate) {
        return candidate.next == *due && !isUnderWay(candidate.name);
    });
    skipPast(*task, now);
    underWay_.push_back(task->name);
    return *task;
}

bool Schedule::begin(const Task &claimed)
{
    const auto task = find(claimed.name);
    if (task == tasks_.end() || task->id != claimed.id)
        return false;
    if (task->left > 0 && --task->left == 0)
        tasks_.erase(task);
    return true;
}

void Schedule::finish(const std::string &name, Tick now)
{
    underWay_.erase(std::find(underWay_.begin(), underWay_.end(), name));
    const auto task = find(name);
    if (task != tasks_.end())
        skipPast(*task, now);
}

std::vector<Task>::iterator Schedule::find(const std::string &name)
{
    return std::find_if(tasks_.begin(), tasks_.end(),
                        [&](const Task &task) { return task.name == name; });
}

bool Schedule::isUnderWay(const std::string &name) const
{
    return std::find(underWay_.begin(), underWay_.end(), name) != underWay_.end();
}

} // namespace posix
