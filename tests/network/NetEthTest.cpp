#include "network/NetEth.h"

#include "resources/Resources.h"
#include "tests/support/Calls.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PageTest.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>

using Record = netT::stAllNetInfo_tag;
using sim::panel;

namespace {

Record record(const char *function, const char *dhcp)
{
    Record result;
    result.sDevName = "eth0";
    result.sDhcp = dhcp;
    result.sMacAddr = "02:00:5e:10:00:01";
    result.sIpAddr = "192.168.1.100";
    result.sSubnetMask = "255.255.255.0";
    result.sGateway = "192.168.1.1";
    result.sPrefDns = "8.8.8.8";
    result.sAlterDns = "9.9.9.9";
    result.sFunction = function;
    return result;
}

const Record STATIC_ON = record("enable", "disable");
const Record DHCP_ON = record("enable", "enable");
const Record OFF = record("disable", "disable");

Record without(std::string Record::*text, const Record &whole = STATIC_ON)
{
    Record result = whole;
    (result.*text).clear();
    return result;
}

} // namespace

Q_DECLARE_METATYPE(Record)

class NetEthTest : public PageTest<NetEth>
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init();
    void showsTheRecord_data();
    void showsTheRecord();
    void splitsAddresses_data();
    void splitsAddresses();
    void rewritesChangedTextsAlone();
    void switchWaitsForTheRecord();
    void absentDeviceDisablesTheSwitch();
    void radioShowsItsViewAtOnce();
    void presses_data();
    void presses();
    void entryThatMayNoLongerBeSentIsTakenBack();
    void hostileTextsStayPlain();
    void printsTheRecord();

private:
    // What is seen of the parts that come and go, and how the fields stand.
    QString seen() const;
};

void NetEthTest::init()
{
    panel().reset();
    m_page = std::make_unique<NetEth>();
    m_page->resize(800, 500);
    m_page->show();
}

QString NetEthTest::seen() const
{
    QStringList words;
    for (const auto &[word, name] :
         {std::pair{"radios", "radio_Dhcp"}, std::pair{"status", "lab_EthStatus"},
          std::pair{"block", "widget_EthIndetail"}, std::pair{"hint", "lab_replacwidgetEth"}}) {
        if (shown(name))
            words << QLatin1String(word);
    }
    if (checked("radio_Static"))
        words << "static"_s;
    if (find("line_Dns1_1")->isEnabledTo(find("widget_EthIndetail")))
        words << "editable"_s;
    if (style("widget_EthIndetail").contains("border-bottom-color: #C4C4C3"_s))
        words << "underlined"_s;
    return words.join(QLatin1Char(' '));
}

void NetEthTest::showsTheRecord_data()
{
    QTest::addColumn<Record>("record");
    QTest::addColumn<QString>("parts");
    QTest::newRow("static") << STATIC_ON << "radios block static editable underlined"_s;
    QTest::newRow("DHCP with an address") << DHCP_ON << "radios block"_s;
    QTest::newRow("DHCP without") << without(&Record::sIpAddr, DHCP_ON) << "radios hint"_s;
    QTest::newRow("off") << OFF << "status hint"_s;
    QTest::newRow("anything but enable is off") << record("maybe", "disable") << "status hint"_s;
}

void NetEthTest::showsTheRecord()
{
    QFETCH(Record, record);
    m_page->setNetInfo(STATIC_ON); // so that "off" has something to hide
    m_page->setNetInfo(record);
    QTEST(seen(), "parts");
    QVERIFY(enabled("btn_EthSwitch"));
}

void NetEthTest::splitsAddresses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("fields");
    QTest::newRow("four") << QByteArray("10.0.0.7") << "10|0|0|7"_s;
    for (const QByteArray &text : {QByteArray("10.0.7"), QByteArray("10.0.0.0.7"), QByteArray(""),
                                   QByteArray(4096, '9'), QByteArray("\xff\xfe.")})
        QTest::addRow("%d bytes", text.size()) << text << "|||"_s;
}

void NetEthTest::splitsAddresses()
{
    QFETCH(QByteArray, text);
    m_page->setNetInfo(STATIC_ON);
    Record changed = STATIC_ON;
    changed.sIpAddr = text.toStdString();
    m_page->setNetInfo(changed);
    QTEST(octets("line_Ip"), "fields");
    QCOMPARE(octets("line_Dns2_"), "9|9|9|9"_s);
}

void NetEthTest::rewritesChangedTextsAlone()
{
    m_page->setNetInfo(STATIC_ON);
    find<QLineEdit>("line_Ip4")->setText("77"_s);
    m_page->setNetInfo(STATIC_ON);
    QCOMPARE(octets("line_Ip"), "192|168|1|77"_s);
    m_page->setNetInfo(OFF); // forgets, and fills everything anew
    m_page->setNetInfo(STATIC_ON);
    QCOMPARE(octets("line_Ip"), "192|168|1|100"_s);

    panel().fail("netT.setIp", -1);
    typeOnKeyboard("77\n"_s);
    press("line_Ip4");
    QCOMPARE(octets("line_Ip"), "192|168|1|77"_s); // what was asked for stays until
    m_page->setNetInfo(STATIC_ON);                 // a record tells otherwise
    QCOMPARE(octets("line_Ip"), "192|168|1|100"_s);
}

void NetEthTest::switchWaitsForTheRecord()
{
    for (const bool wasOn : {true, false}) {
        const Record &before = wasOn ? STATIC_ON : OFF;
        m_page->setNetInfo(before);
        if (wasOn)
            panel().fail("netT.netDeviceDown", -1); // refused, it waits all the same
        const QString look = style("btn_EthSwitch");
        press("btn_EthSwitch");
        m_page->setNetInfo(before); // a record of the old state completes nothing
        panel().clearCalls();
        press("btn_EthSwitch");
        press("radio_Dhcp");
        QVERIFY(panel().calls().empty());
        QVERIFY(!enabled("btn_EthSwitch") && !enabled("radio_Dhcp"));
        QVERIFY(shown("label_move") && !shown("label_null"));
        QCOMPARE(style("btn_EthSwitch"), look);

        m_page->setNetInfo(wasOn ? OFF : STATIC_ON);
        QVERIFY(enabled("btn_EthSwitch") && enabled("radio_Dhcp") && enabled("widget_EthIndetail"));
        QVERIFY(!shown("label_move") && shown("label_null"));
        QVERIFY(style("btn_EthSwitch") != look);
    }
    press("radio_Dhcp"); // whose presses are seen again
    QCOMPARE(callsOf("netT.startDhcp").size(), 1);
}

void NetEthTest::absentDeviceDisablesTheSwitch()
{
    m_page->setNetInfo(OFF);
    QCOMPARE(text("lab_EthStatus"), "Enable"_s);
    panel().fail("netT.netIsExist", -4, 1);
    m_page->setNetInfo(STATIC_ON);
    QCOMPARE(text("lab_EthStatus"), "Unplugged"_s);
    QVERIFY(!enabled("btn_EthSwitch"));
    QVERIFY(!shown("radio_Dhcp")); // nothing else of the record was taken

    m_page->setNetInfo(STATIC_ON);
    panel().fail("netT.netIsExist", -4, 1);
    m_page->setNetInfo(STATIC_ON);
    QVERIFY(shown("lab_EthStatus") && !enabled("radio_Dhcp"));
    press("line_Ip4"); // would not return from an open keyboard
    m_page->setNetInfo(STATIC_ON);
    QVERIFY(!shown("lab_EthStatus") && enabled("line_Ip4"));
}

void NetEthTest::radioShowsItsViewAtOnce()
{
    for (const bool switchedOff : {false, true}) {
        m_page->setNetInfo(STATIC_ON);
        press("radio_Dhcp");
        QCOMPARE(seen(), "radios hint"_s);
        panel().fail("netT.stopDhcp", -1);
        press("radio_Static");
        QCOMPARE(seen(), "radios block static editable underlined"_s);
        if (switchedOff)
            m_page->setNetInfo(OFF);
        m_page->setNetInfo(DHCP_ON); // the service has the last word
        QCOMPARE(seen(), "radios block"_s);
    }
}

void NetEthTest::presses_data()
{
    QTest::addColumn<Record>("before");
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("sent"); // empty: nothing
    QTest::addColumn<QByteArray>("ok");
    QTest::addColumn<QByteArray>("refused");
    const auto row = [](const char *name, const Record &before, const char *pressed,
                        const QString &keys, const char *sent = "", const char *ok = "",
                        const char *refused = "") {
        QTest::newRow(name) << before << QString::fromLatin1(pressed) << keys
                            << QString::fromLatin1(sent) << QByteArray(ok) << QByteArray(refused);
    };
    row("on", OFF, "btn_EthSwitch", {}, R"(netDeviceUp["eth0",false,5000])",
        "netDeviceUp [eth0] ok\n", "netDeviceUp [eth0] Err\n");
    row("off", STATIC_ON, "btn_EthSwitch", {}, R"(netDeviceDown["eth0",false,5000])",
        "netDeviceDown [eth0] ok\n", "netDeviceDown [eth0] Err\n");
    row("DHCP", STATIC_ON, "radio_Dhcp", {}, R"(startDhcp["eth0",false,5000])",
        "startDhcp [eth0] ok \n", "startDhcp [eth0] error \n");
    row("static", DHCP_ON, "radio_Static", {}, R"(stopDhcp["eth0",false,5000])");
    row("address", STATIC_ON, "line_Ip4", "77\n"_s,
        R"(setIp["eth0","192.168.1.77","255.255.255.0","192.168.1.1",false,5000])",
        "setIp [eth0] ok\n",
        "setIp [eth0] error IP [192.168.1.77] sub [255.255.255.0] gate [192.168.1.1]\n");
    row("gateway, zero in front", STATIC_ON, "line_GateWay4", "09\n"_s,
        R"(setIp["eth0","192.168.1.100","255.255.255.0","192.168.1.9",false,5000])",
        "setIp [eth0] ok\n",
        "setIp [eth0] error IP [192.168.1.100] sub [255.255.255.0] gate [192.168.1.9]\n");
    row("second server", STATIC_ON, "line_Dns2_1", "1\n"_s,
        R"(setDns["eth0","8.8.8.8","1.9.9.9",false,5000])", "setDns [eth0] ok\n",
        "setDns [eth0] error\n");
    row("unchanged", STATIC_ON, "line_Ip4", "100\n"_s);
    row("not confirmed", STATIC_ON, "line_Ip4", "77\x1b"_s);
    row("no mask", without(&Record::sSubnetMask), "line_Ip4", "77\n"_s);
    row("no second server", without(&Record::sAlterDns), "line_Dns1_1", "1\n"_s);
}

void NetEthTest::presses()
{
    QFETCH(Record, before);
    QFETCH(QString, pressed);
    QFETCH(QString, keys);
    QFETCH(QString, sent);
    for (const char *outcome : {"ok", "refused"}) {
        init();
        m_page->setNetInfo(before);
        panel().clearCalls();
        if (qstrcmp(outcome, "refused") == 0 && !sent.isEmpty())
            panel().fail("netT." + sent.section(QLatin1Char('['), 0, 0).toStdString(), -1);
        typeOnKeyboard(keys);
        const QByteArray printed = printedBy([&] { press(qPrintable(pressed)); });
        QTEST(printed, outcome);
        QCOMPARE(serviceCalls().join(QLatin1Char(' ')), sent);
    }
}

void NetEthTest::entryThatMayNoLongerBeSentIsTakenBack()
{
    m_page->setNetInfo(STATIC_ON);
    whenOpen("SoftKeyboard", [this](QWidget *) {
        m_page->setNetInfo(DHCP_ON); // somebody else switched to DHCP meanwhile
        return true;
    });
    typeOnKeyboard("77\n"_s);
    press("line_Ip4");
    QVERIFY(callsOf("netT.setIp").isEmpty());
    QCOMPARE(octets("line_Ip"), "192|168|1|100"_s);
    const auto clicks = panel().get("buzzer.opens");
    press("line_Ip4"); // would not return from an open keyboard
    QCOMPARE(panel().get("buzzer.opens").dump(), clicks.dump());
}

void NetEthTest::hostileTextsStayPlain()
{
    Record hostile = STATIC_ON;
    hostile.sDevName = "<b>%s%n</b>";
    hostile.sMacAddr = "<img src=x>";
    panel().fail("netT.netIsExist", 0);
    m_page->setNetInfo(hostile);
    QCOMPARE(text("lab_EthMac"), "<img src=x>"_s);
    QCOMPARE(find<QLabel>("lab_EthMac")->textFormat(), Qt::PlainText);
    press("radio_Dhcp");
    QCOMPARE(callsOf("netT.startDhcp"), QStringList(R"(["<b>%s%n</b>",false,5000])"_s));
}

void NetEthTest::printsTheRecord()
{
    m_page->setNetInfo(DHCP_ON);
    Record changed = without(&Record::sAlterDns, DHCP_ON);
    changed.sIpAddr = "10.0.0.7";
    changed.bNetNormal = 1;
    const QByteArray printed = printedBy([&] {
        m_page->setNetInfo(changed);
        m_page->setNetInfo(OFF);
        panel().fail("netT.netIsExist", -4);
        m_page->setNetInfo(OFF);
    });
    QVERIFY(printed.startsWith("paraMnetnode.sDevName = [eth0]\n"
                               "paraMnetnode.sFunction = [enable]\n"
                               "paraMnetnode.bNetNormal = [1]\n"
                               "paraMnetnode.sDhcp = [enable]\n"
                               "paraMnetnode.sIpAddr = [10.0.0.7][192.168.1.100]\n"
                               "paraMnetnode.sSubnetMask = [255.255.255.0][255.255.255.0]\n"
                               "paraMnetnode.sGateway = [192.168.1.1][192.168.1.1]\n"
                               "paraMnetnode.sPrefDns = [8.8.8.8][8.8.8.8]\n"
                               "paraMnetnode.sAlterDns = [][9.9.9.9]\n"));
    QVERIFY(printed.contains("\nNetEth setEthPage [0]\n"));
    QVERIFY(printed.endsWith("net [eth0] Is not Exist!\n"));
}

QTEST_MAIN(NetEthTest)
#include "NetEthTest.moc"
