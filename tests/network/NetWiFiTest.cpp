#include "network/NetWiFi.h"

#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMovie>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

#include <thread>

using sim::Json;
using sim::panel;
using AccessPoint = netT::stApInfo_tag;
using Record = netT::stAllNetInfo_tag;

namespace {

Record recordOf(const char *function, const char *ip = "10.0.0.7")
{
    Record result;
    result.sDevName = "wlan0";
    result.sNetType = "WIFI";
    result.sDhcp = "enable";
    result.sMacAddr = "02:00:5e:10:00:02";
    result.sIpAddr = ip;
    result.sSubnetMask = "255.255.255.0";
    result.sGateway = "10.0.0.1";
    result.sFunction = function;
    return result;
}

const Record ON = recordOf("enable");
const Record OFF = recordOf("disable");
const AccessPoint OFFICE = {1, 60, "Office", "", 4};
const AccessPoint GUESTS = {2, 50, "Guests", "", 0};
const QString FAILED =
    "Failed to connect Network! Wrong password or weak signal, please reconnect."_s;

// Calls of the network service, in order, each with its arguments.
QStringList serviceCalls()
{
    QStringList calls;
    for (const Json &call : panel().calls()) {
        const std::string op = call.at("op");
        if (op.rfind("netT.", 0) == 0)
            calls += QString::fromStdString(op.substr(5) + call.at("args").dump());
    }
    return calls;
}

QString stateLines(const QByteArray &printed)
{
    QString states;
    for (const QByteArray &line : printed.split('\n')) {
        if (line.startsWith("slot_UpdataState = ["))
            states += QString::fromLatin1(line.mid(20).chopped(1));
    }
    return states;
}

} // namespace

class NetWiFiTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init();
    void signalIcon_data();
    void signalIcon();
    void noLevelLeavesTheIcon();
    void names_data();
    void names();
    void states_data();
    void states();
    void recordsReportTheState_data();
    void recordsReportTheState();
    void failureIsToldOnce();
    void joining_data();
    void joining();
    void joinsNothing();
    void passingStateDoesNotEndJoining();
    void busyServiceIsAskedAgain();
    void joinsWhatTheFingerWentDownOn();
    void refreshRules_data();
    void refreshRules();
    void emptyScanLeavesTheList();
    void lateAnswerAboutTheFormerNetwork();
    void scanOnAnotherThread();
    void device();
    void switchIsPressed();
    void fiveHundredOfAnyBytes();
    void parametersFollowTheRecords();
    void noServiceNoJob();

private:
    template <typename T = QWidget>
    T *find(const char *name) const
    {
        return m_page->findChild<T *>(QString::fromLatin1(name));
    }
    QListWidget *list() const { return find<QListWidget>("list_Wifi"); }
    QStringList rows() const;
    // Labels of what is seen in the list, in the order of the rows.
    QString inRow(int row, const char *label, bool style = false) const;
    QLabel *onTop(const char *label) const
    {
        return find("wid_wifiConnect")->findChild<QLabel *>(QString::fromLatin1(label));
    }
    bool topRowShown() const { return !find("wid_wifiConnect")->isHidden(); }
    void setServiceState(int state) { panel().set("wifi.state", state); }
    void touch(int row);

    std::unique_ptr<NetWiFi> m_page;
};

void NetWiFiTest::init()
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

QStringList NetWiFiTest::rows() const
{
    QStringList texts;
    for (int row = 0; row < list()->count(); ++row)
        texts += list()->item(row)->text();
    return texts;
}

QString NetWiFiTest::inRow(int row, const char *label, bool style) const
{
    const QPoint centre = list()->visualItemRect(list()->item(row)).center();
    for (const ListItem *item : list()->viewport()->findChildren<ListItem *>()) {
        const auto *found = item->findChild<QLabel *>(QString::fromLatin1(label));
        if (item->isVisible() && item->geometry().contains(centre))
            return style ? found->styleSheet() : found->text();
    }
    return "no widget"_s;
}

void NetWiFiTest::touch(int row)
{
    const QRect rect = list()->visualItemRect(list()->item(row));
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, rect.center());
}

void NetWiFiTest::signalIcon_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("security");
    QTest::addColumn<QString>("icon");
    const auto row = [](int level, int security, const char *icon) {
        QTest::addRow("level %d, security %d", level, security)
            << level << security
            << (*icon == '\0' ? QString()
                              : "image: url(:/SysSet_images/SysSet_images/%1.png);"_s.arg(
                                    QLatin1String(icon)));
    };
    row(0, 0, "wifi1_0");
    row(1, 1, "wifi1_1");
    row(25, 0, "wifi1_1");
    row(26, 2, "wifi2_2");
    row(50, 0, "wifi1_2");
    row(51, 3, "wifi2_3");
    row(75, 2, "wifi2_3");
    row(76, 4, "wifi2_4");
    row(100, -1, "wifi1_4");
    row(101, 0, "");
    row(-1, 0, "");
}

void NetWiFiTest::signalIcon()
{
    QFETCH(int, level);
    QFETCH(int, security);
    m_page->setAccessPoints({{0, level, "a", "", security}});
    QTEST(inRow(0, "lab_signal", true), "icon");
}

void NetWiFiTest::noLevelLeavesTheIcon()
{
    const QString office = inRow(0, "lab_signal", true);
    const QString guests = inRow(1, "lab_signal", true);
    AccessPoint stronger = GUESTS;
    stronger.nLevel = 101; // comes to stand above
    AccessPoint weaker = OFFICE;
    weaker.nLevel = -1;
    m_page->setAccessPoints({weaker, stronger});
    QCOMPARE(rows(), QStringList({"Guests"_s, "Office"_s}));
    QCOMPARE(inRow(0, "lab_signal", true), guests);
    QCOMPARE(inRow(1, "lab_signal", true), office);
}

void NetWiFiTest::names_data()
{
    QTest::addColumn<QByteArray>("ssid");
    QTest::addColumn<QString>("shown");
    QTest::newRow("UTF-8") << QByteArray("装配") << "装配"_s;
    QTest::newRow("markup") << QByteArray("<b>x</b>") << "<b>x</b>"_s;
    QTest::newRow("no UTF-8") << QByteArray("a\xff\x80") << "a\\xFF\\x80"_s;
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << "a\\x00b"_s;
    QTest::newRow("hidden") << QByteArray() << "Hidden network"_s;
}

void NetWiFiTest::names()
{
    QFETCH(QByteArray, ssid);
    m_page->setAccessPoints({{0, 50, ssid.toStdString(), "", 0}});
    QTEST(inRow(0, "lab_ssid"), "shown");
    QTEST(list()->item(0)->text(), "shown");
    QCOMPARE(list()->findChild<QLabel *>("lab_ssid"_s)->textFormat(), Qt::PlainText);
    touch(0);
    QCOMPARE(panel().get("wifi.user.ssid").get<std::string>(), ssid.toStdString());
}

void NetWiFiTest::states_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("visible"); // the page
    QTest::addColumn<QString>("look"); // style of the name; empty: no top row
    for (const int state : {0, 2, 4, 6, 8, -1})
        QTest::addRow("%d", state) << state << true << QString();
    QTest::newRow("1") << 1 << true << "color: rgb(0, 0, 0);"_s;
    QTest::newRow("3") << 3 << true << "color: rgb(0, 0, 0);"_s;
    QTest::newRow("3 unseen") << 3 << false << "color: rgb(0, 0, 0);"_s;
    QTest::newRow("7") << 7 << true << "color: rgb(71, 148, 214);"_s;
    QTest::newRow("7 unseen") << 7 << false << "color: rgb(71, 148, 214);"_s;
}

void NetWiFiTest::states()
{
    QFETCH(int, state);
    QFETCH(bool, visible);
    QFETCH(QString, look);
    panel().set("wifi", {{"user", {{"ssid", "Office"}, {"password", "p"}}}, {"signal", 30}});
    m_page->setPageVisible(visible);
    const QByteArray printed = printedBy([&] {
        m_page->slot_UpdataState(state);
        QCOMPARE(topRowShown(), visible && !look.isEmpty());
        m_page->setPageVisible(true);
    });
    QCOMPARE(stateLines(printed), QString::number(state));
    QCOMPARE(printed.contains("getConnectInfo = [Office][p][4]\n"), !look.isEmpty());
    QCOMPARE(topRowShown(), !look.isEmpty());
    QCOMPARE(rows().contains("Office"_s), look.isEmpty());
    if (look.isEmpty())
        return;
    QCOMPARE(onTop("lab_ssid")->text(), "Office"_s);
    QCOMPARE(onTop("lab_ssid")->styleSheet(), look);
    QVERIFY(onTop("lab_signal")->styleSheet().contains("wifi2_2.png"_s));
    m_page->setAccessPoints({OFFICE}); // a new scan tells another level
    QVERIFY(onTop("lab_signal")->styleSheet().contains("wifi2_3.png"_s));
    const bool connected = state == 7;
    QCOMPARE(onTop("lab_Ok")->styleSheet().contains("tick.png"_s), connected);
    QCOMPARE(onTop("lab_Ok")->movie() != nullptr, !connected);
    QCOMPARE(onTop("lab_ip")->isHidden(), !connected);
    QCOMPARE(onTop("lab_ip")->text(), "10.0.0.7"_s);
    m_page->slot_UpdataState(4); // and the network is back in the list
    QVERIFY(!topRowShown() && rows().contains("Office"_s));
}

void NetWiFiTest::recordsReportTheState_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("service");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<QString>("reported");
    QTest::newRow("joined") << 0 << 7 << true << "7"_s;
    QTest::newRow("joined, unseen") << 0 << 7 << false << "7"_s;
    QTest::newRow("link lost") << 7 << 4 << true << "4"_s;
    QTest::newRow("still in none") << 0 << 2 << true << QString();
    QTest::newRow("joining") << 0 << 1 << true << "1"_s;
    QTest::newRow("still joining") << 3 << 3 << true << QString();
    QTest::newRow("joining given up") << 3 << 0 << true << "0"_s;
    QTest::newRow("failed") << 3 << 5 << true << "5"_s;
    QTest::newRow("failed, unseen") << 3 << 5 << false << QString();
    QTest::newRow("failed before") << 5 << 5 << true << QString();
}

void NetWiFiTest::recordsReportTheState()
{
    QFETCH(int, before);
    QFETCH(int, service);
    QFETCH(bool, visible);
    if (before == 5)
        answerNextBox(1);
    m_page->slot_UpdataState(before);
    setServiceState(service);
    m_page->setPageVisible(visible);
    const QByteArray printed = printedBy([&] {
        if (service == 5 && before != 5 && visible)
            answerNextBox(1);
        m_page->setNetInfo(ON);
        QCoreApplication::processEvents();
        m_page->setNetInfo(service == 7 ? OFF : ON); // 7 is told with every record
        QTRY_VERIFY(dialogsDone());
    });
    QTEST(stateLines(printed), "reported");
}

void NetWiFiTest::failureIsToldOnce()
{
    m_page->slot_UpdataState(3);
    setServiceState(5);
    QString text;
    int boxes = 0;
    whenOpen("MessageBox", [&](const QWidget *) {
        ++boxes;
        m_page->setNetInfo(OFF); // whatever comes while the box is open
        m_page->setNetInfo(ON);
        m_page->setAccessPoints({GUESTS});
        return true;
    });
    answerNextBox(1, &text);
    UpdataWifiList(m_page.get());
    QTRY_VERIFY(dialogsDone());
    QCOMPARE(text, FAILED);
    QCOMPARE(boxes, 1);
    QVERIFY(!topRowShown());
}

void NetWiFiTest::joining_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<int>("result");
    QTest::addColumn<QByteArray>("printed");
    QTest::addColumn<QString>("sent");
    QTest::newRow("secured") << 0 << "ab1\n"_s << 0
                             << QByteArray("slot_UpdataState = [0]\n"
                                           "============setConnectInfo =[Office] [ab1] [4]\n"
                                           "setConnectInfo ===== ok\n"
                                           "slot_UpdataState = [3]\n"
                                           "getConnectInfo = [Office][ab1][4]\n")
                             << R"(setConnectInfo["Office","ab1",false,5000])"_s;
    QTest::newRow("open") << 1 << QString() << 0
                          << QByteArray("slot_UpdataState = [0]\n"
                                        "============setConnectInfo =[Guests] [] [0]\n"
                                        "setConnectInfo ===== ok\n"
                                        "slot_UpdataState = [3]\n"
                                        "getConnectInfo = [Guests][][0]\n")
                          << R"(setConnectInfo["Guests","",false,5000])"_s;
    QTest::newRow("refused") << 1 << QString() << -1
                             << QByteArray("slot_UpdataState = [0]\n"
                                           "============setConnectInfo =[Guests] [] [0]\n"
                                           "setConnectInfo ===== err\n"
                                           "slot_UpdataState = [3]\n"
                                           "getConnectInfo = [][][4]\n")
                             << R"(setConnectInfo["Guests","",false,5000])"_s;
}

void NetWiFiTest::joining()
{
    QFETCH(int, row);
    QFETCH(QString, keys);
    QFETCH(int, result);
    QFETCH(QString, sent);
    if (result < 0)
        panel().fail("netT.setConnectInfo", result);
    typeOnKeyboard(keys);
    const QString name = rows().at(row);
    const QByteArray printed = printedBy([&] { touch(row); });
    QTEST(printed, "printed");
    QCOMPARE(serviceCalls(), QStringList({sent, "connectwifi[]"_s, "getConnectInfo[true,5000]"_s,
                                          "getSignal[true,5000]"_s}));
    QVERIFY(topRowShown());
    QCOMPARE(rows().contains(name), result < 0); // then the service tells another name
    // A failure is asked for again only if the service has taken the network.
    setServiceState(5);
    panel().clearCalls();
    if (result == 0)
        answerNextBox(1);
    UpdataWifiList(m_page.get());
    QTRY_VERIFY(dialogsDone());
    const QStringList polled = serviceCalls();
    QCOMPARE(polled.contains("getStatus[false,5000]"_s), result == 0);
    QVERIFY(!polled.contains("getAPList[true,5000]"_s)); // while joining
}

void NetWiFiTest::joinsNothing()
{
    typeOnKeyboard("\x1b"_s); // no password
    touch(0);
    typeOnKeyboard("\n"_s); // an empty one
    touch(0);
    whenOpen("SoftKeyboard", [this](const QWidget *) {
        m_page->setNetInfo(OFF);
        return true;
    });
    typeOnKeyboard("a\n"_s);
    touch(0);
    QVERIFY(dialogsDone());
    QVERIFY(serviceCalls().filter("setConnectInfo"_s).isEmpty());
    QVERIFY(rows().isEmpty());
}

// On its way into a network the service passes through states in which it is in none.
void NetWiFiTest::passingStateDoesNotEndJoining()
{
    touch(1);
    setServiceState(2);
    m_page->setNetInfo(ON);
    QVERIFY(topRowShown());
}

void NetWiFiTest::busyServiceIsAskedAgain()
{
    auto *again = m_page->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    again->setInterval(0);
    touch(1);
    panel().set("wifi.state", 7);
    panel().fail("netT.getStatus", -2, 1);
    m_page->setNetInfo(ON); // the only record of it
    QTRY_VERIFY(onTop("lab_Ok")->styleSheet().contains("tick.png"_s));
    QVERIFY(!again->isActive());

    m_page->slot_UpdataState(4);
    panel().set("wifi.user.ssid", "Other");
    panel().fail("netT.getConnectInfo", -2, 1);
    m_page->slot_UpdataState(7);
    QVERIFY(!topRowShown()); // with the name that stood there before
    QTRY_COMPARE(onTop("lab_ssid")->text(), "Other"_s);

    panel().fail("netT.getStatus", -2);
    m_page->setNetInfo(ON);
    panel().clearCalls();
    QTRY_VERIFY(!serviceCalls().isEmpty());
    QVERIFY(!again->isActive()); // nobody there
}

void NetWiFiTest::joinsWhatTheFingerWentDownOn()
{
    const QPoint guests = list()->visualItemRect(list()->item(1)).center();
    QTest::mousePress(list()->viewport(), Qt::LeftButton, {}, guests);
    AccessPoint other = {3, 55, "Other", "", 0};
    m_page->setAccessPoints({OFFICE, other, GUESTS});
    QTest::mouseRelease(list()->viewport(), Qt::LeftButton, {}, guests);
    QCOMPARE(onTop("lab_ssid")->text(), "Guests"_s);
    touch(1); // by a tap that came meanwhile, and finds another network there
    QCOMPARE(onTop("lab_ssid")->text(), "Guests"_s);
    QTRY_COMPARE((touch(1), onTop("lab_ssid")->text()), "Other"_s);
}

void NetWiFiTest::refreshRules_data()
{
    QTest::addColumn<bool>("tab");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<bool>("on");
    QTest::addColumn<int>("state");
    QTest::addColumn<QStringList>("calls");
    const QString scan = "getAPList[true,5000]"_s;
    const QString poll = "getStatus[false,5000]"_s;
    QTest::newRow("seen") << true << true << true << 0 << QStringList({scan, poll});
    QTest::newRow("another tab") << false << true << true << 0 << QStringList();
    QTest::newRow("another group") << true << false << true << 0 << QStringList();
    QTest::newRow("off") << true << true << false << 0 << QStringList();
    QTest::newRow("connecting") << true << true << true << 3 << QStringList({poll});
    QTest::newRow("after a failure") << true << true << true << 5 << QStringList({scan});
    QTest::newRow("connected") << true << true << true << 7 << QStringList({scan, poll});
}

void NetWiFiTest::refreshRules()
{
    QFETCH(bool, tab);
    QFETCH(bool, shown);
    QFETCH(bool, on);
    QFETCH(int, state);
    m_page->setPageVisible(tab);
    m_page->setVisible(shown);
    if (!on)
        m_page->setNetInfo(OFF);
    if (state == 5)
        answerNextBox(1);
    m_page->slot_UpdataState(state);
    panel().clearCalls();
    UpdataWifiList(nullptr);
    for (int tick = 0; tick < 3; ++tick) // within ten seconds only the first has work
        UpdataWifiList(m_page.get());
    QTEST(serviceCalls(), "calls");
}

void NetWiFiTest::emptyScanLeavesTheList()
{
    panel().set("wifi.aps", Json::array());
    const QSignalSpy begins(m_page.get(), &NetWiFi::sgl_MovieStart);
    const QSignalSpy refreshed(m_page.get(), &NetWiFi::sgl_RefWifiList);
    UpdataWifiList(m_page.get());
    QCOMPARE(begins.count(), 1);
    QCOMPARE(refreshed.count(), 0);
    QCOMPARE(rows(), QStringList({"Office"_s, "Guests"_s}));
    QVERIFY(find<QLabel>("lab_Scan")->movie() == nullptr);
}

void NetWiFiTest::lateAnswerAboutTheFormerNetwork()
{
    panel().set("wifi", {{"aps", Json::array()}, {"state", 5}});
    panel().delay("netT.getStatus", 300);
    std::thread timer([this] { UpdataWifiList(m_page.get()); });
    QTRY_VERIFY(!serviceCalls().isEmpty()); // has scanned, and asks now
    QTest::qWait(50);
    touch(1);
    timer.join();
    QCoreApplication::processEvents();
    QVERIFY(topRowShown());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void NetWiFiTest::scanOnAnotherThread()
{
    panel().delay("netT.getAPList", 200);
    std::thread timer([this] { UpdataWifiList(m_page.get()); });
    QTRY_VERIFY(find<QLabel>("lab_Scan")->movie() != nullptr);
    m_page->setPageVisible(false);
    m_page->setPageVisible(true);
    QTRY_COMPARE(rows().size(), 4);
    timer.join();
    QCOMPARE(rows(), QStringList({"Workshop"_s, "Office"_s, "Guests"_s, "Warehouse"_s}));
}

void NetWiFiTest::device()
{
    m_page->slot_UpdataState(7);
    panel().fail("netT.netIsExist", -4, 1);
    const QByteArray printed = printedBy([&] { m_page->setNetInfo(ON); });
    QVERIFY(printed.endsWith("net [wlan] Is not Exist!\n"));
    for (const bool absent : {true, false}) {
        if (!absent)
            m_page->setNetInfo(OFF);
        QVERIFY(!topRowShown() && rows().isEmpty() && !list()->isEnabled());
        QCOMPARE(find("btn_WifiSwitch")->isEnabled(), !absent);
        QCOMPARE(find<QLabel>("lab_WifiStatus")->text(), absent ? "Unplugged"_s : "Enable"_s);
        m_page->setNetInfo(ON); // with the networks that were there
        QVERIFY(rows().size() == 2 && list()->isEnabled());
    }
    QCOMPARE(m_page->deviceName(), std::string("wlan0"));
}

void NetWiFiTest::switchIsPressed()
{
    for (const int result : {0, -1}) {
        for (const bool on : {true, false}) {
            init();
            m_page->setNetInfo(on ? ON : OFF);
            const char *operation = on ? "netDeviceDown" : "netDeviceUp";
            if (result < 0)
                panel().fail(std::string("netT.") + operation, result);
            panel().clearCalls();
            const QByteArray printed = printedBy([&] {
                QTest::mouseClick(find("btn_WifiSwitch"), Qt::LeftButton);
                QTest::mouseClick(find("btn_WifiSwitch"), Qt::LeftButton);
            });
            const QString line = result < 0 ? "%1 [wlan0] error \n"_s : "%1 [wlan0] ok \n"_s;
            QCOMPARE(printed, line.arg(QLatin1String(operation)).toLatin1());
            QCOMPARE(serviceCalls(),
                     QStringList(QLatin1String(operation) + R"(["wlan0",true,5000])"_s));
            m_page->setNetInfo(on ? ON : OFF); // says nothing new
            QVERIFY(!list()->isEnabled());
            QVERIFY(!find("label_move")->isHidden());
            m_page->setNetInfo(on ? OFF : ON);
            QVERIFY(find("label_move")->isHidden());
            QVERIFY(find("btn_WifiSwitch")->isEnabled());

            QTest::mouseClick(find("btn_WifiSwitch"), Qt::LeftButton);
            m_page->slot_SetExist(false); // and the answer never comes
            m_page->setNetInfo(on ? OFF : ON);
            QVERIFY(find("label_move")->isHidden());
            QVERIFY(find("btn_WifiSwitch")->isEnabled());
        }
    }
}

void NetWiFiTest::fiveHundredOfAnyBytes()
{
    std::vector<AccessPoint> many;
    for (int i = 0; i < 500; ++i) {
        std::string ssid(32, '\0');
        for (char &byte : ssid)
            byte = static_cast<char>(std::rand()); // NOLINT(concurrency-mt-unsafe)
        many.push_back({i, i % 103 - 1, ssid, "", i % 5});
    }
    many[7].sSsid = many[8].sSsid = "Twin";
    m_page->setAccessPoints(many);
    QCOMPARE(list()->count(), 500);
    const int visible = list()->viewport()->height() / list()->sizeHintForRow(0) + 2;
    QVERIFY(list()->viewport()->findChildren<ListItem *>().size() <= visible);
    list()->scrollToBottom();
    const int place = list()->verticalScrollBar()->value();
    QCOMPARE(inRow(499, "lab_ssid"), rows().last());
    for (AccessPoint &accessPoint : many)
        accessPoint.nLevel = (accessPoint.nLevel + 50) % 100;
    m_page->setAccessPoints(many);
    QCOMPARE(list()->verticalScrollBar()->value(), place);
    QCOMPARE(inRow(499, "lab_ssid"), rows().last());
    m_page->setAccessPoints({GUESTS});
    QTRY_COMPARE(inRow(0, "lab_ssid"), "Guests"_s);
}

void NetWiFiTest::parametersFollowTheRecords()
{
    panel().set("net.devices.1", {{"sIpAddr", "10.0.0.7"},
                                  {"sSubnetMask", "255.0.0.0"},
                                  {"sGateway", "10.0.0.1"},
                                  {"sPrefDns", "8.8.8.8"},
                                  {"sAlterDns", "9.9.9.9"}});
    m_page->slot_UpdataState(7);
    QStringList seen;
    whenOpen("WifiPara", [&](const QWidget *dialog) {
        Record lease = recordOf("enable", "10.0.0.99");
        lease.sDhcp = "disable";
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
    QCOMPARE(seen, QStringList({"7 DHCP"_s, "7 DHCP"_s, "99 static"_s}));
    QVERIFY(printed.startsWith("m_strEthIP = [10.0.0.7], m_strSubnetMask = [255.0.0.0], "
                               "m_strGateWay = [10.0.0.1],m_strDnsPrimary = [8.8.8.8], "
                               "m_strDnsSecondary = [9.9.9.9] m_strMac = [02:00:5e:10:00:02]\n"));
    QCOMPARE(serviceCalls().mid(0, 3),
             QStringList({R"(getIp["wlan0",false,5000])"_s, R"(getDns["wlan0",false,5000])"_s,
                          R"(isNetDeviceDhcp["wlan0",true,5000])"_s}));
}

void NetWiFiTest::noServiceNoJob()
{
    panel().set("net.server", false);
    QString text;
    answerNextBox(1, &text);
    m_page->startRefresh();
    QCOMPARE(text, "netServer not run"_s);
}

QTEST_MAIN(NetWiFiTest)
#include "NetWiFiTest.moc"
