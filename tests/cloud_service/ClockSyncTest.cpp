// The clock, by a timesyncd and a timedated of the test's own.
#define QT_NO_KEYWORDS // GLib has a field named "signals"
#include "services/cloud/ClockSync.h"

#include "tests/cloud_service/FakeTimesync.h"

#include <memory>

using cloud::ClockSync;

namespace {

constexpr int SILENCE_MS = 300;

// Switches it on, as systemd does.
class Timedated
{
public:
    explicit Timedated(std::unique_ptr<FakeTimesync> &switched)
    {
        auto &object = m_service.add("/org/freedesktop/timedate1");
        object.registerMethod("SetNTP")
            .onInterface("org.freedesktop.timedate1")
            .implementedAs([&](bool on, bool) {
                if (on)
                    switched = std::make_unique<FakeTimesync>("good");
            });
        object.finishRegistration();
        m_service.answer();
    }

private:
    BusService m_service{"org.freedesktop.timedate1"};
};

service::Object<GDBusConnection> toBus()
{
    return service::Object<GDBusConnection>(g_dbus_connection_new_for_address_sync(
        qgetenv("DBUS_SYSTEM_BUS_ADDRESS").constData(),
        GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
}

} // namespace

class ClockSyncTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        g_log_set_always_fatal(GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL));
        m_bus.start();
    }

    void anAnswerOfThisServerIsWaitedFor_data()
    {
        QTest::addColumn<bool>("isTaken");
        for (const char *mood : {"good", "ignored"})
            QTest::newRow(mood) << true;
        for (const char *mood : {"silent", "unsynchronised", "other"})
            QTest::newRow(mood) << false;
    }
    void anAnswerOfThisServerIsWaitedFor()
    {
        QFETCH(bool, isTaken);
        FakeTimesync timesync(QTest::currentDataTag());
        const auto bus = toBus();
        ClockSync clock(bus.get());
        std::optional<std::string> outcome;
        clock.begin("time.example", false, [&](const std::string &told) { outcome = told; });
        QTRY_COMPARE(timesync.asked.load(), 1);
        QTest::qWait(isTaken ? 0 : SILENCE_MS);
        QTRY_COMPARE(outcome.has_value(), isTaken);
        QCOMPARE(outcome.value_or(""), std::string());
    }

    // A server that is silent later is no reason to doubt a clock that goes on.
    void theServerIsAskedAgainOnlyForADoubt()
    {
        FakeTimesync timesync("good");
        const auto bus = toBus();
        for (int life = 0; life < 2; ++life) { // of the service
            ClockSync clock(bus.get());
            for (const bool anew : {false, false, true}) {
                std::optional<std::string> outcome;
                clock.begin("time.example", anew, [&](const std::string &told) { outcome = told; });
                QTRY_COMPARE(outcome.value_or("?"), std::string());
            }
            QCOMPARE(timesync.asked.load(), life == 0 ? 2 : 3);
        }
    }

    void itIsSwitchedOn()
    {
        const auto bus = toBus();
        ClockSync clock(bus.get());
        std::optional<std::string> outcome;
        const auto taken = [&](const std::string &told) { outcome = told; };
        clock.begin("time.example", false, taken);
        QTRY_VERIFY(outcome && outcome->find("SetNTP") == 0); // there is no timedated
        std::unique_ptr<FakeTimesync> timesync;
        const Timedated timedated(timesync);
        clock.begin("time.example", false, taken);
        QTRY_COMPARE(*outcome, std::string());
    }

    // Who switches it off again sets the clock himself.
    void onceDoneItIsNamedAndNotSwitchedOn()
    {
        auto timesync = std::make_unique<FakeTimesync>("good");
        std::unique_ptr<FakeTimesync> switched;
        const Timedated timedated(switched);
        const auto bus = toBus();
        ClockSync clock(bus.get());
        bool isDone = false;
        clock.begin("time.example", false, [&](const std::string &) { isDone = true; });
        QTRY_VERIFY(isDone);
        timesync.reset();
        QTest::qWait(SILENCE_MS);
        QVERIFY(!switched);
        timesync = std::make_unique<FakeTimesync>("good");
        QTRY_COMPARE(timesync->asked.load(), 1);
    }

private:
    TestBus m_bus;
};

QTEST_GUILESS_MAIN(ClockSyncTest)
#include "ClockSyncTest.moc"
