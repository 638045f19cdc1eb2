#include "tests/panel/Operator.h"
#include "tests/support/Rows.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int EXTEND_TAB = 3;
constexpr int LANGUAGE_TAB = 2;

// The rows of each link, as they are checked.
const QMap<QString, QStringList> CHAINS = {
    {"eth"_s,
     {"EthIdentified"_s, "EthEnable"_s, "EthConnect"_s, "EthGateaway"_s, "EthMQTT"_s,
      "EthNetDelay"_s}},
    {"wifi"_s,
     {"WifiIdentified"_s, "WifiEnable"_s, "WifiHotspotConnect"_s, "WifiHotspotSignal"_s,
      "WifiHotsGateaway"_s, "WifiHotsMQTT"_s, "WifiNetDelay"_s}},
    {"4g"_s,
     {"4GIdentified"_s, "4GEnable"_s, "4GSignal"_s, "4GCard"_s, "4GBaseStationConnect"_s,
      "4GConnect"_s, "4GMQTT"_s, "4GNetDelay"_s}},
    {"cloud"_s, {"Gocloud"_s}},
};

const QMap<QString, QString> RESULTS = {
    {"good"_s, "The network connection is successful."_s},
    {"none"_s, "No network reaches the cloud. See the failed items."_s},
    {"good, in Chinese"_s, "网络连接成功。"_s},
    {"unchecked"_s, "The cloud settings are missing or damaged. The network was not checked."_s},
};

QJsonObject readObject(const QString &path)
{
    QFile file(QStringLiteral(SOURCE_FOLDER "/") + path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

QJsonObject scenario(const QString &name)
{
    return readObject("platform/sim/scenarios/%1.json"_s.arg(name));
}

// As a scenario is laid over the state: objects merge, the rest replaces.
QJsonValue merged(const QJsonValue &base, const QJsonValue &part)
{
    if (!base.isObject() || !part.isObject())
        return part;
    QJsonObject result = base.toObject();
    const QJsonObject changes = part.toObject();
    for (auto change = changes.begin(); change != changes.end(); ++change)
        result[change.key()] = merged(result.value(change.key()), change.value());
    return result;
}

// The shown texts in the widget of a dump that is named `name`, by the names of their labels.
void collectTexts(const QJsonObject &widget, const QString &name, bool within,
                  QMap<QString, QString> &texts)
{
    const QString own = widget.value("name"_s).toString();
    within = within || own == name;
    if (within && widget.value("visible"_s).toBool())
        texts[own] = widget.value("text"_s).toString();
    for (const QJsonValue child : widget.value("children"_s).toArray())
        collectTexts(child.toObject(), name, within, texts);
}

} // namespace

// Faults of every kind, each diagnosed by touch, and the advice read.
class DiagnosisStoryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        start();
        awaitCloud(1);
        for (const QString &part : {"net"_s, "wifi"_s, "modem"_s, "cloud"_s})
            m_healthy[part] = m_panel->get(part);
    }

    void faults_data()
    {
        // scenario | marks of the link's rows, in order | result | reason
        rows({
            "eth-absent | × | good",
            "eth-off | √ × | good",
            "eth-unplugged | √ √ × | good",
            "eth-no-address | √ √ √ × | good",
            "eth-gateway-silent | √ √ √ × | good",
            "eth-server-silent | √ √ √ √ √ 9999ms | good",
            "eth-slow | √ √ √ √ √ 600ms | good",
            "wifi-absent | × | good",
            "wifi-off | √ × | good",
            "wifi-not-joined | √ √ × | good",
            "wifi-no-address | √ √ √ Strong × | good",
            "wifi-gateway-silent | √ √ √ Strong × | good",
            "wifi-server-silent | √ √ √ Strong √ √ 9999ms | good",
            "wifi-slow | √ √ √ Strong √ √ 600ms | good",
            "4g-absent | × | none",
            "4g-off | √ × | none",
            "4g-weak | √ √ Weak √ √ √ √ 12ms | good",
            "4g-no-signal | √ √ Weak √ √ √ √ 12ms | good",
            "4g-no-sim | √ √ Medium × | none",
            "4g-not-attached | √ √ Medium √ × √ √ 12ms | good",
            "4g-no-link | √ √ Medium √ √ × | none",
            "4g-server-silent | √ √ Medium √ √ √ √ 9999ms | good",
            "4g-slow | √ √ Medium √ √ √ √ 600ms | good",
            "cloud-no-server-address | √ √ √ √ √ × | none",
            "cloud-connecting | √ √ √ √ × | none | Server connection failed!",
            "cloud-no-time | √ √ √ √ × | none | Time synchronize failed!",
            "cloud-no-certificate | √ √ √ √ × | none | Certificate download failed!",
            "cloud-no-server | √ √ √ √ × | none | Server connection failed!",
            "cloud-no-subscription | √ √ √ √ × | none | Topic subscribe failed!",
            "wifi-weak | √ √ √ Weak √ √ 12ms | good", // read again below
        });
    }

    void faults()
    {
        const QString name = cell(0);
        const QString link = name.section(QLatin1Char('-'), 0, 0);
        QJsonObject fault = scenario(name);
        QVERIFY(!fault.isEmpty());
        for (const QString &part : fault.keys())
            fault[part] = merged(m_healthy.value(part), fault.value(part));
        put(fault);
        if (fault.contains("cloud"_s))
            awaitCloud(fault.value("cloud"_s)["status"_s].toInt());
        diagnose();
        read(link == "cloud"_s ? "eth"_s : link, cell(1), cell(2), cell(3));
        for (const QString &part : fault.keys())
            fault[part] = m_healthy.value(part);
        put(fault);
        if (link == "cloud"_s || link == "4g"_s) // no link may have been online
            awaitCloud(1);
    }

    void readAnewInTheOtherLanguage()
    {
        touch("btn_close"_s);
        touch("btn_Sysset"_s);
        touch("tab_System"_s, LANGUAGE_TAB);
        touch("CHBtn"_s);
        m_language = "ch"_s;
        openDiagnosis();
        read("wifi"_s, "√ √ √ 弱 √ √ 12ms"_s, "good, in Chinese"_s);
    }

    void closedAndEndedInTheMiddle()
    {
        m_panel->ask({"delay"_s, "netT.netTping"_s, "30000"_s});
        touch("btn_StartDiag"_s);
        touch("btn_close"_s);
        openDiagnosis();
        QVERIFY(!m_panel->press("btn_StartDiag"_s));
        QCOMPARE(m_panel->error(), "btn_StartDiag is disabled"_s);
        QCOMPARE(m_panel->text("lab_status"_s), "正在诊断"_s);
        m_panel->ask({"quit"_s});
        QCOMPARE(m_panel->waitForEnd(), 0);
    }

    void faultsOfTheStart_data()
    {
        rows({"cloud-no-configuration | unchecked", "cloud-bad-configuration | unchecked",
              "cloud-no-resource | none | Get resource file failed!"});
    }

    void faultsOfTheStart()
    {
        start(cell(0));
        QVERIFY(m_panel->prints("loadCloudXML"));
        awaitCloud(-1); // the first period has told the dialog
        diagnose();
        read("cloud"_s, "×"_s, cell(1), cell(2));
    }

private:
    void start(const QString &scenario = "full"_s)
    {
        m_panel = std::make_unique<Operator>();
        m_language = "en"_s;
        m_panel->setEnvironment("SYSSET_SCENARIO"_s, scenario);
        QVERIFY(m_panel->writeEnglish());
        const QString cloud = m_panel->file("/mnt/data/prj/cloud"_s);
        QVERIFY(QDir().mkpath(cloud));
        QVERIFY(QFile::copy(QStringLiteral(SOURCE_FOLDER "/platform/sim/samples/cloud.xml"),
                            cloud + "/cloud.xml"_s));
        QVERIFY(m_panel->start());
        openDiagnosis();
    }

    void touch(const QString &object, int index = -1)
    {
        QVERIFY2(PanelProcess::wait([&] { return m_panel->press(object, index); }),
                 qPrintable(object));
    }

    void openDiagnosis()
    {
        touch("btn_Net"_s);
        touch("tab_Net"_s, EXTEND_TAB);
        touch("btn_check"_s);
        QVERIFY(m_panel->appears("btn_StartDiag"_s));
    }

    void diagnose()
    {
        touch("btn_StartDiag"_s);
        QVERIFY(PanelProcess::wait([this] { return m_panel->isEnabled("btn_StartDiag"_s); }));
    }

    void read(const QString &link, const QString &marks, const QString &result,
              const QString &reason = {})
    {
        const QJsonObject dialog =
            m_panel->ask({"ui"_s, "dump"_s, "NetWorkTestUi"_s}).toArray().first().toObject();
        const QJsonObject items =
            readObject("resources/NetWorkTest/NetWorkTest_%1.json"_s.arg(m_language));
        QStringList seen;
        for (const QString &key : CHAINS[link]) {
            QMap<QString, QString> row;
            collectTexts(dialog, key, false, row);
            if (row.isEmpty())
                continue;
            const QString mark = row["lab_state"_s];
            const QJsonObject texts = items.value(key).toObject();
            const QString region =
                key.endsWith("MQTT"_s) ? (m_language == "en"_s ? ":Europe"_s : "：欧洲"_s) : ""_s;
            QCOMPARE(row["lab_title"_s], texts.value("ItemString"_s).toString() + region);
            const bool failed = mark == "×"_s || mark == "9999ms"_s;
            const bool bad = failed || mark == "Weak"_s || mark == "弱"_s || mark == "600ms"_s;
            if (failed)
                QCOMPARE(row["lab_result"_s], texts.value("failure"_s).toString() +
                                                  (reason.isEmpty() ? reason : "    "_s + reason));
            QCOMPARE(row["lab_solution"_s], bad ? texts.value("Solution"_s).toString() : QString());
            seen << mark;
        }
        QCOMPARE(seen.join(u' '), marks);
        QCOMPARE(m_panel->text("lab_status"_s), RESULTS[result]);
    }

    void put(const QJsonObject &parts)
    {
        for (auto part = parts.begin(); part != parts.end(); ++part) {
            const QJsonObject whole{{"value"_s, part.value()}};
            const QByteArray json = QJsonDocument(whole).toJson(QJsonDocument::Compact);
            QVERIFY2(m_panel->set(part.key(), json.mid(9).chopped(1)), // {"value": ... }
                     qPrintable(m_panel->error()));
        }
    }

    // Waits until the cloud monitor has read that status.
    void awaitCloud(int status)
    {
        m_panel->ask({"calls"_s, "clear"_s});
        QVERIFY(PanelProcess::wait([&] {
            for (const QJsonValue call : m_panel->ask({"calls"_s}).toArray()) {
                if (call["op"_s] == "netT.CAsyncClient.getConnectedStatus"_s &&
                    call["result"_s] == status)
                    return true;
            }
            return false;
        }));
    }

    std::unique_ptr<Operator> m_panel;
    QString m_language = "en"_s;
    QJsonObject m_healthy;
};

QTEST_GUILESS_MAIN(DiagnosisStoryTest)
#include "DiagnosisStoryTest.moc"
