#include "update/PlcDownload.h"

#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"
#include "update/Progress.h"

#include <fstream>
#include <thread>

using sim::Json;
using sim::panel;

namespace {

// Names of steps, one blank between, with those that many cases have in common put in.
QString spelledOut(QString steps)
{
    return steps
        .replace("GREETING"_s, "READ Open Commu isHasPassword CheckVer StopPLC ReadPlcVer"_s)
        .replace("READ"_s, "ReadPlc5VDownLoadInfo"_s)
        .replace("SECTIONS"_s,
                 "DownLoadPro DownLoadPara DownLoadMask DownLoadMemory DownLoadCamTable"_s)
        .replace("END"_s, "DownLoadExtension StartPLC Close"_s);
}

} // namespace

class PlcDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        panel().reset();
        m_root.clear();
        std::ofstream(m_file) << "a program";
    }

    // state of the PLC, BARE for a file without sections | result | steps taken | the failed one
    void stepsAndResults_data()
    {
        rows(
            {"{} | 0 | GREETING SECTIONS END", R"({"file": BARE} | 0 | GREETING END)",
             R"({"file": {"read": -1}} | -15 | READ)",
             R"({"file": {"password": true, "protect": true}, "hasPassword": 1} | 0 |
                 READ Open Commu CheckPassword SetUpLoadPasswd CheckVer StopPLC ReadPlcVer SECTIONS END)",
             R"({"hasPassword": 1} | -4 | READ Open Commu isHasPassword)",
             R"({"file": {"password": true}, "results": {"CheckPassword": [-24]}} | -24 |
                 READ Open Commu CheckPassword | CheckPassword)",
             // The older format, which it is not either.
             R"({"results": {"StopPLC": [-14]}} | -22 |
                 READ Open Commu isHasPassword CheckVer StopPLC | StopPLC)",
             // A failed extension is a success, or what was left before; this is intended.
             R"({"results": {"DownLoadExtension": [-27]}} | 0 |
                 GREETING SECTIONS DownLoadExtension | DownLoadExtension)",
             R"({"file": BARE, "results": {"ReadPlcVer": [2], "DownLoadExtension": [-1]}} | 2 |
                 GREETING DownLoadExtension | DownLoadExtension)",
             R"({"results": {"DownLoadCamTable": [3, 3, 3], "DownLoadExtension": [-27]}} | 3 |
                 GREETING SECTIONS DownLoadCamTable DownLoadCamTable DownLoadExtension | DownLoadExtension)",
             // Three attempts; a positive number passes after the last.
             R"({"results": {"DownLoadPara": [-17, -18, 0]}} | 0 | GREETING DownLoadPro
                 DownLoadPara DownLoadPara DownLoadPara DownLoadMask DownLoadMemory DownLoadCamTable END)",
             R"({"results": {"DownLoadPro": [-9, -32, -26]}} | -26 |
                 GREETING DownLoadPro DownLoadPro DownLoadPro | DownLoadPro)",
             R"({"results": {"DownLoadMask": [-1, -1, 7]}} | 0 | GREETING DownLoadPro DownLoadPara
                 DownLoadMask DownLoadMask DownLoadMask DownLoadMemory DownLoadCamTable END)",
             // Memory's result has eight bits.
             R"({"results": {"DownLoadMemory": [256]}} | 0 | GREETING SECTIONS END)",
             R"({"results": {"DownLoadMemory": [245, 245, 245]}} | -11 | GREETING DownLoadPro DownLoadPara
                 DownLoadMask DownLoadMemory DownLoadMemory DownLoadMemory | DownLoadMemory)",
             R"({"results": {"Open": [-5]}} | -5 | READ Open | open serial)",
             R"({"results": {"Commu": [-5]}} | -5 | READ Open Commu | Commu)",
             R"({"results": {"CheckVer": [-5]}} | -5 |
                 READ Open Commu isHasPassword CheckVer | CheckVer)",
             R"({"results": {"ReadPlcVer": [-5]}} | -5 | GREETING | ReadPlcVer)",
             R"({"results": {"StartPLC": [-5]}} | -5 |
                 GREETING SECTIONS DownLoadExtension StartPLC | StartPLC)",
             R"({"results": {"Close": [-21]}} | -21 | GREETING SECTIONS END | Close)"});
    }
    void stepsAndResults()
    {
        const std::string bare = R"({"program": false, "parameters": false, "mask": false,
                                     "memory": false, "cam": false})";
        const QString plc = cell(0).replace("BARE"_s, QString::fromStdString(bare));
        const QByteArray trace =
            cellOrEmpty(3).isEmpty() ? QByteArray() : cellOrEmpty(3).toLatin1() + " Error ";
        panel().apply({{"plc", Json::parse(plc.toStdString())}});
        int returned = 1;
        const QByteArray printed = printedBy([&] { returned = download(); });
        QCOMPARE(returned, number(1));
        QStringList steps;
        for (const Json &step : panel().get("plc.steps"))
            steps += QString::fromStdString(step.get<std::string>());
        QCOMPARE(steps.join(u' '), spelledOut(cell(2).simplified()));
        QCOMPARE(QByteArray(m_failed), trace);
        QVERIFY2(trace.isEmpty() || printed.contains("\n" + trace + "\n"), printed);
        QVERIFY(
            printed.startsWith("Update PLC Program!\r\non_UpdatePLCProgram_clicked start time "));
        QCOMPARE(printed.contains("StartPLC Ok \n"), steps.contains("Close"_s));
        QVERIFY(g_Progress.nPercent == 100);
    }

    // The bar's number while the PLC is busy with a step.
    void progressPoints()
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

private:
    int download()
    {
        m_failed[0] = '\0';
        return UpdatePLCprogram(m_file, m_failed);
    }

    PanelRoot m_root;
    QTemporaryDir m_stick;
    const std::string m_file = m_stick.filePath("line.bin"_s).toStdString();
    char m_failed[PLC_TRACE_SIZE];
};

QTEST_GUILESS_MAIN(PlcDownloadTest)
#include "PlcDownloadTest.moc"
