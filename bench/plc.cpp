// Measures the download of a PLC program over a line as slow as a real one, beside the rate that
// its records and their answers allow (docs/decisions/0024-plc-driver.md).

#include "platform/plc.h"

#include "bench/Statistics.h"
#include "platform/paths.h"

#include <QFile>
#include <QProcess>
#include <QThread>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr double LIMIT = 1 / 0.85; // 85 % of the rate
constexpr int BAUD = 115200;
constexpr int RECORDS = 100;
constexpr int DATA_PER_RECORD = 244;
constexpr int SIZE = RECORDS * DATA_PER_RECORD;

// A request and its answer, and the silence that each side keeps before it sends.
constexpr double CALCULATED_MS = RECORDS * (2 * 256 * 10 * 1000.0 / BAUD + 2 * 1.75);

constexpr const char *NODE = "/dev/THAL/tty/com1-232";
constexpr int LONGEST_START = 100; // periods
constexpr int PERIOD = 100;        // ms

bool startPlc(QProcess &plc)
{
    const QString node = QString::fromStdString(panelPath(NODE));
    plc.start(QStringLiteral("/usr/bin/python3"),
              {QStringLiteral(TOOLS_FOLDER "/board/plc.py"), QStringLiteral("--baud"),
               QString::number(BAUD), QStringLiteral("--pty"), node,
               QString::fromStdString(panelPath("/plc"))});
    for (int i = 0; i < LONGEST_START && !QFile::exists(node); ++i)
        QThread::msleep(PERIOD);
    return QFile::exists(node);
}

} // namespace

int main()
{
    QProcess process;
    UpDate5vPlcPro plc;
    if (!startPlc(process) || plc.Open({0, 0, BAUD, 8, 1, 0}) != 0 || plc.Commu() != 0 ||
        plc.StopPLC() != 0 || plc.ReadPlcVer() != 0) {
        std::fprintf(stderr, "bench-plc: the PLC does not answer\n");
        return EXIT_FAILURE;
    }
    const PlcProData program{std::vector<std::uint8_t>(SIZE, 'x')};
    int result = 1;
    const double ms = bench::timed([&] { result = plc.DownLoadPro({}, {}, {program}); });
    process.kill();
    process.waitForFinished();
    if (result != 0) {
        std::fprintf(stderr, "bench-plc: the download ended with %d\n", result);
        return EXIT_FAILURE;
    }
    std::printf("PLC program at %d baud: %.0f bytes/s, calculated %.0f bytes/s\n", BAUD,
                SIZE * 1000 / ms, SIZE * 1000 / CALCULATED_MS);
    return bench::report("sending 24 KB to the PLC", ms, CALCULATED_MS, "ms", LIMIT) ? EXIT_SUCCESS
                                                                                     : EXIT_FAILURE;
}
