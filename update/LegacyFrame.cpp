#include "update/LegacyFrame.h"

#include <algorithm>
#include <numeric>

namespace {

char sumOf(const QByteArray &bytes)
{
    const unsigned sum =
        std::accumulate(bytes.begin(), bytes.end(), 0U, [](unsigned total, char byte) {
            return total + static_cast<quint8>(byte);
        });
    return static_cast<char>(sum);
}

bool isHex(const QByteArray &digits)
{
    // QByteArray::fromHex() passes over what is no digit.
    return digits.size() % 2 == 0 && std::all_of(digits.begin(), digits.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
           });
}

} // namespace

QByteArray encodeFrame(const QByteArray &bytes)
{
    QByteArray checked = bytes;
    checked += static_cast<char>(-sumOf(bytes));
    return ':' + checked.toHex().toUpper() + "\r\n";
}

std::optional<QByteArray> decodeFrame(const QByteArray &frame)
{
    const QByteArray text = frame.trimmed();
    const QByteArray digits = text.mid(1);
    if (!text.startsWith(':') || digits.isEmpty() || !isHex(digits))
        return std::nullopt;
    QByteArray bytes = QByteArray::fromHex(digits);
    if (sumOf(bytes) != 0)
        return std::nullopt;
    bytes.chop(1);
    return bytes;
}
