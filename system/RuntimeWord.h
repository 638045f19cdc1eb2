// Settings words of the control runtime, one at a time: the one reader and the one writer. Any
// thread.
#pragma once

#include <QString>

// Reads the word at `address`. Returns 0; -2, with `value` untouched, if the runtime does not give
// it.
int readWordValue(unsigned int address, unsigned short &value);

// Same as decimal text. Returns 0; -1, with `text` empty, if the runtime does not give it. (-2
// would be an empty text, which no word has.)
int readWord(unsigned int address, QString &text);

// Writes the word at `address` and traces a success on standard output. Returns 0; -2 if the
// runtime does not take it.
int writeWordValue(unsigned int address, unsigned short value);

// Same from decimal text; one that is no number from 0 to 65535 counts as 0. Returns 0; -1,
// without a write, if `text` is empty; -2 if the runtime does not take it.
int writeWord(unsigned int address, const QString &text);
