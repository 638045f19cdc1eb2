#include "app/CloudMonitor.h"

#include "platform/sim/Panel.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <map>

using sim::Json;
using sim::panel;

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
    result.sPrefDns = "7.7.7.7";
    result.sAlterDns = alterDns;
    return result;
}

const auto GOOD = record("ETH", "enable", "192.168.1.100", "8.8.8.8");

// What the monitor says in runs with these records, one word an event: "?" is before a record.
QStringList eventsOf(const std::vector<Records> &runs)
{
    QStringList events;
    netT::CAsyncClient client;
    LinkMonitor links(
        {[&] { events << "?"_s; },
         [&](int type, bool online) { events << "%1=%2"_s.arg(type).arg(int(online)); }});
    CloudMonitor monitor(client, nullptr, nullptr, links,
                         {[&](int load, int status, const std::string &) {
                              events << "checked %1 %2"_s.arg(load).arg(status);
                          },
                          [&](bool up) {
                              events << "cloud=%1"_s.arg(int(up));
                              QCOMPARE(monitor.isCloudUp(), up);
                          }});
    for (const Records &records : runs)
        monitor.run(records);
    return events;
}

// The arguments of every call of a platform operation so far.
Json callsOf(const char *operation)
{
    Json found = Json::array();
    for (const auto &call : panel().calls()) {
        if (call.at("op") == operation)
            found.push_back(call.at("args"));
    }
    return found;
}

} // namespace

class CloudMonitorTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        panel().reset();
        panel().set("cloud.load", -1);
        panel().set("net.ping", {{"8.8.8.8", {{"min", 1}, {"avg", 1}, {"max", 1}, {"lost", 0}}},
                                 {"9.9.9.9", -1}});
    }

    // records | status of the cloud's client | events
    void reports_data()
    {
        rows({"| 1 | checked -1 -1", // nothing there asks no cloud
              "good | 0 | ? 301=1 checked -1 0", "good | 1 | ? 301=1 checked -1 1 cloud=1",
              "silent | 1 | ? checked -1 -1", "off | 1 | ? checked -1 -1",
              "noAddress | 1 | ? checked -1 -1", "noDns | 1 | ? checked -1 -1",
              "modem | 0 | ? 303=1 checked -1 0", // is not pinged
              "good wifi modem | -4 | ? ? ? 301=1 302=1 303=1 checked -1 -4",
              // The last of a kind decides.
              "good silent | 1 | ? ? checked -1 -1", "silent good | 0 | ? ? 301=1 checked -1 0",
              "unknown | 1 | ? checked -1 -1"});
    }
    void reports()
    {
        const std::map<QString, netT::stAllNetInfo_tag> known = {
            {"good"_s, GOOD},
            {"silent"_s, record("ETH", "enable", "192.168.1.100", "9.9.9.9")},
            {"off"_s, record("ETH", "disable", "192.168.1.100", "8.8.8.8")},
            {"noAddress"_s, record("ETH", "enable", "", "8.8.8.8")},
            {"noDns"_s, record("ETH", "enable", "192.168.1.100", "")},
            {"wifi"_s, record("WIFI", "enable", "10.0.0.2", "8.8.8.8")},
            {"modem"_s, record("4G", "enable", "10.9.8.7", "")},
            {"unknown"_s, record("LORA", "enable", "1.2.3.4", "8.8.8.8")}};
        Records records;
        for (const QString &name : cell(0).split(u' ', Qt::SkipEmptyParts))
            records.push_back(known.at(name));
        panel().set("cloud.status", number(1));

        const QStringList events = eventsOf({records});
        QCOMPARE(events.join(u' '), cell(2));
        for (const Json &ping : callsOf("netT.netTping"))
            QVERIFY(!ping[2].get<std::string>().empty());
        QCOMPARE(callsOf("netT.CAsyncClient.getConnectedStatus").empty(),
                 !cell(2).contains("=1"_s));
        // The second run says only what it says every time.
        QCOMPARE(eventsOf({records, records}).size(), events.size() + int(records.size()) + 1);
    }

    void followsALinkThatGoesAway()
    {
        panel().set("cloud.status", 1);
        QCOMPARE(eventsOf({{GOOD}, {}}).join(u' '),
                 "? 301=1 checked -1 1 cloud=1 301=0 checked -1 -1 cloud=0"_s);
    }

    // After the ping of the record that it is at, of the second address alone.
    void stopsInTheMiddle()
    {
        netT::CAsyncClient client;
        const auto fail = [](auto...) { QFAIL("nothing is to be reported after the stop"); };
        LinkMonitor links({[&] { links.stop(); }, fail});
        CloudMonitor monitor(client, nullptr, nullptr, links, {fail, fail});
        monitor.run({GOOD, GOOD, GOOD});
        const Json expected = {{"eth0", "", "8.8.8.8", false, 1, true, 50000}};
        QCOMPARE(callsOf("netT.netTping"), expected);
    }

    // result of the load | remote access | processor | the salt, if the client is started
    void startsTheClient_data()
    {
        // From the command line: printf '%s' 3c00210081500042 | md5sum
        rows({"0 | 1 | \"3c00210081500042\" | abba9a29d7706786a1b29fc3bce3c590",
              "0 | 1 | null | 07eeaa82211be6c3335603523dbea0a3", "0 | 0 | null", "-1 | 1 | null"});
    }
    void startsTheClient()
    {
        const std::string salt = cellOrEmpty(3).toStdString();
        const QByteArray config = "AsyncConfig.sUrl = [mqtt.example.com]\n"
                                  "AsyncConfig.sCertUrl = [cert.example.com]\n"
                                  "AsyncConfig.sNtpUrl = [ntp.example.com]\n"
                                  "AsyncConfig.nPort = [8883]\n"
                                  "AsyncConfig.nCertPort = [443]\n"
                                  "AsyncConfig.sDeviceId = [K7]\n"
                                  "AsyncConfig.sSalt = [" +
                                  cellOrEmpty(3).toLatin1() + "]\n";
        panel().apply({{"cloud",
                        {{"load", number(0)},
                         {"config",
                          {{"sUrl", "mqtt.example.com"},
                           {"sCertUrl", "cert.example.com"},
                           {"sNtpUrl", "ntp.example.com"},
                           {"nPort", 8883},
                           {"nCertPort", 443}}}}},
                       {"machine",
                        {{"remote", number(1)},
                         {"cpuId", Json::parse(cell(2).toStdString())},
                         {"deviceId", "K7"}}}});
        const QByteArray printed = printedBy([] { eventsOf({{}}); });
        const Json starts = callsOf("netT.CAsyncClient.start");
        if (salt.empty()) {
            QCOMPARE(printed, number(0) < 0 ? "loadCloudXML error = -1\n" : "");
            QVERIFY(starts.empty());
            return;
        }
        QCOMPARE(printed, config);
        QCOMPARE(starts.size(), std::size_t(1));
        const Json &started = starts[0][0];
        QVERIFY(started["sSalt"] == salt && started["sRequestTopic"] == "kvhmi/CQ/K7" &&
                started["sResponseTopic"] == "kvhmi/CP/K7");
    }

    void triesAFailedLoadAgain()
    {
        panel().set("cloud.load", 0);
        panel().fail("netT.loadCloudXML", -2, 2);
        QCOMPARE(eventsOf({{}, {}, {}, {}, {}}).join(u' '),
                 "checked -2 -1 checked -2 -1 checked 0 -1 checked 0 -1 checked 0 -1"_s);
        QCOMPARE(callsOf("netT.loadCloudXML").size(), std::size_t(3));
        QCOMPARE(callsOf("netT.CAsyncClient.start").size(), std::size_t(1));
    }
};

QTEST_GUILESS_MAIN(CloudMonitorTest)
#include "CloudMonitorTest.moc"
