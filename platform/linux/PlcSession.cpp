#include "platform/linux/PlcSession.h"

#include <algorithm>
#include <iterator>
#include <thread>
#include <zlib.h>

namespace board {
namespace {

using namespace std::chrono_literals;
using Words = PlcLine::Words;

// Holding registers.
constexpr int IDENTITY = 0xFF00;
constexpr int STATUS = 0xFF20;
constexpr int ORDER = 0xFF40;

// Within IDENTITY; two words a section from CAPACITIES on.
enum IdentityWord { MARK, MAP_VERSION, TYPE, VERSION, ACCESS, CAPACITIES };
constexpr std::size_t IDENTITY_WORDS = CAPACITIES + 2 * PLC_SECTIONS;
constexpr int OUR_MARK = 0x5043; // "PC"
constexpr int OUR_MAP = 1;
constexpr unsigned int ASKS_PASSWORD = 1;
constexpr unsigned int PASSWORD_GIVEN = 2;

// Within STATUS.
enum StatusWord { NUMBER, RESULT, STATE, STATUS_WORDS };
constexpr int BUSY = 1;
constexpr int STOPPED = 0;
constexpr int RUNNING = 1;

constexpr auto BUSY_AT_MOST = 5s;
constexpr auto POLL_PERIOD = 20ms;

constexpr std::size_t LONGEST_TEXT = 32;
constexpr int FILES_OF_SECTION = 256;
constexpr std::size_t RECORDS_OF_FILE = 10000; // Modbus Application Protocol V1.1b3, 6.14

constexpr const char *SECTION_NAMES[] = {"", "program", "parameters", "cam table", "extension"};
constexpr const char *COMMAND_NAMES[] = {"",      "unlock", "protect", "stop", "start",
                                         "begin", "end",    "check",   "hide", "leave"};

struct Result
{
    int value;
    PlcFault fault;
    const char *text;
};

constexpr Result RESULTS[] = {
    {0, PlcFault::None, "done"},
    {2, PlcFault::Refused, "refused"},
    {3, PlcFault::WrongPassword, "the password is wrong"},
    {4, PlcFault::TooLarge, "too large for this PLC"},
    {5, PlcFault::Refused, "the checksum is wrong"},
    {6, PlcFault::WrongPassword, "the PLC is locked"},
    {7, PlcFault::Unsupported, "this PLC cannot do it"},
    {8, PlcFault::Refused, "the PLC is not stopped"},
};

std::uint32_t sumOf(const PlcSession::Bytes &bytes)
{
    return static_cast<std::uint32_t>(crc32_z(0, bytes.data(), bytes.size()));
}

void append(Words &words, std::uint32_t number)
{
    words.push_back(static_cast<std::uint16_t>(number >> 16U));
    words.push_back(static_cast<std::uint16_t>(number & 0xFFFFU));
}

// Two bytes a word, the first one high; a last single byte is followed by 0.
template <typename Container>
Words wordsOf(const Container &bytes, std::size_t begin, std::size_t end)
{
    Words words;
    for (std::size_t i = begin; i < end; i += 2) {
        const unsigned int high = static_cast<std::uint8_t>(bytes[i]);
        const unsigned int low = i + 1 < end ? static_cast<std::uint8_t>(bytes[i + 1]) : 0;
        words.push_back(static_cast<std::uint16_t>(high << 8U | low));
    }
    return words;
}

PlcSession::Bytes bytesOf(const Words &words)
{
    PlcSession::Bytes bytes;
    for (const std::uint16_t word : words) {
        bytes.push_back(static_cast<std::uint8_t>(word >> 8U));
        bytes.push_back(static_cast<std::uint8_t>(word & 0xFFU));
    }
    return bytes;
}

} // namespace

struct PlcSession::Order
{
    PlcCommand command;
    int number = 0;
    std::size_t size = 0;
    std::uint32_t sum = 0;
    std::string text;

    std::string name() const { return COMMAND_NAMES[static_cast<int>(command)]; }
};

PlcFault PlcSession::identify()
{
    Words words(IDENTITY_WORDS);
    if (const PlcFault fault = m_line.read(IDENTITY, words); fault != PlcFault::None)
        return noted(fault, "identity");
    if (words[MARK] != OUR_MARK || words[MAP_VERSION] != OUR_MAP)
        return fail(PlcFault::Nonsense, "what answers does not follow the register map");
    Words status(STATUS_WORDS);
    if (const PlcFault fault = m_line.read(STATUS, status); fault != PlcFault::None)
        return noted(fault, "status");
    m_order = status[NUMBER];
    const unsigned int access = words[ACCESS];
    m_identity.type = words[TYPE];
    m_identity.version = words[VERSION];
    m_identity.isLocked = (access & (ASKS_PASSWORD | PASSWORD_GIVEN)) == ASKS_PASSWORD;
    for (std::size_t i = 0; i < PLC_SECTIONS; ++i) {
        const std::size_t at = CAPACITIES + 2 * i;
        m_identity.capacities[i] = static_cast<std::uint32_t>(words[at]) << 16U | words[at + 1];
    }
    return PlcFault::None;
}

PlcFault PlcSession::command(PlcCommand command, const std::string &text)
{
    return follow({command, 0, 0, 0, text});
}

PlcFault PlcSession::send(PlcSection section, const Bytes &content)
{
    const int number = static_cast<int>(section);
    const std::uint32_t room = m_identity.capacity(section);
    if (content.size() > room)
        return fail(PlcFault::TooLarge, std::string(SECTION_NAMES[number]) + ": " +
                                            std::to_string(content.size()) + " bytes, room for " +
                                            std::to_string(room));
    const std::uint32_t sum = sumOf(content);
    PlcFault fault = follow({PlcCommand::Begin, number, content.size(), sum, {}});
    if (fault == PlcFault::None)
        fault = sendRecords(section, content);
    if (fault == PlcFault::None)
        fault = follow({PlcCommand::End, number, content.size(), sum, {}});
    return fault;
}

PlcFault PlcSession::send(const devmemorydataitem_t &range)
{
    const Words &values = range.values;
    const int end = range.nAddress + static_cast<int>(values.size());
    if (values.empty() || range.nAddress < 0 || end > IDENTITY)
        return fail(PlcFault::Refused, "memory from " + std::to_string(range.nAddress) + " to " +
                                           std::to_string(end) + " is not the PLC's");
    for (std::size_t at = 0; at < values.size(); at += PlcLine::MOST_WORDS) {
        const auto begin = values.begin() + static_cast<std::ptrdiff_t>(at);
        const std::size_t count = std::min(PlcLine::MOST_WORDS, values.size() - at);
        const int address = range.nAddress + static_cast<int>(at);
        const PlcFault fault =
            m_line.write(address, Words(begin, begin + static_cast<std::ptrdiff_t>(count)));
        if (fault != PlcFault::None)
            return noted(fault, "memory from " + std::to_string(address));
    }
    return follow({PlcCommand::Check, range.nAddress, values.size(), sumOf(bytesOf(values)), {}});
}

PlcFault PlcSession::sendRecords(PlcSection section, const Bytes &content)
{
    const int number = static_cast<int>(section);
    const std::size_t all = (content.size() + 1) / 2;
    for (std::size_t at = 0; at < all;) {
        const int file = number * FILES_OF_SECTION + static_cast<int>(at / RECORDS_OF_FILE);
        const std::size_t first = at % RECORDS_OF_FILE;
        const std::size_t count =
            std::min({PlcLine::MOST_IN_RECORD, RECORDS_OF_FILE - first, all - at});
        const std::size_t end = std::min(content.size(), 2 * (at + count));
        const PlcFault fault =
            m_line.writeFile(file, static_cast<int>(first), wordsOf(content, 2 * at, end));
        if (fault != PlcFault::None)
            return noted(fault, std::string(SECTION_NAMES[number]) + ", byte " +
                                    std::to_string(2 * at) + " of " +
                                    std::to_string(content.size()));
        at += count;
    }
    return PlcFault::None;
}

// The PLC obeys a number once, so that an order whose answer was lost can be given again.
PlcFault PlcSession::follow(const Order &order)
{
    if (order.text.size() > LONGEST_TEXT)
        return fail(PlcFault::WrongPassword, order.name() + ": longer than a password can be");
    Words words{++m_order, static_cast<std::uint16_t>(order.command),
                static_cast<std::uint16_t>(order.number)};
    append(words, static_cast<std::uint32_t>(order.size));
    append(words, order.sum);
    words.push_back(static_cast<std::uint16_t>(order.text.size()));
    const Words text = wordsOf(order.text, 0, order.text.size());
    words.insert(words.end(), text.begin(), text.end());
    const PlcFault fault = m_line.write(ORDER, words);
    return fault == PlcFault::None ? awaitResult(order) : noted(fault, order.name());
}

PlcFault PlcSession::awaitResult(const Order &order)
{
    const auto deadline = std::chrono::steady_clock::now() + BUSY_AT_MOST;
    Words status(STATUS_WORDS);
    do {
        if (const PlcFault fault = m_line.read(STATUS, status); fault != PlcFault::None)
            return noted(fault, order.name());
        if (status[NUMBER] == m_order && status[RESULT] != BUSY)
            return judge(order, status[RESULT], status[STATE]);
        std::this_thread::sleep_for(POLL_PERIOD);
    } while (std::chrono::steady_clock::now() < deadline);
    return fail(PlcFault::Refused, order.name() + ": still busy");
}

PlcFault PlcSession::judge(const Order &order, int result, int state)
{
    const auto *known = std::find_if(std::begin(RESULTS), std::end(RESULTS),
                                     [result](const Result &one) { return one.value == result; });
    if (known == std::end(RESULTS))
        return fail(PlcFault::Refused, order.name() + ": result " + std::to_string(result));
    if (known->fault != PlcFault::None)
        return fail(known->fault, order.name() + ": " + known->text);
    if ((order.command == PlcCommand::Stop && state != STOPPED) ||
        (order.command == PlcCommand::Start && state != RUNNING))
        return fail(PlcFault::Refused,
                    order.name() + ": done, but its state is " + std::to_string(state));
    return PlcFault::None;
}

PlcFault PlcSession::fail(PlcFault fault, const std::string &cause)
{
    m_cause = cause;
    return fault;
}

PlcFault PlcSession::noted(PlcFault fault, const std::string &doing)
{
    m_cause = doing.empty() ? m_line.cause() : doing + ": " + m_line.cause();
    return fault;
}

} // namespace board
