// The service behind CCosRateTimer.
//
// One thread leads: it sleeps until the next tick at which a task is due and runs the tasks
// itself, so that a tick costs one wake-up and no hand-over. A second thread stands by. It sleeps
// until the moment at which a stuck leader would begin to delay another task, and that moment
// moves on without waking it. If the leader is stuck then, the standby takes the lead, starts a
// new standby and runs what is due; the former leader ends when it comes back from its task. So
// there are never more threads than tasks that run, and two.
#pragma once

#include "platform/posix/Schedule.h"
#include "platform/posix/TimerFd.h"

#include <condition_variable>
#include <mutex>

namespace posix {

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
    void lead(Lock &lock);
    void awaitDue(Lock &lock);

    void runDue(Lock &lock, std::uint64_t lead);
    void runHere(Lock &lock, const Task &task, std::uint64_t lead);
    void handToPool(Lock &lock, const Task &task);
    void callInPool(const Task &task);
    void finishInPool(const Task &task);
    void call(Lock &lock, const Task &task);
    void finish(const Task &task);

    Moment look();
    std::optional<Moment> takeoverTime() const;
    bool isLeaderLate() const;
    void arm();
    void armTakeover();
    void end();
    void stopAtExit();

    std::mutex m_mutex;                // guards everything below; a task's body runs without it
    std::condition_variable m_changed; // a call or a thread has ended
    State m_state = State::Down;
    Schedule m_schedule;
    Moment m_origin{}; // tick 0
    std::chrono::nanoseconds m_tick{};
    std::chrono::nanoseconds m_grace{}; // how long the leader may hold up other tasks

    std::condition_variable m_leadChanged; // the leader sleeps on it
    std::optional<Tick> m_leaderWaitsFor;
    Moment m_now;                       // as last looked at
    TimerFd m_takeoverTimer;            // the standby sleeps on it
    std::optional<Moment> m_takeoverAt; // what it is set to
    std::uint64_t m_lead = 0;           // counts the takeovers: who took the last one leads
    bool m_isLed = false;
    bool m_hasStandby = false;
    std::optional<Moment> m_inTaskSince; // the leader
    int m_threads = 0;
};

} // namespace posix
