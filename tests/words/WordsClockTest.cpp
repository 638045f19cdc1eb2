#include "services/words/TimeService.h"
#include "tests/support/Rows.h"
#include "tests/words/WordsDaemon.h"

#include <atomic>
#include <thread>

namespace {

// timedated on a bus of the test's own. "prompt", "synced" (refuses until the synchronisation is
// off), "stubborn" (even then), "refused", "slow" (answers too late).
class FakeTimedated
{
public:
    FakeTimedated(const QByteArray &address, const QString &mood) : m_mood(mood)
    {
        static const sd_bus_vtable methods[] = {
            SD_BUS_VTABLE_START(0),
            SD_BUS_METHOD("SetTime", "xbb", "", onSetTime, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_METHOD("SetNTP", "bb", "", onSetNtp, SD_BUS_VTABLE_UNPRIVILEGED),
            SD_BUS_VTABLE_END,
        };
        sd_bus *bus = nullptr;
        sd_bus_new(&bus);
        m_bus.reset(bus);
        sd_bus_set_address(bus, address.constData());
        sd_bus_set_bus_client(bus, 1);
        const char *name = "org.freedesktop.timedate1";
        m_bOn = sd_bus_start(bus) >= 0 &&
                sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/timedate1", name, methods,
                                         this) >= 0 &&
                sd_bus_request_name(bus, name, 0) >= 0;
        m_thread = std::thread([this] { serve(); });
    }
    ~FakeTimedated()
    {
        m_bStop = true;
        m_thread.join();
    }

    bool isOn() const { return m_bOn; }
    std::int64_t setTo() const { return m_time; } // s; 0 until it is set

private:
    void serve()
    {
        while (!m_bStop) {
            while (sd_bus_process(m_bus.get(), nullptr) > 0) {
            }
            sd_bus_wait(m_bus.get(), 20000);
        }
    }
    static int onSetTime(sd_bus_message *call, void *self, sd_bus_error *error)
    {
        auto &fake = *static_cast<FakeTimedated *>(self);
        if (fake.m_mood == QLatin1String("synced") || fake.m_mood == QLatin1String("stubborn"))
            return sd_bus_error_set(error, "org.freedesktop.timedate1.AutomaticTimeSyncEnabled",
                                    "on");
        if (fake.m_mood == QLatin1String("refused"))
            return sd_bus_error_set(error, SD_BUS_ERROR_ACCESS_DENIED, "no");
        if (fake.m_mood == QLatin1String("slow"))
            std::this_thread::sleep_for(std::chrono::milliseconds(1000));
        std::int64_t time = 0;
        sd_bus_message_read(call, "x", &time);
        fake.m_time = time / 1000000;
        return sd_bus_reply_method_return(call, "");
    }
    static int onSetNtp(sd_bus_message *call, void *self, sd_bus_error *)
    {
        auto &fake = *static_cast<FakeTimedated *>(self);
        if (fake.m_mood == QLatin1String("synced"))
            fake.m_mood = QStringLiteral("prompt");
        return sd_bus_reply_method_return(call, "");
    }

    QString m_mood;
    std::unique_ptr<sd_bus, words::BusDeleter> m_bus;
    std::atomic<bool> m_bStop{false};
    std::atomic<std::int64_t> m_time{0};
    bool m_bOn = false;
    std::thread m_thread;
};

} // namespace

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
        const QTemporaryDir folder;
        const QByteArray address = "unix:path=" + folder.path().toLocal8Bit() + "/bus";
        QProcess bus;
        const std::unique_ptr<FakeTimedated> timedated = startBus(bus, address);
        WordsDaemon daemon;
        daemon.environment().insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                                    QString::fromLocal8Bit(address));
        QVERIFY(daemon.start());
        if (cell(1) != QLatin1String("none"))
            daemon.writeFile(QStringLiteral("/mnt/data/etc/tz/tz.conf"), cell(1).toLatin1());
        QElapsedTimer time;
        time.start();
        QCOMPARE(daemon.ask(QStringLiteral("28=2024,2,29,12,0,0")), cell(2));
        QVERIFY2(time.elapsed() < (cell(0) == QLatin1String("slow") ? 1200 : 500),
                 qPrintable(QString::number(time.elapsed())));
        const bool set = cell(2) == QLatin1String("ok");
        QCOMPARE(daemon.said("clock not set"), set ? 0 : 1);
        if (set)
            QCOMPARE(timedated->setTo(), 1709208000 + number(3));
        QCOMPARE(daemon.ask(QStringLiteral("10591*1")), QStringLiteral("100"));
        bus.kill();
        bus.waitForFinished();
    }

    // The present time, in the zone that the file says at that moment.
    void tellsTheTime()
    {
        WordsDaemon daemon;
        QVERIFY(daemon.start());
        for (const int hours : {-11, 0, 13}) {
            daemon.writeFile(QStringLiteral("/mnt/data/etc/tz/tz.conf"),
                             QStringLiteral("TZ=GMT%1").arg(-hours).toLatin1());
            const QDateTime now = QDateTime::currentDateTimeUtc().addSecs(qint64{hours} * 3600);
            const QStringList words = daemon.ask(QStringLiteral("28*6")).split(QLatin1Char(','));
            QCOMPARE(words.size(), 6);
            const QDateTime told(QDate(words[0].toInt(), words[1].toInt(), words[2].toInt()),
                                 QTime(words[3].toInt(), words[4].toInt(), words[5].toInt()),
                                 Qt::UTC);
            QVERIFY2(qAbs(now.secsTo(told)) <= 1, qPrintable(told.toString()));
            QCOMPARE(daemon.ask(QStringLiteral("31*1")).toInt(), told.time().hour());
        }
    }

private:
    // Null where there is to be nobody.
    static std::unique_ptr<FakeTimedated> startBus(QProcess &bus, const QByteArray &address)
    {
        if (cell(0) == QLatin1String("no bus"))
            return nullptr;
        bus.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--session"), QStringLiteral("--nofork"),
                   QStringLiteral("--print-address"),
                   QStringLiteral("--address=") + QString::fromLocal8Bit(address)});
        [&] { QVERIFY(bus.waitForReadyRead(5000)); }();
        if (cell(0) == QLatin1String("absent"))
            return nullptr;
        auto timedated = std::make_unique<FakeTimedated>(address, cell(0));
        [&] { QVERIFY(timedated->isOn()); }();
        return timedated;
    }
};

QTEST_GUILESS_MAIN(WordsClockTest)
#include "WordsClockTest.moc"
