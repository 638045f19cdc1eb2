#include "tests/panel/Operator.h"
#include "tests/support/Rows.h"

namespace {

// What an independent reader (zbar) makes of a picture; nothing if it finds no code.
QString decoded(const QString &picture)
{
    QProcess reader;
    reader.start("zbarimg"_s, {"-q"_s, "--raw"_s, picture});
    if (!reader.waitForStarted())
        return "there is no zbarimg (Debian: zbar-tools)"_s;
    reader.waitForFinished();
    const QByteArray text = reader.readAllStandardOutput();
    return QString::fromUtf8(text.chopped(text.endsWith('\n') ? 1 : 0));
}

} // namespace

// What an operator sees of the panel itself, from the program's own picture of its screen.
class DeviceStoryTest : public QObject
{
    Q_OBJECT

private slots:
    // screen | product identifier as JSON | what the code says
    void codeSaysTheIdentifier_data()
    {
        rows({R"(480x272 | "P-070T-0042" | P-070T-0042)",
              R"(1280x800 | "P-070T-0042" | P-070T-0042)", R"(480x272 | "LONG" | LONG)",
              R"(1280x800 | "LONG" | LONG)", R"(480x272 | "产品 Größe 42" | 产品 Größe 42)",
              R"(480x272 | "" | 0210 8150 0420 7001)", "480x272 | null | 0210 8150 0420 7001"});
    }

    void codeSaysTheIdentifier()
    {
        const QString longText =
            "https://panels.example.com/bind?product=P-070T-0042&line=3&salt="_s +
            QString(56, u'x');
        const auto text = [&](int column) { return cell(column).replace("LONG"_s, longText); };
        Operator panel;
        QVERIFY(
            panel.write("/scenario.json"_s, R"({"machine":{"product":)" + text(1).toUtf8() + "}}"));
        panel.setEnvironment("SYSSET_LCD"_s, cell(0));
        panel.setEnvironment("SYSSET_SCENARIO"_s, panel.file("/scenario.json"_s));
        QVERIFY(panel.start());
        QVERIFY(panel.appears("lab_QRcode"_s));
        const QString picture = panel.file("/screen.png"_s);
        QVERIFY2(!panel.ask({"ui"_s, "shot"_s, picture}).isUndefined(), qPrintable(panel.error()));
        QCOMPARE(decoded(picture), text(2));
    }

    void mobileNetworkByTouch()
    {
        Operator panel;
        const auto hasIcon = [&](int level) {
            return panel.looksLike("lab_4gSignal"_s, "4G_%1"_s.arg(level));
        };
        panel.setEnvironment("SYSSET_LCD"_s, "480x272"_s);
        QVERIFY(panel.start());
        QVERIFY(panel.press("btn_Net"_s) && panel.press("tab_Net"_s, 2));
        QVERIFY(hasIcon(3));
        QVERIFY(panel.press("btn_4G"_s) && panel.appears("lab_4gStatus"_s) && hasIcon(0));
        QVERIFY(panel.press("btn_4G"_s) && hasIcon(3) && panel.shows("lab_4gIP_4"_s, "2"_s));
        QVERIFY(panel.press("radio_manual"_s) && panel.press("line_ApnName"_s));
        QVERIFY(panel.shows("lab_Field"_s, "接入点"_s));
        QVERIFY(panel.type('c', "qapn"_s)); // the q spends the first key of the process
        QVERIFY(panel.becomes("modem.apn.name"_s, "apn"_s));
        QCOMPARE(panel.get("modem.apn.mode"_s).toString(), "enable"_s);
        QVERIFY(panel.set("modem.csq"_s, "9") && hasIcon(2));
        QCOMPARE(panel.text("line_ApnName"_s), "apn"_s);
        QVERIFY(panel.isVisible("wdg_vpn"_s));
    }
};

QTEST_GUILESS_MAIN(DeviceStoryTest)
#include "DeviceStoryTest.moc"
