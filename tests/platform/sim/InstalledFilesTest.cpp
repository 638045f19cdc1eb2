#include "platform/sim/InstalledFiles.h"

#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"

#include <QtTest>

class InstalledFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_folder = qEnvironmentVariable("SYSSET_ROOT") + TARGET; }
    void init() { m_root.clear(); }

    void comeIntoANewRoot()
    {
        sim::installFiles();
        QCOMPARE(QDir(m_folder).entryList(QDir::Files).join(u' '),
                 "NetWorkTest_ch.json NetWorkTest_en.json"_s);
        // What somebody has taken away stays away.
        QVERIFY(QFile::remove(m_folder + "/NetWorkTest_ch.json"_s));
        QVERIFY(QFile::remove(m_folder + "/NetWorkTest_en.json"_s));
        sim::installFiles();
        QVERIFY(QDir(m_folder).isEmpty());
    }

    void saysThatThereIsNoPlace()
    {
        QFile inTheWay(qEnvironmentVariable("SYSSET_ROOT") + "/mnt"_s);
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        QVERIFY(printedBy(sim::installFiles, stderr).startsWith("sysset-sim: cannot install: "));
    }

private:
    const QString TARGET = "/mnt/tarni/app/hmiapp/bin/NetWorkTest"_s;
    PanelRoot m_root;
    QString m_folder;
};

QTEST_GUILESS_MAIN(InstalledFilesTest)
#include "InstalledFilesTest.moc"
