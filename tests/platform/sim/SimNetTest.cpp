#include "platform/net.h"
#include "platform/sim/Panel.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

using sim::Json;
using sim::panel;

namespace {

constexpr unsigned int TIMEOUT = 5000;

// By device: whether it is on, whether it uses DHCP, its address and name servers where it has any,
// its state: "enable disable 10.1.2.3 9.9.9.9 9.9.9.9 1". And the "thread" that brings them.
using Records = std::map<std::string, QString>;

int take(std::vector<netT::stAllNetInfo_tag> &list, void *context)
{
    return panel().locked([&](const Json &) {
        Records latest{{"thread", QLatin1String(sim::callingThread())}};
        for (const auto &one : list) {
            const std::string words = one.sFunction + ' ' + one.sDhcp + ' ' + one.sIpAddr + ' ' +
                                      one.sPrefDns + ' ' + one.sAlterDns + ' ';
            latest[one.sDevName] =
                QString::fromStdString(words + std::to_string(one.bNetNormal)).simplified();
        }
        *static_cast<Records *>(context) = latest;
        return 0;
    });
}

} // namespace

class SimNetTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        panel().reset();
        m_records.clear();
        netT::getAllNetInfoCallBack(take, &m_records, true, TIMEOUT, true);
    }
    void cleanupTestCase() { panel().reset(); }

    void switchingGoesThroughARecord()
    {
        QTRY_COMPARE(latest("eth0"), ETHERNET); // that of the registration
        QCOMPARE(latest("thread"), "net"_s);
        for (const char *device : {"eth0", "wlan0", "usb0"}) {
            const QString before = latest(device);
            QCOMPARE(netT::netDeviceDown(device, false, TIMEOUT), 0);
            QTRY_COMPARE(latest(device), "disable enable 0"_s);
            QCOMPARE(netT::isNetUp(device, false, TIMEOUT), 1);
            QCOMPARE(netT::netDeviceUp(device, true, TIMEOUT), 0);
            QTRY_COMPARE(latest(device), before);
            QCOMPARE(netT::isNetUp(device, false, TIMEOUT), 0);
        }
    }

    void staticAddressStaysUntilDhcp()
    {
        QCOMPARE(netT::stopDhcp("eth0", false, TIMEOUT), 0);
        QTRY_COMPARE(latest("eth0"), "enable disable 192.168.1.50 192.168.1.1 192.168.1.1 1"_s);
        QCOMPARE(netT::setIp("eth0", "10.1.2.3", "255.0.0.0", "10.0.0.1", false, TIMEOUT), 0);
        QCOMPARE(netT::setDns("eth0", "9.9.9.9", "", false, TIMEOUT), 0);
        const QString set = "enable disable 10.1.2.3 9.9.9.9 9.9.9.9 1"_s;
        QTRY_COMPARE(latest("eth0"), set);
        netT::netDeviceDown("eth0", false, TIMEOUT);
        QTRY_COMPARE(latest("eth0"), "disable disable 0"_s);
        netT::netDeviceUp("eth0", false, TIMEOUT);
        QTRY_COMPARE(latest("eth0"), set);
        panel().set("net.lease.eth0", {{"sIpAddr", "172.16.0.9"}});
        QCOMPARE(netT::startDhcp("eth0", false, TIMEOUT), 0);
        QTRY_COMPARE(latest("eth0"), "enable enable 172.16.0.9 192.168.1.1 192.168.1.1 1"_s);
        QCOMPARE(netT::setIp("eth0", "10.1.2.4", "255.0.0.0", "", false, TIMEOUT), 0);
        QTRY_COMPARE(latest("eth0"), "enable disable 10.1.2.4 192.168.1.1 192.168.1.1 1"_s);
    }

    void changesFromOutsideBringARecord()
    {
        const std::array<const char *, 4> changes[] = {
            {"net.cable.eth0", "-1", "eth0", "enable enable 0"},
            {"net.cable.eth0", "0", "eth0", ""},
            {"net.devices.3", R"({"sDevName": "eth1", "sIpAddr": "2.2.2.2"})", "eth1",
             "enable disable 2.2.2.2 0"},
            {"net.lease.usb0.sIpAddr", R"("3.3.3.3")", "usb0",
             "enable enable 3.3.3.3 10.64.0.1 10.64.0.1 1"},
            {"wifi.state", "4", "wlan0", "enable enable 0"}};
        QTRY_COMPARE(latest("eth0"), ETHERNET);
        for (const auto &[path, value, device, record] : changes) {
            panel().set(path, Json::parse(value));
            QCOMPARE(netT::checkEthCableLink("eth0", false, TIMEOUT),
                     panel().get("net.cable.eth0").get<int>());
            QTRY_COMPARE(latest(device), *record == 0 ? ETHERNET : QString::fromUtf8(record));
        }
    }

    // what is set before | target, else the fallback | result
    void pings_data()
    {
        rows({"lcd.width | 800 | 8.8.8.8 | 0", "net.ping.7.7.7.7 | -6 | | -6",
              "net.ping.8.8.8.8 | -5 | 8.8.8.8 | -5", "net.ping | {} | 8.8.8.8 | -1",
              R"(net.ping.* | {"lost": 100} | 8.8.8.8 | -1)", "net.cable.eth0 | -1 | 8.8.8.8 | -1",
              R"(net.devices.0.sIpAddr | "" | 8.8.8.8 | -1)",
              R"(net.devices.0.sFunction | "disable" | 8.8.8.8 | -1)",
              "net.devices.0.present | false | 8.8.8.8 | -4"});
    }
    void pings()
    {
        panel().set(cell(0).toStdString(), Json::parse(cell(1).toStdString()));
        netT::stNetCommuPacketInfo_tag statistics;
        QCOMPARE(netT::netTping("eth0", cell(2).toStdString(), "7.7.7.7", statistics, false, 1,
                                true, 50000),
                 number(3));
    }

    void refusesWithAReason()
    {
        const Json before = panel().get("");
        for (const int result : {netT::setIp("eth0", "10.1.2", "255.0.0.0", "", false, TIMEOUT),
                                 netT::setIp("eth0", "10.1.2.3", "", "", false, TIMEOUT),
                                 netT::setDns("eth0", "dns", "", false, TIMEOUT),
                                 netT::setDevPriority("LTE", false, TIMEOUT)})
            QCOMPARE(result, int(netT::ERR_FAILED));
        QVERIFY(panel().get("") == before);
        panel().set("net.devices", Json::array());
        for (const int result : {netT::netIsExist("eth0", false, TIMEOUT),
                                 netT::getSignal(true, TIMEOUT), netT::connectwifi()})
            QCOMPARE(result, int(netT::ERR_NO_DEVICE));
        panel().set("net.server", false);
        QCOMPARE(netT::netIsExist("eth0", false, TIMEOUT), int(netT::ERR_NO_SERVICE));
        QCOMPARE(netT::connectwifi(), int(netT::ERR_NO_SERVICE));
    }

    void joinsNothingOutOfRange()
    {
        panel().set("wifi.aps.0.level", 31);
        QCOMPARE(panel().get("wifi.signal").get<int>(), 31); // of the one that it has joined
        QVERIFY(netT::setConnectInfo("Elsewhere", "x", false, TIMEOUT) == 0 &&
                netT::connectwifi() == 0);
        QCOMPARE(panel().get("wifi.state").get<int>(), int(netT::WIFI_CONNECTING));
        QTRY_COMPARE(panel().get("wifi.state").get<int>(), int(netT::WIFI_FAILED));
    }

    void accessPointsComeAndGo()
    {
        const Json before = panel().get("wifi.aps");
        panel().set("wifi.drift", 5);
        QTRY_VERIFY(!panel().get("wifi.away").empty());
        QTRY_COMPARE(panel().get("wifi.aps").size(), before.size());
        panel().set("wifi.drift", 0);
        const Json last = panel().get("wifi.aps");
        QVERIFY(last != before);
        QTest::qWait(30); // several steps, if it went on
        QVERIFY(panel().get("wifi.aps") == last);
    }

private:
    QString latest(const std::string &device)
    {
        return panel().locked([&](const Json &) { return m_records[device]; });
    }

    Records m_records;
    const QString ETHERNET = "enable enable 192.168.1.50 192.168.1.1 192.168.1.1 1"_s;
};

QTEST_GUILESS_MAIN(SimNetTest)
#include "SimNetTest.moc"
