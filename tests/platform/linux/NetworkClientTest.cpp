// netT over D-Bus, on a bus of the test's own.
#include "platform/linux/NetworkClient.h"

#include "tests/platform/linux/FakeNetwork.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/Rows.h"
#include "tests/support/TestBus.h"

#include <QElapsedTimer>

#include <atomic>
#include <csignal>
#include <mutex>

namespace {

constexpr unsigned int TIMEOUT = 200;
constexpr unsigned int PATIENCE = 2000;

// What the callbacks of one registration have brought; it outlives the test as they may.
struct Heard
{
    std::mutex mutex;
    std::vector<std::string> names;
    std::atomic<int> count{0};
    std::atomic<bool> isHeld{false}; // a callback does not return meanwhile

    std::string last()
    {
        const std::lock_guard lock(mutex);
        return names.empty() ? std::string() : names.back();
    }
    void hear(const std::string &name)
    {
        {
            const std::lock_guard lock(mutex);
            names.push_back(name);
        }
        ++count;
        while (isHeld)
            QThread::msleep(5);
    }
};

int hearRecords(std::vector<netT::stAllNetInfo_tag> &list, void *context)
{
    static_cast<Heard *>(context)->hear(list.at(0).sDevName);
    return 0;
}

int hearModem(netT::tag_atCollect &info, void *context)
{
    static_cast<Heard *>(context)->hear(info.texts[0] + info.texts[4] +
                                        std::to_string(info.numbers[0]));
    return 0;
}

int listen(Heard &heard, bool repeat = true)
{
    return netT::getAllNetInfoCallBack(hearRecords, &heard, false, TIMEOUT, repeat);
}

// The result of a call and what it has filled in, from what stood there before.
QString ask(const QString &call, const std::string &device, unsigned int timeout = PATIENCE)
{
    std::string one = "-";
    std::string two = "-";
    std::string three = "-";
    netT::WIFI_STATE_T state = netT::WIFI_IDLE;
    netT::stUserInfo_tag user;
    netT::stApnInfo_tag apn;
    netT::stNetWorkRegis_tag mode;
    netT::stNetCommuPacketInfo_tag times;
    std::vector<netT::stApInfo_tag> list(1);
    const std::map<QString, std::function<int()>> calls{
        {"netIsExist"_s, [&] { return netT::netIsExist(device, false, timeout); }},
        {"isNetUp"_s, [&] { return netT::isNetUp(device, false, timeout); }},
        {"checkEthCableLink"_s, [&] { return netT::checkEthCableLink(device, false, timeout); }},
        {"isNetDeviceDhcp"_s, [&] { return netT::isNetDeviceDhcp(device, false, timeout); }},
        {"getIp"_s, [&] { return netT::getIp(device, one, two, three, false, timeout); }},
        {"getDns"_s, [&] { return netT::getDns(device, one, two, false, timeout); }},
        {"startDhcp"_s, [&] { return netT::startDhcp(device, false, timeout); }},
        {"getAPList"_s, [&] { return netT::getAPList(list, false, timeout); }},
        {"getStatus"_s, [&] { return netT::getStatus(state, false, timeout); }},
        {"getSignal"_s, [&] { return netT::getSignal(false, timeout); }},
        {"joins"_s,
         [&] {
             netT::setConnectInfo("\xFFname", "pass", false, timeout);
             return netT::connectwifi() + netT::getConnectInfo(user, false, timeout);
         }},
        {"getCsqSignal"_s, [&] { return netT::getCsqSignal(false, timeout); }},
        {"getCCID"_s, [&] { return netT::getCCID(one, false, timeout); }},
        {"get4gDialUpMode"_s, [&] { return netT::get4gDialUpMode(mode, false, timeout); }},
        {"setApn"_s,
         [&] {
             const int set = netT::setApn({"n", "pap", device, "p", "enable"}, false, timeout);
             return set < 0 ? set : netT::getApn(apn, false, timeout);
         }},
        {"setDevPriority"_s,
         [&] {
             netT::setDevPriority("4G", false, timeout);
             return netT::getDevPriority(one, false, timeout);
         }},
        {"netTping"_s,
         [&] { return netT::netTping(device, "", "8.8.8.8", times, true, 3, false, timeout); }},
    };
    QStringList words{QString::number(calls.at(call)())};
    for (const std::string &text :
         {one, two, three, user.sSsid, user.sPassword, apn.sUser, apn.sMode})
        if (text != "-" && !text.empty())
            words += QString::fromLatin1(text.c_str());
    for (const int value :
         {int(state), mode.nDialUpMode, times.nMaxPacketTransTime, times.nMinPacketTransTime,
          times.nAvgPacketTransTime, int(list.size()) - 1})
        if (value != 0)
            words += QString::number(value);
    return words.join(QLatin1Char(' '));
}

} // namespace

class NetworkClientTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_bus.start(); }
    void cleanup()
    {
        stop();
        m_bus.stop();
    }

    // device, mood, call | result and outputs
    void answers_data()
    {
        rows({"eth0 | sound | netIsExist | 0",
              "gone | sound | netIsExist | -4",
              "refused | sound | startDhcp | -1",

              "odd | sound | netIsExist | -1",
              "eth0 | sound | isNetUp | 0",
              "down | sound | isNetUp | 1",
              "down | sound | checkEthCableLink | -1",
              "down | sound | isNetDeviceDhcp | 1",
              "eth0 | sound | getIp | 0 192.168.1.5 255.255.255.0 192.168.1.1",
              "eth0 | sound | getDns | 0 9.9.9.9 8.8.8.8",
              "| sound | getAPList | 0 1",
              "| sound | getStatus | 0 7",
              "| sound | getSignal | 80",
              "| sound | joins | 0 \u00FFname pass",
              "| sound | getCsqSignal | 31",
              "| sound | getCCID | 0 iccid",
              "| sound | get4gDialUpMode | 0 1",
              "user | sound | setApn | 0 user enable",
              "| sound | setDevPriority | 0 4G",
              "eth0 | sound | netTping | 0 1800 3 8",
              "\u00FF | sound | setApn | 0 \u00C3\u00BF enable",
              "| nonsense | getAPList | 0 -1",
              "| nonsense | getStatus | -1",
              "| nonsense | getSignal | -1",
              "| nonsense | getCsqSignal | -1",
              "| nonsense | setDevPriority | -1",
              "| nonsense | getCCID | 0",
              "eth0 | nonsense | netTping | -1"});
    }
    void answers()
    {
        serve(cell(1));
        const std::map<QString, std::string> none{{"bytes"_s, "\xFF"}, {"zero"_s, {"eth0\0x", 6}}};
        const auto found = none.find(cell(0));
        QCOMPARE(ask(cell(2), found == none.end() ? cell(0).toStdString() : found->second),
                 cell(3));
    }

    // what is wrong | result | milliseconds of ten calls
    void failuresCostTheirTimeOnce_data()
    {
        rows({"no bus | -3 | 0", "no service | -3 | 0", "slow | -2 | 200", "dies | -3 | 0",
              "stopped service | -2 | 200", "stopped bus | -2 | 200"});
    }
    void failuresCostTheirTimeOnce()
    {
        const QString fault = cell(0);
        if (fault != "no service"_s)
            serve("sound"_s);
        if (fault == "no bus"_s)
            m_bus.stop();
        const auto stopped =
            static_cast<pid_t>(fault == "stopped bus"_s ? m_bus.pid() : m_service.processId());
        if (fault.startsWith("stopped"_s))
            ::kill(stopped, SIGSTOP);
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < 10; ++i)
            QCOMPARE(netT::netIsExist(fault.toStdString(), false, TIMEOUT), number(1));
        const auto taken = clock.elapsed();
        QVERIFY2(taken >= number(2) && taken < number(2) + 150, QByteArray::number(taken));
        static auto &heard = *new Heard; // hears nothing in any row
        QVERIFY(listen(heard) == number(1) &&
                netT::get4gAtInfoCallBackup(hearModem, &heard) == number(1));
        if (fault.startsWith("stopped"_s))
            ::kill(stopped, SIGCONT);
        if (fault == "no bus"_s)
            m_bus.start();
        if (fault.startsWith("no"_s) || fault == "dies"_s)
            serve("sound"_s);
        QTRY_COMPARE_WITH_TIMEOUT(netT::netIsExist("eth0", false, TIMEOUT), 0, 2000);
        QVERIFY(heard.count == 0);
    }

    void recordsFollowTheService()
    {
        serve("sound"_s);
        auto &heard = *new Heard;
        static Heard once;
        auto &modem = *new Heard;
        QVERIFY(listen(heard) == 0 && listen(once, false) == 0);
        QCOMPARE(netT::get4gAtInfoCallBackup(hearModem, &modem), 0);
        QTRY_VERIFY(heard.count == 1 && once.count == 1 && modem.count == 1);
        QVERIFY(heard.last() == "eth0" && modem.last() == "iccidimei31");
        heard.isHeld = true; // a burst comes while the callback of its first change is busy
        QCOMPARE(netT::netDeviceUp("1 first", false, PATIENCE), 0);
        QTRY_COMPARE(int(heard.count), 2);
        QCOMPARE(netT::netDeviceUp("99 burst", false, PATIENCE), 0);
        heard.isHeld = false;
        QTRY_COMPARE(heard.last(), std::string("99 burst"));
        QVERIFY(heard.count < 10);
        QTRY_VERIFY(modem.count >= 2);
        forge();
        stop();
        QTest::qWait(50);
        const int records = heard.count;
        const int news = modem.count;
        QCOMPARE(heard.last(), std::string("99 burst"));
        serve("sound"_s);
        QTRY_VERIFY(heard.count == records + 1 && modem.count == news + 1);
        stop();
        m_bus.stop();
        m_bus.start();
        serve("sound"_s);
        QTRY_VERIFY(heard.count == records + 2 && modem.count == news + 2);
        QCOMPARE(netT::netDeviceUp("1 last", false, PATIENCE), 0);
        QTRY_COMPARE(heard.last(), std::string("1 last"));
        QVERIFY(heard.count == records + 3 && once.count == 1);
    }

    // Who asked about a record meanwhile was refused, and is told it again.
    void recordsAreToldAgainAfterSilence()
    {
        serve("sound"_s);
        auto &heard = *new Heard;
        QCOMPARE(listen(heard), 0);
        QTRY_COMPARE(int(heard.count), 1);
        const pid_t service = pid_t(m_service.processId());
        ::kill(service, SIGSTOP);
        QVERIFY(netT::netIsExist("eth0", false, TIMEOUT) == netT::ERR_TIMEOUT);
        ::kill(service, SIGCONT);
        QTRY_COMPARE(int(heard.count), 2);
    }

private:
    void serve(const QString &mood)
    {
        stop();
        m_service.start(QCoreApplication::applicationFilePath(), {"--serve"_s, mood});
        QVERIFY(m_service.waitForReadyRead());
    }
    void stop()
    {
        m_service.kill();
        m_service.waitForFinished();
    }

    // Sends each connection a signal that the service has not sent, and some that are none.
    static void forge()
    {
        const auto bus = sdbus::createSystemBusConnection();
        const auto object = sdbus::createObject(*bus, "/org/sysset/Network1");
        std::vector<std::string> names;
        sdbus::createProxy(*bus, "org.freedesktop.DBus", "/")
            ->callMethod("ListNames")
            .onInterface("org.freedesktop.DBus")
            .storeResultsTo(names);
        for (const std::string &name : names)
            for (const bool isSound : {true, false}) {
                sdbus::Signal signal =
                    object->createSignal(board::NETWORK_SERVICE, "DevicesChanged");
                if (isSound)
                    signal << board::NetworkRecords(1);
                else
                    signal << std::int32_t(1);
                signal.setDestination(name);
                signal.send();
            }
    }

    TestBus m_bus;
    QProcess m_service;
};

int main(int argc, char **argv)
{
    if (argc == 3 && std::string(argv[1]) == "--serve")
        return serveFakeNetwork(argv[2]);
    QCoreApplication application(argc, argv);
    NetworkClientTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "NetworkClientTest.moc"
