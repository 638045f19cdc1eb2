#include "update/LegacyProgram.h"

#include <QFile>
#include <QtEndian>

namespace {

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

SerialSettings lineOf(const QByteArray &header)
{
    SerialSettings line;
    line.port = byteAt(header, PORT);
    line.mode = byteAt(header, MODE);
    line.baud = static_cast<int>(wordAt(header, BAUD));
    line.dataBits = byteAt(header, DATA_BITS);
    line.stopBits = byteAt(header, STOP_BITS);
    line.parity = byteAt(header, PARITY);
    return line;
}

} // namespace

std::optional<LegacyProgram> readLegacyProgram(int fd)
{
    QFile file;
    if (checkHeader(fd) != 0 || !file.open(fd, QIODevice::ReadOnly, QFileDevice::DontCloseHandle))
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
