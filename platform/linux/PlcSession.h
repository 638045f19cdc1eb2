// A session with a PLC that follows the register map of docs/porting/plc.md.
#pragma once

#include "platform/linux/PlcLine.h"

#include <array>

namespace board {

// The first file of a section is its number times 256.
enum class PlcSection { Program = 1, Parameters, Cam, Extension };
constexpr std::size_t PLC_SECTIONS = 4;

enum class PlcCommand {
    Unlock = 1, // text: the download password
    Protect,    // text: the password that reading the program back will need
    Stop,
    Start,
    Begin, // section, bytes, checksum
    End,   // the same
    Check, // first holding register, how many, checksum
    Hide,  // the subprograms
    Leave,
};

// What a PLC says of itself.
struct PlcIdentity
{
    int type = 0;
    int version = 0;
    bool isLocked = false; // it asks for a password, and has not been given it
    std::array<std::uint32_t, PLC_SECTIONS> capacities{}; // bytes

    std::uint32_t capacity(PlcSection section) const
    {
        return capacities[static_cast<std::size_t>(section) - 1];
    }
};

// None of the functions takes longer than its requests (see PlcLine) and, for a command, five
// seconds in which the PLC says that it is busy. One thread at a time.
class PlcSession
{
public:
    using Bytes = std::vector<std::uint8_t>;

    // Refused if the PLC does not follow the map.
    PlcFault open(const SERIALCOMSET &line) { return noted(m_line.open(line)); }
    void close() { m_line.close(); }

    // Asks the PLC; what it said last is kept.
    PlcFault identify();
    const PlcIdentity &identity() const { return m_identity; }

    PlcFault command(PlcCommand command, const std::string &text = {});
    // Checked by the PLC itself: it compares a checksum of what it has got.
    PlcFault send(PlcSection section, const Bytes &content);
    PlcFault send(const devmemorydataitem_t &range);

    // Why the last function failed, for the engineer; holds no password and nothing of a program.
    const std::string &cause() const { return m_cause; }

private:
    struct Order;

    PlcFault follow(const Order &order);
    PlcFault awaitResult(const Order &order);
    PlcFault judge(const Order &order, int result, int state);
    PlcFault sendRecords(PlcSection section, const Bytes &content);
    PlcFault fail(PlcFault fault, const std::string &cause);
    PlcFault noted(PlcFault fault, const std::string &doing = {});

    PlcLine m_line;
    PlcIdentity m_identity;
    std::uint16_t m_order = 0; // number of the last one
    std::string m_cause;
};

} // namespace board
