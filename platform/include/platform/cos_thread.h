// Operating-system layer: thread pool and periodic tasks.
#pragma once

#include <functional>
#include <string>

namespace COS {

// A pool of worker threads, one for the whole process. All functions: any thread. The threads'
// name (pthread_getname_np) is "pool"; those above the minimum end when they have had no job for
// some seconds. A job that throws ends the program (std::terminate).
//
// When the process exits without destory(), the jobs that wait are dropped, and those that run
// have about one second to finish.
class CCosThreadPool
{
public:
    // Starts `minThreads` threads at once; up to `maxThreads` run when work waits. `maxQueued` is
    // the number of jobs that may wait for a thread.
    // Returns 0; -1 if the pool already runs or the numbers make no sense (minThreads < 0,
    // maxThreads < 1 or below minThreads, maxQueued < 1).
    static int init(int minThreads, int maxThreads, int maxQueued);

    // Hands `job` to a thread of the pool.
    // Returns 0; -1 if the pool does not run, if `job` is empty or if the system gives not even one
    // thread; -2 if `maxQueued` jobs wait already.
    static int submit(std::function<void()> job);

    // Ends the pool. From the first call on no job starts and submit() takes none: the jobs that
    // wait for a thread are destroyed without having run. The threads end after the jobs that run;
    // they are waited for at most `waitMs` milliseconds, or as long as it takes if it is negative.
    // Returns true once all threads have ended, at once if the pool does not run: only then may
    // init() start it again. False if the time was over before: the running jobs go on, with all
    // that the pool holds, also while the process exits; call it again to go on waiting.
    // Not to be called from a job of the pool.
    static bool destory(int waitMs = -1);
};

// Named periodic tasks, one service for the whole process. Tasks run on the service's own
// threads, whose name (pthread_getname_np) is "timer". All functions: any thread, a running task
// included, except where said otherwise.
//
// Tasks that are due together run one after the other, in the order of their adding, and a task
// never runs twice at the same time. A task that takes longer delays only itself: after a few
// milliseconds (at most one tick) another thread of the service takes over what is due, and the
// periods that the slow task missed are dropped. A task that throws ends the program
// (std::terminate).
//
// When the process exits without destory(), no task is started any more, and those that run have
// about one second to finish. That is done by atexit(3) at the first use of the service: a static
// object that a task uses is made before that, or never destroyed.
class CCosRateTimer
{
public:
    // What a task returns is ignored; 0 by convention.
    using Function = int (*)(void *argument);

    // Starts the service. `tickMs` is its resolution in milliseconds: every period is rounded up
    // to a whole number of ticks.
    // Returns 0; -1 if it already runs, if tickMs < 1 or if the system gives no timer.
    static int init(int tickMs);

    // Calls `function(argument)` every `periodMs` milliseconds, the first time at the first tick
    // that is at least one period from now; `count` times, or for ever if it is -1. `name` is the
    // key of the task. `mode` 0 runs the task on the service's threads, 1 hands each call to
    // CCosThreadPool; a call that the pool does not take is dropped and not counted.
    // The name is free again after removeTimer(), and as soon as the last of `count` calls has
    // started. While a call of the former task is under way, the new one of that name waits for
    // its end and drops the periods that it misses: two calls of one name never overlap.
    // Returns 0; -1 if the service does not run or an argument makes no sense (null function,
    // empty name, periodMs < 1, count 0 or below -1, another mode); -2 if the name is in use.
    static int addTimer(Function function, void *argument, const std::string &name, int periodMs,
                        int count, int mode);

    // Forgets the task: no call of it starts after the return. A call that is under way goes on
    // and is not waited for, so that a task can remove itself and a caller cannot lock up.
    // Returns 0; -1 if there is no task of that name.
    static int removeTimer(const std::string &name);

    // Ends the service. From the first call on no task starts, and all are forgotten. The calls
    // that are under way are waited for at most `waitMs` milliseconds, or as long as it takes if it
    // is negative.
    // Returns true once all calls and threads have ended, at once if the service does not run: only
    // then may init() start it again. False if the time was over before: those calls go on, with
    // all that the service holds, also while the process exits; call it again to go on waiting.
    // Not to be called from a task.
    static bool destory(int waitMs = -1);
};

} // namespace COS
