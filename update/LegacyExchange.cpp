#include "update/LegacyExchange.h"

#include "platform/cos_time.h"
#include "platform/serial_line.h"
#include "update/LegacyFrame.h"
#include "update/Progress.h"

#include <QtEndian>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace {

using PLATFORM::PortEvent;

// Modbus leaves the function codes 65 to 72 to its users.
constexpr char BEGIN = 0x41;
constexpr char DATA = 0x42;
constexpr char END = 0x43;
constexpr int ANSWER_BIT = 0x80;

// Larger frames gain less than two percent; the decision page has the numbers.
constexpr int DATA_PER_FRAME = 2048;
constexpr int PAUSE_MS = 10;
constexpr int ATTEMPTS = 3;

constexpr int ANSWER_BYTES = 3;      // function, number, code
constexpr int LONGEST_ANSWER = 64;   // in characters, with what noise puts before it
constexpr int BITS_A_CHARACTER = 12; // at most: start, eight, parity, two stop bits

constexpr int NO_ANSWER = -25;
constexpr int WRONG_ANSWERS = -13;
constexpr int LINE_BROKEN = -5;
constexpr int REFUSED = -20;
constexpr int STOPPED = -1;
constexpr std::chrono::milliseconds STOP_SLICE(200); // how soon the end of the program is noticed

// The program ends. The PLC does not start what it has received so far.
bool isStopped()
{
    return QThread::currentThread()->isInterruptionRequested();
}

struct Refusal
{
    int code; // that the PLC answers
    int result;
};

constexpr Refusal REFUSALS[] = {
    {0, 0},   // taken
    {1, -16}, // another type of PLC
    {2, -32}, // too long
    {3, -24}, // a password is needed
    {4, -9},  // length or check sum wrong
};

int resultOf(int code)
{
    const auto *found =
        std::find_if(std::begin(REFUSALS), std::end(REFUSALS),
                     [code](const Refusal &refusal) { return refusal.code == code; });
    return found == std::end(REFUSALS) ? REFUSED : found->result;
}

template <typename Number>
QByteArray littleEndian(Number number)
{
    QByteArray bytes(static_cast<int>(sizeof number), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

QByteArray lengthOf(const QByteArray &program)
{
    return littleEndian(static_cast<quint32>(program.size()));
}

// CRC-16 as ISO 3309 (X.25) has it.
QByteArray checkSumOf(const QByteArray &program)
{
    return littleEndian(qChecksum(program.constData(), static_cast<uint>(program.size())));
}

} // namespace

int LegacyExchange::send(const QByteArray &program)
{
    g_Progress.nPercent = 0;
    int result = exchange(BEGIN, lengthOf(program));
    if (result == 0)
        result = sendData(program);
    if (result == 0)
        result = exchange(END, lengthOf(program) + checkSumOf(program));
    return result;
}

int LegacyExchange::sendData(const QByteArray &program)
{
    for (int sent = 0; sent < program.size();) {
        const QByteArray data = program.mid(sent, DATA_PER_FRAME);
        const int result = exchange(DATA, data);
        if (result != 0)
            return result;
        sent += data.size();
        g_Progress.nPercent = static_cast<int>(qint64(sent) * 100 / program.size());
    }
    return 0;
}

int LegacyExchange::exchange(char function, const QByteArray &data)
{
    const QByteArray frame = encodeFrame(QByteArray(1, function) + m_number + data);
    Reply reply;
    for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
        reply = ask(function, frame);
        if (isStopped())
            return STOPPED;
        if (reply.outcome == Outcome::Broken)
            return LINE_BROKEN;
        if (reply.outcome == Outcome::Answered) {
            std::printf("nWritePlcLen %d nReadPlcLen %d!\r\n", frame.size(), reply.length);
            ++m_number;
            return resultOf(reply.code);
        }
    }
    return reply.outcome == Outcome::Wrong ? WRONG_ANSWERS : NO_ANSWER;
}

LegacyExchange::Reply LegacyExchange::ask(char function, const QByteArray &frame)
{
    if (!std::exchange(m_isFirst, false))
        COS::CosTime::SleepCos(PAUSE_MS);
    m_received.clear();
    PLATFORM::dropReceived(m_line);
    const std::chrono::milliseconds onLine(qint64(frame.size()) * BITS_A_CHARACTER * 1000 / m_baud);
    const Clock::time_point deadline = Clock::now() + onLine + m_patience;
    if (!transmit(frame, deadline))
        return {Outcome::Broken};
    return receive(function, deadline);
}

bool LegacyExchange::transmit(const QByteArray &frame, Clock::time_point deadline) const
{
    int sent = 0;
    while (sent < frame.size()) {
        if (!awaitLine(PortEvent::Writable, deadline))
            return false;
        const int count = PLATFORM::writePort(m_line, frame.constData() + sent,
                                              static_cast<std::size_t>(frame.size() - sent));
        if (count < 0)
            return false;
        sent += count;
    }
    return true;
}

// An answer to an earlier frame may still be under way; it is passed over.
LegacyExchange::Reply LegacyExchange::receive(char function, Clock::time_point deadline)
{
    for (;;) {
        const int end = m_received.indexOf('\n');
        if (end < 0) {
            const Outcome outcome = readMore(deadline);
            if (outcome != Outcome::Answered)
                return {outcome};
            continue;
        }
        const QByteArray line = m_received.left(end + 1);
        m_received.remove(0, line.size());
        const QByteArray frame = line.mid(std::max(line.lastIndexOf(':'), 0));
        const auto bytes = decodeFrame(frame);
        if (!bytes || bytes->size() != ANSWER_BYTES)
            return {Outcome::Wrong};
        if (isAnswer(function, *bytes))
            return {Outcome::Answered, static_cast<quint8>(bytes->back()), frame.size()};
    }
}

// Returns Answered once it has read something.
LegacyExchange::Outcome LegacyExchange::readMore(Clock::time_point deadline)
{
    if (m_received.size() > LONGEST_ANSWER)
        return Outcome::Wrong;
    if (!awaitLine(PortEvent::Readable, deadline))
        return m_received.isEmpty() ? Outcome::Silent : Outcome::Wrong;
    char buffer[LONGEST_ANSWER];
    const int count = PLATFORM::readPort(m_line, buffer, sizeof buffer);
    if (count < 0)
        return Outcome::Broken;
    m_received.append(buffer, count);
    return Outcome::Answered;
}

// True also on a broken line: the read or write fails then. False when the time is over or the
// program ends.
bool LegacyExchange::awaitLine(PortEvent event, Clock::time_point deadline) const
{
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        const auto slice = std::clamp(left, std::chrono::milliseconds(0), STOP_SLICE);
        if (PLATFORM::awaitPort(m_line, event, slice))
            return true;
        if (left <= slice || isStopped())
            return false;
    }
}

bool LegacyExchange::isAnswer(char function, const QByteArray &bytes) const
{
    return static_cast<quint8>(bytes[0]) == (static_cast<quint8>(function) | ANSWER_BIT) &&
           bytes[1] == m_number;
}
