// The service behind CCosRateTimer.
//
// One thread leads: it sleeps until the next tick at which a task is due and runs the tasks
// itself, so that a tick costs one wake-up and no hand-over. Before it runs them it sets an alarm,
// which it clears when it is done: a second thread, the standby, sleeps on the alarm. If that rings
// the leader is stuck in a task: the standby takes the lead, starts a new standby and runs what is
// due. The former leader ends when it comes back from its task. So there are never more threads
// than tasks that run, and two.
#pragma once

#include "platform/posix/Schedule.h"
#include "platform/posix/TimerFd.h"

#include <condition_variable>
#include <mutex>

namespace os {

class RateTimer
{
public:
    // Never destroyed: its threads may outlive main().
    static RateTimer &instance();

    // As in CCosRateTimer.
    int start(int tickMs);
    int add(Task task, int periodMs);
    int remove(const std::string &name);
    bool stop(int waitMs);

private:
    using Lock = std::unique_lock<std::mutex>;
    enum class State { Down, Up, Ending };

    RateTimer();

    Tick tickAt(Moment moment) const;
    Moment timeOf(Tick tick) const;

    bool startStandby();
    void serve();
    bool awaitLead(Lock &lock);
    bool isLeaderStuck() const;
    void lead(Lock &lock);
    bool isLeading(std::uint64_t lead) const;
    void awaitDue(Lock &lock);

    void runDue(Lock &lock, std::uint64_t lead);
    void runTask(Lock &lock, const Task &task);
    void handToPool(Lock &lock, const Task &task);
    void call(Lock &lock, const Task &task);
    void finish(const Task &task);

    void end();
    void stopAtExit();

    std::mutex m_mutex;                // guards everything below; a task's body runs without it
    std::condition_variable m_changed; // a call or a thread has ended
    State m_state = State::Down;
    Schedule m_schedule;
    Moment m_origin; // tick 0
    std::chrono::nanoseconds m_tick{};
    std::chrono::nanoseconds m_grace{}; // how long the leader may hold up other tasks

    std::condition_variable m_dueChanged; // the leader sleeps on it
    TimerFd m_alarm;                      // the standby sleeps on it
    std::optional<Moment> m_busySince;    // when the leader began to run what is due
    std::uint64_t m_lead = 0;             // counts the leaders: who came last leads
    bool m_hasStandby = false;
    int m_threads = 0;
};

} // namespace os
