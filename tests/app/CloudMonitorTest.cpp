#include "app/CloudMonitor.h"

#include "platform/sim/Panel.h"
#include "tests/support/PrintedBy.h"

#include <QtTest>

#include <thread>

namespace {

using Records = std::vector<netT::stAllNetInfo_tag>;

netT::stAllNetInfo_tag record(const char *kind, const char *function, const char *ip,
                              const char *alterDns)
{
    netT::stAllNetInfo_tag result;
    result.sDevName = std::string(kind) == "ETH" ? "eth0" : "wlan0";
    result.sNetType = kind;
    result.sFunction = function;
    result.sIpAddr = ip;
    result.sAlterDns = alterDns;
    return result;
}

// What the monitor says, one word an event.
QStringList eventsOf(const Records &records, int runs)
{
    QStringList events;
    netT::CAsyncClient client;
    CloudMonitor monitor(client, nullptr, nullptr,
                         {[] {},
                          [&](int type, bool online) {
                              events << QStringLiteral("%1=%2").arg(type).arg(online ? 1 : 0);
                          },
                          [&](int load, int status, const std::string &) {
                              events << QStringLiteral("checked %1 %2").arg(load).arg(status);
                          },
                          [&](bool up) { events << QStringLiteral("cloud=%1").arg(up ? 1 : 0); }});
    for (int run = 0; run < runs; ++run)
        monitor.run(records);
    return events;
}

// The arguments of every call of a platform operation so far.
nlohmann::json callsOf(const char *operation)
{
    nlohmann::json found = nlohmann::json::array();
    for (const auto &call : sim::panel().calls()) {
        if (call.at("op") == operation)
            found.push_back(call.at("args"));
    }
    return found;
}

} // namespace

Q_DECLARE_METATYPE(Records)

class CloudMonitorTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void reports_data();
    void reports();
    void followsALinkThatGoesAway();
    void pingsOnlyTheSecondAddress();
    void stopsInTheMiddle();
    void startsTheClient_data();
    void startsTheClient();
    void triesAFailedLoadAgain();
    void asksBeforeEachRecord();
};

void CloudMonitorTest::initTestCase()
{
    sim::panel().set("cloud.load", -1);
    sim::panel().set("net.ping", {{"8.8.8.8", {{"min", 1}, {"avg", 1}, {"max", 1}, {"lost", 0}}},
                                  {"9.9.9.9", -1}});
}

void CloudMonitorTest::reports_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<int>("cloudStatus");
    QTest::addColumn<QString>("events");

    const auto good = record("ETH", "enable", "192.168.1.100", "8.8.8.8");
    const auto silent = record("ETH", "enable", "192.168.1.100", "9.9.9.9");
    const auto off = record("ETH", "disable", "192.168.1.100", "8.8.8.8");
    const auto noAddress = record("ETH", "enable", "", "8.8.8.8");
    const auto noDns = record("ETH", "enable", "192.168.1.100", "");
    const auto wifi = record("WIFI", "enable", "10.0.0.2", "8.8.8.8");
    const auto modem = record("4G", "enable", "10.9.8.7", "");
    const auto odd = record("LORA", "enable", "1.2.3.4", "8.8.8.8");

    const auto row = [](const char *name, const Records &records, int status, const char *events) {
        QTest::newRow(name) << records << status << QString::fromLatin1(events);
    };
    row("nothing there asks no cloud", {}, 1, "checked -1 -1");
    row("Ethernet", {good}, 0, "301=1,checked -1 0");
    row("Ethernet and cloud", {good}, 1, "301=1,checked -1 1,cloud=1");
    row("silent server", {silent}, 1, "checked -1 -1");
    row("switched off", {off}, 1, "checked -1 -1");
    row("no address", {noAddress}, 1, "checked -1 -1");
    row("no second server", {noDns}, 1, "checked -1 -1");
    row("modem is not pinged", {modem}, 0, "303=1,checked -1 0");
    row("all links", {good, wifi, modem}, -4, "301=1,302=1,303=1,checked -1 -4");
    row("last of a kind decides, bad", {good, silent}, 1, "checked -1 -1");
    row("last of a kind decides, good", {silent, good}, 0, "301=1,checked -1 0");
    row("unknown kind", {odd}, 1, "checked -1 -1");
}

void CloudMonitorTest::reports()
{
    QFETCH(Records, records);
    QFETCH(int, cloudStatus);
    QFETCH(QString, events);
    sim::panel().set("cloud.status", cloudStatus);
    sim::panel().clearCalls();

    QCOMPARE(eventsOf(records, 1).join(QLatin1Char(',')), events);
    const bool asked = !callsOf("netT.CAsyncClient.getConnectedStatus").empty();
    QCOMPARE(asked, events.contains(QStringLiteral("=1")));
    // The second run says only what it says every time.
    QCOMPARE(eventsOf(records, 2).size(), eventsOf(records, 1).size() + 1);
}

void CloudMonitorTest::followsALinkThatGoesAway()
{
    sim::panel().set("cloud.status", 1);
    QStringList clouds;
    netT::CAsyncClient client;
    CloudMonitor monitor(
        client, nullptr, nullptr,
        {[] {}, [](int, bool) {}, [](auto...) {}, [&](bool up) { clouds << QString::number(up); }});
    const auto link = record("ETH", "enable", "192.168.1.100", "8.8.8.8");
    monitor.run({link});
    QVERIFY(monitor.isCloudUp());
    monitor.run({});
    QVERIFY(!monitor.isCloudUp());
    QCOMPARE(clouds.join(QLatin1Char(',')), QStringLiteral("1,0"));
}

void CloudMonitorTest::pingsOnlyTheSecondAddress()
{
    sim::panel().clearCalls();
    eventsOf({record("ETH", "enable", "192.168.1.100", "8.8.8.8")}, 1);
    const nlohmann::json expected = {{"eth0", "", "8.8.8.8", false, 1, true, 50000}};
    QCOMPARE(callsOf("netT.netTping").dump(), expected.dump());
}

void CloudMonitorTest::stopsInTheMiddle()
{
    netT::CAsyncClient client;
    const auto fail = [](auto...) { QFAIL("nothing is to be reported after the stop"); };
    CloudMonitor monitor(client, nullptr, nullptr, {[] {}, fail, fail, fail});
    sim::panel().clearCalls();
    sim::panel().delay("netT.netTping", 200);
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        monitor.stop();
    });
    const auto link = record("ETH", "enable", "192.168.1.100", "8.8.8.8");
    monitor.run({link, link, link});
    stopper.join();
    sim::panel().clearDelays();
    QCOMPARE(callsOf("netT.netTping").size(), std::size_t(1));
}

void CloudMonitorTest::startsTheClient_data()
{
    QTest::addColumn<int>("load");
    QTest::addColumn<int>("remote");
    QTest::addColumn<int>("cpu"); // answer of getCpuId
    QTest::addColumn<QByteArray>("printed");
    QTest::addColumn<QByteArray>("started"); // what is the client's own in the configuration

    const QByteArray config = "AsyncConfig.sUrl = [mqtt.example.com]\n"
                              "AsyncConfig.sCertUrl = [cert.example.com]\n"
                              "AsyncConfig.sNtpUrl = [ntp.example.com]\n"
                              "AsyncConfig.nPort = [8883]\n"
                              "AsyncConfig.nCertPort = [443]\n"
                              "AsyncConfig.sDeviceId = [K7]\n";
    // From the command line: printf '%s' 3c00210081500042 | md5sum
    const QByteArray salt = "abba9a29d7706786a1b29fc3bce3c590";
    const QByteArray otherSalt = "07eeaa82211be6c3335603523dbea0a3";
    const QByteArray topics = " kvhmi/CQ/K7 kvhmi/CP/K7";
    QTest::newRow("started") << 0 << 1 << 0 << config + "AsyncConfig.sSalt = [" + salt + "]\n"
                             << salt + topics;
    QTest::newRow("processor unknown")
        << 0 << 1 << -1 << config + "AsyncConfig.sSalt = [" + otherSalt + "]\n"
        << otherSalt + topics;
    QTest::newRow("remote access off") << 0 << 0 << 0 << QByteArray() << QByteArray();
    QTest::newRow("no file") << -1 << 1 << 0 << QByteArray("loadCloudXML error = -1\n")
                             << QByteArray();
}

void CloudMonitorTest::startsTheClient()
{
    QFETCH(int, load);
    QFETCH(int, remote);
    QFETCH(int, cpu);
    QFETCH(QByteArray, printed);
    QFETCH(QByteArray, started);
    sim::panel().reset();
    sim::panel().apply({{"cloud",
                         {{"load", load},
                          {"config",
                           {{"sUrl", "mqtt.example.com"},
                            {"sCertUrl", "cert.example.com"},
                            {"sNtpUrl", "ntp.example.com"},
                            {"nPort", 8883},
                            {"nCertPort", 443}}}}},
                        {"machine", {{"remote", remote}, {"deviceId", "K7"}}}});
    if (cpu < 0)
        sim::panel().fail("PLATFORM.CPlatCpu.getCpuId", cpu);

    QCOMPARE(printedBy([] { eventsOf({}, 1); }), printed);
    const auto starts = callsOf("netT.CAsyncClient.start");
    QCOMPARE(starts.size(), std::size_t(started.isEmpty() ? 0 : 1));
    if (started.isEmpty())
        return;
    const auto &config = starts[0][0];
    QCOMPARE(QByteArray::fromStdString(config.at("sSalt").get<std::string>() + " " +
                                       config.at("sRequestTopic").get<std::string>() + " " +
                                       config.at("sResponseTopic").get<std::string>()),
             started);
}

void CloudMonitorTest::triesAFailedLoadAgain()
{
    sim::panel().reset();
    sim::panel().set("cloud.load", 0);
    sim::panel().fail("netT.loadCloudXML", -2, 2);
    QCOMPARE(eventsOf({}, 5).join(QLatin1Char(',')),
             QStringLiteral("checked -2 -1,checked -2 -1,checked 0 -1,checked 0 -1,checked 0 -1"));
    QCOMPARE(callsOf("netT.loadCloudXML").size(), std::size_t(3));
    QCOMPARE(callsOf("netT.CAsyncClient.start").size(), std::size_t(1));
}

void CloudMonitorTest::asksBeforeEachRecord()
{
    QString order;
    netT::CAsyncClient client;
    CloudMonitor monitor(client, nullptr, nullptr,
                         {[&] { order += QLatin1Char('r'); },
                          [&](int, bool) { order += QLatin1Char('L'); }, [](auto...) {},
                          [](bool) {}});
    monitor.run({record("4G", "enable", "10.9.8.7", ""), record("ETH", "disable", "", "")});
    QCOMPARE(order, QStringLiteral("rrL"));
}

QTEST_GUILESS_MAIN(CloudMonitorTest)
#include "CloudMonitorTest.moc"
