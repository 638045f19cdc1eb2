// What is known of the modems of a ModemManager that comes late, is silent, dies and comes back.
#define QT_NO_KEYWORDS // GLib has a field named "signals"
#include "services/network/Modems.h"

#include "tests/support/TestBus.h"

#include <mutex>

using network::Modems;

namespace {

constexpr const char *MODEM_INTERFACE = MM_DBUS_INTERFACE_MODEM;
constexpr const char *MODEM = "/org/freedesktop/ModemManager1/Modem/7";
const sdbus::ObjectPath SIM = "/org/freedesktop/ModemManager1/SIM/3";

class FakeModemManager
{
public:
    FakeModemManager()
    {
        m_manager.addObjectManager();
        m_manager.registerMethod("InhibitDevice")
            .onInterface(MM_DBUS_INTERFACE)
            .implementedAs([this](const std::string &device, bool on) {
                inhibited += (on ? " +" : " -") + device;
            });
        m_manager.finishRegistration();
        add(m_modem, MODEM_INTERFACE, "Device", std::string("usb1"));
        add(m_modem, MODEM_INTERFACE, "State", std::int32_t(MM_MODEM_STATE_DISABLED));
        add(m_modem, MODEM_INTERFACE, "StateFailedReason", std::uint32_t(0));
        add(m_modem, MODEM_INTERFACE, "SignalQuality", sdbus::make_struct(0U, false));
        add(m_modem, MODEM_INTERFACE, "EquipmentIdentifier", std::string("490154"));
        add(m_modem, MODEM_INTERFACE, "Sim", SIM);
        add(m_modem, MM_DBUS_INTERFACE_MODEM_MODEM3GPP, "RegistrationState", std::uint32_t(1));
        add(m_modem, MM_DBUS_INTERFACE_MODEM_MODEM3GPP, "OperatorName", std::string("M2M"));
        add(m_sim, MM_DBUS_INTERFACE_SIM, "SimIdentifier", std::string("8986"));
        m_modem.registerMethod("Enable")
            .onInterface(MODEM_INTERFACE)
            .implementedAs([this](bool on) {
                set("State",
                    std::int32_t(on ? MM_MODEM_STATE_REGISTERED : MM_MODEM_STATE_DISABLED));
            });
        m_modem.finishRegistration();
        m_sim.finishRegistration();
    }
    void answer() { m_service.answer(); }
    std::string inhibited; // read once the answer is there
    void set(const std::string &name, const sdbus::Variant &value)
    {
        {
            const std::lock_guard<std::mutex> locked(m_lock);
            m_values[name] = value;
        }
        m_modem.emitPropertiesChangedSignal(MODEM_INTERFACE, {name});
    }

private:
    template <typename Value>
    void add(sdbus::IObject &object, const char *interface, const std::string &name,
             const Value &value)
    {
        m_values[name] = value;
        object.registerProperty(name).onInterface(interface).withGetter([this, name] {
            const std::lock_guard<std::mutex> locked(m_lock);
            return m_values.at(name).get<Value>();
        });
    }

    std::mutex m_lock;
    std::map<std::string, sdbus::Variant> m_values;
    BusService m_service{MM_DBUS_SERVICE};
    sdbus::IObject &m_manager = m_service.add(MM_DBUS_PATH);
    sdbus::IObject &m_modem = m_service.add(MODEM);
    sdbus::IObject &m_sim = m_service.add(SIM.c_str());
};

// "490154 8986 24 M2M registered 8", or "" without a modem.
QString told(const Modems &modems)
{
    const auto found = modems.all().find(MODEM);
    if (found == modems.all().end())
        return QString();
    const network::Modem &modem = found->second;
    return "%1 %2 %3 %4 %5 %6"_s
        .arg(QString::fromStdString(modem.imei), QString::fromStdString(modem.iccid))
        .arg(modem.csq)
        .arg(QString::fromStdString(modem.operatorName), modem.registered ? "registered"_s : "-"_s)
        .arg(modem.state);
}

} // namespace

class ModemsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void aPercentageIsTurnedBackIntoCsq()
    {
        for (int csq = 0; csq <= 31; ++csq)
            QCOMPARE(network::toCsq(static_cast<unsigned>(csq * 100 / 31)), csq);
        QCOMPARE(network::toCsq(1000), 31);
    }

    void modemManagerComesAndGoes()
    {
        g_log_set_always_fatal(GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL));
        TestBus bus;
        bus.start();
        const network::Object<GDBusConnection> connection(g_dbus_connection_new_for_address_sync(
            qgetenv("DBUS_SYSTEM_BUS_ADDRESS").constData(),
            GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                 G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr));
        QString last;
        Modems modems(connection.get(), [&] { last = told(modems); });
        std::optional<bool> done;
        const auto finished = [&](bool worked) { done = worked; };
        modems.enable(MODEM, true, finished);
        QVERIFY(done && !*done);

        for (int life = 0; life < 2; ++life) {
            FakeModemManager manager;
            QElapsedTimer timer; // of a loop that waits for nobody
            timer.start();
            QTest::qWait(100);
            QVERIFY(timer.elapsed() < 1000);
            manager.answer();
            QTRY_COMPARE(last, "490154 8986 99  - 3"_s);
            done.reset();
            modems.enable(MODEM, true, finished);
            QTRY_COMPARE(last, "490154 8986 99 M2M registered 8"_s);
            QTRY_VERIFY(done && *done);
            manager.set("SignalQuality", sdbus::Variant(sdbus::make_struct(77U, true)));
            QTRY_COMPARE(last, "490154 8986 24 M2M registered 8"_s);
            manager.set("Sim", sdbus::Variant(sdbus::ObjectPath("/")));
            QTRY_COMPARE(last, "490154  24 M2M registered 8"_s);
            manager.set("Sim", sdbus::Variant(SIM));
            QTRY_COMPARE(last, "490154 8986 24 M2M registered 8"_s);
            manager.set("State", sdbus::Variant(std::int32_t(MM_MODEM_STATE_FAILED)));
            QTRY_COMPARE(last, "490154 8986 99  - -1"_s);
            done.reset();
            modems.renew(MODEM, finished);
            QTRY_VERIFY(done && *done);
            QCOMPARE(manager.inhibited, std::string(" +usb1 -usb1"));
            modems.enable("no path", true, finished);
            QVERIFY(!*done);
            last = "unchanged"_s;
        }
        QTRY_COMPARE(last, QString());
    }
};

QTEST_GUILESS_MAIN(ModemsTest)
#include "ModemsTest.moc"
