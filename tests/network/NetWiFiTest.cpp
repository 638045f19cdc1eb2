#include "network/NetWiFi.h"

#include "network/AccessPointList.h"
#include "resources/Resources.h"
#include "tests/support/PageTest.h"

#include <QMovie>

#include <thread>

using sim::Json;
using sim::panel;
using AccessPoint = netT::stApInfo_tag;
using Record = netT::stAllNetInfo_tag;

namespace {

Record recordOf(const char *function, const char *dhcp = "enable", const char *ip = "10.0.0.7")
{
    return {"wlan0", "WIFI",   dhcp, "02:00:5e:10:00:02", ip, "255.0.0.0", "10.0.0.1", "",
            "",      function, 0};
}

const Record ON = recordOf("enable");
const Record OFF = recordOf("disable");
const AccessPoint OFFICE = {1, 60, "Office", "", 4};
const AccessPoint GUESTS = {2, 50, "Guests", "", 0};

} // namespace

class NetWiFiTest : public PageTest<NetWiFi>
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }

    void init()
    {
        panel().reset();
        panel().set("wifi", {{"state", 0}, {"user", {{"ssid", ""}, {"password", ""}}}});
        m_page = std::make_unique<NetWiFi>();
        m_page->resize(800, 480);
        m_page->setPageVisible(true);
        m_page->show();
        m_page->setNetInfo(ON);
        m_page->setAccessPoints({OFFICE, GUESTS});
        panel().clearCalls();
    }

    // state | style of the name; none: no top row
    void states_data()
    {
        rows({"0", "-1", "3 | color: rgb(0, 0, 0);", "7 | color: rgb(71, 148, 214);"});
    }

    void states()
    {
        const QString look = cellOrEmpty(1);
        panel().set("wifi", {{"user", {{"ssid", "Office"}, {"password", "p"}}}, {"signal", 30}});
        m_page->setPageVisible(false);
        const QByteArray printed = printedBy([&] {
            m_page->slot_UpdataState(number(0));
            QVERIFY(!topRowShown());
            m_page->setPageVisible(true);
        });
        QVERIFY(printed.startsWith("slot_UpdataState = [" + cell(0).toLatin1() + "]\n"));
        QCOMPARE(printed.contains("getConnectInfo = [Office][p][4]\n"), !look.isEmpty());
        QCOMPARE(topRowShown(), !look.isEmpty());
        QCOMPARE(names().contains("Office"_s), look.isEmpty());
        if (look.isEmpty())
            return;
        QCOMPARE(topName(), "Office"_s);
        QCOMPARE(onTop("lab_ssid")->styleSheet(), look);
        QVERIFY(onTop("lab_signal")->styleSheet().contains("wifi2_2.png"_s));
        m_page->setAccessPoints({OFFICE}); // a new scan tells another level
        QVERIFY(onTop("lab_signal")->styleSheet().contains("wifi2_3.png"_s));
        const bool connected = cell(0) == "7"_s;
        QCOMPARE(isTicked(), connected);
        QCOMPARE(onTop("lab_Ok")->movie() != nullptr, !connected);
        QCOMPARE(onTop("lab_ip")->isHidden(), !connected);
        QCOMPARE(onTop("lab_ip")->text(), "10.0.0.7"_s);
        m_page->slot_UpdataState(4); // and the network is back in the list
        QVERIFY(!topRowShown() && names().contains("Office"_s));
    }

    void failureIsToldOnce()
    {
        for (const bool byRecord : {false, true}) {
            m_page->slot_UpdataState(3);
            panel().set("wifi.state", 5);
            whenOpen("MessageBox", [&](const QWidget *) {
                m_page->setNetInfo(OFF); // whatever comes while the box is open
                m_page->setNetInfo(ON);
                m_page->setAccessPoints({GUESTS});
                return true;
            });
            answerNextBox(1);
            if (byRecord)
                m_page->setNetInfo(ON); // behind the records that wait
            else
                UpdataWifiList(m_page.get());
            QCOMPARE(topRowShown(), byRecord);
            QTRY_VERIFY(dialogsDone() && !topRowShown());
        }
    }

    void joining_data()
    {
        // row of the network | password | sent | how that ends | what the service tells then
        rows({"0 | ab1 | [Office] [ab1] [4] | ok | [Office][ab1][4]",
              "1 | | [Guests] [] [0] | ok | [Guests][][0]",
              "1 | | [Guests] [] [0] | err | [][][4]"});
    }

    void joining()
    {
        const bool refused = cell(3) == "err"_s;
        if (refused)
            panel().fail("netT.setConnectInfo", -1);
        if (!cell(1).isEmpty())
            typeOnKeyboard(cell(1) + "\n"_s);
        const QString name = list()->nameIn(number(0));
        const QByteArray printed = printedBy([&] { touch(number(0)); });
        QCOMPARE(QString::fromUtf8(printed),
                 "slot_UpdataState = [0]\n============setConnectInfo =%1\nsetConnectInfo ===== %2\n"
                 "slot_UpdataState = [3]\ngetConnectInfo = %3\n"_s.arg(cell(2), cell(3), cell(4)));
        QCOMPARE(serviceCalls().join(u' '),
                 R"(setConnectInfo["%1","%2",false,5000] connectwifi[] )"
                 "getConnectInfo[true,5000] getSignal[true,5000]"_s.arg(name, cell(1)));
        QVERIFY(topRowShown());
        QCOMPARE(names().contains(name), refused); // then the service tells another name
        panel().set("wifi.state", 2); // on its way into a network the service is in none
        m_page->setNetInfo(ON);
        QVERIFY(topRowShown());
        // A failure is asked for again only if the service has taken the network.
        panel().set("wifi.state", 5);
        panel().clearCalls();
        if (!refused)
            answerNextBox(1);
        UpdataWifiList(m_page.get());
        QTRY_VERIFY(dialogsDone());
        QCOMPARE(serviceCalls().join(u' '), // no scan while joining
                 refused ? QString() : "getStatus[false,5000]"_s);
    }

    void joinsNothing()
    {
        for (const QString &keys : {"\x1b"_s, "\n"_s}) { // no password, and an empty one
            typeOnKeyboard(keys);
            touch(0);
        }
        whenOpen("SoftKeyboard", [this](const QWidget *) {
            m_page->setNetInfo(OFF);
            return true;
        });
        typeOnKeyboard("a\n"_s);
        touch(0);
        QVERIFY(dialogsDone() && names().isEmpty());
        m_page->setNetInfo(ON);
        const std::string bytes("a\0\xff", 3);
        m_page->setAccessPoints({{0, 50, "", "", 0}, {0, 40, bytes, "", 0}});
        touch(0); // hides its name
        QVERIFY(serviceCalls().filter("setConnectInfo"_s).isEmpty());
        touch(1); // its name is bytes, whatever is shown of it
        QCOMPARE(panel().get("wifi.user.ssid").get<std::string>(), bytes);
    }

    void busyServiceIsAskedAgain()
    {
        auto *again = m_page->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        again->setInterval(0);
        touch(1);
        panel().set("wifi.state", 7);
        panel().fail("netT.getStatus", -2, 1);
        m_page->setNetInfo(ON); // the only record of it
        QTRY_VERIFY(isTicked() && !again->isActive());

        m_page->slot_UpdataState(3);
        m_page->slot_UpdataState(4);
        QVERIFY(!again->isActive());
        panel().set("wifi.user.ssid", "Other");
        panel().fail("netT.getConnectInfo", -2, 1);
        m_page->slot_UpdataState(7);
        QVERIFY(!topRowShown()); // with the name that stood there before
        QTRY_COMPARE(topName(), "Other"_s);

        panel().fail("netT.getStatus", -2);
        m_page->setNetInfo(ON);
        QTRY_VERIFY(!again->isActive()); // nobody there
    }

    void joinsWhatTheFingerWentDownOn()
    {
        const QPoint guests = centreOf(1);
        QTest::mousePress(list()->viewport(), Qt::LeftButton, {}, guests);
        m_page->setAccessPoints({OFFICE, {3, 55, "Other", "", 0}, GUESTS});
        QTest::mouseRelease(list()->viewport(), Qt::LeftButton, {}, guests);
        QCOMPARE(topName(), "Guests"_s);
        touch(1); // by a tap that came meanwhile, and finds another network there
        QCOMPARE(topName(), "Guests"_s);
        QTRY_COMPARE((touch(1), topName()), "Other"_s);
    }

    void refreshRules_data()
    {
        rows({"seen | getAPList[true,5000] getStatus[false,5000]", "another tab", "another group",
              "off", "joining | getStatus[false,5000]"});
    }

    void refreshRules()
    {
        m_page->setPageVisible(cell(0) != "another tab"_s);
        m_page->setVisible(cell(0) != "another group"_s);
        m_page->setNetInfo(cell(0) == "off"_s ? OFF : ON);
        m_page->slot_UpdataState(cell(0) == "joining"_s ? 3 : 0);
        panel().clearCalls();
        UpdataWifiList(nullptr);
        for (int tick = 0; tick < 3; ++tick) // within ten seconds only the first has work
            UpdataWifiList(m_page.get());
        QCOMPARE(serviceCalls().join(QLatin1Char(' ')), cellOrEmpty(1));
    }

    void failureOfTheFormerNetworkIsNotTold()
    {
        for (const bool late : {true, false}) { // the answer comes late, or its signal waits
            init();
            panel().set("wifi", {{"aps", Json::array()}, {"state", 5}});
            panel().delay("netT.getStatus", late ? 300 : 0);
            std::thread timer([this] { UpdataWifiList(m_page.get()); });
            // Without handling events: a signal that is there already has to wait.
            while (!serviceCalls().contains("getStatus[false,5000]"_s))
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            if (!late)
                timer.join();
            touch(1);
            panel().set("wifi.state", 5);
            if (late)
                timer.join();
            QTimer::singleShot(200, this, [] {
                if (QWidget *box = QApplication::activeModalWidget())
                    box->hide();
            });
            QCoreApplication::processEvents();
            QVERIFY(topRowShown());
            QCOMPARE(names(), QStringList("Office"_s)); // an empty scan changes nothing
            QVERIFY(find<QLabel>("lab_Scan")->movie() == nullptr);
        }
    }

    void scanOnAnotherThread()
    {
        panel().delay("netT.getAPList", 200);
        std::thread timer([this] { UpdataWifiList(m_page.get()); });
        QTRY_VERIFY(find<QLabel>("lab_Scan")->movie() != nullptr);
        m_page->setPageVisible(false);
        m_page->setPageVisible(true);
        QTRY_COMPARE(names().size(), 4);
        timer.join();
        QCOMPARE(names(), QStringList({"Workshop"_s, "Office"_s, "Guests"_s, "Warehouse"_s}));
    }

    void device()
    {
        m_page->slot_UpdataState(7);
        panel().fail("netT.netIsExist", -4, 1);
        const QByteArray printed = printedBy([&] { m_page->setNetInfo(ON); });
        QVERIFY(printed.endsWith("net [wlan] Is not Exist!\n"));
        for (const bool absent : {true, false}) {
            if (!absent)
                m_page->setNetInfo(OFF);
            QVERIFY(!topRowShown() && names().isEmpty() && !list()->isEnabled());
            QCOMPARE(enabled("btn_WifiSwitch"), !absent);
            QCOMPARE(text("lab_WifiStatus"), absent ? "Unplugged"_s : "Enable"_s);
            m_page->setNetInfo(ON); // with the networks that were there
            QVERIFY(names().size() == 2 && list()->isEnabled());
        }
        press("btn_WifiSwitch");
        m_page->slot_SetExist(false); // and the answer never comes
        m_page->setNetInfo(ON);
        QVERIFY(!shown("label_move") && enabled("btn_WifiSwitch"));
    }

    void switchWaitsForTheRecord()
    {
        for (const auto &[on, result] : {std::pair(true, 0), {true, -1}, {false, 0}, {false, -1}}) {
            m_page->setNetInfo(on ? ON : OFF);
            const QString operation = on ? "netDeviceDown"_s : "netDeviceUp"_s;
            panel().fail("netT." + operation.toStdString(), result, 1);
            panel().clearCalls();
            const QByteArray printed = printedBy([this] { press("btn_WifiSwitch"); });
            QCOMPARE(QString::fromLatin1(printed),
                     operation + (result < 0 ? " [wlan0] error \n"_s : " [wlan0] ok \n"_s));
            QCOMPARE(serviceCalls(), QStringList(operation + R"(["wlan0",true,5000])"_s));
            m_page->setNetInfo(on ? ON : OFF); // says nothing new
            QVERIFY(!list()->isEnabled() && !enabled("btn_WifiSwitch") && shown("label_move"));
            m_page->setNetInfo(on ? OFF : ON);
            QVERIFY(!shown("label_move") && enabled("btn_WifiSwitch"));
        }
    }

    void parametersFollowTheRecords()
    {
        panel().set("net.devices.1",
                    Json::parse(R"({"sIpAddr": "10.0.0.60", "sSubnetMask": "255.0.0.0",
            "sGateway": "10.0.0.1", "sPrefDns": "8.8.8.8", "sAlterDns": "9.9.9.9"})"));
        m_page->slot_UpdataState(7);
        QStringList seen;
        whenOpen("WifiPara", [&](const QWidget *dialog) {
            const Record lease = recordOf("enable", "disable", "10.0.0.99");
            for (const Record &record : {ON, lease, OFF}) { // the last one closes the dialog
                const auto *field = dialog->findChild<QLineEdit *>("line_Ip4"_s);
                seen += field->text() + (field->isEnabled() ? " static"_s : " DHCP"_s);
                m_page->setNetInfo(record);
            }
            return true;
        });
        panel().clearCalls();
        const QByteArray printed =
            printedBy([&] { QTest::mouseClick(onTop("lab_ssid"), Qt::LeftButton); });
        QVERIFY(dialogsDone());
        QCOMPARE(seen, QStringList({"60 DHCP"_s, "7 DHCP"_s, "99 static"_s}));
        QVERIFY(
            printed.startsWith("m_strEthIP = [10.0.0.60], m_strSubnetMask = [255.0.0.0], "
                               "m_strGateWay = [10.0.0.1],m_strDnsPrimary = [8.8.8.8], "
                               "m_strDnsSecondary = [9.9.9.9] m_strMac = [02:00:5e:10:00:02]\n"));
        const QString asked = R"(getIp["wlan0",false,5000] getDns["wlan0",false,5000] )"
                              R"(isNetDeviceDhcp["wlan0",true,5000])"_s;
        QVERIFY(serviceCalls().join(QLatin1Char(' ')).startsWith(asked));
    }

    void noServiceNoJob()
    {
        panel().set("net.server", false);
        QString text;
        answerNextBox(1, &text);
        m_page->startRefresh();
        QCOMPARE(text, "netServer not run"_s);
    }

private:
    AccessPointList *list() const { return find<AccessPointList>("list_Wifi"); }

    QStringList names() const
    {
        QStringList texts;
        for (int row = 0; row < list()->count(); ++row)
            texts += list()->nameIn(row);
        return texts;
    }

    QLabel *onTop(const char *label) const
    {
        return find("wid_wifiConnect")->findChild<QLabel *>(QString::fromLatin1(label));
    }
    QString topName() const { return onTop("lab_ssid")->text(); }
    bool isTicked() const { return onTop("lab_Ok")->styleSheet().contains("tick.png"_s); }
    bool topRowShown() const { return shown("wid_wifiConnect"); }
    QPoint centreOf(int row) const { return list()->visualItemRect(list()->item(row)).center(); }
    void touch(int row)
    {
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, centreOf(row));
    }
};

QTEST_MAIN(NetWiFiTest)
#include "NetWiFiTest.moc"
