#include "network/WifiPara.h"

#include "resources/Resources.h"
#include "tests/support/PageTest.h"

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
        const std::string empty[] = {"10.0.7", "10.0.0.7.1", "", std::string(4096, '9'),
                                     "\xff\xfe."};
        for (const std::string &dotted : empty) {
            find<QLineEdit>("line_Dns1_1")->setText("7"_s); // typed, not sent: not of this slot
            m_page->slot_IpPara("1.2.3.4", dotted, "1.2.3.1");
            QCOMPARE(octets("line_Ip") + octets("line_Mask"), "1|2|3|4|||"_s);
            QCOMPARE(text("line_Dns1_1"), "7"_s);
            m_page->slot_Dns(dotted, "1.1.1.1");
            QCOMPARE(octets("line_Dns1_") + octets("line_Dns2_"), "|||1|1|1|1"_s);
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
        // pressed | operation sent | behind the device | end of the printed line if taken
        // | if refused; $ ends a line
        rows({
            "radio_Dhcp | startDhcp | true,5000 | ]  OK $ | ]  Err $",
            "radio_Static | stopDhcp | true,5000 | ]  OK $ | ]  Err $",
            R"(line_Ip4 | setIp | "192.168.2.7","255.255.255.0","192.168.2.1",true,5000)"
            "| ] ok$ | ] error$",
            R"(line_Dns2_1 | setDns | "8.8.8.8","7.9.9.9",false,5000 | ] ok$ | ] error$)",
        });
    }

    void presses()
    {
        const QString pressed = cell(0);
        for (const bool refused : {false, true}) {
            init();
            if (refused)
                panel().fail("netT." + cell(1).toStdString(), -1);
            m_page->slot_DHCP(pressed == "radio_Static"_s);
            if (pressed.startsWith("line_"_s))
                typeOnKeyboard("7\n"_s);
            const QByteArray printed = printedBy([&] { press(qPrintable(pressed)); });
            QCOMPARE(QString::fromLatin1(printed).replace(u'\n', u'$'),
                     cell(1) + " [wlan0"_s + cell(refused ? 4 : 3));
            QCOMPARE(serviceCalls(), QStringList(R"(%1["wlan0",%2])"_s.arg(cell(1), cell(2))));
        }
        QCOMPARE(enabled("line_Ip1"), pressed != "radio_Dhcp"_s);
        QCOMPARE(underlined(), pressed != "radio_Dhcp"_s);
    }

    void refusedFieldsOpenNoKeyboard()
    {
        m_page->slot_DHCP(true);
        press("line_Ip4"); // would not return from an open keyboard
        // Refused, or closed, while it is typed or right before it is sent.
        for (int i = 0; i < 4; ++i) {
            const auto end = [&] { i % 2 == 0 ? m_page->slot_DHCP(true) : m_page->hide(); };
            whenOpen("SoftKeyboard", [&](const QWidget *keyboard) {
                if (i < 2)
                    end();
                else
                    connect(keyboard, &QObject::destroyed, this,
                            [&] { QTimer::singleShot(0, this, end); });
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
        const auto pixel = [&](int x) { return image.pixelColor(x, image.height() / 2); };
        QCOMPARE(pixel(14), QColor(248, 248, 248));
        for (int x = 2; x < 10; ++x) // darker and darker towards the inside
            QVERIFY(pixel(x).red() < pixel(x - 1).red() || pixel(x) == Qt::white);
        QVERIFY(pixel(9).red() < 150);
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
