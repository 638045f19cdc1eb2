#include "platform/posix/RateTimer.h"

#include "platform/posix/threads.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace os {
namespace {

using std::chrono::milliseconds;

// Long enough for the short tasks that are due together, short enough that nobody notices.
constexpr milliseconds GRACE{3};

Moment now()
{
    return std::chrono::steady_clock::now();
}

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
    if (m_state != State::Down || tickMs < 1 || !m_alarm.open())
        return -1;
    m_origin = now();
    m_tick = milliseconds(tickMs);
    m_grace = std::min<std::chrono::nanoseconds>(GRACE, m_tick);
    m_lead = 0;
    if (!startStandby()) { // finds no leader and leads
        m_alarm.close();
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
    task.period = (milliseconds(periodMs) + m_tick - milliseconds(1)) / m_tick;
    task.next = tickAt(now() + m_tick - std::chrono::nanoseconds(1)) + task.period;
    if (!m_schedule.add(std::move(task)))
        return -2;
    m_dueChanged.notify_one();
    return 0;
}

int RateTimer::remove(const std::string &name)
{
    const Lock lock(m_mutex);
    return m_schedule.remove(name) ? 0 : -1;
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
    m_alarm.close();
    m_state = State::Down;
    m_changed.notify_all();
    return true;
}

void RateTimer::end()
{
    m_state = State::Ending;
    m_schedule.clear();
    m_dueChanged.notify_one();
    m_alarm.set(Moment{});
}

void RateTimer::stopAtExit()
{
    Lock lock(m_mutex);
    if (m_state != State::Up)
        return;
    end();
    m_changed.wait_for(lock, PATIENCE_AT_EXIT, [this] { return m_schedule.isQuiet(); });
}

Tick RateTimer::tickAt(Moment moment) const
{
    return (moment - m_origin) / m_tick;
}

Moment RateTimer::timeOf(Tick tick) const
{
    return m_origin + tick * m_tick;
}

// --- Threads ------------------------------------------------------------------------------------

bool RateTimer::startStandby()
{
    m_hasStandby = startThread("timer", [this] { serve(); });
    m_threads += m_hasStandby ? 1 : 0;
    return m_hasStandby;
}

// A thread's life. It starts as the standby, and comes back from its lead when it has lost it.
void RateTimer::serve()
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

// Stands by. True when this thread is to lead, false when the service ends.
bool RateTimer::awaitLead(Lock &lock)
{
    while (m_state == State::Up && m_lead != 0 && !isLeaderStuck()) {
        lock.unlock();
        m_alarm.wait();
        lock.lock();
    }
    return m_state == State::Up;
}

// Also asked after an alarm that was cleared while the standby woke.
bool RateTimer::isLeaderStuck() const
{
    return m_busySince && *m_busySince + m_grace <= now();
}

void RateTimer::lead(Lock &lock)
{
    const std::uint64_t mine = ++m_lead;
    m_hasStandby = false;
    while (isLeading(mine)) {
        if (!m_hasStandby) // each time again, should the system have given no thread
            startStandby();
        runDue(lock, mine);
        if (isLeading(mine))
            awaitDue(lock);
    }
}

bool RateTimer::isLeading(std::uint64_t lead) const
{
    return m_state == State::Up && m_lead == lead;
}

// The leader's sleep. It ends early when another task may be due earlier, or with the service.
void RateTimer::awaitDue(Lock &lock)
{
    if (const std::optional<Tick> due = m_schedule.nextDue())
        m_dueChanged.wait_until(lock, timeOf(*due));
    else
        m_dueChanged.wait(lock);
}

// --- Calls --------------------------------------------------------------------------------------

void RateTimer::runDue(Lock &lock, std::uint64_t lead)
{
    m_busySince = now();
    m_alarm.set(*m_busySince + m_grace);
    while (isLeading(lead)) {
        const std::optional<Task> task = m_schedule.claim(tickAt(now()));
        if (!task)
            break;
        runTask(lock, *task);
    }
    if (!isLeading(lead)) // the alarm is another's, or rings for the end
        return;
    m_busySince.reset();
    m_alarm.clear();
}

void RateTimer::runTask(Lock &lock, const Task &task)
{
    if (task.mode == 1) {
        handToPool(lock, task);
        return;
    }
    call(lock, task);
    finish(task);
}

void RateTimer::handToPool(Lock &lock, const Task &task)
{
    lock.unlock();
    {
        // The call is over when the pool lets go of the job: has run it, refused it or dropped it.
        const std::shared_ptr<const Task> handed(new Task(task), [this](const Task *ended) {
            const Lock held(m_mutex);
            finish(*ended);
            delete ended;
        });
        COS::CCosThreadPool::submit([this, handed] {
            Lock held(m_mutex);
            call(held, *handed);
        });
    }
    lock.lock();
}

void RateTimer::call(Lock &lock, const Task &task)
{
    if (!m_schedule.begin(task))
        return;
    lock.unlock();
    task.function(task.argument);
    lock.lock();
}

// The leader may sleep past the next call of this task.
void RateTimer::finish(const Task &task)
{
    m_schedule.finish(task.name, tickAt(now()));
    m_dueChanged.notify_one();
    if (m_state == State::Ending && m_schedule.isQuiet()) // nobody else waits for a call's end
        m_changed.notify_all();
}

} // namespace os

namespace COS {

int CCosRateTimer::init(int tickMs)
{
    return os::RateTimer::instance().start(tickMs);
}

int CCosRateTimer::addTimer(Function function, void *argument, const std::string &name,
                            int periodMs, int count, int mode)
{
    if (!function || name.empty() || periodMs < 1 || (count < 1 && count != -1) ||
        (mode != 0 && mode != 1))
        return -1;
    os::Task task;
    task.function = function;
    task.argument = argument;
    task.name = name;
    task.left = count;
    task.mode = mode;
    return os::RateTimer::instance().add(std::move(task), periodMs);
}

int CCosRateTimer::removeTimer(const std::string &name)
{
    return os::RateTimer::instance().remove(name);
}

bool CCosRateTimer::destory(int waitMs)
{
    return os::RateTimer::instance().stop(waitMs);
}

} // namespace COS
