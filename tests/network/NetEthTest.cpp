#include "network/NetEth.h"

#include "resources/Resources.h"
#include "tests/support/PageTest.h"

#include <QRegularExpression>

using Record = netT::stAllNetInfo_tag;
using sim::panel;

namespace {

constexpr const char *IP = "192.168.1.100";
constexpr const char *MASK = "255.255.255.0";

Record record(const char *function, const char *dhcp, const char *ip = IP, const char *mask = MASK,
              const char *dns2 = "9.9.9.9")
{
    return {"eth0",        "ETH",     dhcp, "<b>mac</b>", ip, mask,
            "192.168.1.1", "8.8.8.8", dns2, function,     0};
}

const Record STATIC_ON = record("enable", "disable");
const Record DHCP_ON = record("enable", "enable");
const Record OFF = record("disable", "disable");
const Record NO_SECOND_SERVER = record("enable", "disable", IP, MASK, "");

// What the tables name.
const QMap<QString, Record> RECORDS = {
    {"static"_s, STATIC_ON},
    {"DHCP"_s, DHCP_ON},
    {"DHCP, no address"_s, record("enable", "enable", "")},
    {"off"_s, OFF},
    {"maybe on"_s, record("maybe", "disable")},
    {"no mask"_s, record("enable", "disable", IP, "")},
    {"no second server"_s, NO_SECOND_SERVER},
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
        QCOMPARE(text("lab_EthMac"), "<b>mac</b>"_s);
        QCOMPARE(find<QLabel>("lab_EthMac")->textFormat(), Qt::PlainText);
    }

    void rewritesChangedTextsAlone()
    {
        m_page->setNetInfo(STATIC_ON);
        find<QLineEdit>("line_Ip4")->setText("77"_s);
        m_page->setNetInfo(NO_SECOND_SERVER);
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
            const QString look = style("btn_EthSwitch");
            press("btn_EthSwitch");
            m_page->setNetInfo(before); // a record of the old state completes nothing
            panel().clearCalls();
            press("btn_EthSwitch");
            press("radio_Dhcp"); // nor a key click
            QVERIFY(panel().calls().empty() && shown("label_move") && !enabled("radio_Dhcp"));
            QCOMPARE(style("btn_EthSwitch"), look);
            m_page->setNetInfo(wasOn ? OFF : STATIC_ON);
            QVERIFY(enabled("btn_EthSwitch") && enabled("widget_EthIndetail"));
            QVERIFY(!shown("label_move") && style("btn_EthSwitch") != look);
        }
        press("radio_Dhcp"); // whose presses are seen again
        QCOMPARE(callsOf("netT.startDhcp").size(), 1);
    }

    void absentDeviceDisablesTheSwitch()
    {
        for (const bool wasOn : {false, true}) {
            m_page->setNetInfo(wasOn ? STATIC_ON : OFF);
            panel().fail("netT.netIsExist", -4, 1);
            m_page->setNetInfo(STATIC_ON);
            QVERIFY(shown("lab_EthStatus") && text("lab_EthStatus") == "Unplugged"_s);
            QVERIFY(!enabled("btn_EthSwitch") && !enabled("radio_Dhcp"));
            QCOMPARE(shown("radio_Dhcp"), wasOn); // nothing else of the record was taken
            press("line_Ip4");                    // would not return from an open keyboard
        }
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
        // the record | pressed | typed | sent: operation | behind the device | end of the printed
        // line if taken | if refused; $ ends a line
        rows({
            "off | btn_EthSwitch | | netDeviceUp | false,5000 | ok$ | Err$",
            "static | btn_EthSwitch | | netDeviceDown | false,5000 | ok$ | Err$",
            "static | radio_Dhcp | | startDhcp | false,5000 | ok $ | error $",
            "DHCP | radio_Static | | stopDhcp | false,5000",
            (R"(static | line_GateWay4 | 09$ | setIp)" // a zero in front
             R"(| "192.168.1.100","255.255.255.0","192.168.1.9",false,5000 | ok$)"
             "| error IP [192.168.1.100] sub [255.255.255.0] gate [192.168.1.9]$"),
            R"(static | line_Dns2_1 | 1$ | setDns | "8.8.8.8","1.9.9.9",false,5000 | ok$ | error$)",
            "static | line_Ip4 | 100$",   // as it was
            "static | line_Ip4 | 77\x1b", // not confirmed
            "no mask | line_Ip4 | 77$", "no second server | line_Dns1_1 | 1$",
            "DHCP | line_Ip4 | ", // opens no keyboard
        });
    }

    void presses()
    {
        const QString operation = cellOrEmpty(3);
        for (const bool refused : {false, true}) {
            init();
            m_page->setNetInfo(RECORDS[cell(0)]);
            panel().clearCalls();
            if (refused && !operation.isEmpty())
                panel().fail("netT." + operation.toStdString(), -1);
            typeOnKeyboard(cell(2).replace(u'$', u'\n'));
            const QByteArray printed = printedBy([&] { press(qPrintable(cell(1))); });
            const QString end = cellOrEmpty(refused ? 6 : 5);
            QCOMPARE(QString::fromLatin1(printed).replace(u'\n', u'$'),
                     end.isEmpty() ? end : operation + " [eth0] "_s + end);
            const QString sent = R"(%1["eth0",%2])"_s.arg(operation, cellOrEmpty(4));
            QCOMPARE(serviceCalls().join(u' '), operation.isEmpty() ? operation : sent);
        }
    }

    void entryMeetsWhatWaited_data()
    {
        // field | records, or else a press, between the keyboard's end and the call | octets sent
        rows({"line_Ip4 | | 7 9", "line_Ip4 | DHCP |", "line_Ip4 | DHCP,static |",
              "line_Dns1_4 | | 7 9", "line_Dns1_4 | DHCP |", "line_Dns1_4 | DHCP,static |"});
    }

    void entryMeetsWhatWaited()
    {
        const QByteArray field = cell(0).toLatin1();
        const bool pressed = cell(1).isEmpty();
        m_page->setNetInfo(STATIC_ON);
        panel().clearCalls();
        const auto happens = [&] {
            if (pressed)
                QTimer::singleShot(0, this, [&] { press(field); });
            for (const QString &name : cell(1).split(u',', Qt::SkipEmptyParts))
                QTimer::singleShot(0, this, [=] { m_page->setNetInfo(RECORDS[name]); });
        };
        whenOpen("SoftKeyboard", [&](const QWidget *keyboard) {
            connect(keyboard, &QObject::destroyed, this, happens);
            return true;
        });
        typeOnKeyboard(pressed ? "7\n9\n"_s : "7\n"_s);
        press(field);
        QTRY_VERIFY(dialogsDone());
        QStringList sent;
        for (const QString &call : serviceCalls().filter(QRegularExpression("^set"_s)))
            sent << call.section(u'"', 3, 3).section(u'.', 3);
        QCOMPARE(sent.join(u' '), cell(2));
        if (sent.isEmpty())
            QCOMPARE(octets("line_Ip") + octets("line_Dns1_"), "192|168|1|1008|8|8|8"_s);
    }

    void printsTheRecord()
    {
        m_page->setNetInfo(DHCP_ON);
        Record changed = record("enable", "enable", "10.0.0.7", MASK, "");
        changed.bNetNormal = 1;
        Record hostile = OFF;
        hostile.sDevName = "<b>%s%n</b>";
        const QByteArray printed = printedBy([&] {
            m_page->setNetInfo(changed);
            m_page->setNetInfo(OFF);
            m_page->setNetInfo(hostile);
        });
        const QByteArray lines =
            "sDevName = [eth0]|sFunction = [enable]|bNetNormal = [1]|sDhcp = [enable]|"
            "sIpAddr = [10.0.0.7][192.168.1.100]|sSubnetMask = [255.255.255.0][255.255.255.0]|"
            "sGateway = [192.168.1.1][192.168.1.1]|sPrefDns = [8.8.8.8][8.8.8.8]|"
            "sAlterDns = [][9.9.9.9]\n";
        QVERIFY(printed.startsWith("paraMnetnode." +
                                   QByteArray(lines).replace("|", "\nparaMnetnode.")));
        QVERIFY(printed.contains("\nNetEth setEthPage [0]\n"));
        QVERIFY(printed.endsWith("net [<b>%s%n</b>] Is not Exist!\n"));
        panel().fail("netT.netIsExist", 0);
        m_page->setNetInfo(hostile);
        QVERIFY(printedBy([this] { press("btn_EthSwitch"); }).contains(" [<b>%s%n</b>] Err\n"));
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
