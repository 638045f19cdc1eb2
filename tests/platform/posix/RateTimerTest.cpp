#include "platform/cos_thread.h"
#include "platform/cos_time.h"
#include "platform/posix/Schedule.h"
#include "tests/platform/posix/Counter.h"
#include "tests/platform/posix/Threads.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QProcess>

#include <atomic>
#include <memory>
#include <thread>

using COS::CCosRateTimer;
using COS::CCosThreadPool;

namespace {

constexpr int TICK = 5;

int count(void *counter)
{
    static_cast<Counter *>(counter)->add();
    return 0;
}

// A task that stays in its call until the test opens the gate.
struct Slow
{
    Counter calls;
    Counter gate;
    std::atomic<int> inside{0};
    std::atomic<bool> overlapped{false};

    static int run(void *argument)
    {
        auto *slow = static_cast<Slow *>(argument);
        slow->overlapped = slow->overlapped || ++slow->inside > 1;
        slow->calls.add();
        slow->gate.reaches(1);
        --slow->inside;
        return 0;
    }
};

int addForEver(CCosRateTimer::Function function, void *argument, const char *name, int mode = 0)
{
    return CCosRateTimer::addTimer(function, argument, name, TICK, -1, mode);
}

// True once the service has gone on for some ticks.
bool someTicksPass()
{
    static Counter ticks; // outlives the task
    const int before = ticks.value();
    return addForEver(count, &ticks, "ticks") == 0 && ticks.reaches(before + 5) &&
           CCosRateTimer::removeTimer("ticks") == 0;
}

int finishSoon(void *started)
{
    count(started);
    COS::CosTime::SleepCos(100);
    std::puts("finished");
    std::fflush(stdout);
    return 0;
}

int neverFinish(void *started)
{
    count(started);
    for (;;)
        COS::CosTime::SleepCos(1000);
}

int exitItself(void *)
{
    std::exit(0); // NOLINT(concurrency-mt-unsafe): that is the case
}

// The child of endsWithTheProcess(): exits while a task runs.
[[noreturn]] void exitDuring(const QByteArray &task)
{
    static auto *started = new Counter; // never destroyed: tasks may still use it
    CCosRateTimer::init(TICK);
    addForEver(task == "stuck"    ? neverFinish
               : task == "inside" ? exitItself
                                  : finishSoon,
               started, "task");
    started->reaches(task == "inside" ? 2 : 1);
    std::exit(0); // NOLINT(concurrency-mt-unsafe): only this thread gets here
}

} // namespace

class RateTimerTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QCOMPARE(CCosThreadPool::init(1, 2, 10), 0);
        QCOMPARE(CCosRateTimer::init(TICK), 0);
    }
    void cleanup()
    {
        CCosRateTimer::destory();
        CCosThreadPool::destory();
        QTRY_COMPARE(threadsNamed("timer"), 0);
    }

    void refusesBadArguments()
    {
        struct
        {
            CCosRateTimer::Function function;
            const char *name;
            int period, times, mode, result;
        } const cases[] = {
            {nullptr, "a", 5, -1, 0, -1},  {count, "", 5, -1, 0, -1},
            {count, "a", 0, -1, 0, -1},    {count, "a", 5, 0, 0, -1},
            {count, "a", 5, -2, 0, -1},    {count, "a", 5, -1, 2, -1},
            {count, "used", 5, -1, 0, -2}, {count, "a", INT_MAX, INT_MAX, 1, 0},
        };
        Counter calls;
        addForEver(count, &calls, "used");
        for (const auto &[function, name, period, times, mode, result] : cases)
            QCOMPARE(CCosRateTimer::addTimer(function, &calls, name, period, times, mode), result);
        CCosRateTimer::destory();
    }

    void runsOnlyBetweenInitAndDestory()
    {
        QCOMPARE(CCosRateTimer::init(TICK), -1);
        CCosRateTimer::destory();
        Counter calls;
        QCOMPARE(addForEver(count, &calls, "a"), -1);
        QCOMPARE(CCosRateTimer::init(0), -1);
        for (int round = 1; round <= 20; ++round) {
            QCOMPARE(CCosRateTimer::init(TICK), 0);
            QCOMPARE(addForEver(count, &calls, "a"), 0);
            QVERIFY(calls.reaches(round));
            CCosRateTimer::destory();
        }
    }

    // What has been missed is dropped, and late calls do not shift those that follow.
    void keepsItsGrid()
    {
        posix::Schedule schedule;
        posix::Task task;
        task.name = "task";
        task.period = task.next = 4;
        QVERIFY(schedule.add(task));
        const std::pair<posix::Tick, posix::Tick> calls[] = {{4, 4}, {10, 11}, {12, 27}, {28, 28}};
        for (const auto &[start, end] : calls) {
            QVERIFY(!schedule.claim(*schedule.nextDue() - 1));
            QVERIFY(schedule.claim(start));
            schedule.finish("task", end);
            QCOMPARE(*schedule.nextDue(), (end / 4 + 1) * 4);
        }
    }

    void endsAfterItsCount_data() { modes(); }
    void endsAfterItsCount()
    {
        const int mode = number(0);
        Counter calls;
        QCOMPARE(CCosRateTimer::addTimer(count, &calls, "a", TICK, 3, mode), 0);
        QVERIFY(calls.reaches(3));
        QVERIFY(someTicksPass());
        QCOMPARE(calls.value(), 3);
        QCOMPARE(CCosRateTimer::removeTimer("a"), -1);
        CCosRateTimer::destory();
    }

    void changesTasksFromATask()
    {
        struct Tasks
        {
            Counter self, other, added;
        } tasks;
        const auto change = [](void *argument) {
            auto *all = static_cast<Tasks *>(argument);
            CCosRateTimer::removeTimer("self");
            CCosRateTimer::removeTimer("other");
            addForEver(count, &all->added, "added");
            return count(&all->self);
        };
        QCOMPARE(addForEver(change, &tasks, "self"), 0);
        QCOMPARE(CCosRateTimer::addTimer(count, &tasks.other, "other", 60000, -1, 0), 0);
        QVERIFY(tasks.added.reaches(5));
        QCOMPARE(tasks.self.value(), 1);
        QCOMPARE(CCosRateTimer::removeTimer("other"), -1);
        CCosRateTimer::destory();
    }

    // slow tasks | their period in ticks
    void slowTaskDelaysOnlyItself_data() { rows({"1 | 1", "1 | 3", "4 | 1"}); }
    void slowTaskDelaysOnlyItself()
    {
        const int slowTasks = number(0);
        std::vector<std::unique_ptr<Slow>> slow;
        for (int i = 0; i < slowTasks; ++i) {
            slow.push_back(std::make_unique<Slow>());
            CCosRateTimer::addTimer(Slow::run, slow.back().get(), "slow" + std::to_string(i),
                                    number(1) * TICK, -1, 0);
        }
        Counter calls;
        addForEver(count, &calls, "quick");
        for (const auto &task : slow)
            QVERIFY(task->calls.reaches(1));
        QVERIFY(calls.reaches(calls.value() + 5));
        QVERIFY(threadsNamed("timer") <= slowTasks + 2);
        for (const auto &task : slow) {
            QCOMPARE(task->calls.value(), 1);
            task->gate.add();
            QVERIFY(task->calls.reaches(3));
            QVERIFY(!task->overlapped);
        }
        CCosRateTimer::destory();
    }

    void callsOfOneNameNeverOverlap_data() { modes(); }
    void callsOfOneNameNeverOverlap()
    {
        const int mode = number(0);
        Slow old;
        Counter renewed;
        addForEver(Slow::run, &old, "a", mode);
        QVERIFY(old.calls.reaches(1));
        QCOMPARE(CCosRateTimer::removeTimer("a"), 0);
        QCOMPARE(addForEver(count, &renewed, "a", mode), 0);
        QVERIFY(someTicksPass());
        QCOMPARE(renewed.value(), 0);
        old.gate.add();
        QVERIFY(renewed.reaches(3));
        QCOMPARE(old.calls.value(), 1);
        CCosRateTimer::destory();
    }

    void removedTaskDoesNotStartInThePool()
    {
        Slow first;
        Slow second;
        Counter calls;
        Counter renewed;
        addForEver(Slow::run, &first, "first", 1);
        addForEver(Slow::run, &second, "second", 1);
        QVERIFY(first.calls.reaches(1) && second.calls.reaches(1)); // all threads of the pool
        addForEver(count, &calls, "waiting", 1);
        QVERIFY(someTicksPass());
        QCOMPARE(CCosRateTimer::removeTimer("waiting"), 0);
        QCOMPARE(addForEver(count, &renewed, "waiting", 1), 0);
        first.gate.add();
        second.gate.add();
        QVERIFY(renewed.reaches(1));
        CCosRateTimer::destory();
        QCOMPARE(calls.value(), 0);
    }

    void destoryWaitsForCalls_data() { modes(); }
    void destoryWaitsForCalls()
    {
        const int mode = number(0);
        Slow slow;
        addForEver(Slow::run, &slow, "slow", mode);
        QVERIFY(slow.calls.reaches(1));
        std::thread opener([&] {
            while (CCosRateTimer::removeTimer("slow") == 0 ||
                   addForEver(Slow::run, &slow, "x") != -1)
                CCosRateTimer::removeTimer("x"); // until destory() has begun
            COS::CosTime::SleepCos(50);          // time for one that does not wait to be gone
            slow.gate.add();
        });
        CCosRateTimer::destory();
        QCOMPARE(slow.gate.value(), 1);
        QCOMPARE(slow.inside.load(), 0);
        opener.join();
    }

    // A tick at which something is due costs one wake-up of one thread, any other tick none.
    void wakesOncePerDueTick()
    {
        for (const int period : {50, 60000}) { // every tick; not within the test
            CCosRateTimer::destory();
            QTRY_COMPARE(threadsNamed("timer"), 0);
            QCOMPARE(CCosRateTimer::init(50), 0);
            Counter calls;
            CCosRateTimer::addTimer(count, &calls, "a", period, -1, 0);
            CCosRateTimer::addTimer(count, &calls, "b", period, -1, 0);
            QTRY_COMPARE(threadsNamed("timer"), 2);
            int before = 0;
            int after = 0;
            threadsNamed("timer", &before);
            QTest::qWait(1500);
            threadsNamed("timer", &after);
            CCosRateTimer::destory();
            // Two calls a tick. A busy machine may add some, but not one a tick.
            QVERIFY2(after - before <= calls.value() / 2 + 10,
                     qPrintable(QString::number(after - before)));
        }
    }

    // task under way | what it still prints
    void endsWithTheProcess_data() { rows({"soon | finished", "stuck", "inside"}); }
    void endsWithTheProcess()
    {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {"--exit-during"_s, cell(0)});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.readAllStandardError(), QByteArray());
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
        QCOMPARE(child.readAllStandardOutput().trimmed(), cellOrEmpty(1).toLatin1());
    }

private:
    static void modes() { rows({"0 | on the service's threads", "1 | in the pool"}); }
};

int main(int argc, char *argv[])
{
    if (argc == 3 && QByteArray(argv[1]) == "--exit-during")
        exitDuring(argv[2]);
    QCoreApplication app(argc, argv);
    RateTimerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "RateTimerTest.moc"
