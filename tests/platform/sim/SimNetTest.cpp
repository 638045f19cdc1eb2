#include "platform/net.h"
#include "platform/sim/Panel.h"
#include "tests/support/Text.h"

#include <QtTest>

#include <mutex>
#include <pthread.h>

using sim::Json;
using sim::panel;
using Record = netT::stAllNetInfo_tag;

namespace {

constexpr unsigned int TIMEOUT = 5000;

// Keeps what the callback has brought last.
class Records
{
public:
    Records() { netT::getAllNetInfoCallBack(take, this, true, TIMEOUT, true); }
    ~Records() { panel().reset(); } // no callback outlives it
    Q_DISABLE_COPY(Records)

    // Whether a device is on, its address, and its state: "enable 10.1.2.3 1".
    QString of(const char *device) const
    {
        const Record record = latest(device);
        return "%1 %2 %3"_s.arg(text(record.sFunction), text(record.sIpAddr))
            .arg(record.bNetNormal);
    }
    // Whether it asks for an address, and its addresses.
    QString addressesOf(const char *device) const
    {
        const Record record = latest(device);
        return text(record.sDhcp + ' ' + record.sIpAddr + ' ' + record.sPrefDns + ' ' +
                    record.sAlterDns);
    }
    std::string thread() const
    {
        const std::lock_guard lock(m_mutex);
        return m_thread;
    }

private:
    static QString text(const std::string &bytes) { return QString::fromStdString(bytes); }
    Record latest(const char *device) const
    {
        const std::lock_guard lock(m_mutex);
        const auto found =
            std::find_if(m_latest.begin(), m_latest.end(),
                         [device](const Record &record) { return record.sDevName == device; });
        return found == m_latest.end() ? Record() : *found;
    }
    static int take(std::vector<Record> &list, void *context)
    {
        auto *self = static_cast<Records *>(context);
        const std::lock_guard lock(self->m_mutex);
        char name[16] = {};
        pthread_getname_np(pthread_self(), name, sizeof name);
        self->m_thread = name;
        self->m_latest = list;
        return 0;
    }

    mutable std::mutex m_mutex;
    std::vector<Record> m_latest;
    std::string m_thread;
};

} // namespace

class SimNetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { panel().reset(); }
    void cleanup() { panel().reset(); }

    void switchingGoesThroughARecord()
    {
        const Records records;
        QTRY_COMPARE(records.of("eth0"), ETHERNET); // that of the registration
        QCOMPARE(records.thread(), std::string("net"));
        for (const char *device : {"eth0", "wlan0", "usb0"}) {
            QCOMPARE(netT::netDeviceDown(device, false, TIMEOUT), 0);
            QTRY_COMPARE(records.of(device), "disable  0"_s);
            QCOMPARE(netT::isNetUp(device, false, TIMEOUT), 1);
            QCOMPARE(netT::netDeviceUp(device, true, TIMEOUT), 0);
            QTRY_VERIFY(
                QRegularExpression("^enable [0-9.]+ 1$"_s).match(records.of(device)).hasMatch());
            QCOMPARE(netT::isNetUp(device, false, TIMEOUT), 0);
        }
    }

    void staticAddressStaysUntilDhcp()
    {
        const Records records;
        QCOMPARE(netT::stopDhcp("eth0", false, TIMEOUT), 0);
        QTRY_VERIFY(records.addressesOf("eth0").startsWith("disable 192.168.1.50 "_s));
        QCOMPARE(netT::setIp("eth0", "10.1.2.3", "255.0.0.0", "10.0.0.1", false, TIMEOUT), 0);
        QCOMPARE(netT::setDns("eth0", "9.9.9.9", "", false, TIMEOUT), 0);
        const QString set = "disable 10.1.2.3 9.9.9.9 9.9.9.9"_s;
        QTRY_COMPARE(records.addressesOf("eth0"), set);
        netT::netDeviceDown("eth0", false, TIMEOUT);
        QTRY_COMPARE(records.of("eth0"), "disable  0"_s);
        netT::netDeviceUp("eth0", false, TIMEOUT);
        QTRY_COMPARE(records.addressesOf("eth0"), set);
        panel().set("net.lease.eth0", {{"sIpAddr", "172.16.0.9"}});
        QCOMPARE(netT::startDhcp("eth0", false, TIMEOUT), 0);
        QTRY_VERIFY(records.addressesOf("eth0").startsWith("enable 172.16.0.9 "_s));
    }

    void changesFromOutsideBringARecord()
    {
        const struct
        {
            const char *path;
            Json value;
            const char *device, *state;
        } cases[] = {
            {"net.cable.eth0", -1, "eth0", "enable  0"},
            {"net.cable.eth0", 0, "eth0", "enable 192.168.1.50 1"},
            {"net.devices.0.sIpAddr", "1.1.1.1", "eth0", "enable 1.1.1.1 1"},
            {"net.devices.3",
             {{"sDevName", "eth1"}, {"sIpAddr", "2.2.2.2"}},
             "eth1",
             "enable 2.2.2.2 0"},
            {"net.lease.usb0.sIpAddr", "3.3.3.3", "usb0", "enable 3.3.3.3 1"},
            {"wifi.state", 4, "wlan0", "enable  0"},
        };
        const Records records;
        QTRY_COMPARE(records.of("eth0"), ETHERNET);
        for (const auto &[path, value, device, state] : cases) {
            panel().set(path, value);
            const int cable = panel().get("net.cable.eth0").get<int>();
            QCOMPARE(netT::checkEthCableLink("eth0", false, TIMEOUT), cable);
            QTRY_COMPARE(records.of(device), QString::fromLatin1(state));
        }
    }

    void refusesWhatIsNoAddress()
    {
        const Json before = panel().get("");
        QCOMPARE(netT::setIp("eth0", "10.1.2", "255.0.0.0", "", false, TIMEOUT),
                 int(netT::ERR_FAILED));
        QCOMPARE(netT::setIp("eth0", "10.1.2.3", "", "", false, TIMEOUT), int(netT::ERR_FAILED));
        QCOMPARE(netT::setDns("eth0", "dns", "", false, TIMEOUT), int(netT::ERR_FAILED));
        QCOMPARE(netT::setDevPriority("LTE", false, TIMEOUT), int(netT::ERR_FAILED));
        QVERIFY(panel().get("") == before);
    }

    void pings()
    {
        const struct
        {
            const char *path;
            Json value;
            const char *target;
            int result;
        } cases[] = {
            {"lcd.width", 800, "8.8.8.8", 0},
            {"net.ping.7.7.7.7", -6, "", -6}, // the fallback
            {"net.ping.8.8.8.8", -5, "8.8.8.8", -5},
            {"net.ping", Json::object(), "8.8.8.8", -1},
            {"net.ping.*", {{"lost", 100}}, "8.8.8.8", -1},
            {"net.cable.eth0", -1, "8.8.8.8", -1},
            {"net.devices.0.sIpAddr", "", "8.8.8.8", -1},
            {"net.devices.0.sFunction", "disable", "8.8.8.8", -1},
            {"net.devices.0.present", false, "8.8.8.8", netT::ERR_NO_DEVICE},
        };
        for (const auto &[path, value, target, result] : cases) {
            panel().reset();
            panel().set(path, value);
            netT::stNetCommuPacketInfo_tag statistics;
            const int got =
                netT::netTping("eth0", target, "7.7.7.7", statistics, false, 1, true, 50000);
            QVERIFY2(got == result, path);
        }
    }

    void answersWithoutServiceOrDevice()
    {
        QCOMPARE(netT::netIsExist("eth9", false, TIMEOUT), int(netT::ERR_NO_DEVICE));
        panel().set("net.devices", Json::array());
        QCOMPARE(netT::getSignal(true, TIMEOUT), int(netT::ERR_NO_DEVICE));
        QCOMPARE(netT::getCsqSignal(true, TIMEOUT), int(netT::ERR_NO_DEVICE));
        QCOMPARE(netT::connectwifi(), int(netT::ERR_NO_DEVICE));
        panel().set("net.server", false);
        QCOMPARE(netT::netIsExist("eth0", false, TIMEOUT), int(netT::ERR_NO_SERVICE));
        QCOMPARE(netT::connectwifi(), int(netT::ERR_NO_SERVICE));
    }

    void joinsNothingOutOfRange()
    {
        panel().set("wifi.aps.0.level", 31);
        QCOMPARE(panel().get("wifi.signal").get<int>(), 31); // of the one that it has joined
        QCOMPARE(netT::setConnectInfo("Elsewhere", "x", false, TIMEOUT), 0);
        QCOMPARE(netT::connectwifi(), 0);
        netT::WIFI_STATE_T now{};
        netT::getStatus(now, false, TIMEOUT);
        QCOMPARE(int(now), int(netT::WIFI_CONNECTING));
        QTRY_COMPARE(panel().get("wifi.state").get<int>(), 5);
    }

    void accessPointsComeAndGo()
    {
        const Json before = panel().get("wifi.aps");
        panel().set("wifi.drift", 5);
        QTRY_VERIFY(!panel().get("wifi.away").empty());
        QTRY_COMPARE(panel().get("wifi.aps").size(), before.size());
        QVERIFY(panel().get("wifi.aps") != before);
        panel().set("wifi.drift", 0);
        const Json last = panel().get("wifi.aps");
        QTest::qWait(30);
        QVERIFY(panel().get("wifi.aps") == last);
    }

private:
    const QString ETHERNET = "enable 192.168.1.50 1"_s;
};

QTEST_GUILESS_MAIN(SimNetTest)
#include "SimNetTest.moc"
