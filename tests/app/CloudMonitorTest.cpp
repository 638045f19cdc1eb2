#include "app/CloudMonitor.h"

#include "tests/support/Calls.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <map>

using sim::Json;
using sim::panel;

namespace {

using Records = std::vector<netT::stAllNetInfo_tag>;

netT::stAllNetInfo_tag record(const char *kind, const char *function = "enable",
                              const char *ip = "192.168.1.100", const char *alterDns = "8.8.8.8")
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

const auto GOOD = record("ETH");

// What links and cloud report in runs with these records: "?" is before a record.
QString eventsOf(const std::vector<Records> &runs)
{
    QStringList events;
    netT::CAsyncClient client;
    const auto link = [&](int type, bool online) { events << "%1=%2"_s.arg(type).arg(online); };
    const auto checked = [&](int load, int status, const std::string &) {
        events << "checked %1 %2"_s.arg(load).arg(status);
    };
    LinkMonitor links({[&] { events << "?"_s; }, link});
    CloudMonitor *made = nullptr;
    CloudMonitor monitor(
        client, nullptr, nullptr, links,
        {checked, [&](bool up) { events << "cloud=%1"_s.arg(made->isCloudUp() == up ? up : -1); }});
    made = &monitor;
    for (const Records &records : runs)
        monitor.run(records);
    return events.join(u' ');
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
            {"off"_s, record("ETH", "disable")},
            {"noAddress"_s, record("ETH", "enable", "")},
            {"noDns"_s, record("ETH", "enable", "192.168.1.100", "")},
            {"wifi"_s, record("WIFI")},
            {"modem"_s, record("4G", "enable", "10.9.8.7", "")},
            {"unknown"_s, record("LORA")}};
        Records records;
        QString again;
        for (const QString &name : cell(0).split(u' ', Qt::SkipEmptyParts)) {
            records.push_back(known.at(name));
            again += "? "_s;
        }
        panel().set("cloud.status", number(1));

        QCOMPARE(eventsOf({records}), cell(2));
        QVERIFY(!callsOf("netT.netTping").join(u' ').contains("\"\",\"\""_s)); // no second address
        QCOMPARE(callsOf("netT.CAsyncClient.getConnectedStatus").isEmpty(),
                 !cell(2).contains("=1"_s));
        // The second run says only what it says every time.
        const QString checked =
            "checked"_s + cell(2).section("checked"_s, 1).section(" cloud"_s, 0, 0);
        QCOMPARE(eventsOf({records, records}), cell(2) + u' ' + again + checked);
    }

    void followsALinkThatGoesAway()
    {
        panel().set("cloud.status", 1);
        QCOMPARE(eventsOf({{GOOD}, {}}),
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
        QCOMPARE(callsOf("netT.netTping").join(u' '),
                 R"(["eth0","","8.8.8.8",false,1,true,50000])"_s);
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
        panel().apply(Json::parse(R"({"cloud":{"config":{"sUrl":"url","sCertUrl":"cert",)"
                                  R"("sNtpUrl":"ntp","nPort":8883,"nCertPort":443}},)"
                                  R"("machine":{"deviceId":"K7"}})"));
        panel().set("cloud.load", number(0));
        panel().set("machine.remote", number(1));
        panel().set("machine.cpuId", Json::parse(cell(2).toStdString()));
        const QByteArray salt = cellOrEmpty(3).toLatin1();
        const QByteArray printed = printedBy([] { eventsOf({{}}); });
        const QString started = callsOf("netT.CAsyncClient.start").join(u' ');
        QCOMPARE(printed, !salt.isEmpty()
                              ? "AsyncConfig.sUrl = [url]\nAsyncConfig.sCertUrl = [cert]\n"
                                "AsyncConfig.sNtpUrl = [ntp]\nAsyncConfig.nPort = [8883]\n"
                                "AsyncConfig.nCertPort = [443]\nAsyncConfig.sDeviceId = [K7]\n"
                                "AsyncConfig.sSalt = [" +
                                    salt + "]\n"
                              : QByteArray(number(0) < 0 ? "loadCloudXML error = -1\n" : ""));
        QCOMPARE(started.isEmpty(), salt.isEmpty());
        for (const QByteArray &part : {salt, QByteArray("kvhmi/CQ/K7"), QByteArray("kvhmi/CP/K7")})
            QVERIFY2(salt.isEmpty() || started.count(QLatin1String(part)) == 1,
                     qPrintable(started));
    }

    void triesAFailedLoadAgain()
    {
        panel().set("cloud.load", 0);
        panel().fail("netT.loadCloudXML", -2, 2);
        QCOMPARE(eventsOf({{}, {}, {}, {}, {}}),
                 "checked -2 -1 checked -2 -1 checked 0 -1 checked 0 -1 checked 0 -1"_s);
        QCOMPARE(callsOf("netT.loadCloudXML").size(), 3);
        QCOMPARE(callsOf("netT.CAsyncClient.start").size(), 1);
    }
};

QTEST_GUILESS_MAIN(CloudMonitorTest)
#include "CloudMonitorTest.moc"
