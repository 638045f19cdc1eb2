#include "platform/cos_thread.h"
#include "platform/posix/threads.h"

#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <mutex>

namespace {

// How long a thread above the minimum waits for another job before it ends.
constexpr std::chrono::seconds kIdleTime{5};

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
    void stop();

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
    void end();
    void stopAtExit();

    std::mutex mutex_; // guards everything below
    std::condition_variable work_;
    std::condition_variable changed_; // a job or a thread has ended
    State state_ = State::Down;
    std::deque<std::function<void()>> jobs_;
    std::size_t minThreads_ = 0;
    std::size_t maxThreads_ = 0;
    std::size_t maxQueued_ = 0;
    std::size_t threads_ = 0;
    std::size_t busy_ = 0; // threads that run a job
};

int ThreadPool::start(int minThreads, int maxThreads, int maxQueued)
{
    const Lock lock(mutex_);
    if (state_ != State::Down || minThreads < 0 || maxThreads < 1 || maxThreads < minThreads ||
        maxQueued < 1)
        return -1;
    minThreads_ = static_cast<std::size_t>(minThreads);
    maxThreads_ = static_cast<std::size_t>(maxThreads);
    maxQueued_ = static_cast<std::size_t>(maxQueued);
    state_ = State::Up;
    while (threads_ < minThreads_ && addThread())
        continue;
    return 0;
}

int ThreadPool::submit(std::function<void()> job)
{
    const Lock lock(mutex_);
    if (state_ != State::Up || !job)
        return -1;
    // A job in the queue that an idle thread is about to take does not wait.
    const auto mustWait = [this] { return jobs_.size() >= threads_ - busy_; };
    if (mustWait() && threads_ < maxThreads_)
        addThread();
    if (threads_ == 0)
        return -1;
    if (mustWait() && jobs_.size() - (threads_ - busy_) >= maxQueued_)
        return -2;
    jobs_.push_back(std::move(job));
    work_.notify_one();
    return 0;
}

void ThreadPool::stop()
{
    Lock lock(mutex_);
    if (state_ == State::Down)
        return;
    end();
    changed_.wait(lock, [this] { return threads_ == 0 || state_ != State::Ending; });
    if (state_ == State::Ending)
        state_ = State::Down;
}

bool ThreadPool::addThread()
{
    const bool started = posix::startThread("pool", [this] { work(); });
    threads_ += started ? 1 : 0;
    return started;
}

void ThreadPool::work()
{
    Lock lock(mutex_);
    while (awaitJob(lock))
        runJob(lock);
    --threads_;
    changed_.notify_all();
}

// False when the thread is to end.
bool ThreadPool::awaitJob(Lock &lock)
{
    const auto isCalled = [this] { return !jobs_.empty() || state_ != State::Up; };
    while (!isCalled()) {
        if (threads_ <= minThreads_)
            work_.wait(lock);
        else if (!work_.wait_for(lock, kIdleTime, isCalled) && threads_ > minThreads_)
            return false;
    }
    return !jobs_.empty();
}

void ThreadPool::runJob(Lock &lock)
{
    std::function<void()> job = std::move(jobs_.front());
    jobs_.pop_front();
    ++busy_;
    lock.unlock();
    job();
    job = nullptr; // what it holds may be destroyed by code that uses the pool
    lock.lock();
    --busy_;
    changed_.notify_all();
}

void ThreadPool::end()
{
    state_ = State::Ending;
    work_.notify_all();
}

void ThreadPool::stopAtExit()
{
    std::deque<std::function<void()>> dropped;
    Lock lock(mutex_);
    if (state_ != State::Up)
        return;
    dropped.swap(jobs_);
    end();
    changed_.wait_for(lock, posix::kPatienceAtExit, [this] { return busy_ == 0; });
    lock.unlock(); // before `dropped` runs destructors of others
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

void CCosThreadPool::destory()
{
    ThreadPool::instance().stop();
}

} // namespace COS
