#include "platform/sim/PlcStation.h"

#include "platform/sim/Panel.h"
#include "platform/sim/Root.h"
#include "platform/sim/WholeFile.h"

#include <QByteArray>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <numeric>
#include <optional>
#include <utility>

namespace sim {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char BEGIN = 0x41;
constexpr unsigned char DATA = 0x42;
constexpr unsigned char END = 0x43;
constexpr unsigned char ANSWER_BIT = 0x80;

constexpr unsigned char TAKEN = 0;
constexpr unsigned char WRONG_SUM = 4;
constexpr unsigned char OUT_OF_ORDER = 5;
constexpr unsigned char CANNOT_STORE = 6;

constexpr std::size_t LONGEST_LINE = 16384;

unsigned char sumOf(const Bytes &bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), static_cast<unsigned char>(0),
                           [](unsigned char sum, unsigned char byte) {
                               return static_cast<unsigned char>(sum + byte);
                           });
}

std::string encode(Bytes bytes)
{
    bytes.push_back(static_cast<unsigned char>(-sumOf(bytes)));
    std::string text = ":";
    for (const unsigned char byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += digits;
    }
    return text + "\r\n";
}

std::optional<Bytes> decode(const std::string &line)
{
    const auto colon = line.rfind(':');
    if (colon == std::string::npos || line.back() != '\r')
        return std::nullopt;
    const std::string digits = line.substr(colon + 1, line.size() - colon - 2);
    if (digits.size() % 2 != 0 || digits.size() < 6 ||
        digits.find_first_not_of("0123456789ABCDEF") != std::string::npos)
        return std::nullopt;
    Bytes bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    if (sumOf(bytes) != 0)
        return std::nullopt;
    bytes.pop_back();
    return bytes;
}

std::uint32_t littleEndian(const Bytes &bytes, std::size_t at, std::size_t size)
{
    std::uint32_t value = 0;
    for (std::size_t i = size; i-- > 0;)
        value = value << 8U | bytes[at + i];
    return value;
}

std::uint16_t checkSumOf(const Bytes &program)
{
    return qChecksum(reinterpret_cast<const char *>(program.data()),
                     static_cast<uint>(program.size()));
}

bool store(const Bytes &program)
{
    const std::string folder = panelRoot() + "/plc";
    std::error_code error; // the write fails then
    std::filesystem::create_directories(folder, error);
    return writeWholeFile(folder + "/program.bin", {program.begin(), program.end()});
}

// How the next answer is spoilt, counted down in `spoil`; "right" if none is left.
std::string takeSpoiling(Json &line)
{
    const int left = line["spoil"].get<int>();
    if (left == 0)
        return "right";
    if (left > 0)
        line["spoil"] = left - 1;
    return line["answer"].get<std::string>();
}

struct Spoiling
{
    const char *kind;
    std::string (*text)(const std::string &right);
};

const Spoiling SPOILINGS[] = {
    {"none", [](const std::string &) { return std::string(); }},
    {"noise", [](const std::string &) { return std::string("\xFF~U:0Z\x80\r\n"); }},
    {"endless", [](const std::string &) { return ":" + std::string(4096, 'F'); }},
    {"wrongSum",
     [](const std::string &right) {
         std::string text = right;
         text[1] = text[1] == '8' ? '9' : '8';
         return text;
     }},
};

std::string spoilt(const std::string &right, const std::string &kind)
{
    const auto *found =
        std::find_if(std::begin(SPOILINGS), std::end(SPOILINGS),
                     [&](const Spoiling &spoiling) { return spoiling.kind == kind; });
    return found == std::end(SPOILINGS) ? right : found->text(right);
}

} // namespace

std::vector<PlcStation::Answer> PlcStation::take(const std::string &bytes)
{
    std::vector<Answer> answers;
    for (const char byte : bytes) {
        if (byte == '\n')
            takeFrame(std::exchange(m_line, {}), answers);
        else if (m_line.size() < LONGEST_LINE)
            m_line += byte;
    }
    return answers;
}

// A frame that arrives damaged is not answered, as a Modbus station would not.
void PlcStation::takeFrame(const std::string &text, std::vector<Answer> &answers)
{
    const auto frame = decode(text);
    if (!frame)
        return;
    const Json line = panel().locked([](Json &state) {
        Json &settings = state["plc"]["line"];
        Json now = settings;
        now["answer"] = takeSpoiling(settings);
        return now;
    });
    const unsigned char code = process(*frame, line["refuse"].get<int>());
    panel().locked([&](Json &state) {
        Json &counts = state["plc"]["line"];
        counts["frames"] = counts["frames"].get<int>() + 1;
        counts["received"] = m_program.size();
    });
    const Bytes answer{static_cast<unsigned char>((*frame)[0] | ANSWER_BIT), (*frame)[1], code};
    const auto kind = line["answer"].get<std::string>();
    const std::chrono::milliseconds delay(kind == "late" ? line["lateMs"].get<int>() : 0);
    answers.push_back({spoilt(encode(answer), kind), delay});
}

unsigned char PlcStation::process(const Bytes &frame, int refuse)
{
    const unsigned char function = frame[0];
    const unsigned char number = frame[1];
    const Bytes data(frame.begin() + 2, frame.end());
    const bool isRepeat = m_hasBegun && number == m_number;
    if (isRepeat && function != BEGIN)
        return m_code;
    const bool isNext = m_hasBegun && number == static_cast<unsigned char>(m_number + 1);
    unsigned char code = OUT_OF_ORDER;
    if (function == BEGIN)
        code = begin(data, refuse);
    else if (function == DATA && isNext)
        code = append(data);
    else if (function == END && isNext)
        code = finish(data, refuse);
    m_number = number;
    m_code = code;
    return code;
}

unsigned char PlcStation::begin(const Bytes &data, int refuse)
{
    m_program.clear();
    m_hasBegun = false;
    if (data.size() != 4)
        return OUT_OF_ORDER;
    if (refuse != TAKEN && refuse != WRONG_SUM)
        return static_cast<unsigned char>(refuse);
    m_hasBegun = true;
    m_length = littleEndian(data, 0, 4);
    return TAKEN;
}

unsigned char PlcStation::append(const Bytes &data)
{
    if (m_program.size() + data.size() > m_length)
        return OUT_OF_ORDER;
    m_program.insert(m_program.end(), data.begin(), data.end());
    return TAKEN;
}

unsigned char PlcStation::finish(const Bytes &data, int refuse) const
{
    if (data.size() != 6 || refuse == WRONG_SUM || m_program.size() != m_length ||
        littleEndian(data, 0, 4) != m_length || littleEndian(data, 4, 2) != checkSumOf(m_program))
        return WRONG_SUM;
    return store(m_program) ? TAKEN : CANNOT_STORE;
}

} // namespace sim
