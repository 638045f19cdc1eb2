#include "network/NetEth.h"

#include "resources/Resources.h"
#include "tests/support/Calls.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PageTest.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

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

Record without(std::string Record::*text, const Record &whole)
{
    Record result = whole;
    (result.*text).clear();
    return result;
}

// What the tables name.
const QMap<QString, Record> RECORDS = {
    {"static"_s, STATIC_ON},
    {"DHCP"_s, DHCP_ON},
    {"DHCP, no address"_s, without(&Record::sIpAddr, DHCP_ON)},
    {"off"_s, OFF},
    {"maybe on"_s, record("maybe", "disable")},
    {"no mask"_s, without(&Record::sSubnetMask, STATIC_ON)},
    {"no second server"_s, without(&Record::sAlterDns, STATIC_ON)},
};

} // namespace

class NetEthTest : public PageTest<NetEth>
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }

    void init()
    {
        panel().reset();
        m_page = std::make_unique<NetEth>();
        m_page->resize(800, 500);
        m_page->show();
    }

    void showsTheRecord_data()
    {
        rows({"static | radios block static editable underlined", "DHCP | radios block",
              "DHCP, no address | radios hint", "off | status hint", "maybe on | status hint"});
    }

    void showsTheRecord()
    {
        m_page->setNetInfo(STATIC_ON); // so that "off" has something to hide
        m_page->setNetInfo(RECORDS[cell(0)]);
        QCOMPARE(seen(), cell(1));
        QVERIFY(enabled("btn_EthSwitch"));
    }

    void rewritesChangedTextsAlone()
    {
        m_page->setNetInfo(STATIC_ON);
        find<QLineEdit>("line_Ip4")->setText("77"_s);
        m_page->setNetInfo(without(&Record::sAlterDns, STATIC_ON));
        QCOMPARE(octets("line_Ip") + octets("line_Dns2_"), "192|168|1|77|||"_s);
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

    void switchWaitsForTheRecord()
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
            press("radio_Dhcp"); // nor a key click
            QVERIFY(panel().calls().empty());
            QVERIFY(!enabled("btn_EthSwitch") && !enabled("radio_Dhcp"));
            QVERIFY(shown("label_move") && !shown("label_null"));
            QCOMPARE(style("btn_EthSwitch"), look);

            m_page->setNetInfo(wasOn ? OFF : STATIC_ON);
            QVERIFY(enabled("btn_EthSwitch") && enabled("radio_Dhcp") &&
                    enabled("widget_EthIndetail"));
            QVERIFY(!shown("label_move") && shown("label_null"));
            QVERIFY(style("btn_EthSwitch") != look);
        }
        press("radio_Dhcp"); // whose presses are seen again
        QCOMPARE(callsOf("netT.startDhcp").size(), 1);
    }

    void absentDeviceDisablesTheSwitch()
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

    void radioShowsItsViewAtOnce()
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

    void presses_data()
    {
        // the record | pressed | typed | sent | printed if taken | if refused; $ ends a line
        rows({
            "off | btn_EthSwitch | | netDeviceUp[\"eth0\",false,5000]"
            "| netDeviceUp [eth0] ok$ | netDeviceUp [eth0] Err$",
            "static | btn_EthSwitch | | netDeviceDown[\"eth0\",false,5000]"
            "| netDeviceDown [eth0] ok$ | netDeviceDown [eth0] Err$",
            "static | radio_Dhcp | | startDhcp[\"eth0\",false,5000]"
            "| startDhcp [eth0] ok $ | startDhcp [eth0] error $",
            "DHCP | radio_Static | | stopDhcp[\"eth0\",false,5000]",
            "static | line_Ip4 | 77$"
            R"(| setIp["eth0","192.168.1.77","255.255.255.0","192.168.1.1",false,5000])"
            "| setIp [eth0] ok$"
            "| setIp [eth0] error IP [192.168.1.77] sub [255.255.255.0] gate [192.168.1.1]$",
            "static | line_GateWay4 | 09$" // a zero in front
            R"(| setIp["eth0","192.168.1.100","255.255.255.0","192.168.1.9",false,5000])"
            "| setIp [eth0] ok$"
            "| setIp [eth0] error IP [192.168.1.100] sub [255.255.255.0] gate [192.168.1.9]$",
            "static | line_Dns2_1 | 1$ | setDns[\"eth0\",\"8.8.8.8\",\"1.9.9.9\",false,5000]"
            "| setDns [eth0] ok$ | setDns [eth0] error$",
            "static | line_Ip4 | 100$",   // as it was
            "static | line_Ip4 | 77\x1b", // not confirmed
            "no mask | line_Ip4 | 77$",
            "no second server | line_Dns1_1 | 1$",
        });
    }

    void presses()
    {
        const QString sent = cellOrEmpty(3);
        for (const bool refused : {false, true}) {
            init();
            m_page->setNetInfo(RECORDS[cell(0)]);
            panel().clearCalls();
            if (refused && !sent.isEmpty())
                panel().fail("netT." + sent.section(QLatin1Char('['), 0, 0).toStdString(), -1);
            typeOnKeyboard(cell(2).replace(u'$', u'\n'));
            const QByteArray printed = printedBy([&] { press(qPrintable(cell(1))); });
            QCOMPARE(QString::fromLatin1(printed).replace(u'\n', u'$'),
                     cellOrEmpty(refused ? 5 : 4));
            QCOMPARE(serviceCalls().join(QLatin1Char(' ')), sent);
        }
    }

    void entryThatMayNoLongerBeSentIsTakenBack()
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

    void entryMeetsWhatWaited_data()
    {
        // field | what comes between the keyboard's end and the call | last octets sent
        rows({"line_Ip4 | press | 7 9", "line_Ip4 | record |", "line_Ip4 | records |",
              "line_Dns1_4 | press | 7 9", "line_Dns1_4 | record |", "line_Dns1_4 | records |"});
    }

    void entryMeetsWhatWaited()
    {
        const QByteArray field = cell(0).toLatin1();
        const QString waited = cell(1);
        m_page->setNetInfo(STATIC_ON);
        panel().clearCalls();
        const auto happens = [&] {
            if (waited == "press"_s)
                QTimer::singleShot(0, this, [&] { press(field); });
            if (waited.startsWith("record"_s))
                QTimer::singleShot(0, this, [&] { m_page->setNetInfo(DHCP_ON); });
            if (waited == "records"_s)
                QTimer::singleShot(0, this, [&] { m_page->setNetInfo(STATIC_ON); });
        };
        whenOpen("SoftKeyboard", [&](const QWidget *keyboard) {
            connect(keyboard, &QObject::destroyed, this, happens);
            return true;
        });
        typeOnKeyboard(waited == "press"_s ? "7\n9\n"_s : "7\n"_s);
        press(field);
        QTRY_VERIFY(dialogsDone());
        QStringList sent;
        for (const QString &call : serviceCalls().filter(QRegularExpression("^set"_s)))
            sent << call.section(u'"', 3, 3).section(u'.', 3);
        QCOMPARE(sent.join(u' '), cell(2));
        if (sent.isEmpty())
            QCOMPARE(octets("line_Ip") + octets("line_Dns1_"), "192|168|1|1008|8|8|8"_s);
    }

    void hostileTextsStayPlain()
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

    void printsTheRecord()
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

private:
    // What is seen of the parts that come and go, and how the fields stand.
    QString seen() const
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
};

QTEST_MAIN(NetEthTest)
#include "NetEthTest.moc"
