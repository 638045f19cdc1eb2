#include "network/Net4G.h"

#include "resources/Resources.h"
#include "tests/support/PageTest.h"

#include <thread>

using sim::panel;
using Record = netT::stAllNetInfo_tag;

namespace {

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

} // namespace

class Net4GTest : public PageTest<Net4G>
{
    Q_OBJECT

private slots:
    void initTestCase() { loadResources(); }

    void init()
    {
        panel().reset();
        m_page = std::make_unique<Net4G>();
        m_page->resize(800, 500);
        m_page->retranslate();
        m_page->show();
    }

    void showsTheSignal()
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

    void showsTheRecord_data()
    {
        // the device | its address | status, if shown | octets
        rows({"on | 10.0.0.7 | | 10 0 0 7", "on | 10.0.7", "off | | Enable",
              "absent | 1.2.3.4 | Unplugged"});
    }

    void showsTheRecord()
    {
        const bool on = cell(0) != "off"_s;
        const bool present = cell(0) != "absent"_s;
        const std::string address = cell(1).toStdString();
        m_page->setNetInfo(record(true));
        modemSays("", "", 31);
        panel().set("net.devices.2.present", present);
        const QByteArray printed = printedBy([&] { m_page->setNetInfo(record(on, address)); });
        QVERIFY(printed.contains("paraMnetnode.sIpAddr = [" + QByteArray::fromStdString(address) +
                                 "][10.64.0.2]\n"));
        QCOMPARE(printed.endsWith("net [usb0] Is not Exist!\n"), !present);
        QCOMPARE(lastCall("netT.netIsExist"), R"(["usb0",false,5000])"_s);
        QCOMPARE(shown("lab_4gStatus") ? text("lab_4gStatus") : QString(), cellOrEmpty(2));
        QCOMPARE(octets("lab_4gIP_").replace(u'|', u' ').trimmed(), cellOrEmpty(3));
        for (const char *control : {"btn_4G", "radio_auto", "radio_manual", "line_ApnName"})
            QCOMPARE(enabled(control), present);
        QCOMPARE(icon(), iconOf(on && present ? 4 : 0));
    }

    void switchWaitsForTheRecord()
    {
        for (const bool wasOn : {true, false}) {
            const char *operation = wasOn ? "netT.netDeviceDown" : "netT.netDeviceUp";
            m_page->setNetInfo(record(wasOn));
            panel().fail(operation, -2);
            const QByteArray printed = printedBy([this] { press("btn_4G"); });
            QCOMPARE(printed,
                     QByteArray(wasOn ? "netDeviceDown" : "netDeviceUp") + " [usb0] Err\n");
            QCOMPARE(lastCall(operation), R"(["usb0",false,5000])"_s);
            m_page->setNetInfo(record(wasOn)); // completes nothing
            press("btn_4G");
            QCOMPARE(callsOf(operation).size(), 1);
            QVERIFY(shown("lab_move") && !shown("lab_null") && !enabled("btn_4G"));
            m_page->setNetInfo(record(!wasOn));
            QVERIFY(!shown("lab_move") && shown("lab_null") && enabled("btn_4G"));
        }
    }

    void hearsTheModemOnlyWhileOn()
    {
        modemSays("8986<b>", "86", 31); // comes before the first record, and is not lost
        QCOMPARE(text("label_iccid"), QString());
        m_page->setNetInfo(record(true));
        m_page->setNetInfo(record(true));
        QCOMPARE(text("label_iccid"), "8986<b>"_s);
        QCOMPARE(find<QLabel>("label_iccid")->textFormat(), Qt::PlainText);
        QCOMPARE(text("label_Imei"), "86"_s);
        QCOMPARE(icon(), iconOf(4));

        const int before = callsOf("netT.getApn").size();
        modemSays("", "87", 31);
        QCOMPARE(callsOf("netT.getApn").size(), before + 1); // heard once
        QCOMPARE(text("label_iccid") + text("label_Imei"), "87"_s);

        std::thread([this] {
            for (int csq = 0; csq < 5; ++csq)
                modemSays("", "87", csq);
        }).join();
        QCoreApplication::processEvents();
        QCOMPARE(callsOf("netT.getApn").size(), before + 2); // a burst, once

        press("btn_4G");
        modemSays("", "88", 31);
        m_page->setNetInfo(record(false));
        modemSays("", "89", 31);
        QCOMPARE(text("label_Imei"), "87"_s);
        m_page->setNetInfo(record(true));
        QCOMPARE(text("label_Imei"), "89"_s);
    }

    void showsTheApn_data()
    {
        // the device | its mode | the radio button
        rows({"on | enable | manual", "on | disable | default", "on | | default",
              "off | enable | default"});
    }

    void showsTheApn()
    {
        const bool manual = cell(2) == "manual"_s;
        m_page->setNetInfo(record(true));
        panel().set("modem.apn", apn("cmnet", qPrintable(cell(1))));
        if (cell(0) != "off"_s)
            modemSays("", "", 1);
        else
            m_page->setNetInfo(record(false));
        QCOMPARE(lastCall("netT.getApn"), "[false,1000]"_s);
        QCOMPARE(checked("radio_manual"), manual);
        QVERIFY(shown("wdg_vpn") == manual && shown("lab_vpn") != manual);
        m_page->setNetInfo(record(true));
        panel().fail("netT.getApn", -2);
        modemSays("", "", 2);
        QVERIFY(checked("radio_auto"));
        QCOMPARE(texts({"line_ApnName", "line_ApnAuth", "line_ApnUsr", "line_ApnPwd"}),
                 "cmnet|pap|u|p"_s);
    }

    void sendsTheApn_data()
    {
        // the service's name | what is pressed | typed | what is sent: name, password, mode
        rows({"| line_ApnName | cmnet | cmnet,p,enable", "a | line_ApnPwd | s3 | a,s3,enable",
              "a | line_ApnPwd | abcdefghijklmnopq | a,abcdefghijklmno,enable",
              "a | line_ApnName | | a,p,enable", "| line_ApnPwd | s3", "| radio_manual",
              "a | radio_manual | | a,p,enable", "| radio_auto | | ,p,disable"});
    }

    void sendsTheApn()
    {
        const QString pressed = cell(1);
        panel().set("modem.apn", apn(qPrintable(cell(0)), "enable"));
        m_page->setNetInfo(record(true));
        if (pressed.startsWith("line_"_s)) {
            whenOpen("SoftKeyboard", [&](QWidget *keyboard) {
                const QRect place = keyboard->geometry().translated(-m_page->mapToGlobal({0, 0}));
                const bool masked = keyboard->findChild<QWidget *>("btn_Eye"_s)->isVisible();
                return place == QRect(80, 75, 640, 450) && masked == (pressed == "line_ApnPwd"_s);
            });
            typeOnKeyboard(cell(2).isEmpty() ? "\x1b"_s : cell(2) + "\n"_s);
        }
        press(qPrintable(pressed));
        QVERIFY(dialogsDone());
        QCOMPARE(shown("wdg_vpn"), pressed != "radio_auto"_s);
        const QStringList sent = cellOrEmpty(3).split(QLatin1Char(','));
        const QString args =
            R"([{"auth":"pap","mode":"%3","name":"%1","password":"%2","user":"u"},false,1000])"_s;
        QCOMPARE(callsOf("netT.setApn").join(u' '),
                 sent.size() < 3 ? QString() : args.arg(sent[0], sent[1], sent[2]));
    }

    void signalTakesNoChoiceAway()
    {
        panel().set("modem.apn", apn("", "disable"));
        m_page->setNetInfo(record(true));
        press("radio_manual");
        modemSays("", "", 5); // the choice has no name yet and is not sent
        QVERIFY(shown("wdg_vpn"));
        whenOpen("SoftKeyboard", [this](QWidget *) {
            panel().set("modem.apn", apn("theirs", "disable"));
            modemSays("", "", 15);
            return true;
        });
        typeOnKeyboard("cmnet\n"_s);
        press("line_ApnName");
        QVERIFY(lastCall("netT.setApn").contains(R"("mode":"enable","name":"cmnet")"_s));
        press("radio_auto");
        press("radio_manual");
        panel().set("modem.apn", apn("other", "disable")); // set by somebody else
        modemSays("", "", 25);
        QVERIFY(!shown("wdg_vpn"));
        QCOMPARE(text("line_ApnName"), "other"_s);
    }

    void registersWithTheService()
    {
        const QByteArray first = "init 4g At Info NetWork start\n";
        panel().set("net.server", false);
        QString said;
        answerNextBox(1, &said);
        QCOMPARE(printedBy([this] { m_page->start(); }), QByteArray());
        QCOMPARE(said, "netServer not run"_s);
        panel().set("net.server", true);
        panel().fail("netT.get4gAtInfoCallBackup", -1, 1);
        QCOMPARE(printedBy([this] { m_page->start(); }), first + "init 4g At Info NetWork Error\n");
        QCOMPARE(printedBy([this] { m_page->start(); }), first + "init 4g At Info NetWork OK\n");

        m_page->setNetInfo(record(true));
        QTRY_COMPARE(text("label_Imei"), "860000000000017"_s); // from the service's own thread
        panel().set("net.devices.2.present", false);
        panel().set("modem.csq", 5);
        panel().set("net.devices.2.present", true); // the modem speaks when it is there again
        QTRY_COMPARE(icon(), iconOf(1));
        panel().reset(); // no callback outlives the page
    }

private:
    void modemSays(const char *iccid, const char *imei, int csq)
    {
        netT::tag_atCollect info;
        info.texts[0] = iccid;
        info.texts[4] = imei;
        info.numbers[0] = csq;
        CallBackup(info, m_page.get());
    }

    QString icon() { return style("lab_4gSignal"); }

    static QString iconOf(int level)
    {
        return "border-image: url(:/SysSet_images/SysSet_images/4G_%1.png);"_s.arg(level);
    }
};

QTEST_MAIN(Net4GTest)
#include "Net4GTest.moc"
