#include "update/LegacyProgram.h"

#include "update/Progress.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace {

constexpr std::int32_t PROGRAM_MARK = 20161111;

// Behind the four bytes of the mark.
enum Field : int {
    PORT = 0,
    MODE = 1,
    DATA_BITS = 2,
    STOP_BITS = 3,
    PARITY = 4,
    BAUD = 8,
    LENGTH = 12,
    HEADER_SIZE = 16,
};

constexpr qint64 LONGEST_PROGRAM = qint64(16) << 20;

int byteAt(const QByteArray &header, Field field)
{
    return static_cast<quint8>(header[field]);
}

quint32 wordAt(const QByteArray &header, Field field)
{
    return qFromLittleEndian<quint32>(header.constData() + field);
}

PLATFORM::SerialSettings lineOf(const QByteArray &header)
{
    PLATFORM::SerialSettings line;
    line.port = byteAt(header, PORT);
    line.mode = byteAt(header, MODE);
    line.baud = static_cast<int>(wordAt(header, BAUD));
    line.dataBits = byteAt(header, DATA_BITS);
    line.stopBits = byteAt(header, STOP_BITS);
    line.parity = byteAt(header, PARITY);
    return line;
}

// Whether it begins as a program file does; it is then read up to behind that mark.
bool hasMark(QFile &file)
{
    const qint64 size = file.size();
    std::printf("ntotalpos = %ld\r\n", static_cast<long>(size));
    constexpr qint64 LARGEST = std::numeric_limits<std::int32_t>::max();
    g_Progress.nTotal = static_cast<std::int32_t>(std::min(size, LARGEST));
    const QByteArray bytes = file.read(sizeof PROGRAM_MARK);
    if (bytes.size() != sizeof PROGRAM_MARK)
        return false;
    const auto mark = qFromLittleEndian<std::int32_t>(bytes.constData());
    std::printf("20161111** = %d\r\n", mark);
    return mark == PROGRAM_MARK;
}

} // namespace

std::optional<LegacyProgram> readLegacyProgram(int fd)
{
    QFile file;
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::DontCloseHandle) || !hasMark(file))
        return std::nullopt;
    const QByteArray header = file.read(HEADER_SIZE);
    if (header.size() != HEADER_SIZE)
        return std::nullopt;
    const qint64 length = wordAt(header, LENGTH);
    if (length == 0 || length > LONGEST_PROGRAM || length != file.size() - file.pos())
        return std::nullopt;
    LegacyProgram program{lineOf(header), file.read(length)};
    if (program.bytes.size() != length)
        return std::nullopt;
    return program;
}
