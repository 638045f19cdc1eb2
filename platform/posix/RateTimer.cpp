#include "platform/posix/RateTimer.h"

#include "platform/posix/threads.h"

#include <algorithm>
#include <cstdlib>

namespace posix {
namespace {

using std::chrono::milliseconds;

// Long enough for the short tasks that are due together, short enough that nobody notices.
constexpr milliseconds kGrace{3};

} // namespace

RateTimer &RateTimer::instance()
{
    static auto *service = new RateTimer;
    return *service;
}

RateTimer::RateTimer()
{
    std::atexit([] { instance().stopAtExit(); });
}

// --- What callers ask for -----------------------------------------------------------------------

int RateTimer::start(int tickMs)
{
    const Lock lock(mutex_);
    if (state_ != State::Down || tickMs < 1 || !takeoverTimer_.open())
        return -1;
    origin_ = std::chrono::steady_clock::now();
    tick_ = milliseconds(tickMs);
    grace_ = std::min<std::chrono::nanoseconds>(kGrace, tick_);
    isLed_ = false;
    takeoverAt_.reset();
    if (!startStandby()) { // finds no leader and leads
        takeoverTimer_.close();
        return -1;
    }
    state_ = State::Up;
    return 0;
}

int RateTimer::add(Task task, int periodMs)
{
    const Lock lock(mutex_);
    if (state_ != State::Up)
        return -1;
    const Moment now = std::chrono::steady_clock::now();
    task.period = (milliseconds(periodMs) + tick_ - milliseconds(1)) / tick_;
    task.next = tickAt(now + tick_ - std::chrono::nanoseconds(1)) + task.period;
    if (!schedule_.add(std::move(task)))
        return -2;
    arm();
    return 0;
}

int RateTimer::remove(const std::string &name)
{
    const Lock lock(mutex_);
    if (!schedule_.remove(name))
        return -1;
    arm();
    return 0;
}

void RateTimer::stop()
{
    Lock lock(mutex_);
    if (state_ == State::Down)
        return;
    end();
    const auto isOver = [this] { return threads_ == 0 && schedule_.isQuiet(); };
    changed_.wait(lock, [&] { return isOver() || state_ != State::Ending; });
    if (state_ != State::Ending) // another thread stopped it as well
        return;
    takeoverTimer_.close();
    state_ = State::Down;
    changed_.notify_all();
}

void RateTimer::end()
{
    state_ = State::Ending;
    schedule_.clear();
    leadChanged_.notify_one();
    takeoverTimer_.set(Moment{});
}

void RateTimer::stopAtExit()
{
    Lock lock(mutex_);
    if (state_ != State::Up)
        return;
    end();
    changed_.wait_for(lock, kPatienceAtExit, [this] { return schedule_.isQuiet(); });
}

// --- Time ---------------------------------------------------------------------------------------

Tick RateTimer::tickAt(Moment moment) const
{
    return (moment - origin_) / tick_;
}

Moment RateTimer::timeOf(Tick tick) const
{
    return origin_ + tick * tick_;
}

// When the standby is to look after the leader. While it is in a task: once another one is due and
// the grace is over. Else: when the task behind the one that it runs next would be late. A leader
// that is awake but has got no processor yet is given its time again.
std::optional<Moment> RateTimer::takeoverTime() const
{
    const std::optional<Tick> due = inTaskSince_ ? schedule_.nextDue() : schedule_.secondDue();
    if (!due)
        return std::nullopt;
    if (inTaskSince_)
        return std::max(timeOf(*due), *inTaskSince_ + grace_);
    return std::max<Moment>(timeOf(*due), std::chrono::steady_clock::now()) + grace_;
}

// After any change of what is due: moves both sleepers' moments, and wakes the leader only if its
// own has moved.
void RateTimer::arm()
{
    if (state_ != State::Up)
        return;
    armTakeover();
    if (schedule_.nextDue() != leaderWaitsFor_)
        leadChanged_.notify_one();
}

void RateTimer::armTakeover()
{
    const std::optional<Moment> moment = takeoverTime();
    if (moment == takeoverAt_) // mostly so: a frequent task alone at its tick can delay nobody yet
        return;
    takeoverAt_ = moment;
    if (moment)
        takeoverTimer_.set(*moment);
    else
        takeoverTimer_.clear();
}

// --- Threads ------------------------------------------------------------------------------------

bool RateTimer::startStandby()
{
    hasStandby_ = startThread("timer", [this] { serve(); });
    threads_ += hasStandby_ ? 1 : 0;
    return hasStandby_;
}

// A thread's life. It starts as the standby, and comes back from its lead when it has lost it.
void RateTimer::serve()
{
    Lock lock(mutex_);
    while (awaitLead(lock)) {
        lead(lock);
        if (hasStandby_)
            break;
        hasStandby_ = true;
    }
    --threads_;
    changed_.notify_all();
}

// The leader is stuck in a task while another one waits.
bool RateTimer::isLeaderLate() const
{
    const std::optional<Moment> moment = takeoverTime();
    return inTaskSince_ && moment && *moment <= std::chrono::steady_clock::now();
}

// Stands by. True when this thread is to lead, false when the service ends.
bool RateTimer::awaitLead(Lock &lock)
{
    while (state_ == State::Up && isLed_ && !isLeaderLate()) {
        armTakeover();
        lock.unlock();
        takeoverTimer_.wait();
        lock.lock();
    }
    return state_ == State::Up;
}

void RateTimer::lead(Lock &lock)
{
    const std::uint64_t mine = ++lead_;
    isLed_ = true;
    hasStandby_ = false;
    inTaskSince_.reset();
    while (state_ == State::Up) {
        if (!hasStandby_) // each time again, should the system have given no thread
            startStandby();
        runDue(lock, mine);
        arm();
        if (lead_ != mine)
            return;
        awaitDue(lock);
    }
}

// The leader's sleep. It ends early when something earlier, or the end, comes up.
void RateTimer::awaitDue(Lock &lock)
{
    leaderWaitsFor_ = schedule_.nextDue();
    if (state_ == State::Up && leaderWaitsFor_)
        leadChanged_.wait_until(lock, timeOf(*leaderWaitsFor_));
    else if (state_ == State::Up)
        leadChanged_.wait(lock);
}

// --- Calls --------------------------------------------------------------------------------------

void RateTimer::runDue(Lock &lock, std::uint64_t lead)
{
    while (state_ == State::Up && lead_ == lead) {
        const Tick now = tickAt(std::chrono::steady_clock::now());
        const std::optional<Task> task = schedule_.claim(now);
        if (!task)
            return;
        if (task->mode == 1)
            handToPool(*task);
        else
            runHere(lock, *task, lead);
    }
}

void RateTimer::runHere(Lock &lock, const Task &task, std::uint64_t lead)
{
    inTaskSince_ = std::chrono::steady_clock::now();
    call(lock, task);
    if (lead_ == lead)
        inTaskSince_.reset();
}

void RateTimer::handToPool(const Task &task)
{
    if (COS::CCosThreadPool::submit([this, task] { runInPool(task); }) != 0)
        finish(task);
}

void RateTimer::runInPool(const Task &task)
{
    Lock lock(mutex_);
    call(lock, task);
    arm();
}

void RateTimer::call(Lock &lock, const Task &task)
{
    if (schedule_.begin(task)) {
        lock.unlock();
        task.function(task.argument);
        lock.lock();
    }
    finish(task);
}

void RateTimer::finish(const Task &task)
{
    schedule_.finish(task.name, tickAt(std::chrono::steady_clock::now()));
    if (state_ == State::Ending && schedule_.isQuiet()) // nobody else waits for a call's end
        changed_.notify_all();
}

} // namespace posix

namespace COS {

int CCosRateTimer::init(int tickMs)
{
    return posix::RateTimer::instance().start(tickMs);
}

int CCosRateTimer::addTimer(Function function, void *argument, const std::string &name,
                            int periodMs, int count, int mode)
{
    if (!function || name.empty() || periodMs < 1 || (count < 1 && count != -1) ||
        (mode != 0 && mode != 1))
        return -1;
    posix::Task task;
    task.function = function;
    task.argument = argument;
    task.name = name;
    task.left = count;
    task.mode = mode;
    return posix::RateTimer::instance().add(std::move(task), periodMs);
}

int CCosRateTimer::removeTimer(const std::string &name)
{
    return posix::RateTimer::instance().remove(name);
}

void CCosRateTimer::destory()
{
    posix::RateTimer::instance().stop();
}

} // namespace COS
