#include "network/NetEth.h"

#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PrintedBy.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

namespace {

using Record = netT::stAllNetInfo_tag;

Record record(const char *function, const char *dhcp)
{
    Record result;
    result.sDevName = "eth0";
    result.sNetType = "ETH";
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

} // namespace

Q_DECLARE_METATYPE(Record)

class NetEthTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init();
    void showsTheRecord_data();
    void showsTheRecord();
    void splitsAddresses_data();
    void splitsAddresses();
    void leavesUnchangedTextsAlone();
    void switchWaitsForTheRecord_data();
    void switchWaitsForTheRecord();
    void absentDeviceDisablesTheSwitch();
    void radioAsksAtOnce_data();
    void radioAsksAtOnce();
    void appliesWhatWasTyped_data();
    void appliesWhatWasTyped();
    void sendsNothingForAnEmptyOctet();
    void refusedAddressIsRewrittenByTheNextRecord();
    void fieldInDhcpModeOpensNoKeyboard();
    void hostileTextsStayPlain();
    void printsWhatItAsked_data();
    void printsWhatItAsked();
    void printsTheRecord();
    void entryThatMayNoLongerBeSentIsTakenBack();
    void returnsToWhatTheServiceSays();

private:
    template <typename T>
    T *find(const char *name)
    {
        return m_page->findChild<T *>(QString::fromLatin1(name));
    }
    QString field(const char *name) { return find<QLineEdit>(name)->text(); }
    bool shown(const char *name) { return !find<QWidget>(name)->isHidden(); }
    void press(const char *name) { QTest::mouseClick(find<QWidget>(name), Qt::LeftButton); }
    QString octets(const char *base);
    // The arguments of the latest call of a platform operation, as JSON; empty if there is none.
    static std::string lastCall(const char *operation);

    std::unique_ptr<NetEth> m_page;
};

void NetEthTest::init()
{
    sim::panel().reset();
    m_page = std::make_unique<NetEth>();
    m_page->resize(800, 500);
    m_page->show();
}

QString NetEthTest::octets(const char *base)
{
    QStringList parts;
    for (int i = 1; i <= 4; ++i)
        parts << field((QByteArray(base) + QByteArray::number(i)).constData());
    return parts.join(QLatin1Char('|'));
}

std::string NetEthTest::lastCall(const char *operation)
{
    std::string found;
    for (const auto &call : sim::panel().calls()) {
        if (call.at("op") == operation)
            found = call.at("args").dump();
    }
    return found;
}

void NetEthTest::showsTheRecord_data()
{
    QTest::addColumn<Record>("record");
    QTest::addColumn<QString>("visible"); // of the widgets named in the test, one letter each
    QTest::addColumn<bool>("editable");

    Record noAddress = DHCP_ON;
    noAddress.sIpAddr.clear();
    Record oddFunction = OFF;
    oddFunction.sFunction = "maybe";
    QTest::newRow("static") << STATIC_ON << QStringLiteral("RB") << true;
    QTest::newRow("DHCP with an address") << DHCP_ON << QStringLiteral("RB") << false;
    QTest::newRow("DHCP without") << noAddress << QStringLiteral("RP") << false;
    QTest::newRow("off") << OFF << QStringLiteral("SP") << false;
    QTest::newRow("anything but enable is off") << oddFunction << QStringLiteral("SP") << false;
}

void NetEthTest::showsTheRecord()
{
    QFETCH(Record, record);
    QFETCH(QString, visible);
    m_page->setNetInfo(STATIC_ON); // so that "off" has something to hide
    m_page->setNetInfo(record);
    QString seen;
    for (const auto &[letter, name] :
         {std::pair{'R', "radio_Dhcp"}, std::pair{'S', "lab_EthStatus"},
          std::pair{'B', "widget_EthIndetail"}, std::pair{'P', "lab_replacwidgetEth"}}) {
        if (shown(name))
            seen += QLatin1Char(letter);
    }
    QCOMPARE(seen, visible);
    QTEST(find<QLineEdit>("line_Ip1")->isEnabled(), "editable");
    QVERIFY(find<QWidget>("btn_EthSwitch")->isEnabled());
}

void NetEthTest::splitsAddresses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("fields");
    const QString cleared = QStringLiteral("|||");
    QTest::newRow("four") << QByteArray("10.0.0.7") << QStringLiteral("10|0|0|7");
    QTest::newRow("three") << QByteArray("10.0.7") << cleared;
    QTest::newRow("five") << QByteArray("10.0.0.0.7") << cleared;
    QTest::newRow("empty") << QByteArray("") << cleared;
    QTest::newRow("4 kB") << QByteArray(4096, '9') << cleared;
    QTest::newRow("invalid UTF-8") << QByteArray("\xff\xfe.") << cleared;
}

void NetEthTest::splitsAddresses()
{
    QFETCH(QByteArray, text);
    m_page->setNetInfo(STATIC_ON);
    Record changed = STATIC_ON;
    changed.sIpAddr = text.toStdString();
    m_page->setNetInfo(changed);
    QTEST(octets("line_Ip"), "fields");
    QCOMPARE(octets("line_Dns2_"), QStringLiteral("9|9|9|9"));
}

void NetEthTest::leavesUnchangedTextsAlone()
{
    m_page->setNetInfo(STATIC_ON);
    find<QLineEdit>("line_Ip4")->setText(QStringLiteral("77"));
    m_page->setNetInfo(STATIC_ON);
    QCOMPARE(octets("line_Ip"), QStringLiteral("192|168|1|77"));
    // Off and on again forgets, and fills everything.
    m_page->setNetInfo(OFF);
    m_page->setNetInfo(STATIC_ON);
    QCOMPARE(octets("line_Ip"), QStringLiteral("192|168|1|100"));
}

void NetEthTest::switchWaitsForTheRecord_data()
{
    QTest::addColumn<Record>("before");
    QTest::addColumn<Record>("after");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("result");
    QTest::newRow("off") << STATIC_ON << OFF << QStringLiteral("netT.netDeviceDown") << 0;
    QTest::newRow("on") << OFF << STATIC_ON << QStringLiteral("netT.netDeviceUp") << 0;
    QTest::newRow("refused") << STATIC_ON << OFF << QStringLiteral("netT.netDeviceDown") << -1;
}

void NetEthTest::switchWaitsForTheRecord()
{
    QFETCH(Record, before);
    QFETCH(Record, after);
    QFETCH(QString, operation);
    QFETCH(int, result);
    m_page->setNetInfo(before);
    if (result < 0)
        sim::panel().fail(operation.toStdString(), result);
    const auto *button = find<QPushButton>("btn_EthSwitch");
    const QString look = button->styleSheet();

    press("btn_EthSwitch");
    QCOMPARE(lastCall(qPrintable(operation)), std::string("[\"eth0\",false,5000]"));
    m_page->setNetInfo(before); // a record of the old state completes nothing
    sim::panel().clearCalls();
    press("btn_EthSwitch");
    press("radio_Static");
    QVERIFY(sim::panel().calls().empty());
    QVERIFY(!button->isEnabled());
    QVERIFY(shown("label_move") && !shown("label_null"));
    QVERIFY(!find<QWidget>("radio_Static")->isEnabled());
    QCOMPARE(button->styleSheet(), look);

    m_page->setNetInfo(after);
    QVERIFY(button->isEnabled());
    QVERIFY(!shown("label_move") && shown("label_null"));
    QVERIFY(find<QWidget>("radio_Static")->isEnabled());
    QVERIFY(find<QWidget>("widget_EthIndetail")->isEnabled());
    QVERIFY(button->styleSheet() != look);
    // The radio buttons' presses are seen again.
    m_page->setNetInfo(STATIC_ON);
    sim::panel().clearCalls();
    press("radio_Dhcp");
    QVERIFY(!lastCall("netT.startDhcp").empty());
}

void NetEthTest::absentDeviceDisablesTheSwitch()
{
    m_page->setNetInfo(OFF);
    QCOMPARE(find<QLabel>("lab_EthStatus")->text(), QStringLiteral("Enable"));
    sim::panel().fail("netT.netIsExist", -4, 1);
    m_page->setNetInfo(STATIC_ON);
    QCOMPARE(find<QLabel>("lab_EthStatus")->text(), QStringLiteral("Unplugged"));
    QVERIFY(!find<QWidget>("btn_EthSwitch")->isEnabled());
    QVERIFY(!shown("radio_Dhcp")); // nothing else of the record was taken

    m_page->setNetInfo(STATIC_ON);
    sim::panel().fail("netT.netIsExist", -4, 1);
    m_page->setNetInfo(STATIC_ON);
    QVERIFY(shown("lab_EthStatus"));
    QVERIFY(!find<QWidget>("radio_Dhcp")->isEnabled());
    press("line_Ip4"); // would not return from an open keyboard
    m_page->setNetInfo(STATIC_ON);
    QVERIFY(!shown("lab_EthStatus"));
    QVERIFY(find<QWidget>("line_Ip4")->isEnabled());
}

void NetEthTest::radioAsksAtOnce_data()
{
    QTest::addColumn<Record>("before");
    QTest::addColumn<QString>("radio");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<bool>("editable");
    QTest::newRow("static") << DHCP_ON << QStringLiteral("radio_Static")
                            << QStringLiteral("netT.stopDhcp") << true;
    QTest::newRow("DHCP") << STATIC_ON << QStringLiteral("radio_Dhcp")
                          << QStringLiteral("netT.startDhcp") << false;
}

void NetEthTest::radioAsksAtOnce()
{
    QFETCH(Record, before);
    QFETCH(QString, radio);
    QFETCH(QString, operation);
    m_page->setNetInfo(before);
    press(qPrintable(radio));
    QCOMPARE(lastCall(qPrintable(operation)), std::string("[\"eth0\",false,5000]"));
    QVERIFY(find<QRadioButton>(qPrintable(radio))->isChecked());
    QTEST(find<QLineEdit>("line_Dns1_1")->isEnabled(), "editable");
    QTEST(shown("widget_EthIndetail"), "editable");
    QTEST(find<QWidget>("widget_EthIndetail")
              ->styleSheet()
              .contains(QStringLiteral("border-bottom-color: #C4C4C3")),
          "editable");
}

void NetEthTest::appliesWhatWasTyped_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("sent");
    const QString ip = QStringLiteral("netT.setIp");
    const QString dns = QStringLiteral("netT.setDns");
    QTest::newRow("address")
        << QStringLiteral("line_Ip4") << QStringLiteral("77") << ip
        << QStringLiteral(R"(["eth0","192.168.1.77","255.255.255.0","192.168.1.1",false,5000])");
    QTest::newRow("gateway, zero in front")
        << QStringLiteral("line_GateWay4") << QStringLiteral("09") << ip
        << QStringLiteral(R"(["eth0","192.168.1.100","255.255.255.0","192.168.1.9",false,5000])");
    QTest::newRow("second server") << QStringLiteral("line_Dns2_1") << QStringLiteral("1") << dns
                                   << QStringLiteral(R"(["eth0","8.8.8.8","1.9.9.9",false,5000])");
    QTest::newRow("unchanged") << QStringLiteral("line_Ip4") << QStringLiteral("100") << ip
                               << QString();
}

void NetEthTest::appliesWhatWasTyped()
{
    QFETCH(QString, field);
    QFETCH(QString, keys);
    QFETCH(QString, operation);
    QFETCH(QString, sent);
    m_page->setNetInfo(STATIC_ON);
    typeOnKeyboard(keys + QLatin1Char('\n'));
    press(qPrintable(field));
    QCOMPARE(QString::fromStdString(lastCall(qPrintable(operation))), sent);
}

void NetEthTest::sendsNothingForAnEmptyOctet()
{
    Record noMask = STATIC_ON;
    noMask.sSubnetMask.clear();
    m_page->setNetInfo(noMask);
    typeOnKeyboard(QStringLiteral("77\n"));
    press("line_Ip4");
    QCOMPARE(field("line_Ip4"), QStringLiteral("77"));
    QCOMPARE(lastCall("netT.setIp"), std::string());
}

void NetEthTest::refusedAddressIsRewrittenByTheNextRecord()
{
    m_page->setNetInfo(STATIC_ON);
    sim::panel().fail("netT.setIp", -1);
    typeOnKeyboard(QStringLiteral("77\n"));
    press("line_Ip4");
    QCOMPARE(octets("line_Ip"), QStringLiteral("192|168|1|77"));
    m_page->setNetInfo(STATIC_ON);
    QCOMPARE(octets("line_Ip"), QStringLiteral("192|168|1|100"));
}

void NetEthTest::fieldInDhcpModeOpensNoKeyboard()
{
    m_page->setNetInfo(DHCP_ON);
    const auto clicks = sim::panel().get("buzzer.opens");
    press("line_Ip4"); // would not return from an open keyboard
    QCOMPARE(sim::panel().get("buzzer.opens").dump(), clicks.dump());
}

void NetEthTest::hostileTextsStayPlain()
{
    Record hostile = STATIC_ON;
    hostile.sDevName = "<b>%s%n</b>";
    hostile.sMacAddr = "<img src=x>";
    sim::panel().fail("netT.netIsExist", 0);
    m_page->setNetInfo(hostile);
    const auto *mac = find<QLabel>("lab_EthMac");
    QCOMPARE(mac->text(), QStringLiteral("<img src=x>"));
    QCOMPARE(mac->textFormat(), Qt::PlainText);
    press("radio_Dhcp");
    QCOMPARE(lastCall("netT.startDhcp"), std::string(R"(["<b>%s%n</b>",false,5000])"));
}

void NetEthTest::printsWhatItAsked_data()
{
    QTest::addColumn<Record>("before");
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QByteArray>("ok");
    QTest::addColumn<QByteArray>("refused");
    const auto row = [](const char *pressed, const Record &before, const char *operation,
                        const char *ok, const char *refused) {
        QTest::newRow(operation) << before << QString::fromLatin1(pressed)
                                 << QString::fromLatin1(operation) << QByteArray(ok)
                                 << QByteArray(refused);
    };
    row("btn_EthSwitch", OFF, "netT.netDeviceUp", "netDeviceUp [eth0] ok\n",
        "netDeviceUp [eth0] Err\n");
    row("btn_EthSwitch", STATIC_ON, "netT.netDeviceDown", "netDeviceDown [eth0] ok\n",
        "netDeviceDown [eth0] Err\n");
    row("radio_Dhcp", STATIC_ON, "netT.startDhcp", "startDhcp [eth0] ok \n",
        "startDhcp [eth0] error \n");
    row("radio_Static", DHCP_ON, "netT.stopDhcp", "", "");
    row("line_Ip4", STATIC_ON, "netT.setIp", "setIp [eth0] ok\n",
        "setIp [eth0] error IP [192.168.1.7] sub [255.255.255.0] gate [192.168.1.1]\n");
    row("line_Dns1_1", STATIC_ON, "netT.setDns", "setDns [eth0] ok\n", "setDns [eth0] error\n");
}

void NetEthTest::printsWhatItAsked()
{
    QFETCH(Record, before);
    QFETCH(QString, pressed);
    QFETCH(QString, operation);
    for (const char *outcome : {"ok", "refused"}) {
        init();
        m_page->setNetInfo(before);
        if (qstrcmp(outcome, "refused") == 0)
            sim::panel().fail(operation.toStdString(), -1);
        if (pressed.startsWith(QLatin1String("line_")))
            typeOnKeyboard(QStringLiteral("7\n"));
        const QByteArray printed = printedBy([&] { press(qPrintable(pressed)); });
        QTEST(printed, outcome);
    }
}

void NetEthTest::printsTheRecord()
{
    m_page->setNetInfo(DHCP_ON);
    Record changed = DHCP_ON;
    changed.sIpAddr = "10.0.0.7";
    changed.sAlterDns.clear();
    changed.bNetNormal = 1;
    const QByteArray printed = printedBy([&] {
        m_page->setNetInfo(changed);
        sim::panel().fail("netT.netIsExist", -4);
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
    QVERIFY(printed.endsWith("net [eth0] Is not Exist!\n"));
}

void NetEthTest::entryThatMayNoLongerBeSentIsTakenBack()
{
    m_page->setNetInfo(STATIC_ON);
    whenOpen("SoftKeyboard", [this](QWidget *) {
        m_page->setNetInfo(DHCP_ON); // somebody else switched to DHCP meanwhile
        return true;
    });
    typeOnKeyboard(QStringLiteral("77\n"));
    press("line_Ip4");
    QCOMPARE(lastCall("netT.setIp"), std::string());
    QCOMPARE(octets("line_Ip"), QStringLiteral("192|168|1|100"));
}

void NetEthTest::returnsToWhatTheServiceSays()
{
    for (const bool switchedOff : {false, true}) {
        m_page->setNetInfo(DHCP_ON);
        sim::panel().fail("netT.stopDhcp", -1);
        press("radio_Static");
        if (switchedOff)
            m_page->setNetInfo(OFF);
        m_page->setNetInfo(DHCP_ON);
        QVERIFY(find<QRadioButton>("radio_Dhcp")->isChecked());
        QVERIFY(!find<QLineEdit>("line_Ip1")->isEnabled());
        const QString style = find<QWidget>("widget_EthIndetail")->styleSheet();
        QVERIFY(!style.contains(QStringLiteral("border-bottom-color")));
    }
}

QTEST_MAIN(NetEthTest)
#include "NetEthTest.moc"
