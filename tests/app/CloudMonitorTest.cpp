#include "app/CloudMonitor.h"

#include "tests/support/Calls.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

using sim::Json;
using sim::panel;

namespace {

// The records of a run, one a word: "ETH", or with a fault behind a colon.
std::vector<netT::stAllNetInfo_tag> recordsOf(const QString &words)
{
    std::vector<netT::stAllNetInfo_tag> records;
    for (const QString &word : words.split(u' ', Qt::SkipEmptyParts)) {
        const QString fault = word.section(u':', 1);
        netT::stAllNetInfo_tag record;
        record.sNetType = word.section(u':', 0, 0).toStdString();
        record.sDevName = record.sNetType == "ETH" ? "eth0" : "wlan0";
        record.sFunction = fault == "off"_s ? "disable" : "enable";
        record.sIpAddr = fault == "noAddress"_s ? "" : "192.168.1.100";
        record.sAlterDns = fault == "noDns"_s ? "" : fault == "silent"_s ? "9.9.9.9" : "8.8.8.8";
        records.push_back(record);
    }
    return records;
}

// What links and cloud report in runs that stand apart by ";". "?" is before a record.
QString eventsOf(const QString &runs)
{
    QStringList events;
    netT::CAsyncClient client;
    const auto link = [&](int type, bool online) { events << "%1=%2"_s.arg(type).arg(online); };
    const auto checked = [&](int load, int status, const std::string &) {
        events << "checked %1 %2"_s.arg(load).arg(status);
    };
    LinkMonitor links({[&] { events << "?"_s; }, link});
    CloudMonitor monitor(client, nullptr, nullptr, links,
                         {checked, [&](bool up) { events << "cloud=%1"_s.arg(up); }});
    for (const QString &run : runs.split(u';'))
        monitor.run(recordsOf(run));
    return events.join(u' ') + (monitor.isCloudUp() ? " up"_s : QString());
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

    // records of one or more runs | status of the cloud's client | events
    void reports_data()
    {
        rows({"| 1 | checked -1 -1", // nothing there asks no cloud
              "ETH | 0 | ? 301=1 checked -1 0", "ETH | 1 | ? 301=1 checked -1 1 cloud=1 up",
              "ETH:silent | 1 | ? checked -1 -1", "ETH:off | 1 | ? checked -1 -1",
              "ETH:noAddress | 1 | ? checked -1 -1", "ETH:noDns | 1 | ? checked -1 -1",
              "4G:noDns | 0 | ? 303=1 checked -1 0", // is not pinged
              "ETH WIFI 4G | -4 | ? ? ? 301=1 302=1 303=1 checked -1 -4",
              // The last of a kind decides.
              "ETH ETH:silent | 1 | ? ? checked -1 -1",
              "ETH:silent ETH | 0 | ? ? 301=1 checked -1 0", "LORA | 1 | ? checked -1 -1",
              // What has changed is told once.
              "ETH ; ETH | 1 | ? 301=1 checked -1 1 cloud=1 ? checked -1 1 up",
              "ETH ; | 1 | ? 301=1 checked -1 1 cloud=1 301=0 checked -1 -1 cloud=0"});
    }
    void reports()
    {
        panel().set("cloud.status", number(1));
        QCOMPARE(eventsOf(cell(0)), cell(2));
        QVERIFY(!callsOf("netT.netTping").join(u' ').contains("\"\",\"\""_s)); // no second address
        QCOMPARE(callsOf("netT.CAsyncClient.getConnectedStatus").isEmpty(),
                 !cell(2).contains("=1"_s));
    }

    // After the ping of the record that it is at, of the second address alone.
    void stopsInTheMiddle_data() { rows({"ETH", "ETH ETH ETH"}); }
    void stopsInTheMiddle()
    {
        netT::CAsyncClient client;
        const auto fail = [](const auto &...) {
            QFAIL("nothing is to be reported after the stop");
        };
        LinkMonitor links({[&] { links.stop(); }, fail});
        CloudMonitor monitor(client, nullptr, nullptr, links, {fail, fail});
        monitor.run(recordsOf(cell(0)));
        QCOMPARE(callsOf("netT.netTping").join(u' '),
                 R"(["eth0","","8.8.8.8",false,1,true,50000])"_s);
    }

    // result of the load | remote access | processor | the salt, if the client is started
    void startsTheClient_data()
    {
        // From the command line: printf '%s' 3c00210081500042 | md5sum
        rows({"0 | 1 | \"3c00210081500042\" | abba9a29d7706786a1b29fc3bce3c590",
              "0 | 1 | null | 07eeaa82211be6c3335603523dbea0a3", "0 | 0 | null |",
              "-1 | 1 | null |"});
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
        const QByteArray printed = printedBy([] { eventsOf({}); });
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
        QCOMPARE(eventsOf(";;;;"_s),
                 "checked -2 -1 checked -2 -1 checked 0 -1 checked 0 -1 checked 0 -1"_s);
        QCOMPARE(callsOf("netT.loadCloudXML").size(), 3);
        QCOMPARE(callsOf("netT.CAsyncClient.start").size(), 1);
    }
};

QTEST_GUILESS_MAIN(CloudMonitorTest)
#include "CloudMonitorTest.moc"
