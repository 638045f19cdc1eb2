// The words of the simulated runtime as text, "2 3 x 1": "x" is one that it does not give.
#pragma once

#include "platform/runtime.h"
#include "platform/sim/Panel.h"
#include "system/ComParam.h"
#include "tests/support/Text.h"

inline void setWords(unsigned int address, const QString &words)
{
    for (const QString &word : words.split(u' '))
        sim::panel().set("words." + std::to_string(address++),
                         word == "x"_s ? sim::Json() : sim::Json(word.toInt()));
}

// Those of the port whose words begin at `base`.
inline QString portWords(unsigned int base)
{
    QStringList words;
    for (unsigned int i = 0; i < COM_FIELDS; ++i) {
        unsigned short word = 0;
        words << (backstage_AddrRead(base + i, &word, 1) == 0 ? QString::number(word) : "x"_s);
    }
    return words.join(u' ');
}
