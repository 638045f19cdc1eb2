#include "platform/sim/StateTree.h"

#include "platform/sim/Scenario.h"
#include "tests/support/Text.h"

#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using sim::Json;

namespace {

// What `action` is refused with, empty if it is not.
QByteArray refusal(const std::function<void()> &action)
{
    try {
        action();
    } catch (const sim::BadRequest &error) {
        return error.what();
    }
    return {};
}

} // namespace

class StateTreeTest : public QObject
{
    Q_OBJECT

private slots:
    // What is set at one path shows at another.
    void changes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("readPath");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *path, const char *json, const char *readPath,
                            const char *key, const char *expected) {
            QTest::addRow("%s %s", path, json) << path << json << readPath << key << expected;
        };
        row("words.10591", "null", "words", "/10591", "null");
        row("net.ping.192.168.1.1", "-2", "net.ping", "/192.168.1.1", "-2");
        row("net.devices.0", R"({"sIpAddr": "10.0.0.1"})", "net.devices.0", "/sDevName",
            "\"eth0\"");
        row("net.devices.3", R"({"sDevName": "eth1"})", "net.devices", "/3/present", "true");
        row("net.devices", "[]", "net", "/devices", "[]");
        row("net.ping", "{}", "net", "/ping", "{}");
        row("", R"({"lcd": {"width": 800}})", "", "/lcd/height", "600");
    }
    void changes()
    {
        QFETCH(QString, path);
        QFETCH(QString, json);
        QFETCH(QString, readPath);
        QFETCH(QString, key);
        Json state = sim::defaultState();
        sim::change(state, path.toStdString(), Json::parse(json.toStdString()));
        const Json &found = sim::valueAt(state, readPath.toStdString());
        QTEST(QString::fromStdString(found.at(Json::json_pointer(key.toStdString())).dump()),
              "expected");
    }

    void refuses_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("error");
        const auto row = [](const char *path, const char *json, const char *error) {
            QTest::addRow("%s %s", path, json) << path << json << error;
        };
        row("lcd", R"({"width": 800, "weight": 1})", "no such path: lcd.weight");
        row("lcd.width.x", "1", "no such path: lcd.width.x");
        row(".", "1", "no such path: .");
        row("net.devices.4", "{}", "no such path: net.devices.4");
        row("net.devices.-1", "{}", "no such path: net.devices.-1");
        row("net.devices.99999999999999999999", "{}", "no such path");
        row("modem.at.texts.9", "\"\"", "no such path: modem.at.texts.9");
        row("modem.at.numbers", "[1, 2]", "must be a list of 5");
        row("words.10591", "65536", "words.10591: must be a whole number from 0 to 65535, or null");
        row("words.10591", "1.5", "must be a whole number");
        row("words.10591", "18446744073709551615", "must be a whole number");
        row("words.x", "1", "words.x: must be named by a number");
        row("net.server", "1", "net.server: must be true or false");
        row("update.reply", "\"LTE\"",
            "update.reply: must be one of whole|empty|short|long|unterminated|noise");
        row("net.ping.*", "5", "must be a whole number from -2147483648 to -1");
        row("net.ping.*", R"({"min": 1, "typical": 2})", "no such path: net.ping.*.typical");
        row("net.devices", R"([{"sDevName": "eth0"}, 7])", "net.devices.1: must be an object");
        row("machine", "null", "machine: must be an object");
        // A new key of an open map is all that is left of the path.
        row("net.lease.eth9.sIpAddr", "\"1.2.3.4\"", "net.lease.eth9.sIpAddr: must be an object");
    }
    void refuses()
    {
        QFETCH(QString, path);
        QFETCH(QString, json);
        QFETCH(QString, error);
        Json state = sim::defaultState();
        const QByteArray refused = refusal(
            [&] { sim::change(state, path.toStdString(), Json::parse(json.toStdString())); });
        QVERIFY2(refused.contains(error.toUtf8()), refused.data());
        QVERIFY(state == sim::defaultState());
    }

    // Unlike a change, a scenario adds to the open maps.
    void overlaysAScenario()
    {
        Json state = sim::defaultState();
        sim::overlay(state, {{"words", {{"10591", nullptr}}}});
        QVERIFY(sim::valueAt(state, "words.10591").is_null());
        QVERIFY(sim::valueAt(state, "words.10590") == 600);
    }

    void refusesAScenario()
    {
        QTemporaryDir folder;
        const QString name = folder.filePath("s.json"_s);
        QVERIFY(refusal([&] { sim::loadScenario(name.toStdString()); }).contains("s.json"));
        for (const QByteArray &text :
             {QByteArray("{\"lcd\": "), QByteArray(), QByteArray(100000, '[')}) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(text);
            file.close();
            QVERIFY(refusal([&] { sim::loadScenario(name.toStdString()); }).contains("s.json"));
        }
    }

    void shippedScenariosFit()
    {
        for (const char *name : {"full", "bare", "no-network-service", "every-call-fails"}) {
            Json scenario = sim::loadScenario(name);
            scenario.erase("fail");
            Json state = sim::defaultState();
            const QByteArray refused = refusal([&] { sim::overlay(state, scenario); });
            QVERIFY2(refused.isEmpty(), refused.data());
        }
    }
};

QTEST_APPLESS_MAIN(StateTreeTest)
#include "StateTreeTest.moc"
