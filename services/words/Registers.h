// The settings words: which there are, what each takes, and its value in a new panel.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace words {

using Word = std::uint16_t;
using Values = std::map<unsigned, Word>; // by address

constexpr unsigned CLOCK_FIRST = 28; // year, month, day, hour, minute, second
constexpr unsigned CLOCK_COUNT = 6;
constexpr unsigned BACKLIGHT_TIME = 10590; // s; 0 leaves the backlight on
constexpr unsigned BRIGHTNESS = 10591;     // percent

// Whether the word at `address` takes `value`. False too where there is no such word.
bool isInRange(unsigned address, Word value);

// The words that are kept, all but the clock's. Not thread-safe.
class Registers
{
public:
    Registers();

    // Takes over the values of words that exist and that are in range, and returns the addresses of
    // the others.
    std::vector<unsigned> adopt(const Values &values);

    // Whether there are `count` words from `address` on.
    bool exist(unsigned address, unsigned count) const;

    // For words that exist.
    std::vector<Word> read(unsigned address, unsigned count) const;
    Word read(unsigned address) const;

    // Writes all of `words`, or none if one is out of its range. For words that exist.
    bool write(unsigned address, const std::vector<Word> &words);

    const Values &values() const { return m_values; }

private:
    Values m_values;
};

} // namespace words
