#include "app/CloudMonitor.h"

#include "platform/sim/Panel.h"

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
    CloudMonitor monitor(client,
                         {[&](int type, bool online) {
                              events << QStringLiteral("%1=%2").arg(type).arg(online ? 1 : 0);
                          },
                          [&](int load, int status) {
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
};

void CloudMonitorTest::initTestCase()
{
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
    CloudMonitor monitor(client, {[](int, bool) {}, [](int, int) {},
                                  [&](bool up) { clouds << QString::number(up); }});
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
    CloudMonitor monitor(client, {fail, fail, fail});
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

QTEST_GUILESS_MAIN(CloudMonitorTest)
#include "CloudMonitorTest.moc"
