#include "platform/sim/StateTree.h"

#include "platform/sim/Scenario.h"

#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using sim::Json;

class StateTreeTest : public QObject
{
    Q_OBJECT

private slots:
    void changes_data();
    void changes();
    void refuses_data();
    void refuses();
    void overlaysAScenario();
    void refusesAScenario_data();
    void refusesAScenario();
    void shippedScenariosFit_data();
    void shippedScenariosFit();
};

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

// What is set at one path shows at another.
void StateTreeTest::changes_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("readPath");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("word as a number") << QByteArray("words.10591") << QByteArray("7")
                                      << QByteArray("words") << QByteArray("/10591=7");
    QTest::newRow("failing word") << QByteArray("words.10591") << QByteArray("null")
                                  << QByteArray("words") << QByteArray("/10591=null");
    QTest::newRow("dotted new key") << QByteArray("net.ping.192.168.1.1") << QByteArray("-2")
                                    << QByteArray("net.ping") << QByteArray("/192.168.1.1=-2");
    QTest::newRow("a record keeps its other fields")
        << QByteArray("net.devices.0") << QByteArray(R"({"sIpAddr": "10.0.0.1"})")
        << QByteArray("net.devices.0") << QByteArray("/sDevName=\"eth0\"");
    QTest::newRow("appended record is whole")
        << QByteArray("net.devices.3") << QByteArray(R"({"sDevName": "eth1"})")
        << QByteArray("net.devices") << QByteArray("/3/present=true");
    QTest::newRow("a list replaces") << QByteArray("net.devices") << QByteArray("[]")
                                     << QByteArray("net") << QByteArray("/devices=[]");
    QTest::newRow("an open map replaces") << QByteArray("net.ping") << QByteArray("{}")
                                          << QByteArray("net") << QByteArray("/ping={}");
    QTest::newRow("everything at once")
        << QByteArray("") << QByteArray(R"({"lcd": {"width": 800}})") << QByteArray("")
        << QByteArray("/lcd={\"brightness\":80,\"height\":600,\"width\":800}");
}

void StateTreeTest::changes()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, json);
    QFETCH(QByteArray, readPath);
    QFETCH(QByteArray, expected);
    Json state = sim::defaultState();
    sim::change(state, path.data(), Json::parse(json.data()));
    const auto equals = expected.indexOf('=');
    const Json::json_pointer where(expected.left(equals).toStdString());
    const Json &found = sim::valueAt(state, readPath.data()).at(where);
    QCOMPARE(QByteArray::fromStdString(found.dump()), expected.mid(equals + 1));
}

void StateTreeTest::refuses_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("error");
    const auto row = [](const char *path, const char *json, const char *error) {
        QTest::newRow(qPrintable(QString::asprintf("%s %s", path, json)))
            << QByteArray(path) << QByteArray(json) << QByteArray(error);
    };
    row("lcd.weight", "1", "no such path: lcd.weight");
    row("lcd", R"({"width": 800, "weight": 1})", "no such path: lcd.weight");
    row("lcd.width.x", "1", "no such path: lcd.width.x");
    row("lcd.", "{}", "no such path: lcd.");
    row(".", "1", "no such path: .");
    row("net.devices.4", "{}", "no such path: net.devices.4");
    row("net.devices.-1", "{}", "no such path: net.devices.-1");
    row("net.devices.99999999999999999999", "{}", "no such path");
    row("modem.at.texts.9", "\"\"", "no such path: modem.at.texts.9");
    row("modem.at.numbers", "[1, 2]", "must be a list of 5");
    row("words.10591", "65536", "words.10591: must be a whole number from 0 to 65535, or null");
    row("words.10591", "-1", "must be a whole number");
    row("words.10591", "1.5", "must be a whole number");
    row("words.10591", "18446744073709551615", "must be a whole number");
    row("words.x", "1", "words.x: must be named by a number");
    row("net.server", "1", "net.server: must be true or false");
    row("net.priority", "\"LTE\"", "net.priority: must be one of ETH|WIFI|4G");
    row("net.ping.*", "5", "must be a whole number from -2147483648 to -1");
    row("net.ping.*", R"({"min": 1, "typical": 2})", "no such path: net.ping.*.typical");
    row("net.devices", R"([{"sDevName": "eth0"}, 7])", "net.devices.1: must be an object");
    row("machine", "null", "machine: must be an object");
    // A new key of an open map is all that is left of the path.
    row("net.lease.eth9.sIpAddr", "\"1.2.3.4\"", "net.lease.eth9.sIpAddr: must be an object");
    row("reboots", "{}", "reboots: must be a list");
}

void StateTreeTest::refuses()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, json);
    QFETCH(QByteArray, error);
    Json state = sim::defaultState();
    const QByteArray refused =
        refusal([&] { sim::change(state, path.data(), Json::parse(json.data())); });
    QVERIFY2(refused.contains(error), refused.data());
    QVERIFY(state == sim::defaultState());
}

// Unlike a change, a scenario adds to the open maps.
void StateTreeTest::overlaysAScenario()
{
    Json state = sim::defaultState();
    sim::overlay(state,
                 {{"words", {{"10591", nullptr}}}, {"plc", {{"results", {{"Open", {-2}}}}}}});
    QVERIFY(sim::valueAt(state, "words.10591").is_null());
    QVERIFY(sim::valueAt(state, "words.10590") == 600);
    QVERIFY(sim::valueAt(state, "plc.results.Open.0") == -2);
}

void StateTreeTest::refusesAScenario_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("no JSON") << QByteArray("{\"lcd\": ");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("too deep") << QByteArray(100000, '[');
}

void StateTreeTest::refusesAScenario()
{
    QFETCH(QByteArray, text);
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("s.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    const std::string name = file.fileName().toStdString();
    QVERIFY(refusal([&] { sim::loadScenario(name); }).contains("s.json"));
    QVERIFY(refusal([&] { sim::loadScenario(name + ".missing"); }).contains("s.json.missing"));
}

void StateTreeTest::shippedScenariosFit_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"full", "bare", "no-network-service", "every-call-fails"})
        QTest::newRow(name) << QByteArray(name);
}

void StateTreeTest::shippedScenariosFit()
{
    QFETCH(QByteArray, name);
    Json scenario = sim::loadScenario(name.data());
    scenario.erase("fail");
    Json state = sim::defaultState();
    sim::overlay(state, scenario);
}

QTEST_APPLESS_MAIN(StateTreeTest)
#include "StateTreeTest.moc"
