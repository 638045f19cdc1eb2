// Result codes to texts, as data.
#pragma once

#include <QString>

#include <array>
#include <cstddef>

// What a page says to one result code.
struct ResultRow
{
    int code;
    std::array<const char *, 4> lines; // source texts, the unused ones null
    // Two bytes of GB2312 that the text is stored with beyond its last line; null for none.
    const char *tail = nullptr;
};

// The text of `code` in the language of the program: its lines, translated in `context` and joined
// by "\r\n". A code without a row among the `count` of `rows` has the text of `other`.
QString resultText(const ResultRow *rows, std::size_t count, const ResultRow &other, int code,
                   const char *context);

template <std::size_t Count>
QString resultText(const ResultRow (&rows)[Count], const ResultRow &other, int code,
                   const char *context)
{
    return resultText(rows, Count, other, code, context);
}
