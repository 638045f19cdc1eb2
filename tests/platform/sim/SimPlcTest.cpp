#include "platform/plc.h"
#include "platform/sim/Panel.h"
#include "tests/support/Rows.h"

#include <sys/stat.h>

using sim::Json;
using sim::panel;

class SimPlcTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { panel().reset(); }

    // file | result that is ordered | result
    void readsOrderlyFilesOnly_data()
    {
        rows({"program.bin | 0 | 0", "program.bin | -3 | -3", "empty.bin | 0 | -1",
              "pipe.bin | 0 | -1", ". | 0 | -1", "missing.bin | 0 | -1"});
    }
    void readsOrderlyFilesOnly()
    {
        QTemporaryDir disk;
        const QByteArray content(5000, 'p');
        for (const auto &[file, bytes] : {std::pair("program.bin", content), {"empty.bin", {}}}) {
            QFile made(disk.filePath(QLatin1String(file)));
            QVERIFY(made.open(QIODevice::WriteOnly));
            made.write(bytes);
        }
        ::mkfifo(disk.filePath(QStringLiteral("pipe.bin")).toLocal8Bit().constData(), 0600);
        panel().set("plc.file", {{"read", number(1)}, {"cam", false}});
        Plc5VDownLoadInfo info;
        tag extension;
        CLoadPlcInfo loader;
        QCOMPARE(
            loader.ReadPlc5VDownLoadInfo(info, extension, disk.filePath(cell(0)).toStdString()),
            number(2));
        std::size_t size = 0;
        for (const PlcProData &block : info.program)
            size += block.data.size();
        QCOMPARE(size, number(2) == 0 ? std::size_t(content.size()) : 0);
        QVERIFY(!info.bCam);
    }

    void answersInTurnAndNotesTheSteps()
    {
        panel().set("plc", {{"results", {{"DownLoadPro", {-3, 5}}}}, {"hasPassword", 1}});
        panel().fail("plc.StopPLC", -6, 1);
        {
            UpDate5vPlcPro plc;
            tagPdata password{"1234"};
            QCOMPARE(plc.Open({1, 2, 9600, 8, 1, 2}), 0);
            QCOMPARE(isHasPassword(1), 1);
            QCOMPARE(plc.StopPLC(), -6);
            for (const int result : {-3, 5, 0, 0})
                QCOMPARE(plc.DownLoadPro(password, {}, {{{1}}, {{2}}}), result);
        }
        QVERIFY(panel().get("plc.steps") == Json({"Open", "isHasPassword", "StopPLC", "DownLoadPro",
                                                  "DownLoadPro", "DownLoadPro", "DownLoadPro"}));
        QVERIFY(panel().calls()[0]["args"] == Json({1, 2, 9600, 8, 1, 2}));
        QVERIFY(panel().calls().back()["args"] == Json({"1234", "", 2}));
    }
};

QTEST_GUILESS_MAIN(SimPlcTest)
#include "SimPlcTest.moc"
