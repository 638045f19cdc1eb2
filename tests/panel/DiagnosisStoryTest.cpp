#include "tests/panel/Operator.h"
#include "tests/support/Rows.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int EXTEND_TAB = 3;
constexpr int LANGUAGE_TAB = 2;

// All rows, as they are checked.
const QStringList ORDER = R"(Gocloud
NetWorkEth EthIdentified EthEnable EthConnect EthGateaway EthMQTT EthNetDelay
NetWorkWifi WifiIdentified WifiEnable WifiHotspotConnect WifiHotspotSignal WifiHotsGateaway
WifiHotsMQTT WifiNetDelay
NetTestNetWork4G 4GIdentified 4GEnable 4GSignal 4GCard 4GBaseStationConnect 4GConnect 4GMQTT
4GNetDelay)"_s.simplified()
                              .split(u' ');

struct Row
{
    QString key;
    QMap<QString, QString> texts; // that are shown, by the names of their labels
};

void collectRows(const QJsonObject &widget, QVector<Row> &rows)
{
    const QString name = widget["name"_s].toString();
    if (widget["class"_s] == "NetWorkTestItem"_s)
        rows.append({name, {}});
    else if (!rows.isEmpty() && widget["visible"_s].toBool())
        rows.last().texts[name] = widget["text"_s].toString();
    for (const QJsonValue child : widget["children"_s].toArray())
        collectRows(child.toObject(), rows);
}

} // namespace

// Each link as far as it goes, and advice of each kind, diagnosed by touch in a program of its own.
class DiagnosisStoryTest : public QObject
{
    Q_OBJECT

private slots:
    void faults_data()
    {
        // scenario | marks of the rows, a heading's is "-" | result | reason
        rows({
            "cloud-no-configuration | × | "
            "The cloud settings are missing or damaged. The network was not checked.",
            "cloud-no-time | √ - √ √ √ √ × - √ √ √ Strong √ × - √ √ Medium √ √ √ × | "
            "No network reaches the cloud. See the failed items. | Time synchronize failed!",
            "eth-server-silent | √ - √ √ √ √ √ 9999ms | The network connection is successful.",
            "4g-slow | √ - √ √ × - √ √ × - √ √ Medium √ √ √ √ 600ms | "
            "The network connection is successful.",
            "wifi-weak | √ - √ √ × - √ √ √ Weak √ √ 12ms | "
            "The network connection is successful.", // read again below
        });
    }

    void faults()
    {
        start(cell(0));
        touch("btn_StartDiag"_s);
        QVERIFY(PanelProcess::wait([this] { return m_panel->isEnabled("btn_StartDiag"_s); }));
        read(cell(1), cell(2), cellOrEmpty(3));
    }

    void readAnewInTheOtherLanguage()
    {
        touch("btn_close"_s);
        touch("btn_Sysset"_s);
        touch("tab_System"_s, LANGUAGE_TAB);
        touch("CHBtn"_s);
        m_language = "ch"_s;
        openDiagnosis();
        read("√ - √ √ × - √ √ √ 弱 √ √ 12ms"_s, "网络连接成功。"_s);
    }

    void closedAndEndedInTheMiddle()
    {
        m_panel->ask({"delay"_s, "netT.netTping"_s, "30000"_s});
        touch("btn_StartDiag"_s);
        touch("btn_close"_s);
        m_panel->ask({"quit"_s});
        QCOMPARE(m_panel->waitForEnd(), 0);
    }

private:
    // Up to the open dialog, which knows the cloud's state.
    void start(const QString &scenario)
    {
        m_panel = std::make_unique<Operator>();
        m_panel->setEnvironment("SYSSET_SCENARIO"_s, scenario);
        QVERIFY(m_panel->writeEnglish());
        const QString cloud = m_panel->file("/mnt/data/prj/cloud"_s);
        QVERIFY(QDir().mkpath(cloud));
        QVERIFY(QFile::copy(QStringLiteral(SOURCE_FOLDER "/platform/sim/samples/cloud.xml"),
                            cloud + "/cloud.xml"_s));
        QVERIFY(m_panel->start());
        openDiagnosis();
        QVERIFY(PanelProcess::wait([this] {
            const QJsonDocument calls(m_panel->ask({"calls"_s}).toArray());
            return calls.toJson().contains("CAsyncClient.getConnectedStatus");
        }));
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

    // The dialog, against the item file of the language.
    void read(const QString &marks, const QString &result, const QString &reason = {})
    {
        QFile file(QStringLiteral(SOURCE_FOLDER "/resources/NetWorkTest/NetWorkTest_%1.json")
                       .arg(m_language));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonObject items = QJsonDocument::fromJson(file.readAll()).object();
        QVector<Row> rows;
        collectRows(m_panel->ask({"ui"_s, "dump"_s, "NetWorkTestUi"_s})[0].toObject(), rows);
        const QString region = m_language == "en"_s ? ":Europe"_s : "：欧洲"_s;
        QStringList seen;
        int place = -1;
        for (Row &row : rows) {
            const QString mark = row.texts["lab_state"_s];
            seen << (mark.isEmpty() ? "-"_s : mark);
            QVERIFY(ORDER.indexOf(row.key) > place);
            place = ORDER.indexOf(row.key);
            const QJsonObject texts = items[row.key].toObject();
            QCOMPARE(row.texts["lab_title"_s],
                     texts["ItemString"_s].toString() +
                         (row.key.endsWith("MQTT"_s) ? region : QString()));
            const bool failed = mark == "×"_s || mark == "9999ms"_s;
            QString said = texts[failed ? "failure"_s : "success"_s].toString();
            if (failed && !reason.isEmpty())
                said += "    "_s + reason;
            QCOMPARE(row.texts["lab_result"_s], failed || mark == "√"_s ? said : QString());
            const bool bad = failed || mark == "Weak"_s || mark == "弱"_s || mark == "600ms"_s;
            QCOMPARE(row.texts["lab_solution"_s], bad ? texts["Solution"_s].toString() : QString());
        }
        QCOMPARE(seen.join(u' '), marks);
        QCOMPARE(m_panel->text("lab_status"_s), result);
    }

    std::unique_ptr<Operator> m_panel;
    QString m_language = "en"_s;
};

QTEST_GUILESS_MAIN(DiagnosisStoryTest)
#include "DiagnosisStoryTest.moc"
