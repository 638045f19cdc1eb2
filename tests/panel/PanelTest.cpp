#include "tests/panel/Operator.h"
#include "tests/support/Rows.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

// How the whole program starts, is walked through and stands what comes from outside.
class PanelTest : public QObject
{
    Q_OBJECT

private slots:
    void operatorsStory();
    void survivesOptions_data();
    void survivesOptions();
    void gateOpensWithThePassword();
    void tellsThatTheServiceIsMissing();
    void startsInOrder();
    void navigationClicksOnce();
    void stripFollowsEvents();
    void survivesBadRecords();
    void keepsTheLanguage();
    void secondProgramLeaves();
    void refusesAScenario();
    void answersWithoutStarting();
    void ends_data();
    void ends();

private:
    static void setStaticAddress(Operator &panel);
};

void PanelTest::setStaticAddress(Operator &panel)
{
    const QString device = "net.devices.0."_s;
    // The wired device is on; switched off, so that the story starts from the beginning.
    QVERIFY(panel.press("btn_Net"_s) && panel.appears("radio_Dhcp"_s));
    QVERIFY(panel.press("btn_EthSwitch"_s));
    QVERIFY(panel.becomes(device + "sFunction"_s, "disable"_s) && panel.goes("radio_Dhcp"_s));
    QVERIFY(panel.press("btn_EthSwitch"_s) && panel.appears("radio_Static"_s));
    QVERIFY(panel.press("radio_Static"_s) && panel.appears("line_Ip4"_s));
    // The address that DHCP gave stays as the static one.
    QVERIFY(PanelProcess::wait([&] { return !panel.text("line_Ip4"_s).isEmpty(); }));

    QVERIFY(panel.press("line_Ip4"_s) && panel.shows("lab_Field"_s, "IP 地址"_s));
    QVERIFY(panel.type('n', "177"_s)); // the 1 spends the first key of the process
    QVERIFY(PanelProcess::wait(
        [&] { return panel.get(device + "sIpAddr"_s).toString().endsWith(".77"_s); }));
    QCOMPARE(panel.get(device + "sDhcp"_s).toString(), "disable"_s);
    QCOMPARE(panel.text("line_Ip4"_s), "77"_s);
}

void PanelTest::operatorsStory()
{
    Operator panel;
    QVERIFY(panel.start());
    QVERIFY(panel.isVisible("tab_Machine"_s));
    setStaticAddress(panel);

    QVERIFY(panel.press("btn_Sysset"_s));
    QVERIFY(panel.press("tab_System"_s, 2) && panel.appears("CHBtn"_s));
    QVERIFY(panel.press("ENBtn"_s) && panel.shows("btn_Net"_s, "Network"_s));
    QVERIFY(panel.press("CHBtn"_s) && panel.shows("btn_Net"_s, "网络"_s));
    QCOMPARE(panel.text("radio_Static"_s), "静态 IP"_s);

    for (const char *answer : {"btn_Cancel", "btn_Ok"}) {
        QVERIFY(panel.get("reboots"_s).toArray().isEmpty());
        QVERIFY(panel.press("btn_Reboot"_s) && panel.appears("MessageBox"_s));
        QVERIFY(panel.press(QLatin1String(answer)) && panel.goes("MessageBox"_s));
    }
    QCOMPARE(panel.waitForEnd(), 0);

    QFile last(panel.file("/run/last.json"_s));
    QVERIFY(last.open(QIODevice::ReadOnly));
    const QJsonDocument state = QJsonDocument::fromJson(last.readAll());
    QCOMPARE(state["reboots"_s].toArray().size(), 1);
    QVERIFY(state["net"_s]["devices"_s][0]["sIpAddr"_s].toString().endsWith(".77"_s));
    QVERIFY(panel.output().startsWith("=====================start sysset\n"));
}

void PanelTest::survivesOptions_data()
{
    // options | page of the stacked widget | tab of the update group
    rows({"-p | 0 | 0", "-d | 0 | 0", "-p -d | 0 | 0", // a gate: the password is "-d"
          "-d DownloadProject | 2 | 0", "-d DownloadImage | 2 | 1", "-d DownloadImageX | 2 | 1",
          "-d Downloadimage | 0 | 0", "x -d DownloadImage y | 2 | 1", "DownloadImage -d | 0 | 0"});
}

void PanelTest::survivesOptions()
{
    Operator panel;
    QVERIFY(panel.start(cell(0).split(QLatin1Char(' '))));
    QVERIFY(PanelProcess::wait([&] { return panel.index("stackedWidget"_s) == number(1); }));
    QCOMPARE(panel.index("tab_UpData"_s), number(2));
    QCOMPARE(panel.isVisible("SoftKeyboard"_s), cell(0) == "-p -d"_s);
    if (number(1) != 2)
        return;
    // The tab's click works again.
    const int clicks = panel.get("buzzer.opens"_s).toInt();
    QVERIFY(panel.press("tab_UpData"_s, 2) && panel.becomes("buzzer.opens"_s, clicks + 1));
}

void PanelTest::gateOpensWithThePassword()
{
    Operator panel;
    QVERIFY(panel.start({"x"_s, "ab"_s, "-p"_s, "y"_s})); // the second one counts, wherever -p is
    QVERIFY(panel.appears("SoftKeyboard"_s));
    QVERIFY(!panel.press("btn_Net"_s)); // what is behind the gate is out of reach
    QVERIFY(!panel.isEnabled("btn_close"_s));
    QVERIFY(panel.type('c', "xax"_s)); // the first key of a process has no effect
    QVERIFY(panel.appears("MessageBox"_s));
    QVERIFY(panel.press("btn_Ok"_s) && panel.goes("MessageBox"_s));
    QTest::qSleep(170); // the keyboard drops keys that follow too soon
    QVERIFY(panel.press("btn_c_del"_s));
    QVERIFY(panel.type('c', "b"_s) && panel.goes("SoftKeyboard"_s));
    QVERIFY(panel.press("btn_Net"_s));
}

void PanelTest::tellsThatTheServiceIsMissing()
{
    Operator panel;
    panel.setEnvironment("SYSSET_SCENARIO"_s, "no-network-service"_s);
    QVERIFY(panel.start());
    QVERIFY(panel.appears("MessageBox"_s));
    QVERIFY(!panel.isVisible("btn_Cancel"_s));
    QVERIFY(panel.press("btn_Ok"_s));
    QVERIFY(PanelProcess::wait([&] { return panel.press("btn_Net"_s); }));
    QVERIFY(!panel.output().contains("InitNetWork"));
}

void PanelTest::startsInOrder()
{
    Operator panel;
    QVERIFY(panel.start());
    QVERIFY(panel.prints("InitNetWork OK\n"));
    QStringList calls;
    const QJsonArray log = panel.ask({"calls"_s}).toArray();
    for (const auto &call : log) {
        const QJsonDocument args(call["args"_s].toArray());
        calls << call["op"_s].toString() + QString::fromUtf8(args.toJson(QJsonDocument::Compact));
    }
    int last = -1;
    for (const QString &call : {"PLATFORM.CPlatLcd.open[]"_s, "PLATFORM.CPlatLcd.getResolution[]"_s,
                                "Beep[480]"_s, "PLATFORM.CPlatMedia.addDev[[301,302,303,201]]"_s,
                                "COS.GetProcessPIDByName[\"netServer\"]"_s,
                                "netT.getAllNetInfoCallBack[true,5000,true]"_s}) {
        const int place = calls.indexOf(call);
        QVERIFY2(place > last, qPrintable(call + " in "_s + calls.join(QLatin1Char(' '))));
        last = place;
    }
}

void PanelTest::navigationClicksOnce()
{
    Operator panel;
    QVERIFY(panel.start());
    const auto clicksTo = [&](const QString &button, int index = -1) {
        const int before = panel.get("buzzer.opens"_s).toInt();
        if (!panel.press(button, index))
            return -1;
        PanelProcess::wait([&] { return panel.get("buzzer.opens"_s).toInt() > before; }, 1500);
        return panel.get("buzzer.opens"_s).toInt() - before;
    };
    const auto marked = [&](const QString &button) {
        return panel.style(button).startsWith(
            "color: white; background-color:rgb(0   , 85  ,127); font: 75 20px"_s);
    };
    QVERIFY(marked("btn_Machine"_s));
    QCOMPARE(panel.index("tab_Net"_s), 3);
    QCOMPARE(clicksTo("btn_Net"_s), 1); // through the change of tab
    QCOMPARE(panel.index("tab_Net"_s), 0);
    QCOMPARE(clicksTo("btn_Net"_s), 1); // by itself
    QCOMPARE(clicksTo("tab_Net"_s, 2), 1);
    QCOMPARE(clicksTo("tab_Net"_s, 2), 0);
    QVERIFY(marked("btn_Net"_s) && !marked("btn_Machine"_s));
}

void PanelTest::stripFollowsEvents()
{
    Operator panel;
    QVERIFY(panel.start());
    const auto shows = [&](const char *label, const char *image) {
        return panel.looksLike(QLatin1String(label), "/%1);"_s.arg(QLatin1String(image)));
    };
    QVERIFY(shows("lab_Eth", "EthInPut.png"));
    QVERIFY(shows("lab_cloud", "clouderr.png"));
    QVERIFY(panel.set("cloud.status"_s, "1"));
    QVERIFY(shows("lab_cloud", "cloudok.png"));
    QVERIFY(!panel.ask({"usb"_s, "insert"_s, "/no/such/path"_s}).isUndefined());
    QVERIFY(shows("lab_usb", "UsbInPut.png"));
    QVERIFY(!panel.ask({"hotplug"_s, "remove"_s, "301"_s, QString()}).isUndefined());
    QVERIFY(!panel.ask({"usb"_s, "remove"_s, "/no/such/path"_s}).isUndefined());
    QVERIFY(shows("lab_usb", "UsbOutPut.png"));
    QVERIFY(shows("lab_Eth", "EthInPut.png"));
    QVERIFY(panel.set("net.ping"_s, R"({"*": -1})"));
    QVERIFY(shows("lab_Eth", "EthOutPut.png"));
    QVERIFY(shows("lab_wifi", "WifiOutPut.png"));
    QVERIFY(shows("lab_4g", "4gInPut.png")); // is not pinged
    QVERIFY(panel.set("net.devices.2.sFunction"_s, "\"disable\""));
    QVERIFY(shows("lab_cloud", "clouderr.png")); // whatever the client says
}

void PanelTest::survivesBadRecords()
{
    Operator panel;
    QVERIFY(panel.start());
    QVERIFY(panel.press("btn_Net"_s));
    const QByteArray bad[] = {
        R"([{"sDevName":"","sNetType":""}])",
        R"([{"sDevName":"<b>%s%n</b>","sNetType":"ETH","sFunction":"enable"}])",
        "[]",
        R"([{"sDevName":"eth0","sNetType":"ETH","sFunction":"enable","sDhcp":"disable",)"
        R"("sIpAddr":"1.2.3.4.5","sGateway":"...","sMacAddr":")" +
            QByteArray(4096, 'M') + R"("},{"sDevName":"lora0","sNetType":"LORA"}])",
    };
    for (const QByteArray &devices : bad) {
        const int records = panel.output().count("paraMnetnode.sDevName");
        QVERIFY2(panel.set("net.devices"_s, devices), qPrintable(panel.error()));
        QVERIFY(!devices.contains("\"ETH\"") || PanelProcess::wait([&] {
            return panel.output().count("paraMnetnode.sDevName") > records;
        }));
    }
    QVERIFY(panel.prints("[lora0][LORA][]\n"));
    QVERIFY(panel.shows("lab_EthMac"_s, QString(4096, QLatin1Char('M'))));
    QCOMPARE(panel.text("line_Ip1"_s), QString());
    QVERIFY(panel.output().contains("[<b>%s%n</b>][ETH][]\n"));

    // A service that goes silent in the middle of a call costs the time-out and no more.
    QVERIFY(!panel.ask({"delay"_s, "netT.netDeviceDown"_s, "60000"_s}).isUndefined());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(panel.press("btn_EthSwitch"_s));
    QVERIFY(panel.prints("netDeviceDown [eth0] Err\n"));
    QVERIFY(timer.elapsed() < 9000);
    QVERIFY(!panel.isEnabled("btn_EthSwitch"_s));
    QVERIFY(panel.press("btn_Machine"_s) && panel.appears("tab_Machine"_s));
    QVERIFY(!panel.ask({"quit"_s}).isUndefined());
    QCOMPARE(panel.waitForEnd(), 0);
}

void PanelTest::keepsTheLanguage()
{
    Operator panel; // without the allow-change key English is locked
    QVERIFY(panel.write("/mnt/data/prj/LangugeSet.cof"_s, "[HMI]\nLANGUAGEID=1\n"));
    QVERIFY(panel.start());
    QCOMPARE(panel.text("btn_Net"_s), "Network"_s);
    QCOMPARE(panel.items("tab_System"_s).size(), 2);
}

void PanelTest::secondProgramLeaves()
{
    Operator panel;
    QVERIFY(panel.start());
    QProcess second;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("SYSSET_ROOT"_s, panel.file(QString()));
    second.setProcessEnvironment(environment);
    second.start(QStringLiteral(PANEL_PROGRAM), QStringList());
    QVERIFY(second.waitForFinished());
    QVERIFY(second.exitCode() != 0);
    QVERIFY(!second.readAllStandardError().isEmpty());
    QVERIFY(panel.isVisible("tab_Machine"_s));
}

void PanelTest::refusesAScenario()
{
    for (const char *scenario : {"{", R"({"lcd":{"colour":3}})"}) {
        Operator panel;
        QVERIFY(panel.write("/scenario.json"_s, scenario));
        panel.setEnvironment("SYSSET_SCENARIO"_s, panel.file("/scenario.json"_s));
        QVERIFY(!panel.start());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^sysset-sim: "_s));
        QCOMPARE(panel.waitForEnd(), 2);
    }
}

void PanelTest::answersWithoutStarting()
{
    Operator panel;
    panel.setEnvironment("QT_QPA_PLATFORM"_s, "none"_s);
    QVERIFY(!panel.start({"--help"_s}));
    QCOMPARE(panel.waitForEnd(), 0);
    QVERIFY(!QFile::exists(panel.file("/run"_s)));
}

void PanelTest::ends_data()
{
    // what is open or under way | its delay | touches | how it ends | argument of the reboot
    rows({"-|| btn_Reboot | quit | 1", "-|| btn_Sysset line_Year | 15 | 1", "-p x ||| 1 | 1",
          "-| dsl.getVersionList | tab_Machine:1 | btn_Ok | 0",
          // A link's check and, where it is touched, the diagnosis: longer than anyone waits.
          "-| netT.netTping || 2 | 1",
          "-| netT.netTping | btn_Net tab_Net:3 btn_check btn_StartDiag btn_close | btn_Ok | 0"});
}

void PanelTest::ends()
{
    Operator panel;
    QVERIFY(panel.start(cell(0).split(QLatin1Char(' '))));
    QVERIFY(panel.set("machine.hardwareReset"_s, "0"));
    const bool delayed = !cell(1).isEmpty();
    const bool pings = cell(1) == "netT.netTping"_s;
    if (delayed)
        QVERIFY(!panel.ask({"delay"_s, cell(1), "60000"_s}).isUndefined());
    const int checks = panel.output().count("loadCloudXML");
    QVERIFY(!pings ||
            PanelProcess::wait([&] { return panel.output().count("loadCloudXML") > checks; }));
    for (const QString &touch : cell(2).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString tab = touch.section(QLatin1Char(':'), 1);
        QVERIFY(PanelProcess::wait([&] {
            return panel.press(touch.section(QLatin1Char(':'), 0, 0),
                               tab.isEmpty() ? -1 : tab.toInt());
        }));
    }
    QElapsedTimer timer;
    timer.start();
    if (cell(3) == "btn_Ok"_s)
        QVERIFY(panel.press("btn_Reboot"_s) && panel.appears("MessageBox"_s) &&
                panel.press("btn_Ok"_s));
    else if (cell(3) == "quit"_s)
        QVERIFY(!panel.ask({"quit"_s}).isUndefined());
    else
        QCOMPARE(::kill(pid_t(panel.processId()), number(3)), 0);
    if (pings) {
        QVERIFY(PanelProcess::wait([&] {
            const auto labels = panel.ask({"ui"_s, "dump"_s, "label"_s}).toArray();
            return QJsonDocument(labels).toJson().contains("正在重启，请稍候。");
        }));
        QVERIFY(!panel.press("btn_Ok"_s));
        QCOMPARE(panel.ask({"ui"_s, "fit"_s}).toArray(), QJsonArray());
        // A page that still worked would wait five seconds for this one.
        QVERIFY(!panel.ask({"usb"_s, "insert"_s, "/no/such/path"_s}).isUndefined());
    }
    QCOMPARE(panel.waitForEnd(), 0);
    QVERIFY2(timer.elapsed() < 13000, qPrintable(QString::number(timer.elapsed())));
    QFile last(panel.file("/run/last.json"_s));
    QVERIFY(last.open(QIODevice::ReadOnly));
    QCOMPARE(QJsonDocument::fromJson(last.readAll())["reboots"_s].toArray(), QJsonArray{number(4)});
}

QTEST_GUILESS_MAIN(PanelTest)
#include "PanelTest.moc"
