#include "platform/cos_thread.h"
#include "tests/platform/posix/Counter.h"
#include "tests/platform/posix/Threads.h"
#include "tests/support/Rows.h"

#include <thread>

using COS::CCosThreadPool;

class ThreadPoolTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { CCosThreadPool::destory(); }

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
        CCosThreadPool::destory();
        QCOMPARE(CCosThreadPool::submit([] {}), -1);
    }

    // fewest threads | most | jobs that wait; the first is what the program asks for
    void boundsThreadsAndQueue_data() { rows({"1 | 5 | 20", "0 | 2 | 1", "3 | 3 | 2"}); }
    void boundsThreadsAndQueue()
    {
        const int maximum = number(1);
        QCOMPARE(CCosThreadPool::init(number(0), maximum, number(2)), 0);
        Counter running;
        Counter gate;
        int accepted = 0;
        while (CCosThreadPool::submit([&] {
                   running.add();
                   gate.reaches(1);
               }) == 0)
            ++accepted;
        QCOMPARE(accepted, maximum + number(2));
        QVERIFY(running.reaches(maximum));
        QCOMPARE(threadsNamed("pool"), maximum);
        QCOMPARE(running.value(), maximum);
        std::thread opener([&] {
            while (CCosThreadPool::submit([] {}) != -1) // full, until destory() has begun
                std::this_thread::yield();
            gate.add();
        });
        CCosThreadPool::destory(); // drops those that wait
        opener.join();
        QCOMPARE(running.value(), maximum);
        QTRY_COMPARE(threadsNamed("pool"), 0);
    }

    void destoryWaitsAsLongAsAsked()
    {
        QCOMPARE(CCosThreadPool::init(1, 1, 5), 0);
        Counter running, gate;
        CCosThreadPool::submit([&] { running.add(), gate.reaches(1); });
        QVERIFY(running.reaches(1));
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!CCosThreadPool::destory(0) && !CCosThreadPool::destory(30));
        QVERIFY(clock.elapsed() >= 30);
        QCOMPARE(CCosThreadPool::init(1, 1, 5), -1);
        gate.add();
        QVERIFY(CCosThreadPool::destory(60000) && CCosThreadPool::destory(0));
    }

    void takesJobsFromItsJobs()
    {
        QCOMPARE(CCosThreadPool::init(1, 1, 1), 0);
        Counter done;
        std::function<void()> again = [&] {
            if (done.value() < 100)
                CCosThreadPool::submit(again);
            done.add();
        };
        QCOMPARE(CCosThreadPool::submit(again), 0);
        QVERIFY(done.reaches(101));
        CCosThreadPool::destory();
    }

    void extraThreadsEndWhenIdle()
    {
        QCOMPARE(CCosThreadPool::init(1, 4, 1), 0);
        Counter running;
        for (int i = 1; i <= 4; ++i) {
            CCosThreadPool::submit([&] {
                running.add();
                running.reaches(4);
            });
        }
        QVERIFY(running.reaches(4));
        QTRY_COMPARE_WITH_TIMEOUT(threadsNamed("pool"), 1, 60000);
        QCOMPARE(CCosThreadPool::submit([&] { running.add(); }), 0);
        QVERIFY(running.reaches(5));
        CCosThreadPool::destory();
    }
};

QTEST_GUILESS_MAIN(ThreadPoolTest)
#include "ThreadPoolTest.moc"
