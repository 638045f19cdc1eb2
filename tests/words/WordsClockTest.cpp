#include "tests/support/Rows.h"
#include "tests/support/TestBus.h"
#include "tests/words/WordsDaemon.h"

class WordsClockTest : public QObject
{
    Q_OBJECT

private slots:
    // timedated's mood, the zone file, the answer, and what the clock is set to for noon of
    // 2024-02-29: seconds ahead of noon UTC.
    void setsTheClock_data()
    {
        rows({
            "prompt   | TZ=GMT-08:00     | ok | -28800",
            "prompt   | TZ=GMT+09:30     | ok | 34200",
            "prompt   | TZ=GMT-05:45     | ok | -20700",
            "prompt   | TZ=GMT-00:00     | ok | 0",
            "prompt   | TZ=CET-1CEST     | ok | -3600",
            "prompt   |                  | ok | -28800", // cut off while it was written
            "prompt   | none             | ok | -28800",
            "prompt   | TZ=              | ok | -28800",
            "prompt   | TZ=:/etc/passwd  | ok | -28800",
            "prompt   | TZ=../x          | ok | -28800",
            "prompt   | zone=GMT-05:45   | ok | -28800",
            "synced   | TZ=GMT-00:00     | ok | 0",
            "stubborn | TZ=GMT-00:00     | !4 |",
            "refused  | TZ=GMT-00:00     | !4 |",
            "slow     | TZ=GMT-00:00     | !6 |",
            "absent   | TZ=GMT-00:00     | !4 |",
            "no bus   | TZ=GMT-00:00     | !4 |",
        });
    }
    void setsTheClock()
    {
        TestBus bus;
        if (cell(0) != "no bus"_s)
            bus.start();
        const auto timedated = cell(0) == "no bus"_s || cell(0) == "absent"_s
                                   ? nullptr
                                   : std::make_unique<FakeTimedated>(cell(0));
        WordsDaemon daemon;
        daemon.environment().insert("DBUS_SYSTEM_BUS_ADDRESS"_s,
                                    qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"));
        QVERIFY(daemon.start());
        if (cell(1) != "none"_s)
            daemon.writeFile("/mnt/data/etc/tz/tz.conf"_s, cell(1).toLatin1());
        QElapsedTimer time;
        time.start();
        QCOMPARE(daemon.ask("28=2024,2,29,12,0,0"_s), cell(2));
        QVERIFY2(time.elapsed() < (cell(0) == "slow"_s ? 1200 : 500),
                 qPrintable(QString::number(time.elapsed())));
        const bool set = cell(2) == "ok"_s;
        QCOMPARE(daemon.said("clock not set"), set ? 0 : 1);
        if (set)
            QCOMPARE(timedated->time.load() / 1000000, 1709208000 + number(3));
        QCOMPARE(daemon.ask("10591*1"_s), "100"_s);
    }

    // The present time, in the zone that the file says at that moment.
    void tellsTheTime()
    {
        WordsDaemon daemon;
        QVERIFY(daemon.start());
        for (const int hours : {-11, 0, 13}) {
            daemon.writeFile("/mnt/data/etc/tz/tz.conf"_s, "TZ=GMT%1"_s.arg(-hours).toLatin1());
            const QDateTime now = QDateTime::currentDateTimeUtc().addSecs(qint64{hours} * 3600);
            auto told = QDateTime::fromString(daemon.ask("28*6"_s), "yyyy,M,d,h,m,s"_s);
            told.setTimeSpec(Qt::UTC);
            QVERIFY2(qAbs(now.secsTo(told)) <= 1, qPrintable(told.toString()));
        }
    }
};

QTEST_GUILESS_MAIN(WordsClockTest)
#include "WordsClockTest.moc"
