#include "tests/panel/Operator.h"

// The tour that people watch, played without pauses.
class TourTest : public QObject
{
    Q_OBJECT

private slots:
    void play_data()
    {
        QTest::addColumn<QByteArray>("updateResult"); // of the service that installs
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("lastWords");
        QTest::newRow("to its end") << QByteArray("0") << 0 << "files are as they were before."_s;
        QTest::newRow("install fails")
            << QByteArray("-3") << 1 << "tour: the project was not installed: 下载失败"_s;
    }

    void play()
    {
        QFETCH(QByteArray, updateResult);
        Operator panel;
        const QString cloud = panel.file("/mnt/data/prj/cloud"_s);
        QVERIFY(QDir().mkpath(cloud));
        QVERIFY(QFile::copy(TOOLS_FOLDER "/../platform/sim/samples/cloud.xml"_s,
                            cloud + "/cloud.xml"_s));
        QVERIFY(panel.start());
        QVERIFY(panel.set("update.result"_s, updateResult));
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
        QTEST(tour.exitCode(), "status");
        QFETCH(QString, lastWords);
        QVERIFY2(QString::fromUtf8(said).section(u'\n', -2).contains(lastWords), said);
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
