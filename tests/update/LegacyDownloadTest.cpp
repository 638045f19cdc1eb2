// Older PLC programs all the way to the PLC at the far end of a pseudo-terminal.
#include "update/LegacyDownload.h"

#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "tests/support/PanelRoot.h"
#include "tests/support/PrintedBy.h"
#include "tests/support/Text.h"
#include "update/LegacyExchange.h"
#include "update/Progress.h"
#include "update/RC4Cryptor.h"
#include "update/SerialLink.h"

#include <QFile>
#include <QtEndian>
#include <QTest>

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

    void plcTakesTheProgram_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("size");

        QTest::newRow("a byte") << FIRST_PORT << 1;
        QTest::newRow("a frame, RS-422") << QByteArray("\0\1\x07\2E", 5) << 2048;
        QTest::newRow("a byte more, RS-485") << QByteArray("\0\2\x08\0O", 5) << 2049;
        QTest::newRow("second port") << QByteArray("\1\0\x08\0N", 5) << 10000;
        QTest::newRow("more frames than numbers")
            << QByteArray("\1\2\x08\0\2", 5) << 256 * 2048 + 5;
    }
    void plcTakesTheProgram()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, size);
        const QByteArray program = programOf(size);
        int result = 1;
        const QByteArray printed = printedBy([&] { result = download(line, 9600, program); });
        QCOMPARE(result, 0);
        QCOMPARE(taken(), program);
        QCOMPARE(g_Progress.nPercent.load(), 100);
        QCOMPARE(printed.count("nWritePlcLen"), (size + 2047) / 2048 + 2);
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

    void resultSaysWhyThePlcRefuses_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("result");

        QTest::newRow("type") << 1 << -16;
        QTest::newRow("capacity") << 2 << -32;
        QTest::newRow("password") << 3 << -24;
        QTest::newRow("check sum") << 4 << -9;
        QTest::newRow("order") << 5 << -20;
        QTest::newRow("unknown") << 255 << -20;
    }
    void resultSaysWhyThePlcRefuses()
    {
        QFETCH(int, code);
        sim::panel().set("plc.line.refuse", code);
        QTEST(download(FIRST_PORT, 9600, programOf(5000)), "result");
        QCOMPARE(taken(), QByteArray());
    }

    void asksThreeTimes_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<int>("spoil");
        QTest::addColumn<int>("result");

        QTest::newRow("silent twice") << "none" << 2 << 0;
        QTest::newRow("silent") << "none" << -1 << -25;
        QTest::newRow("noise twice") << "noise" << 2 << 0;
        QTest::newRow("noise") << "noise" << -1 << -13;
        QTest::newRow("no end twice") << "endless" << 2 << 0;
        QTest::newRow("no end") << "endless" << -1 << -13;
        QTest::newRow("wrong sum twice") << "wrongSum" << 2 << 0;
        QTest::newRow("wrong sum") << "wrongSum" << -1 << -13;
        QTest::newRow("late once") << "late" << 1 << 0;
        QTest::newRow("always late") << "late" << -1 << 0;
    }
    void asksThreeTimes()
    {
        QFETCH(QString, answer);
        QFETCH(int, spoil);
        QFETCH(int, result);
        const std::string kind = answer.toStdString();
        sim::panel().set("plc.line", {{"answer", kind}, {"spoil", spoil}, {"lateMs", 150}});
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
        if (openPort(-1, fd, {0, 0, 115200, 8, 0, 0}) != 0)
            return 1;
        const int result = LegacyExchange(fd, 115200, patience).send(program);
        close(fd);
        return result;
    }

    PanelRoot m_root;
};

QTEST_GUILESS_MAIN(LegacyDownloadTest)
#include "LegacyDownloadTest.moc"
