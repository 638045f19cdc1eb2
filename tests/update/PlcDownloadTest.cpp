// PLC programs: the steps of the current format; of the older one the cipher against RFC 6229, and
// the way to the PLC at the far end of a pseudo-terminal.
#include "update/PlcDownload.h"

#include "platform/paths.h"
#include "platform/serial_line.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"
#include "update/LegacyDownload.h"
#include "update/LegacyExchange.h"
#include "update/LegacyProgram.h"
#include "update/Progress.h"
#include "update/RC4Cryptor.h"

#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;
using sim::Json;
using sim::panel;

namespace {

QByteArray fileOf(const QByteArray &line, int baud, const QByteArray &program, int length)
{
    QByteArray file;
    QDataStream stream(&file, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << 20161111;
    stream.writeRawData(line.leftJustified(8, '\0'), 8);
    stream << baud << length;
    return file + program;
}

QByteArray programOf(int size)
{
    QByteArray program(size, '\0');
    for (int i = 0; i < size; ++i)
        program[i] = static_cast<char>((i * 7 + i / 2048) % 256);
    return program;
}

QByteArray keyStream(const QByteArray &key, int size)
{
    std::vector<unsigned char> zeros(static_cast<std::size_t>(size));
    RC4Cryptor(key.toStdString()).cryptBlock(zeros.data(), zeros.size());
    return {reinterpret_cast<const char *>(zeros.data()), size};
}

// The steps in their order as far as the first one named, then the others that are named; from
// the one behind "+" on again all.
QString spelledOut(const QString &named)
{
    const QString all =
        "ReadPlc5VDownLoadInfo Open Commu isHasPassword CheckVer StopPLC ReadPlcVer DownLoadPro "
        "DownLoadPara DownLoadMask DownLoadMemory DownLoadCamTable DownLoadExtension StartPLC "
        "Close"_s;
    const QString first = named.section(u' ', 0, 0);
    const QString from = named.section("+ "_s, 1);
    const QString last = from.isEmpty() ? QString() : all.mid(all.indexOf(from));
    return all.left(all.indexOf(first)) + named.section("+ "_s, 0, 0) + last;
}

const QByteArray FIRST_PORT("\0\0\x08\0\0", 5); // RS-232, 8N1

} // namespace

class PlcDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_root.clear();
        m_root.write("/line.bin"_s, "a program");
        QDir().mkpath(at("/tmp/unzip_temp"));
        panel().serialPlc().start();
    }
    void cleanup()
    {
        QVERIFY(!QFile::exists(at("/tmp/unzip_temp/update.bin")));
        panel().reset();
    }

    // a step's answers, or the PLC's state, BARE for a file without sections | result | steps taken
    // | the failed one
    void stepsAndResults_data()
    {
        rows(
            {"{} | 0 | Close", R"({"file": BARE} | 0 | ReadPlcVer + DownLoadExtension)",
             R"({"file": {"read": -1}} | -15 | ReadPlc5VDownLoadInfo)",
             R"({"file": {"password": true, "protect": true}, "hasPassword": 1} | 0 |
                 Commu CheckPassword SetUpLoadPasswd + CheckVer)",
             R"({"hasPassword": 1} | -4 | isHasPassword)",
             R"({"file": {"password": true}, "results": {"CheckPassword": [-24]}} | -24 |
                 Commu CheckPassword | CheckPassword)",
             // The older format, which it is not either.
             "StopPLC -14 | -22 | StopPLC | StopPLC",
             // A failed extension is a success, or what was left before; this is intended.
             "DownLoadExtension -27 | 0 | DownLoadExtension | DownLoadExtension",
             R"({"file": BARE, "results": {"ReadPlcVer": [2], "DownLoadExtension": [-1]}} | 2 |
                 ReadPlcVer DownLoadExtension | DownLoadExtension)",
             R"({"results": {"DownLoadCamTable": [3, 3, 3], "DownLoadExtension": [-27]}} | 3 |
                 DownLoadCamTable DownLoadCamTable DownLoadCamTable DownLoadExtension |
                 DownLoadExtension)",
             // Three attempts; a positive number passes after the last.
             "DownLoadPara -17, -18, 0 | 0 | DownLoadPara DownLoadPara + DownLoadPara",
             "DownLoadPro -9, -32, -26 | -26 | DownLoadPro DownLoadPro DownLoadPro | DownLoadPro",
             "DownLoadMask -1, -1, 7 | 0 | DownLoadMask DownLoadMask + DownLoadMask",
             // Memory's result has eight bits.
             "DownLoadMemory 256 | 0 | Close",
             ("DownLoadMemory 245, 245, 245 | -11 | DownLoadMemory DownLoadMemory DownLoadMemory | "
              "DownLoadMemory"),
             "Open -5 | -5 | Open | open serial", "Commu -5 | -5 | Commu | Commu",
             "CheckVer -5 | -5 | CheckVer | CheckVer",
             "ReadPlcVer -5 | -5 | ReadPlcVer | ReadPlcVer",
             "StartPLC -5 | -5 | StartPLC | StartPLC", "Close -21 | -21 | Close | Close"});
    }
    void stepsAndResults()
    {
        const auto bare = R"({"program": false, "parameters": false, "mask": false,
                              "memory": false, "cam": false})"_s;
        const QRegularExpression answers("^(\\w+) (.*)$"_s);
        QString plc = cell(0).replace("BARE"_s, bare);
        plc.replace(answers, R"({"results": {"\1": [\2]}})"_s);
        const QByteArray failed = cellOrEmpty(3).toLatin1();
        const QByteArray trace = failed.isEmpty() ? failed : failed + " Error ";
        panel().apply({{"plc", Json::parse(plc.toStdString())}});
        int returned = 1;
        const QByteArray printed = printedBy([&] { returned = downloadCurrent(); });
        QCOMPARE(returned, number(1));
        QStringList steps;
        for (const Json &step : panel().get("plc.steps"))
            steps += QString::fromStdString(step.get<std::string>());
        QCOMPARE(steps.join(u' '), spelledOut(cell(2)));
        QCOMPARE(QByteArray(m_failed), trace);
        QVERIFY2(trace.isEmpty() || printed.contains("\n" + trace + "\n"), printed);
        QVERIFY(
            printed.startsWith("Update PLC Program!\r\non_UpdatePLCProgram_clicked start time "));
        QCOMPARE(printed.contains("StartPLC Ok \n"), steps.contains("Close"_s));
        QCOMPARE(g_Progress.nPercent.load(), 100);
    }

    // step | the bar's number while the PLC is busy with it
    void progressPoints_data()
    {
        rows({"plc.CheckVer | 10", "plc.DownLoadPara | 30", "plc.DownLoadMask | 40",
              "plc.DownLoadMemory | 50", "plc.DownLoadExtension | 70", "plc.StartPLC | 90"});
    }
    void progressPoints()
    {
        panel().delay(cell(0).toStdString(), 60000);
        std::thread worker([this] { downloadCurrent(); });
        const bool reached = QTest::qWaitFor([] { return g_Progress.nPercent == number(1); });
        panel().hurry();
        worker.join();
        QVERIFY(reached);
    }

    // The key stream is the published one; each block of a file starts it again.
    void deciphersInBlocks()
    {
        const QByteArray end = keyStream("\x01\x02\x03\x04\x05", 4112).mid(4096);
        QCOMPARE(end.toHex(), QByteArray("ff25b58995996707e51fbdf08b34d875"));
        const QByteArray block = keyStream(QByteArray::fromStdString(legacyProgramKey()), 1024);
        for (const int size : {0, 1, 1023, 1024, 1025, 65536, 65537, 131072 + 500}) {
            m_root.write("/source"_s, QByteArray(size, '\0'));
            m_root.write("/target"_s, QByteArray(200000, 'x'));
            QCOMPARE(decipherFile(panelPath("/source"), panelPath("/target")), 0);
            QCOMPARE(contentOf("/target"), block.repeated(size / 1024 + 1).left(size));
        }
    }

    // source | target
    void refusesWhatIsNoFile_data()
    {
        rows({"nothing | target", "tmp | target", "fifo | target", "source | tmp", "source | fifo",
              "source | link", "source | nothing/target"});
    }
    void refusesWhatIsNoFile()
    {
        m_root.write("/source"_s, "text");
        m_root.write("/linked"_s, "text");
        mkfifo(panelPath("/fifo").c_str(), 0600);
        QFile::link(at("/linked"), at("/link"));
        const auto path = [](int index) { return panelPath("/" + cell(index).toStdString()); };
        QCOMPARE(decipherFile(path(0), path(1)), -1);
        QCOMPARE(contentOf("/linked"), QByteArray("text"));
    }

    void theKeyDoesNotStandInTheProgram()
    {
        const QString key = QString::fromStdString(legacyProgramKey());
        QVERIFY(QRegularExpression("^[0-9]{10}$"_s).match(key).hasMatch());
        QFile program("/proc/self/exe"_s);
        QVERIFY(program.open(QIODevice::ReadOnly) && !program.readAll().contains(key.toLatin1()));
    }

    // size | port, mode, data bits, stop bits and parity in hexadecimal
    void plcTakesTheProgram_data()
    {
        rows({"1 | 0000080000", "2048 | 0001070245", "2049 | 000208004F", "10000 | 010008004E",
              "524293 | 0102080002"}); // a frame and a byte more; more frames than numbers
    }
    void plcTakesTheProgram()
    {
        const QByteArray program = programOf(number(0));
        int result = 1;
        const QByteArray printed =
            printedBy([&] { result = download(QByteArray::fromHex(cell(1).toLatin1()), program); });
        QVERIFY(result == 0 && contentOf("/plc/program.bin") == program);
        QCOMPARE(g_Progress.nPercent.load(), 100);
        QCOMPARE(printed.count("nWritePlcLen"), (program.size() + 2047) / 2048 + 2);
        QVERIFY(printed.contains("nWritePlcLen 17 nReadPlcLen 11!\r\n"));
        QVERIFY(printed.contains("\non_UpdatePLCProgram_clicked end time "));
        const int total = program.size() + 20;
        QVERIFY(printed.contains("ntotalpos = " + QByteArray::number(total) +
                                 "\r\n20161111** = 20161111\r\n"));
        QCOMPARE(g_Progress.nTotal.load(), total);
    }

    void refusesABadFileBeforeAnythingIsSent()
    {
        const QByteArray good = fileOf(FIRST_PORT, 9600, "abc", 3);
        QCOMPARE(downloadLegacyProgram(programFile()), -8);
        for (const auto &[content, result] :
             {std::pair("x" + good.mid(1), -22), std::pair(good.left(15), -22),
              std::pair(good.left(22), -22), std::pair(good + "d", -22),
              std::pair(fileOf(FIRST_PORT, 9600, "", 0), -22),
              std::pair(fileOf(FIRST_PORT, 9600, "abc", -1), -22), // 4 GiB
              std::pair(fileOf(FIRST_PORT, 57600, "abc", 3), -21),
              std::pair(fileOf("\1\1\x08", 9600, "abc", 3), -21)}) { // no second RS-422
            encipher(content);
            QCOMPARE(downloadLegacyProgram(programFile()), result);
            QCOMPARE(lineState("frames"), 0);
        }
    }

    // code | result
    void resultSaysWhyThePlcRefuses_data()
    {
        rows({"1 | -16", "2 | -32", "3 | -24", "4 | -9", "5 | -20", "255 | -20"});
    }
    void resultSaysWhyThePlcRefuses()
    {
        panel().set("plc.line.refuse", number(0));
        QCOMPARE(sendWithin(4s, programOf(5000)), number(1));
        QCOMPARE(contentOf("/plc/program.bin"), QByteArray());
    }

    // answers | result if all are so
    void asksThreeTimes_data()
    {
        rows({"none | -25", "noise | -13", "endless | -13", "wrongSum | -13", "late | 0"});
    }
    void asksThreeTimes()
    {
        const QByteArray program = programOf(5000);
        const Json line = {{"answer", cell(0).toStdString()}, {"lateMs", 150}, {"spoil", -1}};
        panel().set("plc.line", line);
        QCOMPARE(sendWithin(100ms, program), number(1));
        QVERIFY(number(1) == 0 || lineState("frames") == 3);
        panel().set("plc.line.spoil", number(1) == 0 ? 1 : 2); // the first ones alone
        QCOMPARE(sendWithin(100ms, program), 0);
        QCOMPARE(contentOf("/plc/program.bin"), program);
    }

    void tellsThatTheLineBroke()
    {
        std::thread unplugger([] {
            while (lineState("frames") < 2)
                std::this_thread::yield();
            panel().serialPlc().forget();
        });
        QCOMPARE(sendWithin(4s, programOf(1000000)), -5);
        unplugger.join();
    }

private:
    static QString at(const char *path) { return QString::fromStdString(panelPath(path)); }
    static std::string programFile() { return panelPath("/it's 100%s.bin"); }
    static int lineState(const char *field)
    {
        return panel().get(std::string("plc.line.") + field).get<int>();
    }
    static QByteArray contentOf(const char *path)
    {
        QFile file(at(path));
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

    void encipher(const QByteArray &content) const
    {
        m_root.write("/plain"_s, content);
        QCOMPARE(decipherFile(panelPath("/plain"), programFile()), 0);
    }
    int download(const QByteArray &line, const QByteArray &program) const
    {
        encipher(fileOf(line, 9600, program, program.size()));
        return downloadLegacyProgram(programFile());
    }
    static int sendWithin(std::chrono::milliseconds patience, const QByteArray &program)
    {
        int fd = -1;
        if (PLATFORM::openPort(-1, fd, {0, 0, 115200, 8, 0, 0}) != 0)
            return 1;
        const int result = LegacyExchange(fd, 115200, patience).send(program);
        close(fd);
        return result;
    }

    int downloadCurrent()
    {
        m_failed[0] = '\0';
        return UpdatePLCprogram(panelPath("/line.bin"), m_failed);
    }

    PanelRoot m_root;
    char m_failed[PLC_TRACE_SIZE];
};

QTEST_GUILESS_MAIN(PlcDownloadTest)
#include "PlcDownloadTest.moc"
