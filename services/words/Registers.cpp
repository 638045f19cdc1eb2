#include "services/words/Registers.h"

#include <algorithm>
#include <array>

namespace words {
namespace {

struct Range
{
    Word min;
    Word max;

    bool holds(Word value) const { return value >= min && value <= max; }
};

// What a word takes: a range, or one of two.
struct Rule
{
    Range range;
    Range other;

    constexpr Rule(Word min, Word max) : range{min, max}, other{min, max} {}
    constexpr Rule(Range first, Range second) : range(first), other(second) {}

    bool allows(Word value) const { return range.holds(value) || other.holds(value); }
};

struct Setting
{
    unsigned address;
    Rule rule;
    Word first;
};

constexpr std::array SETTINGS{
    Setting{BACKLIGHT_TIME, {0, 3600}, 600}, // s
    Setting{BRIGHTNESS, {1, 100}, 100},      // percent
    Setting{10612, {0, 1}, 0},               // buzzer; 0 is on
    Setting{10613, {1, 5}, 3},               // its tone
    Setting{10614, {0, 1000}, 100},          // its length, ms
};

// A port is written word by word, so that each word takes the 0 of a port that is not in use.
constexpr unsigned PORT_WORDS = 11;
using PortValues = std::array<Word, PORT_WORDS>;

constexpr std::array<Rule, PORT_WORDS> PORT_RULES{{
    {{0, 3}, {6, 6}}, // RS232, RS485_1, RS422, NULL; RS485_2
    {0, 21},          // 1200 to 4000000 bits a second
    {{0, 0}, {7, 8}}, // data bits
    {0, 2},           // stop bits
    {0, 4},           // parity: none, odd, even, space, mark
    {0, 1000},        // wait time-out, ms
    {0, 1000},        // read time-out, ms
    {0, 10},          // retries
    {0, 20},          // retry time-out, s
    {0, 255},         // station of the panel
    {0, 255},         // station of the device
}};

struct Port
{
    unsigned base;
    PortValues first;
};

constexpr Word RS232 = 0;
constexpr Word RS485_1 = 1;
constexpr Word RS422 = 2;

constexpr PortValues inUse(Word connection)
{
    return {connection, 3, 8, 1, 0, 20, 100, 3, 2, 1, 1};
}

// In use is what the serial nodes of the panel lead to: a port that is not in use cannot be reached
// on the page.
constexpr std::array PORTS{
    Port{10061, inUse(RS232)},   // COM1-1
    Port{10072, inUse(RS232)},   // COM2-1
    Port{10083, {}},             // COM3
    Port{10094, inUse(RS422)},   // COM1-2
    Port{10105, inUse(RS485_1)}, // COM2-2
    Port{10120, {}},             // COM1-3
};

constexpr std::array<Rule, CLOCK_COUNT> CLOCK_RULES{
    {{2000, 2037}, {1, 12}, {1, 31}, {0, 23}, {0, 59}, {0, 59}}};

bool isIn(unsigned address, unsigned first, unsigned count)
{
    return address >= first && address - first < count;
}

// Null if there is no such word.
const Rule *findRule(unsigned address)
{
    if (isIn(address, CLOCK_FIRST, CLOCK_COUNT))
        return &CLOCK_RULES.at(address - CLOCK_FIRST);
    for (const Setting &setting : SETTINGS) {
        if (setting.address == address)
            return &setting.rule;
    }
    for (const Port &port : PORTS) {
        if (isIn(address, port.base, PORT_WORDS))
            return &PORT_RULES.at(address - port.base);
    }
    return nullptr;
}

Values firstValues()
{
    Values values;
    for (const Setting &setting : SETTINGS)
        values[setting.address] = setting.first;
    for (const Port &port : PORTS) {
        for (unsigned i = 0; i < PORT_WORDS; ++i)
            values[port.base + i] = port.first.at(i);
    }
    return values;
}

} // namespace

bool isInRange(unsigned address, Word value)
{
    const Rule *rule = findRule(address);
    return rule != nullptr && rule->allows(value);
}

Registers::Registers() : m_values(firstValues()) {}

std::vector<unsigned> Registers::adopt(const Values &values)
{
    std::vector<unsigned> refused;
    for (const auto &[address, value] : values) {
        if (exist(address, 1) && isInRange(address, value))
            m_values[address] = value;
        else
            refused.push_back(address);
    }
    return refused;
}

bool Registers::exist(unsigned address, unsigned count) const
{
    for (unsigned i = 0; i < count; ++i) {
        if (m_values.count(address + i) == 0)
            return false;
    }
    return count > 0;
}

std::vector<Word> Registers::read(unsigned address, unsigned count) const
{
    std::vector<Word> words(count);
    for (Word &word : words)
        word = read(address++);
    return words;
}

Word Registers::read(unsigned address) const
{
    return m_values.at(address);
}

bool Registers::write(unsigned address, const std::vector<Word> &words)
{
    unsigned checked = address;
    if (!std::all_of(words.begin(), words.end(),
                     [&](Word word) { return isInRange(checked++, word); }))
        return false;
    for (const Word word : words)
        m_values[address++] = word;
    return true;
}

} // namespace words
