#include "platform/linux/WordsClient.h"

#include "platform/posix/threads.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <thread>
#include <vector>

namespace board {
namespace {

constexpr const char *LOOPBACK = "127.0.0.1";
constexpr unsigned int HIGHEST_ADDRESS = 0xFFFF;
constexpr std::chrono::milliseconds SEARCH_PERIOD(250);

bool isRange(unsigned int address, const unsigned short *words, int count, int most)
{
    return words != nullptr && count >= 1 && count <= most &&
           address + static_cast<unsigned int>(count) - 1 <= HIGHEST_ADDRESS;
}

// An exception response (chapter 7): the service works and refuses.
bool isRefusal(int error)
{
    return error > MODBUS_ENOBASE && error < EMBBADCRC;
}

// An answer to another question, or none at all, came in time.
bool isNonsense(int error)
{
    return error >= EMBBADCRC && error <= EMBBADSLAVE;
}

// The service was there and has closed its end, as after a restart.
bool isBroken(int error)
{
    return error == EPIPE || error == ECONNRESET || error == ECONNABORTED;
}

bool setTimeout(modbus_t *connection, std::chrono::microseconds timeout)
{
    return modbus_set_response_timeout(connection, 0,
                                       static_cast<std::uint32_t>(timeout.count())) == 0;
}

} // namespace

bool WordsClient::read(unsigned int address, unsigned short *words, int count)
{
    if (!isRange(address, words, count, MODBUS_MAX_READ_REGISTERS))
        return false;
    std::vector<std::uint16_t> read(static_cast<std::size_t>(count));
    const bool done = ask(
        [&](modbus_t *connection) {
            return modbus_read_registers(connection, static_cast<int>(address), count, read.data());
        },
        count, m_timeout);
    if (done)
        std::copy(read.begin(), read.end(), words);
    return done;
}

bool WordsClient::write(unsigned int address, const unsigned short *words, int count)
{
    return write(address, words, count, m_timeout);
}

bool WordsClient::write(unsigned int address, const unsigned short *words, int count,
                        Milliseconds timeout)
{
    return isRange(address, words, count, MODBUS_MAX_WRITE_REGISTERS) &&
           ask(
               [&](modbus_t *connection) {
                   return modbus_write_registers(connection, static_cast<int>(address), count,
                                                 words);
               },
               count, timeout);
}

bool WordsClient::coil(int address)
{
    std::uint8_t bit = 0;
    return ask([&](modbus_t *connection) { return modbus_read_bits(connection, address, 1, &bit); },
               1, m_timeout) &&
           bit != 0;
}

bool WordsClient::ask(const Request &request, int count, Milliseconds timeout)
{
    const auto transfer = [&] {
        errno = ENOTCONN;
        return m_connection && setTimeout(m_connection.get(), timeout) ? request(m_connection.get())
                                                                       : -1;
    };
    const std::lock_guard lock(m_mutex);
    if (m_isAway)
        return false;
    const bool wasOpen = m_connection != nullptr;
    if (!wasOpen)
        m_connection = connect();
    int result = transfer();
    if (result == -1 && wasOpen && isBroken(errno)) {
        m_connection = connect();
        result = transfer();
    }
    if (result == count)
        return true;
    takeFailure(errno);
    return false;
}

void WordsClient::takeFailure(int error)
{
    if (isRefusal(error)) {
        m_refusal.tell("the words service refuses a word: it is neither read nor written");
    } else if (isNonsense(error)) {
        m_nonsense.tell("the words service gives an answer that makes no sense: it is not taken");
        m_connection.reset();
    } else {
        lose();
    }
}

WordsClient::Connection WordsClient::connect() const
{
    Connection connection(modbus_new_tcp(LOOPBACK, m_port));
    // Without a time-out for the single byte the other one holds for the whole answer.
    if (!connection || !setTimeout(connection.get(), m_timeout) ||
        modbus_set_byte_timeout(connection.get(), 0, 0) == -1 ||
        modbus_connect(connection.get()) == -1)
        return nullptr;
    return connection;
}

void WordsClient::lose()
{
    m_connection.reset();
    m_isAway = true;
    m_fault.tell("the words service does not answer: its settings cannot be read or written");
    if (!m_hasWaiter)
        m_hasWaiter = os::startThread("words", [this] { waitForService(); });
    m_isAway = m_hasWaiter; // without a thread every request has to try
    m_lost.notify_one();
}

// Any answer to the question for a coil will do, a refusal too.
void WordsClient::waitForService()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_lost.wait(lock, [this] { return m_isAway; });
        lock.unlock();
        std::this_thread::sleep_for(SEARCH_PERIOD);
        Connection connection = connect();
        std::uint8_t bit = 0;
        const bool answers =
            connection && (modbus_read_bits(connection.get(), 0, 1, &bit) == 1 || isRefusal(errno));
        lock.lock();
        if (!answers)
            continue;
        m_connection = std::move(connection);
        m_isAway = false;
        m_fault.mended("the words service answers");
    }
}

} // namespace board
