#include "tests/panel/Operator.h"
#include "tests/support/Rows.h"

// The tour that people watch, played without pauses.
class TourTest : public QObject
{
    Q_OBJECT

private slots:
    // result of the install | exit status | last words
    void play_data()
    {
        rows({"0 | 0 | files are as they were before.",
              "-3 | 1 | tour: the project was not installed: 下载失败"});
    }
    void play()
    {
        Operator panel;
        QFile cloud(TOOLS_FOLDER "/../platform/sim/samples/cloud.xml"_s);
        QVERIFY(cloud.open(QIODevice::ReadOnly));
        QVERIFY(panel.write("/mnt/data/prj/cloud/cloud.xml"_s, cloud.readAll()));
        QVERIFY(panel.start());
        QVERIFY(panel.set("update.result"_s, cell(0).toLatin1()));
        QVERIFY(panel.set("update.stepTime"_s, "100"));

        QProcess tour;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("SYSSET_ROOT"_s, panel.file(QString()));
        environment.insert("PANELCTL"_s, QStringLiteral(PANELCTL));
        tour.setProcessEnvironment(environment);
        tour.setProcessChannelMode(QProcess::MergedChannels);
        tour.start(TOOLS_FOLDER "/tour"_s, {"--pace"_s, "0"_s});
        QVERIFY(tour.waitForFinished(60000));
        const QByteArray said = tour.readAll();
        QVERIFY2(tour.exitStatus() == QProcess::NormalExit, said);
        QCOMPARE(tour.exitCode(), number(1));
        QVERIFY2(QString::fromUtf8(said).section(u'\n', -2).contains(cell(2)), said);
        // Nobody is left with a pulled cable, a U-disk or a file, however it ended.
        QCOMPARE(panel.get("net.cable.eth0"_s).toInt(-1), 0);
        QVERIFY(panel.looksLike("lab_usb"_s, "UsbOutPut.png"_s));
        QVERIFY(!QFile::exists(panel.file("/mnt/data/update/project.tmt3"_s)));
        panel.ask({"quit"_s});
        QCOMPARE(panel.waitForEnd(), 0);
    }
};

QTEST_GUILESS_MAIN(TourTest)
#include "TourTest.moc"
