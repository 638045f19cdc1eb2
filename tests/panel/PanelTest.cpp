#include "tools/PanelProcess.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace {

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

// The digit keys of the keyboard's numbers page; the debounce drops keys that follow too soon.
bool typeNumber(PanelProcess &panel, const QString &digits)
{
    for (const QChar digit : digits) {
        QTest::qSleep(170);
        if (!panel.press(QStringLiteral("btn_n_") + digit))
            return false;
    }
    QTest::qSleep(170);
    return panel.press(text("btn_n_enter"));
}

// The very first key of a process has no effect. Spends it on the keyboard of a field.
bool spendFirstKey(PanelProcess &panel, const QString &field)
{
    if (!panel.press(field) ||
        !PanelProcess::wait([&] { return panel.isVisible(text("SoftKeyboard")); }))
        return false;
    return panel.press(text("btn_n_1"));
}

QJsonValue ethernet(PanelProcess &panel, const char *field)
{
    return panel.get(QStringLiteral("net.devices.0.") + QLatin1String(field));
}

} // namespace

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
    void refusesAScenario_data();
    void refusesAScenario();

private:
    static void setStaticAddress(PanelProcess &panel);
};

void PanelTest::setStaticAddress(PanelProcess &panel)
{
    QVERIFY(panel.press(text("btn_Net")));
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("btn_EthSwitch")); }));
    QVERIFY(panel.press(text("btn_EthSwitch")));
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("radio_Static")); }));
    QVERIFY(panel.press(text("radio_Static")));
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("line_Ip4")); }));
    // The address that DHCP gave stays as the static one.
    QVERIFY(PanelProcess::wait(
        [&] { return !panel.widget(text("line_Ip4"), text("text")).toString().isEmpty(); }));

    QVERIFY(spendFirstKey(panel, text("line_Ip4")));
    QCOMPARE(panel.widget(text("lab_Field"), text("text")).toString(), QStringLiteral("IP 地址"));
    QVERIFY(typeNumber(panel, text("77")));
    QVERIFY(PanelProcess::wait(
        [&] { return ethernet(panel, "sIpAddr").toString().endsWith(QLatin1String(".77")); }));
    QCOMPARE(ethernet(panel, "sDhcp").toString(), text("disable"));
    QCOMPARE(panel.widget(text("line_Ip4"), text("text")).toString(), text("77"));
}

void PanelTest::operatorsStory()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    QVERIFY(panel.isVisible(text("tab_Machine")));

    // The wired device is on; switch it off, so that the story starts from the beginning.
    QVERIFY(panel.press(text("btn_Net")));
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("radio_Dhcp")); }));
    QVERIFY(panel.press(text("btn_EthSwitch")));
    QVERIFY(PanelProcess::wait(
        [&] { return ethernet(panel, "sFunction").toString() == text("disable"); }));
    QVERIFY(PanelProcess::wait([&] { return !panel.isVisible(text("radio_Dhcp")); }));
    setStaticAddress(panel);

    QVERIFY(panel.press(text("btn_Sysset")));
    QVERIFY(panel.press(text("tab_System"), 2));
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("CHBtn")); }));
    QVERIFY(panel.press(text("ENBtn")));
    QVERIFY(PanelProcess::wait(
        [&] { return panel.widget(text("btn_Net"), text("text")).toString() == text("Network"); }));
    QVERIFY(panel.press(text("CHBtn")));
    QVERIFY(PanelProcess::wait([&] {
        return panel.widget(text("btn_Net"), text("text")).toString() == QStringLiteral("网络");
    }));
    QCOMPARE(panel.widget(text("radio_Static"), text("text")).toString(),
             QStringLiteral("静态 IP"));

    for (const char *answer : {"btn_Cancel", "btn_Ok"}) {
        QVERIFY(panel.get(text("reboots")).toArray().isEmpty());
        QVERIFY(panel.press(text("btn_Reboot")));
        QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("MessageBox")); }));
        QVERIFY(panel.press(text(answer)));
        QVERIFY(PanelProcess::wait([&] { return !panel.isVisible(text("MessageBox")); }));
    }
    QCOMPARE(panel.waitForEnd(), 0);

    QFile last(panel.file(text("/run/last.json")));
    QVERIFY(last.open(QIODevice::ReadOnly));
    const QJsonObject state = QJsonDocument::fromJson(last.readAll()).object();
    QCOMPARE(state.value(text("reboots")).toArray().size(), 1);
    const QJsonArray devices = state.value(text("net")).toObject().value(text("devices")).toArray();
    QVERIFY(devices.first().toObject().value(text("sIpAddr")).toString().endsWith(text(".77")));
    QVERIFY(panel.output().startsWith("=====================start sysset\n"));
}

void PanelTest::survivesOptions_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("group"); // page of the stacked widget
    QTest::addColumn<int>("tab");   // of the update group
    const auto row = [](const char *options, int group, int tab) {
        QTest::newRow(options) << text(options).split(QLatin1Char(' '), Qt::SkipEmptyParts) << group
                               << tab;
    };
    row("-p", 0, 0);
    row("-d", 0, 0);
    row("-p -d", 0, 0); // a gate: the password is "-d"
    row("-d DownloadProject", 2, 0);
    row("-d DownloadImage", 2, 1);
    row("-d DownloadImageX", 2, 1);
    row("-d Downloadimage", 0, 0);
    row("x -d DownloadImage y", 2, 1);
    row("DownloadImage -d", 0, 0);
}

void PanelTest::survivesOptions()
{
    QFETCH(QStringList, options);
    QFETCH(int, group);
    QFETCH(int, tab);
    PanelProcess panel;
    QVERIFY(panel.start(options));
    QVERIFY(PanelProcess::wait(
        [&] { return panel.widget(text("stackedWidget"), text("index")).toInt(-1) == group; }));
    QCOMPARE(panel.widget(text("tab_UpData"), text("index")).toInt(-1), tab);
    QCOMPARE(panel.isVisible(text("SoftKeyboard")),
             options == text("-p -d").split(QLatin1Char(' ')));
    if (group != 2)
        return;
    // The tab's click works again.
    const int clicks = panel.get(text("buzzer.opens")).toInt();
    QVERIFY(panel.press(text("tab_UpData"), 2));
    QVERIFY(
        PanelProcess::wait([&] { return panel.get(text("buzzer.opens")).toInt() == clicks + 1; }));
}

void PanelTest::gateOpensWithThePassword()
{
    PanelProcess panel;
    QVERIFY(panel.start({text("-p"), text("ab")}));
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("SoftKeyboard")); }));
    QVERIFY(!panel.press(text("btn_Net"))); // what is behind the gate is out of reach
    QVERIFY(!panel.widget(text("btn_close"), text("enabled")).toBool());
    const auto type = [&](const char *keys) {
        for (const char *key = keys; *key != '\0'; ++key) {
            QTest::qSleep(170);
            QVERIFY(panel.press(text("btn_c_") + QLatin1Char(*key)));
        }
        QTest::qSleep(170);
        QVERIFY(panel.press(text("btn_c_enter")));
    };
    type("xax"); // the first key of a process has no effect
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("MessageBox")); }));
    QVERIFY(panel.press(text("btn_Ok")));
    QVERIFY(PanelProcess::wait([&] { return !panel.isVisible(text("MessageBox")); }));
    QTest::qSleep(170);
    QVERIFY(panel.press(text("btn_c_del")));
    type("b");
    QVERIFY(PanelProcess::wait([&] { return !panel.isVisible(text("SoftKeyboard")); }));
    QVERIFY(panel.press(text("btn_Net")));
}

void PanelTest::tellsThatTheServiceIsMissing()
{
    PanelProcess panel;
    panel.setEnvironment(text("SYSSET_SCENARIO"), text("no-network-service"));
    QVERIFY(panel.start());
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("MessageBox")); }));
    QVERIFY(!panel.isVisible(text("btn_Cancel")));
    QVERIFY(panel.press(text("btn_Ok")));
    QVERIFY(PanelProcess::wait([&] { return panel.press(text("btn_Net")); }));
    QVERIFY(!panel.output().contains("InitNetWork"));
}

void PanelTest::startsInOrder()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    QVERIFY(PanelProcess::wait([&] { return panel.output().contains("InitNetWork OK\n"); }));
    QStringList calls;
    const QJsonArray log = panel.ask({text("calls")}).toArray();
    for (const auto &call : log) {
        const QString line =
            call[text("op")].toString() +
            QString::fromUtf8(
                QJsonDocument(call[text("args")].toArray()).toJson(QJsonDocument::Compact));
        if (!calls.contains(line))
            calls << line;
    }
    const QStringList inOrder = {
        text("PLATFORM.CPlatLcd.open[]"),
        text("PLATFORM.CPlatLcd.getResolution[]"),
        text("Beep[480]"),
        text("PLATFORM.CPlatMedia.addDev[[301,302,303,201]]"),
        text("COS.GetProcessPIDByName[\"netServer\"]"),
        text("netT.getAllNetInfoCallBack[true,5000,true]"),
    };
    int last = -1;
    for (const QString &call : inOrder) {
        const int place = calls.indexOf(call);
        QVERIFY2(place > last, qPrintable(call + text(" in ") + calls.join(text(" "))));
        last = place;
    }
}

void PanelTest::navigationClicksOnce()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    const auto clicksTo = [&](const char *button, int index = -1) {
        const int before = panel.get(text("buzzer.opens")).toInt();
        if (!panel.press(text(button), index))
            return -1;
        PanelProcess::wait([&] { return panel.get(text("buzzer.opens")).toInt() > before; }, 1500);
        return panel.get(text("buzzer.opens")).toInt() - before;
    };
    const auto marked = [&](const char *button) {
        return panel.widget(text(button), text("style"))
            .toString()
            .startsWith(text("color: white; background-color:rgb(0   , 85  ,127); font: 75 20px"));
    };
    QVERIFY(marked("btn_Machine"));
    QCOMPARE(panel.widget(text("tab_Net"), text("index")).toInt(), 3);
    QCOMPARE(clicksTo("btn_Net"), 1); // through the change of tab
    QCOMPARE(panel.widget(text("tab_Net"), text("index")).toInt(), 0);
    QCOMPARE(clicksTo("btn_Net"), 1); // by itself
    QCOMPARE(clicksTo("tab_Net", 2), 1);
    QCOMPARE(clicksTo("tab_Net", 2), 0);
    QVERIFY(marked("btn_Net") && !marked("btn_Machine"));
}

void PanelTest::stripFollowsEvents()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    const auto shows = [&](const char *label, const char *image) {
        return PanelProcess::wait([&] {
            return panel.widget(text(label), text("style")).toString() ==
                   QStringLiteral("image: url(:/SysSet_images/SysSet_images/%1);").arg(text(image));
        });
    };
    QVERIFY(shows("lab_Eth", "EthInPut.png"));
    QVERIFY(shows("lab_cloud", "clouderr.png"));
    QVERIFY(panel.set(text("cloud.status"), "1"));
    QVERIFY(shows("lab_cloud", "cloudok.png"));
    QVERIFY(!panel.ask({text("usb"), text("insert"), text("/no/such/path")}).isUndefined());
    QVERIFY(shows("lab_usb", "UsbInPut.png"));
    QVERIFY(!panel.ask({text("hotplug"), text("remove"), text("301"), QString()}).isUndefined());
    QVERIFY(!panel.ask({text("usb"), text("remove"), text("/no/such/path")}).isUndefined());
    QVERIFY(shows("lab_usb", "UsbOutPut.png"));
    QVERIFY(shows("lab_Eth", "EthInPut.png"));
    QVERIFY(panel.set(text("net.ping"), R"({"*": -1})"));
    QVERIFY(shows("lab_Eth", "EthOutPut.png"));
    QVERIFY(shows("lab_wifi", "WifiOutPut.png"));
    QVERIFY(shows("lab_4g", "4gInPut.png")); // is not pinged
    QVERIFY(panel.set(text("net.devices.2.sFunction"), "\"disable\""));
    QVERIFY(shows("lab_cloud", "clouderr.png")); // whatever the client says
}

void PanelTest::survivesBadRecords()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    QVERIFY(panel.press(text("btn_Net")));
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
        QVERIFY2(panel.set(text("net.devices"), devices), qPrintable(panel.error()));
        if (devices.contains("\"ETH\""))
            QVERIFY(PanelProcess::wait(
                [&] { return panel.output().count("paraMnetnode.sDevName") > records; }));
    }
    QVERIFY(PanelProcess::wait([&] { return panel.output().contains("[lora0][LORA][]\n"); }));
    QVERIFY(PanelProcess::wait(
        [&] { return panel.widget(text("lab_EthMac"), text("text")).toString().size() == 4096; }));
    QCOMPARE(panel.widget(text("line_Ip1"), text("text")).toString(), QString());
    QVERIFY(panel.output().contains("[<b>%s%n</b>][ETH][]\n"));

    // A service that goes silent in the middle of a call costs the time-out and no more.
    QVERIFY(!panel.ask({text("delay"), text("netT.netDeviceDown"), text("60000")}).isUndefined());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(panel.press(text("btn_EthSwitch")));
    QVERIFY(
        PanelProcess::wait([&] { return panel.output().contains("netDeviceDown [eth0] Err\n"); }));
    QVERIFY(timer.elapsed() < 9000);
    QVERIFY(!panel.widget(text("btn_EthSwitch"), text("enabled")).toBool());
    QVERIFY(panel.press(text("btn_Machine")));
    QVERIFY(PanelProcess::wait([&] { return panel.isVisible(text("tab_Machine")); }));
    QVERIFY(!panel.ask({text("quit")}).isUndefined());
    QCOMPARE(panel.waitForEnd(), 0);
}

void PanelTest::keepsTheLanguage()
{
    PanelProcess panel;
    QVERIFY(QDir().mkpath(panel.file(text("/mnt/data/prj"))));
    QFile settings(panel.file(text("/mnt/data/prj/LangugeSet.cof")));
    QVERIFY(settings.open(QIODevice::WriteOnly));
    settings.write("[HMI]\nLANGUAGEID=1\n"); // without the allow-change key English is locked
    settings.close();
    QVERIFY(panel.start());
    QCOMPARE(panel.widget(text("btn_Net"), text("text")).toString(), text("Network"));
    QCOMPARE(panel.widget(text("tab_System"), text("items")).toArray().size(), 2);
}

void PanelTest::secondProgramLeaves()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    QProcess second;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(text("SYSSET_ROOT"), panel.file(QString()));
    second.setProcessEnvironment(environment);
    second.start(text(PANEL_PROGRAM), QStringList());
    QVERIFY(second.waitForFinished());
    QVERIFY(second.exitCode() != 0);
    QVERIFY(!second.readAllStandardError().isEmpty());
    QVERIFY(panel.isVisible(text("tab_Machine")));
}

void PanelTest::refusesAScenario_data()
{
    QTest::addColumn<QByteArray>("scenario");
    QTest::newRow("no JSON") << QByteArray("{");
    QTest::newRow("unknown path") << QByteArray(R"({"lcd":{"colour":3}})");
    QTest::newRow("wrong type") << QByteArray(R"({"lcd":{"width":"wide"}})");
    QTest::newRow("bad fail") << QByteArray(R"({"fail":[["netT.setIp"]]})");
}

void PanelTest::refusesAScenario()
{
    QFETCH(QByteArray, scenario);
    PanelProcess panel;
    QFile file(panel.file(text("/scenario.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(scenario);
    file.close();
    panel.setEnvironment(text("SYSSET_SCENARIO"), file.fileName());
    QVERIFY(!panel.start());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(text(".*")));
    QCOMPARE(panel.waitForEnd(), 2);
}

QTEST_GUILESS_MAIN(PanelTest)
#include "PanelTest.moc"
