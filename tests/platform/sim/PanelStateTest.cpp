#include "platform/sim/InstalledFiles.h"
#include "platform/sim/KeptSettings.h"
#include "platform/sim/Panel.h"
#include "platform/sim/Scenario.h"
#include "platform/sim/StateDefaults.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

using sim::Json;

// The state of the simulated panel: what it takes, what it loads and keeps.
class PanelStateTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_root.clear(); }

    // path | set there | path | what is there then
    void changes_data()
    {
        rows({"words.10591 | null | words /10591 | null",
              "net.ping.192.168.1.1 | -2 | net.ping /192.168.1.1 | -2",
              R"(net.devices.0 | {"sIpAddr": "10.0.0.1"} | net.devices.0 /sDevName | "eth0")",
              R"(net.devices.3 | {"sDevName": "eth1"} | net.devices /3/present | true)",
              "net.devices | [] | net /devices | []", "net.ping | {} | net /ping | {}",
              R"(| {"lcd": {"width": 800}} |  /lcd/height | 600)"});
    }
    void changes()
    {
        Json state = sim::defaultState();
        sim::change(state, word(0), Json::parse(word(1)));
        const Json &found = sim::valueAt(state, word(2).substr(0, word(2).find_first_of(" /")));
        QCOMPARE(found.at(Json::json_pointer(word(2).substr(word(2).find('/')))).dump(), word(3));
    }

    // path | what is not to be set there | error
    void refuses_data()
    {
        rows({R"(lcd | {"width": 800, "weight": 1} | no such path: lcd.weight)",
              "lcd.width.x | 1 | no such path: lcd.width.x", ". | 1 | no such path: .",
              "net.devices.4 | {} | no such path: net.devices.4",
              "net.devices.-1 | {} | no such path: net.devices.-1",
              "net.devices.99999999999999999999 | {} | no such path",
              R"(modem.at.texts.9 | "" | no such path: modem.at.texts.9)",
              "modem.at.numbers | [1, 2] | must be a list of 5",
              "words.10591 | 65536 | words.10591: must be a whole number from 0 to 65535, or null",
              "words.10591 | 1.5 | must be a whole number",
              "words.10591 | 18446744073709551615 | must be a whole number",
              "words.x | 1 | words.x: must be named by a number",
              "net.server | 1 | net.server: must be true or false",
              R"(update.reply | "LTE" | update.reply: must be one of whole)",
              "net.ping.* | 5 | must be a whole number from -2147483648 to -1",
              R"(net.ping.* | {"min": 1, "typical": 2} | no such path: net.ping.*.typical)",
              R"(net.devices | [{"sDevName": "eth0"}, 7] | net.devices.1: must be an object)",
              "machine | null | machine: must be an object",
              // A new key of an open map is all that is left of the path.
              R"(net.lease.eth9.sIpAddr | "1.2.3.4" | net.lease.eth9.sIpAddr: must be an object)"});
    }
    void refuses()
    {
        Json state = sim::defaultState();
        try {
            sim::change(state, word(0), Json::parse(word(1)));
            QFAIL("is taken");
        } catch (const sim::BadRequest &error) {
            QVERIFY2(std::string(error.what()).find(word(2)) != std::string::npos, error.what());
        }
        QVERIFY(state == sim::defaultState());
    }

    // Each change reaches the file by itself, and the last one at the latest with the end.
    void keepsWhatIsSet()
    {
        const auto kept = [this] { return sim::loadKept(m_kept)["words"]["10590"]; };
        sim::Panel panel;
        panel.keepIn(m_kept);
        panel.set("words.10590", 17);
        QTRY_COMPARE(kept(), Json(17));
        panel.locked([&](Json &state) { panel.keep(state["words"]["10590"], 18); });
        QTRY_COMPARE(kept(), Json(18));
        panel.set("words.10591", nullptr); // a fault, not a setting
        panel.apply({{"clock", {{"offset", -5}}}, {"lcd", {{"brightness", 33}}}});
        panel.stop(std::chrono::seconds(5));

        sim::Panel next;
        next.apply(sim::loadKept(m_kept)); // adds to the words, unlike a change
        Json expected = sim::defaultState();
        expected["words"]["10590"] = 18;
        expected["clock"]["offset"] = -5;
        expected["lcd"]["brightness"] = 33;
        QCOMPARE(next.get(""), expected);
    }

    void ignoresSettingsThatDoNotFit_data()
    {
        rows({"", "\xff{", "{\"version\": 1, \"lcd\": {\"bri", R"({"lcd": {"brightness": 5}})",
              R"({"version": 1, "lcd": {"brightness": 0}})", R"({"version": 1, "reboots": [1]})",
              R"({"version": 0, "words": {}, "lcd": {}, "buzzer": {}, "clock": {}})", "[1]"});
    }
    void ignoresSettingsThatDoNotFit()
    {
        m_root.write("/kept.json"_s, cell(0).toUtf8());
        Json loaded;
        const QByteArray line = printedBy([&] { loaded = sim::loadKept(m_kept); }, stderr);
        QCOMPARE(loaded, Json::object());
        QVERIFY2(line.contains("kept.json are ignored: "), line.constData());
    }

    void installsItemFilesOnce()
    {
        const QDir folder(m_path + "/mnt/tarni/app/hmiapp/bin/NetWorkTest"_s);
        sim::installFiles();
        const QStringList files = folder.entryList(QDir::Files);
        QCOMPARE(files.join(u' '), "NetWorkTest_ch.json NetWorkTest_en.json"_s);
        for (const QString &file : files) // what somebody has removed stays away
            QVERIFY(QFile::remove(folder.filePath(file)));
        sim::installFiles();
        QVERIFY(folder.isEmpty());
    }

    void saysThatItemFilesHaveNoPlace()
    {
        m_root.write("/mnt"_s, {});
        QVERIFY(printedBy(sim::installFiles, stderr).startsWith("sysset-sim: cannot install: "));
    }

    void refusesScenariosThatCannotBeRead_data() { rows({"{\"lcd\": ", "", "missing"}); }
    void refusesScenariosThatCannotBeRead()
    {
        if (cell(0) != "missing"_s)
            m_root.write("/s.json"_s, cell(0).toUtf8());
        try {
            sim::loadScenario(m_path.toStdString() + "/s.json");
            QFAIL("is taken");
        } catch (const sim::BadRequest &error) {
            QVERIFY2(std::string(error.what()).find("/s.json") != std::string::npos, error.what());
        }
    }

    void shippedScenariosFit()
    {
        for (const char *name : {"full", "bare", "no-network-service", "every-call-fails"})
            sim::Panel().apply(sim::loadScenario(name)); // throws otherwise
    }

private:
    static std::string word(int index) { return cell(index).toStdString(); }

    PanelRoot m_root;
    const QString m_path = qEnvironmentVariable("SYSSET_ROOT");
    const std::string m_kept = m_path.toStdString() + "/kept.json";
};

QTEST_GUILESS_MAIN(PanelStateTest)
#include "PanelStateTest.moc"
