#include "network/WifiPara.h"

#include "resources/Resources.h"
#include "tests/support/Calls.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PageTest.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>

using sim::panel;

class WifiParaTest : public PageTest<WifiPara>
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }

    void init()
    {
        panel().reset();
        m_place.resize(600, 400);
        m_page = std::make_unique<WifiPara>(&m_place);
        m_page->slot_DHCP(false);
        m_page->slot_IpPara("192.168.2.60", "255.255.255.0", "192.168.2.1");
        m_page->slot_Dns("8.8.8.8", "9.9.9.9");
        m_page->setDevName("wlan0");
        m_page->show();
        panel().clearCalls();
    }

    void cleanup() { m_page.reset(); } // before its parent

    void fills()
    {
        for (const std::string &dotted :
             {std::string("10.0.7"), std::string("10.0.0.7.1"), std::string(),
              std::string(4096, '9'), std::string("\xff\xfe."), std::string("10.0.0.7")}) {
            const QString fields = dotted == "10.0.0.7" ? "10|0|0|7"_s : "|||"_s;
            find<QLineEdit>("line_Dns1_1")->setText("7"_s); // typed, not sent: not of this slot
            m_page->slot_IpPara("1.2.3.4", dotted, "1.2.3.1");
            QCOMPARE(octets("line_Ip") + octets("line_Mask"), "1|2|3|4"_s + fields);
            QCOMPARE(text("line_Dns1_1"), "7"_s);
            m_page->slot_Dns(dotted, "1.1.1.1");
            QCOMPARE(octets("line_Dns1_") + octets("line_Dns2_"), fields + "1|1|1|1"_s);
        }
        m_page->slot_Mac("<b>mac</b>");
        QCOMPARE(text("lab_EthMac"), "<b>mac</b>"_s);
        QCOMPARE(find<QLabel>("lab_EthMac")->textFormat(), Qt::PlainText);
    }

    void lookOfTheDeviceIsTheLookAlone()
    {
        // The device uses DHCP, which the page has not told the dialog.
        QVERIFY(!underlined() && enabled("line_Ip1") && checked("radio_Static"));
        panel().fail("netT.isNetDeviceDhcp", 1);
        m_page->slot_DHCP(true);
        m_page->setDevName("wlan0");
        QVERIFY(underlined() && !enabled("line_Ip1") && checked("radio_Dhcp"));
    }

    void presses_data()
    {
        // pressed | sent | printed if taken | if refused; $ ends a line
        rows({
            "radio_Dhcp | startDhcp[\"wlan0\",true,5000]"
            "| startDhcp [wlan0]  OK $ | startDhcp [wlan0]  Err $",
            "radio_Static | stopDhcp[\"wlan0\",true,5000]"
            "| stopDhcp [wlan0]  OK $ | stopDhcp [wlan0]  Err $",
            R"(line_Ip4 | setIp["wlan0","192.168.2.7","255.255.255.0","192.168.2.1",true,5000])"
            "| setIp [wlan0] ok$ | setIp [wlan0] error$",
            R"(line_Dns2_1 | setDns["wlan0","8.8.8.8","7.9.9.9",false,5000])"
            "| setDns [wlan0] ok$ | setDns [wlan0] error$",
        });
    }

    void presses()
    {
        const QString pressed = cell(0);
        const QString sent = cell(1);
        for (const bool refused : {false, true}) {
            init();
            if (refused)
                panel().fail("netT." + sent.section(QLatin1Char('['), 0, 0).toStdString(), -1);
            m_page->slot_DHCP(pressed == "radio_Static"_s);
            if (pressed.startsWith("line_"_s))
                typeOnKeyboard("7\n"_s);
            const QByteArray printed = printedBy([&] { press(qPrintable(pressed)); });
            QCOMPARE(QString::fromLatin1(printed).replace(u'\n', u'$'), cell(refused ? 3 : 2));
            QCOMPARE(serviceCalls(), QStringList(sent));
        }
        if (pressed.startsWith("radio_"_s)) {
            QCOMPARE(enabled("line_Ip1"), pressed == "radio_Static"_s);
            QCOMPARE(underlined(), pressed == "radio_Static"_s);
        }
    }

    void refusedFieldsOpenNoKeyboard()
    {
        m_page->slot_DHCP(true);
        press("line_Ip4"); // would not return from an open keyboard
        // Refused, or closed, while it is typed or right before it is sent.
        const std::function<void()> ends[] = {[this] { m_page->slot_DHCP(true); },
                                              [this] { m_page->hide(); }};
        for (int i = 0; i < 4; ++i) {
            whenOpen("SoftKeyboard", [&](const QWidget *keyboard) {
                if (i < 2)
                    ends[i]();
                else
                    connect(keyboard, &QObject::destroyed, this,
                            [&] { QTimer::singleShot(0, this, ends[i - 2]); });
                return true;
            });
            typeOnKeyboard("7\n"_s);
            m_page->show();
            m_page->slot_DHCP(false);
            press("line_Ip4");
            QCOMPARE(octets("line_Ip"), "192|168|2|60"_s);
        }
        QVERIFY(serviceCalls().isEmpty());
        m_page->show();
        press("pushButton_2");
        QVERIFY(!m_page->isVisible());
    }

    void framePaintsItself()
    {
        const QImage image = m_page->grab().toImage();
        const int middle = image.height() / 2;
        QCOMPARE(image.pixelColor(14, middle), QColor(248, 248, 248));
        int last = 256; // darker and darker towards the inside
        for (int x = 1; x < 10; ++x) {
            const int grey = image.pixelColor(x, middle).red();
            QVERIFY2(grey < last || grey == 255, qPrintable(QString::number(x)));
            last = grey;
        }
        QVERIFY(last < 150);
    }

private:
    bool underlined() const
    {
        return style("widget_EthIndetail").contains("border-bottom-color: #C4C4C3"_s);
    }

    QWidget m_place;
};

QTEST_MAIN(WifiParaTest)
#include "WifiParaTest.moc"
