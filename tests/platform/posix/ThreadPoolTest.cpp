#include "platform/cos_thread.h"
#include "platform/cos_time.h"
#include "tests/platform/posix/Counter.h"
#include "tests/platform/posix/Threads.h"
#include "tests/support/Rows.h"

#include <thread>

using COS::CCosThreadPool;

// What a job may hold: it uses the pool when it goes.
struct UsesPool
{
    ~UsesPool() { CCosThreadPool::submit(nullptr); }
};

class ThreadPoolTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QVERIFY(CCosThreadPool::destory()); }

    void refusesWhatMakesNoSense()
    {
        const std::array<int, 3> cases[] = {{-1, 1, 1}, {0, 0, 1}, {3, 2, 1}, {1, 1, 0}};
        for (const auto &[minimum, maximum, queued] : cases) {
            QCOMPARE(CCosThreadPool::init(minimum, maximum, queued), -1);
            QCOMPARE(CCosThreadPool::submit([] {}), -1);
        }
        QCOMPARE(CCosThreadPool::init(1, 1, 1), 0);
        QCOMPARE(CCosThreadPool::init(1, 1, 1), -1);
        QCOMPARE(CCosThreadPool::submit(nullptr), -1);
    }

    // fewest threads | most | jobs that wait; the first is what the program asks for
    void boundsThreadsAndQueue_data() { rows({"1 | 5 | 20", "0 | 2 | 1", "3 | 3 | 2"}); }
    void boundsThreadsAndQueue()
    {
        const int maximum = number(1);
        QCOMPARE(CCosThreadPool::init(number(0), maximum, number(2)), 0);
        Counter running, gate;
        int accepted = 0;
        while (CCosThreadPool::submit([&, user = UsesPool()] { running.add(), gate.reaches(1); }) ==
               0)
            ++accepted;
        QCOMPARE(accepted, maximum + number(2));
        QVERIFY(running.reaches(maximum));
        QCOMPARE(threadsNamed("pool"), maximum);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!CCosThreadPool::destory(0) && !CCosThreadPool::destory(30));
        QVERIFY(clock.elapsed() >= 30);
        QCOMPARE(CCosThreadPool::submit([] {}), -1);
        QCOMPARE(CCosThreadPool::init(1, 1, 1), -1);
        std::thread opener([&] {
            COS::CosTime::SleepCos(20); // for one that does not wait
            gate.add();
        });
        QVERIFY(CCosThreadPool::destory() && gate.value() == 1);
        opener.join();
        QCOMPARE(running.value(), maximum); // those that waited are dropped
        QTRY_COMPARE(threadsNamed("pool"), 0);
    }

    void extraThreadsEndWhenIdle()
    {
        QCOMPARE(CCosThreadPool::init(1, 4, 1), 0);
        static Counter running;
        for (int i = 1; i <= 4; ++i)
            CCosThreadPool::submit([] { running.add(), running.reaches(4); });
        QVERIFY(running.reaches(4));
        QTRY_COMPARE_WITH_TIMEOUT(threadsNamed("pool"), 1, 60000);
        QCOMPARE(CCosThreadPool::submit([] { running.add(); }), 0);
        QVERIFY(running.reaches(5));
    }
};

QTEST_GUILESS_MAIN(ThreadPoolTest)
#include "ThreadPoolTest.moc"
