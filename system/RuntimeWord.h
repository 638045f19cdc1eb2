// Settings words of the control runtime: the one reader and the one writer. Any thread.
#pragma once

#include <QString>

// Reads the word at `address`. Returns 0; -1, with `value` untouched, if the runtime does not give
// it.
[[nodiscard]] int readWord(unsigned int address, unsigned short &value);

// Writes the word at `address` and traces a success on standard output. Returns 0; -2 if the
// runtime does not take it.
[[nodiscard]] int writeWord(unsigned int address, unsigned short value);

// Same from decimal text; one that is no number from 0 to 65535 counts as 0. Returns -1, without a
// write, if `text` is empty.
[[nodiscard]] int writeWord(unsigned int address, const QString &text);

// Writes `count` words from `address` on, all or none, without a trace. Returns 0; -2 if the
// runtime does not take them.
[[nodiscard]] int writeWords(unsigned int address, const unsigned short *words, int count);
