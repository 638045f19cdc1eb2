#include "platform/posix/RateTimer.h"

#include "platform/posix/threads.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace posix {
namespace {

using std::chrono::milliseconds;

// Long enough for the short tasks that are due together, short enough that nobody notices.
constexpr milliseconds GRACE{3};

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
    const Lock lock(m_mutex);
    if (m_state != State::Down || tickMs < 1 || !m_takeoverTimer.open())
        return -1;
    m_origin = std::chrono::steady_clock::now();
    m_tick = milliseconds(tickMs);
    m_grace = std::min<std::chrono::nanoseconds>(GRACE, m_tick);
    m_isLed = false;
    m_takeoverAt.reset();
    if (!startStandby()) { // finds no leader and leads
        m_takeoverTimer.close();
        return -1;
    }
    m_state = State::Up;
    return 0;
}

int RateTimer::add(Task task, int periodMs)
{
    const Lock lock(m_mutex);
    if (m_state != State::Up)
        return -1;
    const Moment now = look();
    task.period = (milliseconds(periodMs) + m_tick - milliseconds(1)) / m_tick;
    task.next = tickAt(now + m_tick - std::chrono::nanoseconds(1)) + task.period;
    if (!m_schedule.add(std::move(task)))
        return -2;
    arm();
    return 0;
}

int RateTimer::remove(const std::string &name)
{
    const Lock lock(m_mutex);
    if (!m_schedule.remove(name))
        return -1;
    look();
    arm();
    return 0;
}

bool RateTimer::stop(int waitMs)
{
    Lock lock(m_mutex);
    if (m_state == State::Up)
        end();
    const auto isOver = [this] {
        return m_state != State::Ending || (m_threads == 0 && m_schedule.isQuiet());
    };
    if (!waitUntilOver(m_changed, lock, waitMs, isOver))
        return false;
    if (m_state != State::Ending) // it was down, or another thread stopped it as well
        return true;
    m_takeoverTimer.close();
    m_state = State::Down;
    m_changed.notify_all();
    return true;
}

void RateTimer::end()
{
    m_state = State::Ending;
    m_schedule.clear();
    m_leadChanged.notify_one();
    m_takeoverTimer.set(Moment{});
}

void RateTimer::stopAtExit()
{
    Lock lock(m_mutex);
    if (m_state != State::Up)
        return;
    end();
    m_changed.wait_for(lock, PATIENCE_AT_EXIT, [this] { return m_schedule.isQuiet(); });
}

// --- Time ---------------------------------------------------------------------------------------

// Reading the clock costs more than all else that an idle tick does, so each reading is kept for
// as long as nothing has been waited for since.
[[gnu::hot]] Moment RateTimer::look()
{
    m_now = std::chrono::steady_clock::now();
    return m_now;
}

[[gnu::hot]] Tick RateTimer::tickAt(Moment moment) const
{
    return (moment - m_origin) / m_tick;
}

[[gnu::hot]] Moment RateTimer::timeOf(Tick tick) const
{
    return m_origin + tick * m_tick;
}

// When the standby is to look after the leader. While it is in a task: once another one is due and
// the grace is over. Else: when the task behind the one that it runs next would be late. A leader
// that is awake but has got no processor yet is given its time again.
[[gnu::hot]] std::optional<Moment> RateTimer::takeoverTime() const
{
    const std::optional<Tick> due = m_inTaskSince ? m_schedule.nextDue() : m_schedule.secondDue();
    if (!due)
        return std::nullopt;
    if (m_inTaskSince)
        return std::max(timeOf(*due), *m_inTaskSince + m_grace);
    return std::max<Moment>(timeOf(*due), m_now) + m_grace;
}

// After any change of what is due: moves both sleepers' moments, and wakes the leader only if its
// own has moved.
[[gnu::hot]] void RateTimer::arm()
{
    if (m_state != State::Up)
        return;
    armTakeover();
    if (m_schedule.nextDue() != m_leaderWaitsFor)
        m_leadChanged.notify_one();
}

[[gnu::hot]] void RateTimer::armTakeover()
{
    const std::optional<Moment> moment = takeoverTime();
    if (moment == m_takeoverAt) // mostly so: a frequent task alone at its tick can delay nobody yet
        return;
    m_takeoverAt = moment;
    if (moment)
        m_takeoverTimer.set(*moment);
    else
        m_takeoverTimer.clear();
}

// --- Threads ------------------------------------------------------------------------------------

bool RateTimer::startStandby()
{
    m_hasStandby = startThread("timer", [this] { serve(); });
    m_threads += m_hasStandby ? 1 : 0;
    return m_hasStandby;
}

// A thread's life. It starts as the standby, and comes back from its lead when it has lost it.
[[gnu::hot]] void RateTimer::serve()
{
    Lock lock(m_mutex);
    while (awaitLead(lock)) {
        lead(lock);
        if (m_hasStandby)
            break;
        m_hasStandby = true;
    }
    --m_threads;
    m_changed.notify_all();
}

// The leader is stuck in a task while another one waits.
bool RateTimer::isLeaderLate() const
{
    const std::optional<Moment> moment = takeoverTime();
    return m_inTaskSince && moment && *moment <= m_now;
}

// Stands by. True when this thread is to lead, false when the service ends.
bool RateTimer::awaitLead(Lock &lock)
{
    look();
    while (m_state == State::Up && m_isLed && !isLeaderLate()) {
        armTakeover();
        lock.unlock();
        m_takeoverTimer.wait();
        lock.lock();
        look();
    }
    return m_state == State::Up;
}

[[gnu::hot]] void RateTimer::lead(Lock &lock)
{
    const std::uint64_t mine = ++m_lead;
    m_isLed = true;
    m_hasStandby = false;
    m_inTaskSince.reset();
    while (m_state == State::Up) {
        if (!m_hasStandby) // each time again, should the system have given no thread
            startStandby();
        runDue(lock, mine);
        arm();
        if (m_lead != mine)
            return;
        awaitDue(lock);
    }
}

// The leader's sleep. It ends early when something earlier, or the end, comes up.
[[gnu::hot]] void RateTimer::awaitDue(Lock &lock)
{
    m_leaderWaitsFor = m_schedule.nextDue();
    if (m_state == State::Up && m_leaderWaitsFor)
        m_leadChanged.wait_until(lock, timeOf(*m_leaderWaitsFor));
    else if (m_state == State::Up)
        m_leadChanged.wait(lock);
}

// --- Calls --------------------------------------------------------------------------------------

[[gnu::hot]] void RateTimer::runDue(Lock &lock, std::uint64_t lead)
{
    look();
    while (m_state == State::Up && m_lead == lead) {
        const std::optional<Task> task = m_schedule.claim(tickAt(m_now));
        if (!task)
            return;
        if (task->mode == 1)
            handToPool(lock, *task);
        else
            runHere(lock, *task, lead);
    }
}

[[gnu::hot]] void RateTimer::runHere(Lock &lock, const Task &task, std::uint64_t lead)
{
    m_inTaskSince = m_now;
    call(lock, task);
    finish(task);
    if (m_lead == lead)
        m_inTaskSince.reset();
}

void RateTimer::handToPool(Lock &lock, const Task &task)
{
    lock.unlock();
    {
        // The call is over when the pool lets go of the job: has run it, refused it or dropped it.
        const std::shared_ptr<const Task> handed(new Task(task), [this](const Task *ended) {
            finishInPool(*ended);
            delete ended;
        });
        COS::CCosThreadPool::submit([this, handed] { callInPool(*handed); });
    }
    lock.lock();
}

void RateTimer::callInPool(const Task &task)
{
    Lock lock(m_mutex);
    call(lock, task);
}

void RateTimer::finishInPool(const Task &task)
{
    const Lock lock(m_mutex);
    finish(task);
    arm();
}

[[gnu::hot]] void RateTimer::call(Lock &lock, const Task &task)
{
    if (!m_schedule.begin(task))
        return;
    lock.unlock();
    task.function(task.argument);
    lock.lock();
}

[[gnu::hot]] void RateTimer::finish(const Task &task)
{
    m_schedule.finish(task.name, tickAt(look()));
    if (m_state == State::Ending && m_schedule.isQuiet()) // nobody else waits for a call's end
        m_changed.notify_all();
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

bool CCosRateTimer::destory(int waitMs)
{
    return posix::RateTimer::instance().stop(waitMs);
}

} // namespace COS
