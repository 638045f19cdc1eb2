#include "update/ResultText.h"

#include <QCoreApplication>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>

namespace {

// Bytes of the panel's first language, which no other part of the program reads as such.
QString decoded(const char *gb2312)
{
    if (gb2312 == nullptr)
        return {};
    const QTextCodec *codec = QTextCodec::codecForName("GB18030");
    return codec == nullptr ? QStringLiteral("!") : codec->toUnicode(gb2312);
}

} // namespace

QString resultText(const ResultRow *rows, std::size_t count, const ResultRow &other, int code,
                   const char *context)
{
    const ResultRow *end = rows + count;
    const ResultRow *found =
        std::find_if(rows, end, [code](const ResultRow &row) { return row.code == code; });
    const ResultRow &row = found == end ? other : *found;
    QStringList lines;
    for (const char *line : row.lines) {
        if (line != nullptr)
            lines += QCoreApplication::translate(context, line);
    }
    return lines.join(QStringLiteral("\r\n")) + decoded(row.tail);
}
