// Texts of tests.
#pragma once

#include <QString>

// "abc"_s is the QString "abc"; bytes are UTF-8.
inline QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}
