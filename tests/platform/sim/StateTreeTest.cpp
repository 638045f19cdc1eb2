#include "platform/sim/StateTree.h"

#include "platform/sim/Scenario.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"

#include <QTemporaryDir>

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

std::string word(int index)
{
    return cell(index).toStdString();
}

} // namespace

class StateTreeTest : public QObject
{
    Q_OBJECT

private slots:
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
        const QByteArray refused =
            refusal([&] { sim::change(state, word(0), Json::parse(word(1))); });
        QVERIFY2(refused.contains(cell(2).toUtf8()), refused.data());
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
