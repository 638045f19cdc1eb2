#include "platform/net.h"
#include "platform/sim/Panel.h"

#include <QtTest>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <pthread.h>

using sim::Json;
using sim::panel;
using Record = netT::stAllNetInfo_tag;

namespace {

constexpr unsigned int TIMEOUT = 5000;

// Collects what the callback brings, and waits for what a test expects of it.
class Records
{
public:
    Records() { netT::getAllNetInfoCallBack(take, this, true, TIMEOUT, true); }

    // Whether a record of `device` that `fits` comes within five seconds.
    bool wait(const std::string &device, const std::function<bool(const Record &)> &fits)
    {
        std::unique_lock lock(m_mutex);
        return m_come.wait_for(lock, std::chrono::seconds(5), [&] {
            for (const Record &record : m_latest)
                if (record.sDevName == device && fits(record))
                    return true;
            return false;
        });
    }

    std::string thread() const { return m_thread; }

private:
    static int take(std::vector<Record> &list, void *context)
    {
        auto *self = static_cast<Records *>(context);
        const std::lock_guard lock(self->m_mutex);
        char name[16] = {};
        pthread_getname_np(pthread_self(), name, sizeof name);
        self->m_thread = name;
        self->m_latest = list;
        self->m_come.notify_all();
        return 0;
    }

    std::mutex m_mutex;
    std::condition_variable m_come;
    std::vector<Record> m_latest;
    std::string m_thread;
};

bool isOff(const Record &record)
{
    return record.sFunction == "disable";
}
bool hasAddress(const Record &record)
{
    return !record.sIpAddr.empty();
}

int ping(const char *device, const char *target, const char *fallback)
{
    netT::stNetCommuPacketInfo_tag statistics;
    return netT::netTping(device, target, fallback, statistics, false, 1, true, 50000);
}

} // namespace

class SimNetTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { panel().reset(); }
    void cleanup() { panel().reset(); } // no callback outlives its test's records

    void registrationBringsARecord();
    void switchingGoesThroughARecord_data();
    void switchingGoesThroughARecord();
    void staticAddressOutlivesTheSwitch();
    void dhcpTakesTheLease();
    void pulledCableTakesTheDhcpAddress();
    void changesFromOutsideBringARecord_data();
    void changesFromOutsideBringARecord();
    void refusesWhatIsNoAddress();
    void pings_data();
    void pings();
    void answersWithoutServiceOrDevice();
    void joinsWifi_data();
    void joinsWifi();
    void modemIsReportedOnChange();
};

void SimNetTest::registrationBringsARecord()
{
    Records records;
    QVERIFY(records.wait("eth0", [](const Record &r) { return r.sAlterDns == "192.168.1.1"; }));
    QCOMPARE(records.thread(), std::string("net"));
}

void SimNetTest::switchingGoesThroughARecord_data()
{
    QTest::addColumn<QByteArray>("device");
    for (const char *device : {"eth0", "wlan0", "usb0"})
        QTest::newRow(device) << QByteArray(device);
}

void SimNetTest::switchingGoesThroughARecord()
{
    QFETCH(QByteArray, device);
    Records records;
    QCOMPARE(netT::netDeviceDown(device.data(), false, TIMEOUT), 0);
    QVERIFY(records.wait(device.data(), [](const Record &r) {
        return isOff(r) && !hasAddress(r) && r.bNetNormal == 0;
    }));
    QCOMPARE(netT::isNetUp(device.data(), false, TIMEOUT), 1);
    QCOMPARE(netT::netDeviceUp(device.data(), true, TIMEOUT), 0);
    QVERIFY(records.wait(device.data(), [](const Record &r) {
        return !isOff(r) && hasAddress(r) && r.bNetNormal == 1;
    }));
    QCOMPARE(netT::isNetUp(device.data(), false, TIMEOUT), 0);
}

void SimNetTest::staticAddressOutlivesTheSwitch()
{
    Records records;
    QCOMPARE(netT::stopDhcp("eth0", false, TIMEOUT), 0);
    QVERIFY(records.wait("eth0", [](const Record &r) {
        return r.sDhcp == "disable" && r.sIpAddr == "192.168.1.50";
    }));
    QCOMPARE(netT::setIp("eth0", "10.1.2.3", "255.0.0.0", "10.0.0.1", false, TIMEOUT), 0);
    QCOMPARE(netT::setDns("eth0", "9.9.9.9", "", false, TIMEOUT), 0);
    const auto fits = [](const Record &r) {
        return r.sIpAddr == "10.1.2.3" && r.sPrefDns == "9.9.9.9" && r.sAlterDns == "9.9.9.9";
    };
    QVERIFY(records.wait("eth0", fits));
    netT::netDeviceDown("eth0", false, TIMEOUT);
    QVERIFY(records.wait("eth0", [](const Record &r) { return isOff(r) && !hasAddress(r); }));
    netT::netDeviceUp("eth0", false, TIMEOUT);
    QVERIFY(records.wait("eth0", fits));
}

void SimNetTest::dhcpTakesTheLease()
{
    Records records;
    netT::setIp("eth0", "10.1.2.3", "255.0.0.0", "", false, TIMEOUT);
    panel().set("net.lease.eth0", {{"sIpAddr", "172.16.0.9"}});
    QVERIFY(records.wait("eth0", [](const Record &r) { return r.sIpAddr == "10.1.2.3"; }));
    QCOMPARE(netT::startDhcp("eth0", false, TIMEOUT), 0);
    QVERIFY(records.wait(
        "eth0", [](const Record &r) { return r.sDhcp == "enable" && r.sIpAddr == "172.16.0.9"; }));
}

void SimNetTest::pulledCableTakesTheDhcpAddress()
{
    Records records;
    panel().set("net.cable.eth0", -1);
    QVERIFY(
        records.wait("eth0", [](const Record &r) { return r.bNetNormal == 0 && !hasAddress(r); }));
    QCOMPARE(netT::checkEthCableLink("eth0", false, TIMEOUT), -1);
    panel().set("net.cable.eth0", 0);
    QVERIFY(
        records.wait("eth0", [](const Record &r) { return r.bNetNormal == 1 && hasAddress(r); }));
}

void SimNetTest::changesFromOutsideBringARecord_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("device");
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("changed device")
        << QByteArray("net.devices.0.sIpAddr") << QByteArray("\"1.1.1.1\"") << QByteArray("eth0")
        << QByteArray("1.1.1.1");
    QTest::newRow("second device") << QByteArray("net.devices.3")
                                   << QByteArray(R"({"sDevName": "eth1", "sIpAddr": "2.2.2.2"})")
                                   << QByteArray("eth1") << QByteArray("2.2.2.2");
    QTest::newRow("changed lease")
        << QByteArray("net.lease.usb0.sIpAddr") << QByteArray("\"3.3.3.3\"") << QByteArray("usb0")
        << QByteArray("3.3.3.3");
    QTest::newRow("left Wi-Fi") << QByteArray("wifi.state") << QByteArray("4")
                                << QByteArray("wlan0") << QByteArray("");
}

void SimNetTest::changesFromOutsideBringARecord()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, json);
    QFETCH(QByteArray, device);
    QFETCH(QByteArray, address);
    Records records;
    QVERIFY(records.wait("eth0", hasAddress));
    panel().set(path.data(), Json::parse(json.data()));
    QVERIFY(
        records.wait(device.data(), [&](const Record &r) { return r.sIpAddr == address.data(); }));
}

void SimNetTest::refusesWhatIsNoAddress()
{
    const Json before = panel().get("");
    QCOMPARE(netT::setIp("eth0", "10.1.2", "255.0.0.0", "", false, TIMEOUT), int(netT::ERR_FAILED));
    QCOMPARE(netT::setIp("eth0", "10.1.2.3", "", "", false, TIMEOUT), int(netT::ERR_FAILED));
    QCOMPARE(netT::setDns("eth0", "dns", "", false, TIMEOUT), int(netT::ERR_FAILED));
    QCOMPARE(netT::setDevPriority("LTE", false, TIMEOUT), int(netT::ERR_FAILED));
    QVERIFY(panel().get("") == before);
}

void SimNetTest::pings_data()
{
    QTest::addColumn<QByteArray>("set");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<int>("result");
    const auto row = [](const char *name, const char *path, const char *json, const char *target,
                        int result) {
        QTest::newRow(name) << QByteArray(path) << QByteArray(json) << QByteArray(target) << result;
    };
    row("any target", "", "{}", "8.8.8.8", 0);
    row("fallback", "net.ping.7.7.7.7", "-6", "", -6);
    row("own entry", "net.ping.8.8.8.8", "-5", "8.8.8.8", -5);
    row("no entry", "net.ping", "{}", "8.8.8.8", -1);
    row("all lost", "net.ping.*", R"({"lost": 100})", "8.8.8.8", -1);
    row("no cable", "net.cable.eth0", "-1", "8.8.8.8", -1);
    row("no address", "net.devices.0.sIpAddr", "\"\"", "8.8.8.8", -1);
    row("switched off", "net.devices.0.sFunction", "\"disable\"", "8.8.8.8", -1);
    row("unplugged", "net.devices.0.present", "false", "8.8.8.8", netT::ERR_NO_DEVICE);
}

void SimNetTest::pings()
{
    QFETCH(QByteArray, set);
    QFETCH(QByteArray, json);
    QFETCH(QByteArray, target);
    QFETCH(int, result);
    panel().set(set.data(), Json::parse(json.data()));
    QCOMPARE(ping("eth0", target.data(), "7.7.7.7"), result);
}

void SimNetTest::answersWithoutServiceOrDevice()
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

void SimNetTest::joinsWifi_data()
{
    QTest::addColumn<QByteArray>("network");
    QTest::addColumn<QByteArray>("password");
    QTest::addColumn<int>("state");
    QTest::newRow("right password") << QByteArray("Office") << QByteArray("office123") << 7;
    QTest::newRow("wrong password") << QByteArray("Office") << QByteArray("office") << 5;
    QTest::newRow("open") << QByteArray("Guests") << QByteArray("") << 7;
    QTest::newRow("out of range") << QByteArray("Elsewhere") << QByteArray("x") << 5;
}

void SimNetTest::joinsWifi()
{
    QFETCH(QByteArray, network);
    QFETCH(QByteArray, password);
    QFETCH(int, state);
    Records records;
    QCOMPARE(netT::setConnectInfo(network.data(), password.data(), false, TIMEOUT), 0);
    QCOMPARE(netT::connectwifi(), 0);
    netT::WIFI_STATE_T now{};
    netT::getStatus(now, false, TIMEOUT);
    QCOMPARE(int(now), int(netT::WIFI_CONNECTING));
    QTRY_COMPARE(panel().get("wifi.state").get<int>(), state);
    QVERIFY(records.wait("wlan0", [&](const Record &r) { return hasAddress(r) == (state == 7); }));
}

void SimNetTest::modemIsReportedOnChange()
{
    std::atomic<int> quality{-1};
    const auto take = [](netT::tag_atCollect &info, void *context) {
        *static_cast<std::atomic<int> *>(context) = info.numbers[0];
        return 0;
    };
    QCOMPARE(netT::get4gAtInfoCallBackup(take, &quality), 0);
    QTRY_COMPARE(quality.load(), 22);
    panel().set("modem.csq", 7);
    QTRY_COMPARE(quality.load(), 7);
    panel().reset();
}

QTEST_GUILESS_MAIN(SimNetTest)
#include "SimNetTest.moc"
