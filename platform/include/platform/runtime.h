// Runtime access: the settings words of the control runtime, unsigned 16-bit each.
//
// There is no time-out: a call blocks its caller, mostly the GUI thread, until the runtime answers.
// The pages read and write word by word, about eighty of them before the first picture and one for
// each step of a slider, so a word must take a millisecond or less. Where the runtime is away or
// busy, fail at once: a page shows the field empty or the write as refused, but a call that waits
// holds up the whole program.
#pragma once

// Reads `count` words from `address` on into `words`. Returns 0; negative on failure (no such
// word, or the runtime does not answer), with `words` untouched. Any thread.
int backstage_AddrRead(unsigned int address, unsigned short *words, int count);

// Writes `count` words from `address` on. All or none are written. Returns 0; negative on
// failure. Any thread.
int backstage_AddrWrite(unsigned int address, const unsigned short *words, int count);

// Not 0 if the runtime lets the clock be set. Any thread.
int backstage_AllowSetTime();
