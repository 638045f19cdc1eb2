#include "platform/plc.h"
#include "platform/sim/Panel.h"

#include <QtTest>

#include <sys/stat.h>

using sim::Json;
using sim::panel;

class SimPlcTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { panel().reset(); }

    void readsOrderlyFilesOnly_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("ordered");
        QTest::addColumn<int>("result");
        QTest::newRow("program") << "program.bin" << 0 << 0;
        QTest::newRow("older") << "program.bin" << -3 << -3;
        QTest::newRow("empty") << "empty.bin" << 0 << -1;
        QTest::newRow("pipe") << "pipe.bin" << 0 << -1;
        QTest::newRow("folder") << "" << 0 << -1;
        QTest::newRow("missing") << "missing.bin" << 0 << -1;
    }
    void readsOrderlyFilesOnly()
    {
        QFETCH(QString, name);
        QFETCH(int, ordered);
        QFETCH(int, result);
        QTemporaryDir disk;
        const QByteArray content(5000, 'p');
        for (const auto &[file, bytes] : {std::pair("program.bin", content), {"empty.bin", {}}}) {
            QFile made(disk.filePath(QLatin1String(file)));
            QVERIFY(made.open(QIODevice::WriteOnly));
            made.write(bytes);
        }
        ::mkfifo(disk.filePath(QStringLiteral("pipe.bin")).toLocal8Bit().constData(), 0600);
        panel().set("plc.file", {{"read", ordered}, {"cam", false}});
        Plc5VDownLoadInfo info;
        tag extension;
        CLoadPlcInfo loader;
        QCOMPARE(loader.ReadPlc5VDownLoadInfo(info, extension, disk.filePath(name).toStdString()),
                 result);
        std::size_t size = 0;
        for (const PlcProData &block : info.program)
            size += block.data.size();
        QCOMPARE(size, result == 0 ? std::size_t(content.size()) : 0);
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
