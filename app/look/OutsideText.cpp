#include "app/look/OutsideText.h"

#include <QTextCodec>

namespace {

constexpr int UTF8_MIB = 106; // IANA's number of the character set

QString escaped(uint code)
{
    return QStringLiteral("\\x") +
           QStringLiteral("%1").arg(code, 2, 16, QLatin1Char('0')).toUpper();
}

// A character that would break the line, hide, or turn the direction of what follows.
bool isUnseen(uint code)
{
    const QChar::Category category = QChar::category(code);
    return category == QChar::Other_Control || category == QChar::Other_Format ||
           category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
}

QString decoded(const std::string &bytes)
{
    const auto size = static_cast<int>(bytes.size());
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader); // a byte order mark is a character
    const QString text = QTextCodec::codecForMib(UTF8_MIB)->toUnicode(bytes.data(), size, &state);
    return state.invalidChars == 0 && state.remainingChars == 0 ? text : QString();
}

} // namespace

QString shownBytes(const std::string &bytes)
{
    const QString text = decoded(bytes);
    QString shown;
    if (text.isEmpty()) {
        for (const char byte : bytes) {
            const auto code = static_cast<unsigned char>(byte);
            shown += code >= ' ' && code < 0x7F ? QString(QChar::fromLatin1(byte)) : escaped(code);
        }
        return shown;
    }
    for (const uint code : text.toUcs4())
        shown += isUnseen(code) ? escaped(code) : QString::fromUcs4(&code, 1);
    return shown;
}
