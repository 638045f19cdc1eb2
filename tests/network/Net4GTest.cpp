#include "network/Net4G.h"

#include "platform/sim/Panel.h"
#include "resources/Resources.h"
#include "tests/support/Dialogs.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include <thread>

namespace {

using Record = netT::stAllNetInfo_tag;

Record record(bool on, const std::string &address = "10.64.0.2")
{
    Record result;
    result.sDevName = "usb0";
    result.sNetType = "4G";
    result.sIpAddr = address;
    result.sFunction = on ? "enable" : "disable";
    return result;
}

sim::Json apn(const char *name, const char *mode)
{
    return {{"name", name}, {"auth", "pap"}, {"user", "u"}, {"password", "p"}, {"mode", mode}};
}

std::size_t count(const char *operation)
{
    std::size_t found = 0;
    for (const auto &call : sim::panel().calls())
        found += call.at("op") == operation ? 1 : 0;
    return found;
}

// The arguments of the latest call as JSON, empty if there is none.
QString lastCall(const char *operation)
{
    QString found;
    for (const auto &call : sim::panel().calls())
        if (call.at("op") == operation)
            found = QString::fromStdString(call.at("args").dump());
    return found;
}

} // namespace

class Net4GTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }
    void init();
    void showsTheSignal();
    void showsTheRecord_data();
    void showsTheRecord();
    void switchWaitsForTheRecord();
    void hearsTheModemOnlyWhileOn();
    void showsTheApn_data();
    void showsTheApn();
    void sendsTheApn_data();
    void sendsTheApn();
    void signalTakesNoChoiceAway();
    void registersWithTheService();

private:
    template <typename T>
    T *find(const char *name)
    {
        return m_page->findChild<T *>(QString::fromLatin1(name));
    }
    bool shown(const char *name) { return !find<QWidget>(name)->isHidden(); }
    bool enabled(const char *name) { return find<QWidget>(name)->isEnabled(); }
    QString label(const char *name) { return find<QLabel>(name)->text(); }
    QString field(const char *name) { return find<QLineEdit>(name)->text(); }
    void press(const char *name) { QTest::mouseClick(find<QWidget>(name), Qt::LeftButton); }
    void modemSays(const char *iccid, const char *imei, int csq);
    QString icon() { return find<QLabel>("lab_4gSignal")->styleSheet(); }
    static QString iconOf(int level);

    std::unique_ptr<Net4G> m_page;
};

void Net4GTest::init()
{
    sim::panel().reset();
    m_page = std::make_unique<Net4G>();
    m_page->resize(800, 500);
    m_page->retranslate();
    m_page->show();
}

void Net4GTest::modemSays(const char *iccid, const char *imei, int csq)
{
    netT::tag_atCollect info;
    info.texts[0] = iccid;
    info.texts[4] = imei;
    info.numbers[0] = csq;
    CallBackup(info, m_page.get());
}

QString Net4GTest::iconOf(int level)
{
    return "border-image: url(:/SysSet_images/SysSet_images/4G_%1.png);"_s.arg(level);
}

void Net4GTest::showsTheSignal()
{
    const std::pair<int, int> levels[] = {{0, 0},  {99, 0}, {1, 1},  {8, 1},   {9, 2},
                                          {16, 2}, {17, 3}, {24, 3}, {25, 4},  {31, 4},
                                          {32, 3}, {40, 3}, {98, 3}, {100, 3}, {-1, 3}};
    for (const auto &[csq, level] : levels) {
        m_page->setNetInfo(record(true));
        modemSays("", "", 20);
        modemSays("", "", csq);
        QCOMPARE(icon(), iconOf(level));
        m_page->setNetInfo(record(false));
        QCOMPARE(icon(), iconOf(0));
        m_page->setNetInfo(record(true));
        QCOMPARE(icon(), iconOf(level));
    }
}

void Net4GTest::showsTheRecord_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<bool>("present");
    QTest::addColumn<QString>("status"); // empty: not shown
    QTest::addColumn<QString>("octets");
    QTest::newRow("on") << true << QByteArray("10.0.0.7") << true << QString() << "10|0|0|7"_s;
    QTest::newRow("three parts") << true << QByteArray("10.0.7") << true << QString() << "|||"_s;
    QTest::newRow("off") << false << QByteArray() << true << "Enable"_s
                         << "|||"_s;
    QTest::newRow("absent") << true << QByteArray("1.2.3.4") << false << "Unplugged"_s
                            << "|||"_s;
}

void Net4GTest::showsTheRecord()
{
    QFETCH(bool, on);
    QFETCH(QByteArray, address);
    QFETCH(bool, present);
    m_page->setNetInfo(record(true));
    modemSays("", "", 31);
    sim::panel().set("net.devices.2.present", present);
    const QByteArray printed =
        printedBy([&] { m_page->setNetInfo(record(on, address.toStdString())); });
    QVERIFY(printed.startsWith("paraMnetnode.sDevName = [usb0]\nparaMnetnode.sFunction = ["));
    QVERIFY(printed.contains("paraMnetnode.sIpAddr = [" + address + "][10.64.0.2]\n"));
    QCOMPARE(printed.endsWith("net [usb0] Is not Exist!\n"), !present);
    QCOMPARE(lastCall("netT.netIsExist"), R"(["usb0",false,5000])"_s);
    QTEST(shown("lab_4gStatus") ? label("lab_4gStatus") : QString(), "status");
    QTEST(label("lab_4gIP_1") + "|"_s + label("lab_4gIP_2") + "|"_s + label("lab_4gIP_3") + "|"_s +
              label("lab_4gIP_4"),
          "octets");
    for (const char *control : {"btn_4G", "radio_auto", "radio_manual", "line_ApnName"})
        QCOMPARE(enabled(control), present);
    QCOMPARE(icon(), iconOf(on && present ? 4 : 0));
}

void Net4GTest::switchWaitsForTheRecord()
{
    for (const bool wasOn : {true, false}) {
        const char *operation = wasOn ? "netT.netDeviceDown" : "netT.netDeviceUp";
        m_page->setNetInfo(record(wasOn));
        sim::panel().fail(operation, -2);
        const QByteArray printed = printedBy([this] { press("btn_4G"); });
        QCOMPARE(printed, QByteArray(wasOn ? "netDeviceDown" : "netDeviceUp") + " [usb0] Err\n");
        QCOMPARE(lastCall(operation), R"(["usb0",false,5000])"_s);
        m_page->setNetInfo(record(wasOn)); // completes nothing
        press("btn_4G");
        QCOMPARE(count(operation), std::size_t(1));
        QVERIFY(shown("lab_move") && !shown("lab_null") && !enabled("btn_4G"));
        m_page->setNetInfo(record(!wasOn));
        QVERIFY(!shown("lab_move") && shown("lab_null") && enabled("btn_4G"));
    }
}

void Net4GTest::hearsTheModemOnlyWhileOn()
{
    modemSays("8986<b>", "86", 31); // comes before the first record, and is not lost
    QCOMPARE(label("label_iccid"), QString());
    m_page->setNetInfo(record(true));
    m_page->setNetInfo(record(true));
    QCOMPARE(label("label_iccid"), "8986<b>"_s);
    QCOMPARE(find<QLabel>("label_iccid")->textFormat(), Qt::PlainText);
    QCOMPARE(label("label_Imei"), "86"_s);
    QCOMPARE(icon(), iconOf(4));

    const std::size_t before = count("netT.getApn");
    modemSays("", "87", 31);
    QCOMPARE(count("netT.getApn"), before + 1); // heard once
    QCOMPARE(label("label_iccid") + label("label_Imei"), "87"_s);

    std::thread([this] {
        for (int csq = 0; csq < 5; ++csq)
            modemSays("", "87", csq);
    }).join();
    QCoreApplication::processEvents();
    QCOMPARE(count("netT.getApn"), before + 2); // a burst, once

    press("btn_4G");
    modemSays("", "88", 31);
    m_page->setNetInfo(record(false));
    modemSays("", "89", 31);
    QCOMPARE(label("label_Imei"), "87"_s);
    m_page->setNetInfo(record(true));
    QCOMPARE(label("label_Imei"), "89"_s);
}

void Net4GTest::showsTheApn_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<QString>("mode");
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("manualChecked");
    QTest::addColumn<QString>("fields");
    const QString filled = "cmnet|pap|u|p"_s;
    QTest::newRow("manual") << true << "enable"_s << 0 << true << filled;
    QTest::newRow("default") << true << "disable"_s << 0 << false << filled;
    QTest::newRow("anything else") << true << QString() << 0 << false << filled;
    QTest::newRow("manual while off") << false << "enable"_s << 0 << false << filled;
    QTest::newRow("late") << true << "enable"_s << -2 << false << "|none||"_s;
}

void Net4GTest::showsTheApn()
{
    QFETCH(bool, on);
    QFETCH(QString, mode);
    QFETCH(int, result);
    QFETCH(bool, manualChecked);
    m_page->setNetInfo(record(true));
    sim::panel().set("modem.apn", apn("cmnet", qPrintable(mode)));
    if (result < 0)
        sim::panel().fail("netT.getApn", result);
    if (on)
        modemSays("", "", 1);
    else
        m_page->setNetInfo(record(false));
    QCOMPARE(lastCall("netT.getApn"), "[false,1000]"_s);
    QCOMPARE(find<QRadioButton>("radio_manual")->isChecked(), manualChecked);
    QVERIFY(shown("wdg_vpn") == manualChecked && shown("lab_vpn") != manualChecked);
    QTEST(field("line_ApnName") + "|"_s + field("line_ApnAuth") + "|"_s + field("line_ApnUsr") +
              "|"_s + field("line_ApnPwd"),
          "fields");
}

void Net4GTest::sendsTheApn_data()
{
    QTest::addColumn<QByteArray>("name"); // that the service has, in manual mode
    QTest::addColumn<QString>("pressed");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("sent"); // name, password and mode; empty: nothing
    const auto row = [](const char *title, const char *name, const char *pressed, const char *keys,
                        const char *sent) {
        QTest::newRow(title) << QByteArray(name) << QString::fromLatin1(pressed)
                             << QString::fromLatin1(keys) << QString::fromLatin1(sent);
    };
    row("name", "", "line_ApnName", "cmnet\n", "cmnet|p|enable");
    row("password", "a", "line_ApnPwd", "s3\n", "a|s3|enable");
    row("no more than 15", "a", "line_ApnPwd", "abcdefghijklmnopq\n", "a|abcdefghijklmno|enable");
    row("closed without an entry", "a", "line_ApnName", "\x1b", "a|p|enable");
    row("password without a name", "", "line_ApnPwd", "s3\n", "");
    row("manual without a name", "", "radio_manual", "", "");
    row("manual", "a", "radio_manual", "", "a|p|enable");
    row("default without a name", "", "radio_auto", "", "|p|disable");
}

void Net4GTest::sendsTheApn()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, pressed);
    QFETCH(QString, keys);
    QFETCH(QString, sent);
    sim::panel().set("modem.apn", apn(name.constData(), "enable"));
    m_page->setNetInfo(record(true));
    if (!keys.isEmpty()) {
        whenOpen("SoftKeyboard", [&](QWidget *keyboard) {
            const QRect place = keyboard->geometry().translated(-m_page->mapToGlobal({0, 0}));
            const bool masked = keyboard->findChild<QWidget *>("btn_Eye"_s)->isVisible();
            return place == QRect(80, 75, 640, 450) && masked == (pressed == "line_ApnPwd"_s);
        });
    }
    typeOnKeyboard(keys);
    press(qPrintable(pressed));
    QVERIFY(dialogsDone());
    QCOMPARE(shown("wdg_vpn"), pressed != "radio_auto"_s);
    if (sent.isEmpty()) {
        QCOMPARE(count("netT.setApn"), std::size_t(0));
        return;
    }
    QCOMPARE(count("netT.setApn"), std::size_t(1));
    const QStringList parts = sent.split(QLatin1Char('|'));
    QCOMPARE(
        lastCall("netT.setApn"),
        R"([{"auth":"pap","mode":"%1","name":"%2","password":"%3","user":"u"},false,1000])"_s.arg(
            parts[2], parts[0], parts[1]));
}

void Net4GTest::signalTakesNoChoiceAway()
{
    sim::panel().set("modem.apn", apn("", "disable"));
    m_page->setNetInfo(record(true));
    press("radio_manual");
    modemSays("", "", 5); // the choice has no name yet and is not sent
    QVERIFY(shown("wdg_vpn"));
    whenOpen("SoftKeyboard", [this](QWidget *) {
        modemSays("", "", 15);
        return true;
    });
    typeOnKeyboard("cmnet\n"_s);
    press("line_ApnName");
    QVERIFY(lastCall("netT.setApn").contains(R"("mode":"enable","name":"cmnet")"_s));
    press("radio_auto");
    press("radio_manual");
    sim::panel().set("modem.apn", apn("other", "disable")); // set by somebody else
    modemSays("", "", 25);
    QVERIFY(!shown("wdg_vpn"));
    QCOMPARE(field("line_ApnName"), "other"_s);
}

void Net4GTest::registersWithTheService()
{
    const QByteArray first = "init 4g At Info NetWork start\n";
    sim::panel().set("net.server", false);
    QString said;
    answerNextBox(1, &said);
    QCOMPARE(printedBy([this] { m_page->start(); }), QByteArray());
    QCOMPARE(said, "netServer not run"_s);
    sim::panel().set("net.server", true);
    sim::panel().fail("netT.get4gAtInfoCallBackup", -1, 1);
    QCOMPARE(printedBy([this] { m_page->start(); }), first + "init 4g At Info NetWork Error\n");
    QCOMPARE(printedBy([this] { m_page->start(); }), first + "init 4g At Info NetWork OK\n");

    m_page->setNetInfo(record(true));
    QTRY_COMPARE(label("label_Imei"), "860000000000017"_s); // from the service's own thread
    sim::panel().set("net.devices.2.present", false);
    sim::panel().set("modem.csq", 5);
    sim::panel().set("net.devices.2.present", true); // the modem speaks when it is there again
    QTRY_COMPARE(icon(), iconOf(1));
    sim::panel().reset(); // no callback outlives the page
}

QTEST_MAIN(Net4GTest)
#include "Net4GTest.moc"
