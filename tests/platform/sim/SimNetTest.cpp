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

} // namespace

class SimNetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { panel().reset(); }
    void cleanup() { panel().reset(); } // no callback outlives its test's records

    void switchingGoesThroughARecord()
    {
        Records records;
        for (const char *device : {"eth0", "wlan0", "usb0"}) {
            QCOMPARE(netT::netDeviceDown(device, false, TIMEOUT), 0);
            QVERIFY(records.wait(device, [](const Record &r) {
                return isOff(r) && !hasAddress(r) && r.bNetNormal == 0;
            }));
            QCOMPARE(netT::isNetUp(device, false, TIMEOUT), 1);
            QCOMPARE(netT::netDeviceUp(device, true, TIMEOUT), 0);
            QVERIFY(records.wait(device, [](const Record &r) {
                return !isOff(r) && hasAddress(r) && r.bNetNormal == 1;
            }));
            QCOMPARE(netT::isNetUp(device, false, TIMEOUT), 0);
        }
    }

    void staticAddressStaysUntilDhcp()
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
        panel().set("net.lease.eth0", {{"sIpAddr", "172.16.0.9"}});
        QCOMPARE(netT::startDhcp("eth0", false, TIMEOUT), 0);
        QVERIFY(records.wait("eth0", [](const Record &r) {
            return r.sDhcp == "enable" && r.sIpAddr == "172.16.0.9";
        }));
    }

    void pulledCableTakesTheDhcpAddress()
    {
        Records records;
        QVERIFY(records.wait("eth0", hasAddress)); // that of the registration
        QCOMPARE(records.thread(), std::string("net"));
        panel().set("net.cable.eth0", -1);
        QVERIFY(records.wait("eth0",
                             [](const Record &r) { return r.bNetNormal == 0 && !hasAddress(r); }));
        QCOMPARE(netT::checkEthCableLink("eth0", false, TIMEOUT), -1);
        panel().set("net.cable.eth0", 0);
        QVERIFY(records.wait("eth0",
                             [](const Record &r) { return r.bNetNormal == 1 && hasAddress(r); }));
    }

    void changesFromOutsideBringARecord()
    {
        const struct
        {
            const char *path;
            Json value;
            const char *device, *address;
        } cases[] = {
            {"net.devices.0.sIpAddr", "1.1.1.1", "eth0", "1.1.1.1"},
            {"net.devices.3", {{"sDevName", "eth1"}, {"sIpAddr", "2.2.2.2"}}, "eth1", "2.2.2.2"},
            {"net.lease.usb0.sIpAddr", "3.3.3.3", "usb0", "3.3.3.3"},
            {"wifi.state", 4, "wlan0", ""},
        };
        Records records;
        QVERIFY(records.wait("eth0", hasAddress));
        for (const auto &[path, value, device, address] : cases) {
            panel().set(path, value);
            const auto fits = [expected = address](const Record &r) {
                return r.sIpAddr == expected;
            };
            QVERIFY2(records.wait(device, fits), path);
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

    void joinsWifi()
    {
        struct
        {
            const char *network, *password;
            int state;
        } const cases[] = {
            {"Office", "office", 5},
            {"Office", "office123", 7},
            {"Elsewhere", "x", 5}, // out of range
            {"Guests", "", 7},
        };
        Records records;
        for (const auto &[network, password, state] : cases) {
            QCOMPARE(netT::setConnectInfo(network, password, false, TIMEOUT), 0);
            QCOMPARE(netT::connectwifi(), 0);
            netT::WIFI_STATE_T now{};
            netT::getStatus(now, false, TIMEOUT);
            QCOMPARE(int(now), int(netT::WIFI_CONNECTING));
            QTRY_COMPARE(panel().get("wifi.state").get<int>(), state);
            const auto fits = [isIn = state == 7](const Record &r) {
                return hasAddress(r) == isIn;
            };
            QVERIFY2(records.wait("wlan0", fits), network);
        }
    }

    void joinedNetworkFollowsItsAccessPoint()
    {
        Records records;
        const Json inRange = panel().get("wifi.aps");
        panel().set("wifi.aps.0.level", 31);
        QCOMPARE(panel().get("wifi.signal").get<int>(), 31);
        panel().set("wifi.aps", Json::array({inRange[1]}));
        QVERIFY(records.wait("wlan0", [](const Record &r) { return !hasAddress(r); }));
        panel().set("wifi.aps", inRange);
        QTRY_COMPARE(panel().get("wifi.state").get<int>(), int(netT::WIFI_CONNECTED));
        QVERIFY(records.wait("wlan0", hasAddress));
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

    void modemIsReportedOnChange()
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
};

QTEST_GUILESS_MAIN(SimNetTest)
#include "SimNetTest.moc"
