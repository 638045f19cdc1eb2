// Runtime access: the settings words of the control runtime, unsigned 16-bit each.
#pragma once

// Reads `count` words from `address` on into `words`. Returns 0; negative on failure (no such
// word, or the runtime does not answer), with `words` untouched. Any thread.
int backstage_AddrRead(unsigned int address, unsigned short *words, int count);

// Writes `count` words from `address` on. All or none are written. Returns 0; negative on
// failure. Any thread.
int backstage_AddrWrite(unsigned int address, const unsigned short *words, int count);

// Not 0 if the runtime lets the clock be set. Any thread.
int backstage_AllowSetTime();
