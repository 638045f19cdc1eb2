#include "update/PlcDownload.h"

#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"
#include "update/Progress.h"

#include <QFile>
#include <QTest>

#include <thread>

using sim::Json;
using sim::panel;

namespace {

// Names of steps as they are kept in the state of the panel, one blank between.
QString stepsTaken()
{
    QStringList steps;
    for (const Json &step : panel().get("plc.steps"))
        steps += QString::fromStdString(step.get<std::string>());
    return steps.join(u' ');
}

const QString READ = "ReadPlc5VDownLoadInfo "_s;
const QString GREETING = READ + "Open Commu isHasPassword CheckVer StopPLC ReadPlcVer "_s;
const QString SECTIONS = "DownLoadPro DownLoadPara DownLoadMask DownLoadMemory DownLoadCamTable "_s;
const QString END = "DownLoadExtension StartPLC Close"_s;

} // namespace

class PlcDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void stepsAndResults_data();
    void stepsAndResults();
    void progressPoints();

private:
    int download();

    PanelRoot m_root;
    QTemporaryDir m_stick;
    char m_failed[PLC_TRACE_SIZE];
};

void PlcDownloadTest::init()
{
    panel().reset();
    m_root.clear();
    QFile file(m_stick.filePath("line.bin"_s));
    file.open(QIODevice::WriteOnly);
    file.write("a program");
}

int PlcDownloadTest::download()
{
    m_failed[0] = '\0';
    return UpdatePLCprogram(m_stick.filePath("line.bin"_s).toStdString(), m_failed);
}

void PlcDownloadTest::stepsAndResults_data()
{
    QTest::addColumn<QByteArray>("plc");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QByteArray>("trace");

    const char *none = R"("program": false, "parameters": false, "mask": false, "memory": false,
                          "cam": false)";
    const auto bare = [none](const QByteArray &more) {
        return QByteArray(R"({"file": {)") + none + "}" + more + "}";
    };
    const QString all = GREETING + SECTIONS + END;
    const QString noSections = GREETING + END;
    QTest::newRow("everything") << QByteArray("{}") << 0 << all << QByteArray();
    QTest::newRow("no section at all") << bare("") << 0 << noSections << QByteArray();
    QTest::newRow("file not read")
        << QByteArray(R"({"file": {"read": -1}})") << -15 << READ.trimmed() << QByteArray();
    QTest::newRow("password in the file")
        << QByteArray(R"({"file": {"password": true, "protect": true}, "hasPassword": 1})") << 0
        << READ + "Open Commu CheckPassword SetUpLoadPasswd CheckVer StopPLC ReadPlcVer "_s +
               SECTIONS + END
        << QByteArray();
    QTest::newRow("password in the PLC alone")
        << QByteArray(R"({"hasPassword": 1})") << -4 << READ + "Open Commu isHasPassword"_s
        << QByteArray();
    QTest::newRow("password refused")
        << QByteArray(R"({"file": {"password": true}, "results": {"CheckPassword": [-24]}})") << -24
        << READ + "Open Commu CheckPassword"_s << QByteArray("CheckPassword Error ");
    // The older format it is not either.
    QTest::newRow("-14 of a step leads to the older download")
        << QByteArray(R"({"results": {"StopPLC": [-14]}})") << -22
        << READ + "Open Commu isHasPassword CheckVer StopPLC"_s << QByteArray("StopPLC Error ");
    QTest::newRow("failed extension leaves what the greeting left")
        << bare(R"(, "results": {"ReadPlcVer": [2], "DownLoadExtension": [-1]})") << 2
        << GREETING + "DownLoadExtension"_s << QByteArray("DownLoadExtension Error ");
    QTest::newRow("third attempt succeeds")
        << QByteArray(R"({"results": {"DownLoadPara": [-17, -18, 0]}})") << 0
        << GREETING +
               "DownLoadPro DownLoadPara DownLoadPara DownLoadPara DownLoadMask DownLoadMemory "
               "DownLoadCamTable "_s +
               END
        << QByteArray();
    QTest::newRow("three attempts fail")
        << QByteArray(R"({"results": {"DownLoadPro": [-9, -32, -26]}})") << -26
        << GREETING + "DownLoadPro DownLoadPro DownLoadPro"_s << QByteArray("DownLoadPro Error ");
    QTest::newRow("positive number passes after three attempts")
        << QByteArray(R"({"results": {"DownLoadMask": [-1, -1, 7]}})") << 0
        << GREETING +
               "DownLoadPro DownLoadPara DownLoadMask DownLoadMask DownLoadMask DownLoadMemory "
               "DownLoadCamTable "_s +
               END
        << QByteArray();
    QTest::newRow("memory's result has eight bits: 256 is success")
        << QByteArray(R"({"results": {"DownLoadMemory": [256]}})") << 0 << all << QByteArray();
    QTest::newRow("memory's result has eight bits: 245 is -11")
        << QByteArray(R"({"results": {"DownLoadMemory": [245, 245, 245]}})") << -11
        << GREETING +
               "DownLoadPro DownLoadPara DownLoadMask DownLoadMemory DownLoadMemory DownLoadMemory"_s
        << QByteArray("DownLoadMemory Error ");
    QTest::newRow("failed extension is a success")
        << QByteArray(R"({"results": {"DownLoadExtension": [-27]}})") << 0
        << GREETING + SECTIONS + "DownLoadExtension"_s << QByteArray("DownLoadExtension Error ");
    QTest::newRow("failed extension leaves what was left before")
        << QByteArray(R"({"results": {"DownLoadCamTable": [3, 3, 3], "DownLoadExtension": [-27]}})")
        << 3
        << GREETING + "DownLoadPro DownLoadPara DownLoadMask DownLoadMemory DownLoadCamTable "
                      "DownLoadCamTable DownLoadCamTable DownLoadExtension"_s
        << QByteArray("DownLoadExtension Error ");
    QTest::newRow("close counts") << bare(R"(, "results": {"Close": [-21]})") << -21 << noSections
                                  << QByteArray("Close Error ");
    for (const char *step : {"Open", "Commu", "CheckVer", "StopPLC", "ReadPlcVer", "StartPLC"}) {
        const QString name = QString::fromLatin1(step);
        QTest::newRow(step) << bare(QByteArray(R"(, "results": {")") + step + R"(": [-5]})") << -5
                            << noSections.left(noSections.indexOf(name) + name.size())
                            << (name == "Open"_s ? QByteArray("open serial Error ")
                                                 : QByteArray(step) + " Error ");
    }
}

void PlcDownloadTest::stepsAndResults()
{
    QFETCH(QByteArray, plc);
    QFETCH(int, result);
    QFETCH(QString, steps);
    QFETCH(QByteArray, trace);

    panel().apply({{"plc", Json::parse(plc.toStdString())}});
    int returned = 1;
    const QByteArray printed = printedBy([&] { returned = download(); });
    QCOMPARE(returned, result);
    QCOMPARE(stepsTaken(), steps);
    QCOMPARE(QByteArray(m_failed), trace);
    QVERIFY2(trace.isEmpty() || printed.contains("\n" + trace + "\n"), printed);
    QVERIFY(printed.startsWith("Update PLC Program!\r\non_UpdatePLCProgram_clicked start time "));
    QCOMPARE(printed.contains("StartPLC Ok \n"), steps.endsWith("Close"_s));
    QVERIFY(g_Progress.nPercent == 100);
}

// The bar's number while the PLC is busy with a step.
void PlcDownloadTest::progressPoints()
{
    const std::pair<const char *, int> points[] = {
        {"plc.CheckVer", 10},       {"plc.DownLoadPara", 30},      {"plc.DownLoadMask", 40},
        {"plc.DownLoadMemory", 50}, {"plc.DownLoadExtension", 70}, {"plc.StartPLC", 90}};
    for (const auto &[op, percent] : points) {
        panel().reset();
        panel().delay(op, 60000);
        std::atomic<bool> ended{false};
        std::thread worker([&] {
            download();
            ended = true;
        });
        const bool reached =
            QTest::qWaitFor([&, wanted = percent] { return g_Progress.nPercent == wanted; });
        panel().hurry();
        worker.join();
        QVERIFY2(reached, op);
    }
}

QTEST_GUILESS_MAIN(PlcDownloadTest)
#include "PlcDownloadTest.moc"
