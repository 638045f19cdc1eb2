#include "platform/posix/ProcessTable.h"
#include "tests/support/Rows.h"

#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <sys/wait.h>

using os::scanProcessTable;

class ProcessTest : public QObject
{
    Q_OBJECT

private slots:
    // With a space, as proc(5) brackets names, as long as the kernel keeps, and longer.
    void findsRunningPrograms_data()
    {
        rows({"zq server", "zq) R (x", "zq-345678901234", "zq-server-of-the-network"});
    }
    // Found while it runs; neither before, nor as a zombie, nor by a part of its name.
    void findsRunningPrograms()
    {
        const QByteArray name = cell(0).toLatin1();
        const QString program = m_folder.filePath(cell(0));
        QVERIFY(QFile::copy(QStandardPaths::findExecutable(QStringLiteral("sleep")), program));
        QCOMPARE(scanProcessTable(name.toStdString()), -1);
        QProcess process;
        process.start(program, {QStringLiteral("600")});
        QVERIFY(process.waitForStarted());
        const auto pid = static_cast<int>(process.processId());
        QTRY_COMPARE(scanProcessTable(name.toStdString()), pid);
        QCOMPARE(scanProcessTable(name.chopped(1).toStdString()), -1);
        QCOMPARE(scanProcessTable(program.toStdString()), -1);
        process.kill();
        siginfo_t end{};
        ::waitid(P_PID, static_cast<id_t>(pid), &end, WEXITED | WNOWAIT);
        QCOMPARE(scanProcessTable(name.toStdString()), -1);
        process.waitForFinished();
        QCOMPARE(scanProcessTable(std::string()), -1);
    }

private:
    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(ProcessTest)
#include "ProcessTest.moc"
