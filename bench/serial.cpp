// Measures the download of an older PLC program over a line as slow as a real one, beside the rate
// calculated in docs/decisions/0008-legacy-plc-download.md.

#include "bench/Statistics.h"
#include "platform/cos_file.h"
#include "platform/paths.h"
#include "platform/sim/Panel.h"
#include "update/LegacyDownload.h"
#include "update/RC4Cryptor.h"

#include <QtEndian>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

constexpr double LIMIT = 1 / 0.95; // 95 % of the rate
constexpr int BAUD = 115200;
constexpr int FRAMES = 12;
constexpr int DATA_PER_FRAME = 2048;
constexpr int SIZE = FRAMES * DATA_PER_FRAME;

// Bytes around those of the program: colon, function, number, LRC and line end, in characters,
// and the frame that answers.
constexpr int FRAME_CHARACTERS = 9;
constexpr int ANSWER_CHARACTERS = 11;

constexpr double milliseconds(int dataBytes)
{
    return (2 * dataBytes + FRAME_CHARACTERS + ANSWER_CHARACTERS) * 10 * 1000.0 / BAUD;
}

// Begin, data and end frames, and 10 ms between any two.
constexpr double CALCULATED_MS =
    milliseconds(4) + FRAMES * milliseconds(DATA_PER_FRAME) + milliseconds(6) + (FRAMES + 1) * 10;

std::string littleEndian(qint32 number)
{
    std::string bytes(sizeof number, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

// On the first port, RS-232, eight data bits, one stop bit, no parity.
std::string makeProgramFile()
{
    const std::string plain = panelPath("/plain");
    std::ofstream(plain, std::ios::binary)
        << littleEndian(20161111) << std::string("\0\0\x08\0\0\0\0\0", 8) << littleEndian(BAUD)
        << littleEndian(SIZE) << std::string(SIZE, 'x');
    const std::string file = panelPath("/program.bin");
    return decipherFile(plain, file) == 0 ? file : std::string();
}

} // namespace

int main()
{
    COS::CosDir::MakeDir(panelPath("/tmp/unzip_temp"));
    const std::string file = makeProgramFile();
    sim::panel().set("plc.line.paced", true);
    sim::panel().serialPlc().start();
    int result = 1;
    const double ms = bench::timed([&] { result = downloadLegacyProgram(file); });
    sim::panel().stop(std::chrono::seconds(1));
    if (result != 0) {
        std::fprintf(stderr, "bench-serial: the download ended with %d\n", result);
        return EXIT_FAILURE;
    }
    std::printf("older PLC program at 115200 baud: %.0f bytes/s, calculated %.0f bytes/s\n",
                SIZE * 1000 / ms, SIZE * 1000 / CALCULATED_MS);
    return bench::report("sending 24 KiB to the PLC", ms, CALCULATED_MS, "ms", LIMIT)
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}
