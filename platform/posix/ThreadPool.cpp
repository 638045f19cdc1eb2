#include "platform/cos_thread.h"
#include "platform/posix/threads.h"

#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <mutex>

namespace {

// How long a thread above the minimum waits for another job before it ends.
constexpr std::chrono::seconds IDLE_TIME{5};

class ThreadPool
{
public:
    // Never destroyed: its threads may outlive main().
    static ThreadPool &instance()
    {
        static auto *pool = new ThreadPool;
        return *pool;
    }

    int start(int minThreads, int maxThreads, int maxQueued);
    int submit(std::function<void()> job);
    bool stop(int waitMs);

private:
    using Lock = std::unique_lock<std::mutex>;
    enum class State { Down, Up, Ending };

    ThreadPool()
    {
        std::atexit([] { instance().stopAtExit(); });
    }

    bool addThread();
    void work();
    bool awaitJob(Lock &lock);
    void runJob(Lock &lock);
    void end(Lock &lock);
    void stopAtExit();

    std::mutex m_mutex; // guards everything below
    std::condition_variable m_work;
    std::condition_variable m_changed; // a job or a thread has ended
    State m_state = State::Down;
    std::deque<std::function<void()>> m_jobs;
    std::size_t m_minThreads = 0;
    std::size_t m_maxThreads = 0;
    std::size_t m_maxQueued = 0;
    std::size_t m_threads = 0;
    std::size_t m_busy = 0; // threads that run a job
};

int ThreadPool::start(int minThreads, int maxThreads, int maxQueued)
{
    const Lock lock(m_mutex);
    if (m_state != State::Down || minThreads < 0 || maxThreads < 1 || maxThreads < minThreads ||
        maxQueued < 1)
        return -1;
    m_minThreads = static_cast<std::size_t>(minThreads);
    m_maxThreads = static_cast<std::size_t>(maxThreads);
    m_maxQueued = static_cast<std::size_t>(maxQueued);
    m_state = State::Up;
    while (m_threads < m_minThreads && addThread())
        continue;
    return 0;
}

int ThreadPool::submit(std::function<void()> job)
{
    const Lock lock(m_mutex);
    if (m_state != State::Up || !job)
        return -1;
    // A job in the queue that an idle thread is about to take does not wait.
    const auto mustWait = [this] { return m_jobs.size() >= m_threads - m_busy; };
    if (mustWait() && m_threads < m_maxThreads)
        addThread();
    if (m_threads == 0)
        return -1;
    if (mustWait() && m_jobs.size() - (m_threads - m_busy) >= m_maxQueued)
        return -2;
    m_jobs.push_back(std::move(job));
    m_work.notify_one();
    return 0;
}

bool ThreadPool::stop(int waitMs)
{
    Lock lock(m_mutex);
    end(lock);
    const auto isOver = [this] { return m_threads == 0 || m_state != State::Ending; };
    if (!os::waitUntilOver(m_changed, lock, waitMs, isOver))
        return false;
    if (m_state == State::Ending)
        m_state = State::Down;
    return true;
}

bool ThreadPool::addThread()
{
    const bool started = os::startThread("pool", [this] { work(); });
    m_threads += started ? 1 : 0;
    return started;
}

void ThreadPool::work()
{
    Lock lock(m_mutex);
    while (awaitJob(lock))
        runJob(lock);
    --m_threads;
    m_changed.notify_all();
}

// False when the thread is to end.
bool ThreadPool::awaitJob(Lock &lock)
{
    const auto isCalled = [this] { return !m_jobs.empty() || m_state != State::Up; };
    while (!isCalled()) {
        if (m_threads <= m_minThreads)
            m_work.wait(lock);
        else if (!m_work.wait_for(lock, IDLE_TIME, isCalled) && m_threads > m_minThreads)
            return false;
    }
    return !m_jobs.empty();
}

void ThreadPool::runJob(Lock &lock)
{
    std::function<void()> job = std::move(m_jobs.front());
    m_jobs.pop_front();
    ++m_busy;
    lock.unlock();
    job();
    job = nullptr; // without the lock, as in end()
    lock.lock();
    --m_busy;
    m_changed.notify_all();
}

// From here on no job starts.
void ThreadPool::end(Lock &lock)
{
    if (m_state != State::Up)
        return;
    m_state = State::Ending;
    m_work.notify_all();
    std::deque<std::function<void()>> dropped;
    dropped.swap(m_jobs);
    lock.unlock(); // what a job holds may be destroyed by code that uses the pool
    dropped.clear();
    lock.lock();
}

void ThreadPool::stopAtExit()
{
    Lock lock(m_mutex);
    if (m_state != State::Up)
        return;
    end(lock);
    m_changed.wait_for(lock, os::PATIENCE_AT_EXIT, [this] { return m_busy == 0; });
}

} // namespace

namespace COS {

int CCosThreadPool::init(int minThreads, int maxThreads, int maxQueued)
{
    return ThreadPool::instance().start(minThreads, maxThreads, maxQueued);
}

int CCosThreadPool::submit(std::function<void()> job)
{
    return ThreadPool::instance().submit(std::move(job));
}

bool CCosThreadPool::destory(int waitMs)
{
    return ThreadPool::instance().stop(waitMs);
}

} // namespace COS
