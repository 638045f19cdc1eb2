// Requests over D-Bus, on a bus of the test's own.
#include "platform/linux/SystemBus.h"

#include "platform/board.h"
#include "platform/cos_time.h"
#include "tests/support/Rows.h"
#include "tests/support/TestBus.h"

#include <QElapsedTimer>

#include <csignal>
#include <optional>

using board::systemBus;

namespace {

constexpr std::chrono::milliseconds TIMEOUT(200);
constexpr const char *LOGIND = "org.freedesktop.login1";
constexpr const char *UNIT_PATH = "/org/freedesktop/systemd1/unit/a";

using Job = sdbus::Struct<std::uint32_t, sdbus::ObjectPath>;

} // namespace

class SystemBusTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_bus.start();
        m_clock.start();
    }
    void cleanup() { m_bus.stop(); } // each test on a bus that has been started anew

    // Twenty requests that nobody answers cost one time-out, if any; then an answer is taken.
    void silenceCostsItsTimeOnce_data()
    {
        rows({"no bus | 0", "no service | 0", "silent service | 200", "silent bus | 200"});
    }
    void silenceCostsItsTimeOnce()
    {
        std::optional<BusService> logind;
        if (cell(0) == "no bus"_s)
            m_bus.stop();
        else if (cell(0) == "silent service"_s)
            logind.emplace(LOGIND);
        else if (cell(0) == "silent bus"_s)
            ::kill(m_bus.pid(), SIGSTOP);
        m_clock.start();
        for (int i = 0; i < 20; ++i)
            QVERIFY(!callLogind());
        const auto once = m_clock.elapsed();
        QVERIFY2(once >= number(1) && once < number(1) + 150, QByteArray::number(once));
        if (cell(0) == "no bus"_s) {
            QVERIFY(my_reboot(1) == -1 && remountPartion(1, std::string()) == -1);
            m_bus.start();
        }
        ::kill(m_bus.pid(), SIGCONT);
        if (!logind)
            logind.emplace(LOGIND);
        auto &manager = logind->add("/org/freedesktop/login1");
        manager.registerMethod("Reboot")
            .onInterface("org.freedesktop.login1.Manager")
            .implementedAs([](bool) {});
        manager.finishRegistration();
        logind->answer();
        QTRY_VERIFY_WITH_TIMEOUT(bool(callLogind()), 2000);
    }

    // timedated | result | calls of SetTime
    void setsTheClock_data() { rows({"prompt | 0 | 1", "lagging | 0 | 3", "stubborn | -1 | 1"}); }
    void setsTheClock()
    {
        qputenv("TZ", "UTC");
        const FakeTimedated timedated(cell(0));
        QCOMPARE(COS::CosTime::SetSysLocalTime({2020, 2, 29, 1, 2, 3}), number(1));
        QVERIFY(timedated.asked == number(2));
        QVERIFY(timedated.time == (number(1) == 0 ? 1582938123000000 : 0));
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
        BusService systemd("org.freedesktop.systemd1");
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

private:
    static board::SystemBus::Outcome callLogind()
    {
        return systemBus().call(
            {LOGIND, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "Reboot"},
            TIMEOUT, [](sdbus::MethodCall &call) { call << false; });
    }

    TestBus m_bus;
    QElapsedTimer m_clock;
};

QTEST_GUILESS_MAIN(SystemBusTest)
#include "SystemBusTest.moc"
