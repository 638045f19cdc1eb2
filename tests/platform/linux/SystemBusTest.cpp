// Requests over D-Bus, on a bus of the test's own.
#include "platform/linux/SystemBus.h"

#include "platform/board.h"
#include "platform/cos_time.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <atomic>
#include <csignal>
#include <optional>

using board::systemBus;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds TIMEOUT(200);
constexpr const char *LOGIND = "org.freedesktop.login1";
constexpr const char *SYSTEMD = "org.freedesktop.systemd1";
constexpr const char *TIMEDATED = "org.freedesktop.timedate1";
constexpr const char *UNIT_PATH = "/org/freedesktop/systemd1/unit/a";

using Job = sdbus::Struct<std::uint32_t, sdbus::ObjectPath>;

// A service of one object or two. It is silent until it is told to answer.
class Service
{
public:
    explicit Service(const char *name) : m_connection(sdbus::createSystemBusConnection(name)) {}

    sdbus::IObject &add(const char *path)
    {
        m_objects.push_back(sdbus::createObject(*m_connection, path));
        return *m_objects.back();
    }
    void answer() { m_connection->enterEventLoopAsync(); }

private:
    std::unique_ptr<sdbus::IConnection> m_connection;
    std::vector<std::unique_ptr<sdbus::IObject>> m_objects;
};

} // namespace

class SystemBusTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_address = "unix:path="_s + m_folder.filePath("bus"_s);
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_address.toLocal8Bit());
    }
    void init() { m_clock.start(); }
    void cleanupTestCase()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    void failsAtOnceWithoutABus()
    {
        QVERIFY(!callLogind());
        QCOMPARE(my_reboot(1), -1);
        QCOMPARE(remountPartion(1, std::string()), -1);
        QVERIFY(m_clock.elapsed() < 100);
    }

    // The bus is used as soon as it is there.
    void failsAtOnceWithoutTheService()
    {
        startBus();
        QVERIFY(callLogind().error == "org.freedesktop.DBus.Error.ServiceUnknown");
        QVERIFY(m_clock.elapsed() < 100);
    }

    // One time-out in all; and back without a restart of either, as soon as it answers.
    void silenceCostsItsTimeOnce()
    {
        Service logind(LOGIND);
        std::atomic<int> reboots{0};
        auto &manager = logind.add("/org/freedesktop/login1");
        manager.registerMethod("Reboot")
            .onInterface("org.freedesktop.login1.Manager")
            .implementedAs([&](bool) { ++reboots; });
        manager.finishRegistration();
        QVERIFY(!callLogind());
        const auto once = m_clock.elapsed();
        QVERIFY(once >= TIMEOUT.count() && once < TIMEOUT.count() + 100);
        for (int i = 0; i < 20; ++i)
            QVERIFY(!callLogind());
        QVERIFY(m_clock.elapsed() < once + 50);
        logind.answer();
        QTRY_VERIFY_WITH_TIMEOUT(bool(callLogind()), 2000);
        QVERIFY(reboots > 0);
    }

    void theSilentMayDieAndComeBack()
    {
        auto logind = std::make_unique<Service>(LOGIND);
        QVERIFY(!callLogind() && m_clock.elapsed() >= TIMEOUT.count());
        logind.reset();
        QTRY_VERIFY(callLogind().error == "org.freedesktop.DBus.Error.ServiceUnknown");
    }

    // synchronised at first | seconds of the clock's year 2020, in UTC | result | calls of SetTime
    void setsTheClock_data() { rows({"0 | 0 | 1", "1 | 0 | 3", "2 | -1 | 1"}); }
    void setsTheClock()
    {
        qputenv("TZ", "UTC");
        std::int64_t set = 0;
        int calls = 0;
        int synchronised = number(0) == 0 ? 0 : 2; // ends one call after it is told to
        Service timedated(TIMEDATED);
        auto &object = timedated.add("/org/freedesktop/timedate1");
        object.registerMethod("SetTime").onInterface(TIMEDATED).implementedAs(
            [&](std::int64_t time, bool relative, bool interactive) {
                ++calls;
                if (synchronised == 2 || std::exchange(synchronised, 0) == 1)
                    throw sdbus::Error("org.freedesktop.timedate1.AutomaticTimeSyncEnabled", "");
                set = relative || interactive ? -1 : time;
            });
        object.registerMethod("SetNTP").onInterface(TIMEDATED).implementedAs([&](bool on, bool) {
            if (number(0) == 2)
                throw sdbus::Error("org.freedesktop.DBus.Error.AccessDenied", "");
            synchronised = on ? 2 : 1;
        });
        object.finishRegistration();
        timedated.answer();
        QCOMPARE(COS::CosTime::SetSysLocalTime({2020, 2, 29, 1, 2, 3}), number(1));
        QVERIFY(calls == number(2));
        QCOMPARE(set, number(1) == 0 ? 1582938123000000 : 0);
    }

    // looks at the running job | its end | result | least and most milliseconds
    void remountWaitsForItsUnit_data()
    {
        rows({"0 | inactive | 0 | 0 | 200", "5 | inactive | 0 | 80 | 500",
              "5 | failed | -1 | 80 | 500", "1000000 | inactive | -1 | 2900 | 3200",
              "-1 | refused | -1 | 0 | 200"});
    }
    void remountWaitsForItsUnit()
    {
        std::string started;
        std::atomic<int> looks{number(0)};
        const std::string end = cell(1).toStdString();
        Service systemd(SYSTEMD);
        auto &manager = systemd.add("/org/freedesktop/systemd1");
        manager.registerMethod("StartUnit")
            .onInterface("org.freedesktop.systemd1.Manager")
            .implementedAs([&](const std::string &unit, const std::string &) {
                if (end == "refused")
                    throw sdbus::Error("org.freedesktop.DBus.Error.AccessDenied", "");
                started = unit;
                return sdbus::ObjectPath("/org/freedesktop/systemd1/job/7");
            });
        manager.registerMethod("LoadUnit")
            .onInterface("org.freedesktop.systemd1.Manager")
            .implementedAs([](const std::string &) { return sdbus::ObjectPath(UNIT_PATH); });
        manager.finishRegistration();
        auto &unit = systemd.add(UNIT_PATH);
        unit.registerProperty("Job").onInterface("org.freedesktop.systemd1.Unit").withGetter([&] {
            return Job(looks-- > 0 ? 7U : 0U, sdbus::ObjectPath("/"));
        });
        unit.registerProperty("ActiveState")
            .onInterface("org.freedesktop.systemd1.Unit")
            .withGetter([&] { return looks >= 0 ? std::string("activating") : end; });
        unit.finishRegistration();
        systemd.answer();
        QCOMPARE(remountPartion(0, std::string()), number(2));
        QVERIFY(m_clock.elapsed() >= number(3) && m_clock.elapsed() <= number(4));
        QVERIFY(started == (end == "refused" ? "" : "sysset-remount@ro.service"));
    }

    void goesOnAfterARestartOfTheBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
        QTRY_VERIFY(callLogind().error.empty() || m_clock.elapsed() > 100);
        startBus();
        QTRY_VERIFY(callLogind().error == "org.freedesktop.DBus.Error.ServiceUnknown");
    }

    // A bus that takes connections and says nothing.
    void aSilentBusCostsItsTimeOnce()
    {
        ::kill(static_cast<pid_t>(m_daemon.processId()), SIGSTOP);
        QVERIFY(!callLogind());
        QVERIFY(m_clock.elapsed() < TIMEOUT.count() + 100);
        for (int i = 0; i < 20; ++i)
            QVERIFY(!callLogind());
        QVERIFY(m_clock.elapsed() < TIMEOUT.count() + 150);
        ::kill(static_cast<pid_t>(m_daemon.processId()), SIGCONT);
        QTRY_VERIFY(callLogind().error == "org.freedesktop.DBus.Error.ServiceUnknown");
    }

private:
    static board::SystemBus::Outcome callLogind()
    {
        return systemBus().call(
            {LOGIND, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "Reboot"},
            TIMEOUT, [](sdbus::MethodCall &call) { call << false; });
    }

    void startBus()
    {
        QFile::remove(m_folder.filePath("bus"_s));
        m_daemon.start("dbus-daemon"_s, {"--session"_s, "--nofork"_s, "--print-address"_s,
                                         "--address="_s + m_address});
        QVERIFY(m_daemon.waitForReadyRead());
    }

    QTemporaryDir m_folder;
    QString m_address;
    QProcess m_daemon;
    QElapsedTimer m_clock;
};

QTEST_GUILESS_MAIN(SystemBusTest)
#include "SystemBusTest.moc"
