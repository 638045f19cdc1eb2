#include "tests/panel/Operator.h"
#include "tests/support/Rows.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

// How the whole program starts, is walked through, stands what comes from outside, and ends.
class PanelTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Without the key that allows a change the language is locked.
        QVERIFY(m_panel.write("/mnt/data/prj/LangugeSet.cof"_s, "[HMI]\nLANGUAGEID=1\n"));
        QVERIFY(m_panel.start());
        QCOMPARE(m_panel.text("btn_Net"_s), "Network"_s);
        QCOMPARE(m_panel.items("tab_System"_s).size(), 2);
    }

    void startsInOrder()
    {
        QVERIFY(m_panel.prints("InitNetWork OK\n"));
        QVERIFY(m_panel.output().startsWith("=====================start sysset\n"));
        QByteArray calls;
        for (const QJsonValue call : m_panel.ask({"calls"_s}).toArray())
            calls += call["op"_s].toString().toUtf8() +
                     QJsonDocument(call["args"_s].toArray()).toJson(QJsonDocument::Compact) + ' ';
        int last = -1;
        for (const char *call :
             {"CPlatLcd.open[]", "CPlatLcd.getResolution[]", "Beep[480]",
              "CPlatMedia.addDev[[301,302,303,201]]", "COS.GetProcessPIDByName[\"netServer\"]",
              "netT.getAllNetInfoCallBack[true,5000,true]"}) {
            const int place = calls.indexOf(call);
            QVERIFY2(place > last, call + (" in " + calls));
            last = place;
        }
    }

    void navigationClicksOnce()
    {
        const auto clicksTo = [&](const QString &button, int index = -1) {
            const int before = m_panel.get("buzzer.opens"_s).toInt();
            const auto clicks = [&] { return m_panel.get("buzzer.opens"_s).toInt() - before; };
            const bool pressed = m_panel.press(button, index);
            PanelProcess::wait([&] { return clicks() > 0; }, 1500);
            return pressed ? clicks() : -1;
        };
        const auto marked = [&](const QString &button) {
            return m_panel.style(button).startsWith(
                "color: white; background-color:rgb(0   , 85  ,127); font: 75 20px"_s);
        };
        QVERIFY(marked("btn_Machine"_s));
        QCOMPARE(m_panel.index("tab_Net"_s), 3);
        QCOMPARE(clicksTo("btn_Net"_s), 1); // through the change of tab
        QCOMPARE(m_panel.index("tab_Net"_s), 0);
        QCOMPARE(clicksTo("btn_Net"_s), 1); // by itself
        QCOMPARE(clicksTo("tab_Net"_s, 2), 1);
        QCOMPARE(clicksTo("tab_Net"_s, 2), 0);
        QVERIFY(marked("btn_Net"_s) && !marked("btn_Machine"_s));
    }

    // what happens | icon | its picture
    void stripFollowsEvents_data()
    {
        rows({"| lab_Eth | EthIn", "| lab_cloud | clouderr",
              "set cloud.status 1 | lab_cloud | cloudok", "usb insert /none | lab_usb | UsbIn",
              "hotplug remove 301 x | lab_usb | UsbIn", "usb remove /none | lab_usb | UsbOut",
              "| lab_Eth | EthIn", "set net.ping {\"*\":-1} | lab_Eth | EthOut",
              "| lab_wifi | WifiOut",
              "| lab_4g | 4gIn", // is not pinged
              "set net.devices.2.sFunction \"disable\" | lab_cloud | clouderr"});
    }
    void stripFollowsEvents()
    {
        QVERIFY(cell(0).isEmpty() || !m_panel.ask(cell(0).split(u' ')).isUndefined());
        QVERIFY(m_panel.looksLike(cell(1), u'/' + cell(2)));
    }

    void survivesBadRecords();

    // variable | its value, or a file of the running panel | option | exit status
    void leavesAtOnce_data()
    {
        rows({"SYSSET_ROOT | / || 1", "SYSSET_SCENARIO | /scenario.json || 2",
              "QT_QPA_PLATFORM | none | --help | 0"});
    }
    void leavesAtOnce()
    {
        QVERIFY(m_panel.write("/scenario.json"_s, "{"));
        Operator panel;
        panel.setEnvironment(cell(0), cell(1).startsWith(u'/') ? m_panel.file(cell(1)) : cell(1));
        QVERIFY(!panel.start({cell(2)}));
        if (number(3) != 0)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^sysset-sim: "_s));
        QCOMPARE(panel.waitForEnd(), number(3));
    }

    // options | page of the stacked widget | tab of the update group
    void survivesOptions_data()
    {
        rows({"-p | 0 | 0", "-d | 0 | 0", "-p -d | 0 | 0", // a gate: the password is "-d"
              "-d DownloadProject | 2 | 0", "-d DownloadImageX | 2 | 1", "-d Downloadimage | 0 | 0",
              "x -d DownloadImage y | 2 | 1"});
    }
    void survivesOptions()
    {
        Operator panel;
        QVERIFY(panel.start(cell(0).split(u' ')));
        QVERIFY(PanelProcess::wait([&] { return panel.index("stackedWidget"_s) == number(1); }));
        QCOMPARE(panel.index("tab_UpData"_s), number(2));
        QCOMPARE(panel.isVisible("SoftKeyboard"_s), cell(0) == "-p -d"_s);
        const int clicks = panel.get("buzzer.opens"_s).toInt();
        if (number(1) == 2) // the tab's click works again
            QVERIFY(panel.press("tab_UpData"_s, 2) && panel.becomes("buzzer.opens"_s, clicks + 1));
    }

    void gateOpensWithThePassword()
    {
        Operator panel;
        QVERIFY(panel.start({"x"_s, "ab"_s, "-p"_s, "y"_s})); // the second, wherever -p is
        QVERIFY(panel.appears("SoftKeyboard"_s) && !panel.press("btn_Net"_s));
        QVERIFY(panel.type('c', "xab"_s)); // the x spends the first key
        QVERIFY(panel.goes("SoftKeyboard"_s) && panel.press("btn_Net"_s));
    }

    void tellsThatTheServiceIsMissing()
    {
        Operator panel;
        panel.setEnvironment("SYSSET_SCENARIO"_s, "no-network-service"_s);
        QVERIFY(panel.start() && panel.appears("MessageBox"_s) && !panel.isVisible("btn_Cancel"_s));
        QVERIFY(panel.press("btn_Ok"_s) && panel.presses("btn_Net"_s));
        QVERIFY(!panel.output().contains("InitNetWork"));
    }

    // options | what is delayed | touches | the end: OK, quit or a signal | argument of the reboot
    void ends_data()
    {
        rows({"|| btn_Reboot btn_Cancel btn_Reboot | quit | 1", "|| btn_Sysset line_Year | 15 | 1",
              "-p x ||| 1 | 1", "| dsl.getVersionList | tab_Machine:1 btn_Reboot | OK | 0",
              // A link's check and, where it is touched, the diagnosis: longer than anyone waits.
              "| netT.netTping || 2 | 1",
              ("| netT.netTping | btn_Net tab_Net:3 btn_check btn_StartDiag btn_close btn_Reboot "
               "| OK | 0")});
    }
    void ends()
    {
        Operator panel;
        QVERIFY(panel.start(cell(0).split(u' ', Qt::SkipEmptyParts)));
        QVERIFY(panel.set("machine.hardwareReset"_s, "0"));
        panel.ask({"delay"_s, cell(1), "60000"_s});
        const bool pings = cell(1) == "netT.netTping"_s;
        const int checks = panel.output().count("loadCloudXML");
        const auto checksAgain = [&] { return panel.output().count("loadCloudXML") > checks; };
        QVERIFY(!pings || PanelProcess::wait(checksAgain));
        for (const QString &touch : cell(2).split(u' ', Qt::SkipEmptyParts)) {
            const QString tab = touch.section(u':', 1);
            QVERIFY(panel.presses(touch.section(u':', 0, 0), tab.isEmpty() ? -1 : tab.toInt()));
        }
        QElapsedTimer timer;
        timer.start();
        if (cell(3) == "OK"_s)
            QVERIFY(panel.presses("btn_Ok"_s));
        else if (cell(3) == "quit"_s)
            QVERIFY(!panel.ask({"quit"_s}).isUndefined());
        else
            QCOMPARE(::kill(pid_t(panel.processId()), number(3)), 0);
        const auto says = [](const QJsonValue &label) {
            return label["visible"_s].toBool() && label["text"_s] == "正在重启，请稍候。"_s;
        };
        QVERIFY(!pings || PanelProcess::wait([&] {
            const QJsonArray labels = panel.ask({"ui"_s, "dump"_s, "label"_s}).toArray();
            return std::any_of(labels.begin(), labels.end(), says);
        }));
        QVERIFY(!pings || panel.ask({"ui"_s, "fit"_s}) == QJsonArray());
        QCOMPARE(panel.waitForEnd(), 0);
        QVERIFY2(timer.elapsed() < 13000, qPrintable(QString::number(timer.elapsed())));
        QFile last(panel.file("/run/last.json"_s));
        QVERIFY(last.open(QIODevice::ReadOnly));
        QCOMPARE(QJsonDocument::fromJson(last.readAll())["reboots"_s], QJsonArray{number(4)});
    }

private:
    Operator m_panel;
};

void PanelTest::survivesBadRecords()
{
    QVERIFY(m_panel.press("btn_Net"_s));
    const QByteArray bad[] = {
        R"([{"sDevName":"","sNetType":""},{"sDevName":"<b>%s%n</b>","sNetType":"ETH"}])",
        R"([{"sDevName":"eth0","sNetType":"ETH","sFunction":"enable","sDhcp":"disable",)"
        R"("sIpAddr":"1.2.3.4.5","sGateway":"...","sMacAddr":")" +
            QByteArray(4096, 'M') + R"("},{"sDevName":"lora0","sNetType":"LORA"}])"};
    QVERIFY(m_panel.set("net.devices"_s, bad[0]) && m_panel.prints("[<b>%s%n</b>][ETH][]\n"));
    QVERIFY(m_panel.set("net.devices"_s, bad[1]) && m_panel.prints("[lora0][LORA][]\n"));
    QVERIFY(m_panel.shows("lab_EthMac"_s, QString(4096, QLatin1Char('M'))));
    QCOMPARE(m_panel.text("line_Ip1"_s), QString());

    // A service that goes silent in the middle of a call costs the time-out and no more.
    m_panel.ask({"delay"_s, "netT.netDeviceDown"_s, "60000"_s});
    QElapsedTimer timer;
    timer.start();
    QVERIFY(m_panel.press("btn_EthSwitch"_s) && m_panel.prints("netDeviceDown [eth0] Err\n"));
    QVERIFY(timer.elapsed() < 9000);
    QVERIFY(!m_panel.isEnabled("btn_EthSwitch"_s));
    QVERIFY(m_panel.press("btn_Machine"_s) && m_panel.appears("tab_Machine"_s));
}

QTEST_GUILESS_MAIN(PanelTest)
#include "PanelTest.moc"
