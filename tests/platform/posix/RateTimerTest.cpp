#include "platform/cos_thread.h"
#include "platform/cos_time.h"
#include "platform/posix/Schedule.h"
#include "tests/platform/posix/Counter.h"
#include "tests/platform/posix/Threads.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QProcess>

#include <atomic>
#include <thread>

using COS::CCosRateTimer;
using COS::CCosThreadPool;

namespace {

constexpr int TICK = 5;
constexpr const char *EXIT_DURING = "EXIT_DURING"; // set for a child

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

// The child of endsWithTheProcess(): exits while a task runs.
[[noreturn]] void exitDuring(const QByteArray &how)
{
    static Slow &slow = *new Slow; // never destroyed: tasks may still use it
    const auto finishSoon = [](void *) {
        slow.calls.add();
        COS::CosTime::SleepCos(100);
        return std::fputs("finished", stderr);
    };
    const auto exitItself = [](void *) -> int { std::exit(0); }; // NOLINT(concurrency-mt-unsafe)
    CCosRateTimer::init(TICK);
    addForEver(how == "soon"     ? finishSoon
               : how == "inside" ? CCosRateTimer::Function(exitItself)
                                 : Slow::run,
               &slow, "task");
    slow.calls.reaches(how == "inside" ? 2 : 1);
    if (how == "given up" && CCosRateTimer::destory(10))
        std::abort();
    std::exit(0); // NOLINT(concurrency-mt-unsafe): only this thread gets here
}

} // namespace

class RateTimerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (qEnvironmentVariableIsSet(EXIT_DURING))
            exitDuring(qgetenv(EXIT_DURING));
    }
    void init()
    {
        m = std::make_unique<Tasks>();
        QCOMPARE(CCosThreadPool::init(1, 2, 10), 0);
        QCOMPARE(CCosRateTimer::init(TICK), 0);
    }
    void cleanup()
    {
        QVERIFY(CCosRateTimer::destory() && CCosThreadPool::destory());
        QTRY_COMPARE(threadsNamed("timer"), 0);
    }

    // name | period | count | mode | result
    void refusesBadArguments_data()
    {
        rows({"null | 5 | -1 | 0 | -1", " | 5 | -1 | 0 | -1", "a | 0 | -1 | 0 | -1",
              "a | 5 | 0 | 0 | -1", "a | 5 | -2 | 0 | -1", "a | 5 | -1 | 2 | -1",
              "used | 5 | -1 | 0 | -2", "a | 2147483647 | 2147483647 | 1 | 0"});
    }
    void refusesBadArguments()
    {
        addForEver(count, &m->calls, "used");
        QCOMPARE(CCosRateTimer::addTimer(cell(0) == "null"_s ? nullptr : count, &m->calls,
                                         cell(0).toStdString(), number(1), number(2), number(3)),
                 number(4));
    }

    void runsOnlyBetweenInitAndDestory()
    {
        QCOMPARE(CCosRateTimer::init(TICK), -1);
        for (int round = 1; round <= 20; ++round) {
            QVERIFY(CCosRateTimer::destory() && CCosRateTimer::destory(0));
            QCOMPARE(addForEver(count, &m->calls, "a"), -1);
            QCOMPARE(CCosRateTimer::init(0), -1);
            QCOMPARE(CCosRateTimer::init(TICK), 0);
            QCOMPARE(addForEver(count, &m->calls, "a"), 0);
            QVERIFY(m->calls.reaches(round));
        }
    }

    // What has been missed is dropped, and late calls do not shift those that follow.
    void keepsItsGrid()
    {
        os::Schedule schedule;
        os::Task task;
        task.name = "task";
        task.period = task.next = 4;
        QVERIFY(schedule.add(task));
        const std::pair<os::Tick, os::Tick> calls[] = {{4, 4}, {10, 11}, {12, 27}, {28, 28}};
        for (const auto &[start, end] : calls) {
            QVERIFY(!schedule.claim(*schedule.nextDue() - 1));
            QVERIFY(schedule.claim(start));
            schedule.finish("task", end);
            QCOMPARE(*schedule.nextDue(), (end / 4 + 1) * 4);
        }
    }

    void changesTasksFromATask()
    {
        const auto change = [](void *argument) {
            CCosRateTimer::removeTimer("self");
            CCosRateTimer::removeTimer("other");
            auto *tasks = static_cast<Tasks *>(argument);
            addForEver(count, &tasks->others, "added");
            return count(&tasks->calls);
        };
        QCOMPARE(addForEver(change, m.get(), "self"), 0);
        QCOMPARE(CCosRateTimer::addTimer(count, nullptr, "other", 60000, -1, 0), 0);
        QVERIFY(m->others.reaches(5));
        QCOMPARE(m->calls.value(), 1);
        QCOMPARE(CCosRateTimer::removeTimer("other"), -1);
    }

    // slow tasks | their period in ticks
    void slowTaskDelaysOnlyItself_data() { rows({"1 | 1", "1 | 3", "4 | 1"}); }
    void slowTaskDelaysOnlyItself()
    {
        const int slowTasks = number(0);
        for (int i = 0; i < slowTasks; ++i)
            CCosRateTimer::addTimer(Slow::run, &m->slow[i], std::to_string(i), number(1) * TICK, -1,
                                    0);
        addForEver(count, &m->calls, "quick");
        for (int i = 0; i < slowTasks; ++i)
            QVERIFY(m->slow[i].calls.reaches(1));
        QVERIFY(m->calls.reaches(m->calls.value() + 5));
        QVERIFY(threadsNamed("timer") <= slowTasks + 2);
        for (int i = 0; i < slowTasks; ++i) {
            QCOMPARE(m->slow[i].calls.value(), 1);
            m->slow[i].gate.add();
            QVERIFY(m->slow[i].calls.reaches(3) && !m->slow[i].overlapped);
        }
    }

    // A task ends after its count. A call goes on without its task: calls of its name wait for it,
    // and so does destory().
    void endsTasksAndCalls_data() { rows({"0 | on the service's threads", "1 | in the pool"}); }
    void endsTasksAndCalls()
    {
        QCOMPARE(CCosRateTimer::addTimer(count, &m->others, "three", TICK, 3, number(0)), 0);
        QVERIFY(m->others.reaches(3) && someTicksPass());
        QCOMPARE(m->others.value(), 3);
        QCOMPARE(CCosRateTimer::removeTimer("three"), -1);
        Slow &old = m->slow[0], &slow = m->slow[1];
        addForEver(Slow::run, &old, "a", number(0));
        QVERIFY(old.calls.reaches(1));
        QCOMPARE(CCosRateTimer::removeTimer("a"), 0);
        QCOMPARE(addForEver(count, &m->calls, "a", number(0)), 0);
        QVERIFY(someTicksPass());
        QCOMPARE(m->calls.value(), 0);
        old.gate.add();
        QVERIFY(m->calls.reaches(3));
        QCOMPARE(old.calls.value(), 1);
        addForEver(Slow::run, &slow, "slow", number(0));
        QVERIFY(slow.calls.reaches(1) && !CCosRateTimer::destory(0));
        QCOMPARE(CCosRateTimer::init(TICK), -1);
        QCOMPARE(addForEver(count, &m->calls, "b"), -1);
        std::thread opener([&] {
            COS::CosTime::SleepCos(50); // time for one that does not wait to be gone
            slow.gate.add();
        });
        QVERIFY(CCosRateTimer::destory());
        QCOMPARE(slow.inside.load(), 0);
        opener.join();
    }

    // A call that waits for a thread of the pool is over when its task is removed or the pool ends.
    void callWaitsInThePool_data() { rows({"removed", "dropped"}); }
    void callWaitsInThePool()
    {
        for (Slow *job : {&m->slow[0], &m->slow[1]}) // all threads of the pool
            QVERIFY(CCosThreadPool::submit([job] { Slow::run(job); }) == 0 &&
                    job->calls.reaches(1));
        addForEver(count, &m->calls, "waiting", 1);
        QVERIFY(someTicksPass() && CCosRateTimer::removeTimer("waiting") == 0);
        QCOMPARE(addForEver(count, &m->others, "waiting", 1), 0);
        const bool dropped = cell(0) == "dropped"_s;
        if (dropped)
            QVERIFY(!CCosRateTimer::destory(0) && !CCosThreadPool::destory(0) &&
                    CCosRateTimer::destory(60000));
        m->slow[0].gate.add();
        m->slow[1].gate.add();
        QVERIFY(dropped || m->others.reaches(1));
        QCOMPARE(m->calls.value(), 0);
    }

    // A tick at which something is due costs one wake-up of one thread, any other tick none.
    void wakesOncePerDueTick()
    {
        for (const char *name : {"a", "b"})
            CCosRateTimer::addTimer(count, &m->calls, name, 10 * TICK, -1, 0);
        QTRY_COMPARE(threadsNamed("timer"), 2);
        int switches = 0;
        threadsNamed("timer", &switches);
        switches = -switches;
        QTest::qWait(1500);
        threadsNamed("timer", &switches);
        // Two calls each tenth tick. A busy machine may add some wake-ups, but not one a tick.
        QVERIFY2(switches <= m->calls.value() / 2 + 10, qPrintable("%1"_s.arg(switches)));
    }

    // what the exit meets: a task that ends soon | what it still prints; one that hangs; exit()
    // from the task; one that destory() has given up
    void endsWithTheProcess_data() { rows({"soon | finished", "stuck", "inside", "given up"}); }
    void endsWithTheProcess()
    {
        QProcess child;
        qputenv(EXIT_DURING, cell(0).toLatin1());
        child.start(QCoreApplication::applicationFilePath(), QStringList());
        qunsetenv(EXIT_DURING);
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.readAllStandardError(), cellOrEmpty(1).toLatin1());
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
    }

private:
    // What the tasks of a test use; outlives the service.
    struct Tasks
    {
        Counter calls, others, ticks;
        std::array<Slow, 4> slow;
    };

    // True once the service has gone on for some ticks.
    bool someTicksPass() const
    {
        return addForEver(count, &m->ticks, "ticks") == 0 && m->ticks.reaches(5) &&
               CCosRateTimer::removeTimer("ticks") == 0;
    }

    std::unique_ptr<Tasks> m;
};

QTEST_GUILESS_MAIN(RateTimerTest)
#include "RateTimerTest.moc"
