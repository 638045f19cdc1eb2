// The whole download, from a file of the maker's tool to a PLC whose Modbus is not ours: pymodbus
// at the far end of a pseudo-terminal (tools/board/plc.py).
#include "platform/plc.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"
#include "update/PlcDownload.h"

#include <QJsonDocument>
#include <QJsonObject>

class PlcDriverTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_root.write("/plc/orders"_s, "{}");
        for (const QString &kept : {"program.bin"_s, "log"_s, "state.json"_s})
            QFile::remove(at("/plc/") + kept);
        if (m_plc.state() == QProcess::NotRunning)
            startPlc();
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(at(NODE)), 10000);
        QFile::link("com1-422"_s, at("/dev/THAL/tty/com1-232"));
    }
    void cleanupTestCase()
    {
        m_plc.kill();
        m_plc.waitForFinished();
    }

    // More than one file of records, a last single byte, more memory than one request holds.
    void plcHoldsEveryByte()
    {
        m_root.write("/program"_s, bytesOf(45001));
        m_root.write("/parameters"_s, bytesOf(64));
        m_root.write("/cam"_s, bytesOf(20003));
        m_root.write("/extension"_s, bytesOf(1));
        m_root.write("/memory"_s, bytesOf(600));
        order(R"({"password": "secret"})");
        make("--from program --parameters parameters --cam cam --extension extension --memory "
             "7=@memory --memory 65279=1 --password secret --upload-password other "
             "--hide-subprograms --type 5 --version 3 --mode 485"_s);
        QCOMPARE(download(), 0);
        for (const QString &section : {"program"_s, "parameters"_s, "cam"_s, "extension"_s})
            QCOMPARE(read("/plc/"_s + section + ".bin"_s), read("/"_s + section));
        const QJsonObject memory = kept("memory");
        const QByteArray words = read("/memory"_s);
        QCOMPARE(memory.size(), 301);
        for (int i = 0; i < 300; ++i) {
            const int word =
                static_cast<quint8>(words[2 * i]) | static_cast<quint8>(words[2 * i + 1]) << 8;
            QCOMPARE(memory[QString::number(7 + i)].toInt(-1), word);
        }
        const QJsonObject state = kept("state");
        QVERIFY(state["state"_s] == 1 && state["hides"_s] == true);
        QCOMPARE(state["protection"_s].toString(), "other"_s);
        QVERIFY(!m_told.contains("secret") && !m_told.contains("other"));
    }

    // orders | result | the failed step | what the file has besides, or "none"
    void everyFailureHasItsCode_data()
    {
        rows({R"({} | 0 | | none)", R"({"busy": 0.1} | 0)",
              R"({"at": "any", "how": "exception"} | -5 | Commu)",
              R"({"at": "any", "how": "foreign"} | -5 | Commu)",
              R"({"at": "any", "how": "nonsense"} | -5 | Commu)", R"({"mark": 0} | -5 | Commu)",
              R"({"password": "a"} | -4)",
              R"({"password": "a"} | -4 | CheckPassword | --password b)",
              R"({"can": []} | -27 | SetUpLoadPasswd | --upload-password b)",
              R"({"at": "protect", "how": "refuse"} | -34 | SetUpLoadPasswd | --upload-password b)",
              R"({"version": 4} | -19 | CheckVer)", R"({"type": 4} | -16 | CheckVer)",
              R"({"type": 4} | 0 | | --type 0)",
              R"({"at": "stop", "how": "refuse"} | -6 | StopPLC)", R"({"busy": 9} | -6 | StopPLC)",
              R"({"at": "identity", "how": "cut", "after": 3} | -7 | ReadPlcVer)",
              R"({"capacity": {"program": 2000}} | -32 | DownLoadPro)",
              R"({"at": "records program", "how": "exception"} | -9 | DownLoadPro)",
              R"({"at": "end program", "how": "refuse"} | -9 | DownLoadPro)",
              R"({"at": "begin parameters", "how": "refuse"} | -17 | DownLoadPara)",
              R"({"can": []} | -28 | DownLoadMask | --hide-subprograms)",
              R"({"at": "hide", "how": "refuse"} | -26 | DownLoadMask | --hide-subprograms)",
              R"({"at": "memory", "how": "refuse"} | -11 | DownLoadMemory)",
              R"({"at": "check", "how": "refuse"} | -11 | DownLoadMemory)",
              R"({"at": "records cam", "how": "nonsense"} | -12 | DownLoadCamTable)",
              R"({"at": "start", "how": "refuse"} | -13 | StartPLC)",
              R"({"at": "leave", "how": "refuse"} | -20 | Close)",
              // Told as a success, as the program has it.
              R"({"at": "begin extension", "how": "refuse"} | 0 | DownLoadExtension)",
              R"({"capacity": {"program": 9999, "parameters": 99, "cam": 99}} | 0)",
              // Sent again within the step, or by the caller's next attempt.
              R"({"at": "records program", "how": "cut", "after": 3, "times": 1} | 0)",
              R"({"at": "begin program", "how": "silent", "times": 1} | 0)",
              R"({"at": "begin cam", "how": "foreign", "times": 1} | 0)",
              R"({"password": "b", "at": "begin program", "how": "restart", "times": 1} | 0 | |
                  --password b)",
              R"({"at": "records program", "how": "exception", "after": 5, "times": 2} | 0)",
              R"({"at": "end program", "how": "refuse", "times": 2} | 0)"});
    }
    void everyFailureHasItsCode()
    {
        order(cell(0).toLatin1());
        m_root.write("/b"_s, bytesOf(99));
        const QString sections =
            "--size 3001 --parameters b --memory 7=1,2 --cam b --extension b "_s;
        const QString more = cellOrEmpty(3);
        make((more == "none"_s ? QString() : sections) + "--type 5 --version 3 "_s +
             (more == "none"_s ? QString() : more));
        QCOMPARE(download(), number(1));
        const QByteArray step = cellOrEmpty(2).toLatin1();
        QCOMPARE(QByteArray(m_failed), step.isEmpty() ? step : step + " Error ");
        QVERIFY2(step.isEmpty() || m_told.contains("PLC, " + step + ": "), m_told);
        if (number(1) == 0)
            QCOMPARE(kept("state")["state"_s] == 1, step.isEmpty());
    }

    // at what | result | milliseconds at most: two requests a step, three attempts a section
    void silenceEnds_data()
    {
        rows({"any | -25 | 3000", "stop | -25 | 3000", "begin program | -9 | 8000"});
    }
    void silenceEnds()
    {
        order("{\"how\": \"silent\", \"at\": \"" + cell(0).toLatin1() + "\"}");
        make("--size 3001 --type 5 --version 3"_s);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(download(), number(1));
        QVERIFY2(timer.elapsed() < number(2), QByteArray::number(timer.elapsed()));
    }

    void pulledLineEndsAtOnce()
    {
        order(R"({"at": "records program", "how": "hang up", "after": 5})");
        make("--size 30001 --type 5 --version 3"_s);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(download(), -9);
        QVERIFY2(timer.elapsed() < 2000, QByteArray::number(timer.elapsed()));
        QVERIFY(m_plc.waitForFinished());
    }

    void noSuchPort()
    {
        make("--port 1 --mode 485"_s);
        QCOMPARE(download(), -2);
        QVERIFY(m_told.contains("PLC, Open: RS485_2"));
    }

private:
    static constexpr const char *NODE = "/dev/THAL/tty/com1-422";

    QString at(const char *path) const { return m_root.path() + QString::fromLatin1(path); }
    static QByteArray bytesOf(int size)
    {
        QByteArray bytes(size, '\0');
        for (int i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i * 7 + i / 251);
        return bytes;
    }
    QByteArray read(const QString &path) const
    {
        QFile file(m_root.path() + path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("nothing");
    }
    QJsonObject kept(const char *name) const
    {
        return QJsonDocument::fromJson(read("/plc/%1.json"_s.arg(QString::fromLatin1(name))))
            .object();
    }
    void order(const QByteArray &orders) const { m_root.write("/plc/orders"_s, orders); }

    void startPlc()
    {
        m_plc.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_plc.start("/usr/bin/python3"_s,
                    {TOOLS_FOLDER "/board/plc.py"_s, "--pty"_s, at(NODE), at("/plc")});
    }
    void make(const QString &options) const
    {
        QProcess tool;
        tool.setWorkingDirectory(m_root.path());
        tool.start("/usr/bin/python3"_s, QStringList(TOOLS_FOLDER "/make-plc-program"_s) +
                                             options.split(u' ', Qt::SkipEmptyParts) +
                                             QStringList("line.bin"_s));
        QVERIFY(tool.waitForFinished() && tool.exitCode() == 0);
    }

    int download()
    {
        int result = 1;
        m_failed[0] = '\0';
        m_told = printedBy(
            [&] {
                printedBy([&] {
                    result =
                        UpdatePLCprogram((m_root.path() + "/line.bin"_s).toStdString(), m_failed);
                });
            },
            stderr);
        return result;
    }

    PanelRoot m_root;
    QProcess m_plc;
    QByteArray m_told;
    char m_failed[PLC_TRACE_SIZE];
};

QTEST_GUILESS_MAIN(PlcDriverTest)
#include "PlcDriverTest.moc"
