// Older PLC programs all the way to the PLC at the far end of a pseudo-terminal.
#include "update/LegacyDownload.h"

#include "platform/paths.h"
#include "platform/serial_line.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Rows.h"
#include "tests/support/Text.h"
#include "update/LegacyExchange.h"
#include "update/Progress.h"
#include "update/RC4Cryptor.h"

#include <QFile>
#include <QtEndian>

#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

template <typename Number>
QByteArray littleEndian(Number number)
{
    QByteArray bytes(int(sizeof number), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

QByteArray headerOf(const QByteArray &line, int baud, int length)
{
    return littleEndian(20161111) + line.leftJustified(8, '\0') + littleEndian(baud) +
           littleEndian(length);
}

QByteArray programOf(int size)
{
    QByteArray program(size, '\0');
    for (int i = 0; i < size; ++i)
        program[i] = static_cast<char>((i * 7 + i / 2048) % 256);
    return program;
}

const QByteArray FIRST_PORT("\0\0\x08\0\0", 5); // RS-232, 8N1

} // namespace

class LegacyDownloadTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_root.clear();
        QDir().mkpath(at("/tmp/unzip_temp"));
        sim::panel().serialPlc().start();
    }
    void cleanup()
    {
        QVERIFY(!QFile::exists(at("/tmp/unzip_temp/update.bin")));
        sim::panel().reset();
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
        const QByteArray printed = printedBy(
            [&] { result = download(QByteArray::fromHex(cell(1).toLatin1()), 9600, program); });
        QCOMPARE(result, 0);
        QCOMPARE(taken(), program);
        const int total = program.size() + 20;
        QVERIFY(printed.contains("ntotalpos = " + QByteArray::number(total) +
                                 "\r\n20161111** = 20161111\r\n"));
        QCOMPARE(g_Progress.nTotal.load(), total);
        QCOMPARE(g_Progress.nPercent.load(), 100);
        QCOMPARE(printed.count("nWritePlcLen"), (program.size() + 2047) / 2048 + 2);
        QVERIFY(printed.contains("nWritePlcLen 17 nReadPlcLen 11!\r\n"));
        QVERIFY(printed.contains("\non_UpdatePLCProgram_clicked end time "));
    }

    void refusesABadFileBeforeAnythingIsSent_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("result");
        const QByteArray good = headerOf(FIRST_PORT, 9600, 3) + "abc";
        QTest::newRow("missing") << QByteArray() << -8;
        QTest::newRow("other mark") << "x" + good.mid(1) << -22;
        QTest::newRow("half a header") << good.left(15) << -22;
        QTest::newRow("truncated") << good.left(22) << -22;
        QTest::newRow("longer") << good + "d" << -22;
        QTest::newRow("empty program") << headerOf(FIRST_PORT, 9600, 0) << -22;
        QTest::newRow("2 GiB") << headerOf(FIRST_PORT, 9600, -1) + "abc" << -22;
        QTest::newRow("57600") << headerOf(FIRST_PORT, 57600, 3) + "abc" << -21;
        QTest::newRow("second port RS-422") << headerOf("\1\1\x08", 9600, 3) + "abc" << -21;
    }
    void refusesABadFileBeforeAnythingIsSent()
    {
        QFETCH(QByteArray, content);
        if (!content.isEmpty())
            encipher(content);
        QTEST(downloadLegacyProgram(programFile()), "result");
        QCOMPARE(lineState("frames"), 0);
    }

    // the PLC's code | result
    void resultSaysWhyThePlcRefuses_data()
    {
        rows({"1 | -16", "2 | -32", "3 | -24", "4 | -9", "5 | -20", "255 | -20"});
    }
    void resultSaysWhyThePlcRefuses()
    {
        sim::panel().set("plc.line.refuse", number(0));
        QCOMPARE(download(FIRST_PORT, 9600, programOf(5000)), number(1));
        QCOMPARE(taken(), QByteArray());
    }

    // answers to all frames, or to so many | result
    void asksThreeTimes_data()
    {
        rows({"none | 2 | 0", "none | -1 | -25", "noise | 2 | 0", "noise | -1 | -13",
              "endless | 2 | 0", "endless | -1 | -13", "wrongSum | 2 | 0", "wrongSum | -1 | -13",
              "late | 1 | 0", "late | -1 | 0"});
    }
    void asksThreeTimes()
    {
        const int result = number(2);
        sim::panel().set(
            "plc.line", {{"answer", cell(0).toStdString()}, {"spoil", number(1)}, {"lateMs", 150}});
        const QByteArray program = programOf(5000);
        QCOMPARE(sendWithin(100ms, program), result);
        QCOMPARE(taken(), result == 0 ? program : QByteArray());
        if (result != 0)
            QCOMPARE(lineState("frames"), 3);
    }

    void tellsThatTheLineBroke()
    {
        std::thread unplugger([] {
            while (lineState("frames") < 2)
                std::this_thread::yield();
            sim::panel().serialPlc().forget();
        });
        QCOMPARE(sendWithin(4s, programOf(1000000)), -5);
        unplugger.join();
    }

private:
    static QString at(const char *path) { return QString::fromStdString(panelPath(path)); }
    static std::string programFile() { return panelPath("/it's 100%s.bin"); }
    static int lineState(const char *field)
    {
        return sim::panel().get(std::string("plc.line.") + field).get<int>();
    }
    static QByteArray taken()
    {
        QFile file(at("/plc/program.bin"));
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

    static void encipher(const QByteArray &content)
    {
        QFile plain(at("/plain"));
        plain.open(QIODevice::WriteOnly);
        plain.write(content);
        plain.close();
        QCOMPARE(decipherFile(panelPath("/plain"), programFile()), 0);
    }
    static int download(const QByteArray &line, int baud, const QByteArray &program)
    {
        encipher(headerOf(line, baud, program.size()) + program);
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

    PanelRoot m_root;
};

QTEST_GUILESS_MAIN(LegacyDownloadTest)
#include "LegacyDownloadTest.moc"
