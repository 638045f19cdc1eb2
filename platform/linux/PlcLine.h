// The serial line to a PLC: Modbus RTU, as its client.
#pragma once

#include "platform/plc.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <modbus.h>
#include <string>
#include <vector>

namespace board {

enum class PlcFault {
    None,
    NoPort,        // the port is not there, is taken, or refuses the settings
    Silent,        // no answer in time, or the line is broken
    Nonsense,      // an answer that is damaged or belongs to no request
    Refused,       // by an exception (Modbus Application Protocol V1.1b3, 7), or by a result
    WrongPassword, // or none was given to a PLC that asks for one
    TooLarge,
    Unsupported,
};

// Every request is sent twice at most, and waits for its answer a second beyond the time that both
// take on the line: none of them does anything else when it comes twice. One thread at a time.
class PlcLine
{
public:
    using Words = std::vector<std::uint16_t>;

    static constexpr std::size_t MOST_WORDS = MODBUS_MAX_WRITE_REGISTERS;
    static constexpr std::size_t MOST_IN_RECORD = 122; // Modbus Application Protocol, 6.15

    // Opens the node that the port and its mode have; nothing is sent.
    PlcFault open(const SERIALCOMSET &line);
    void close();
    bool isOpen() const { return m_modbus != nullptr; }

    // Holding registers, function codes 3 and 16: as many as `words` has, 1 to MOST_WORDS.
    PlcFault read(int address, Words &words);
    PlcFault write(int address, const Words &words);
    // Registers of a file, function code 21: 1 to MOST_IN_RECORD from the record `first` on.
    PlcFault writeFile(int file, int first, const Words &words);

    // Why the last request failed, for the engineer; holds nothing of what was sent.
    const std::string &cause() const { return m_cause; }

private:
    using Bytes = std::vector<std::uint8_t>;
    using Clock = std::chrono::steady_clock;
    struct Close
    {
        void operator()(modbus_t *modbus) const;
    };

    PlcFault request(std::size_t bytes, const std::function<bool()> &exchange);
    PlcFault fail(PlcFault fault, const std::string &cause);
    void keepSilence() const;
    void awaitSilence() const;
    bool setTimeout(std::size_t bytes);
    std::chrono::microseconds timeOf(std::size_t bytes) const;
    bool receiveEcho(const Bytes &sent, Clock::time_point deadline) const;
    bool receive(Bytes &answer, std::size_t size, Clock::time_point deadline) const;

    std::unique_ptr<modbus_t, Close> m_modbus;
    int m_baud = 0;
    int m_bitsOfByte = 0;          // on the line
    Clock::time_point m_lastFrame; // when it ended
    std::string m_cause;
};

} // namespace board
