// The client of the settings words: Modbus/TCP on the loopback interface (Modbus Application
// Protocol V1.1b3; Modbus Messaging on TCP/IP V1.0b).
#pragma once

#include "platform/linux/Journal.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <modbus/modbus.h>
#include <mutex>

namespace board {

// One connection, opened by the first request and kept. A request that gets no answer within the
// time-out closes it, and from then on every request fails at once until the service has answered a
// question of the client's own thread, which asks four times a second. An answer that makes no
// sense costs the connection alone: other words of the same service may be sound. Any thread.
class WordsClient
{
public:
    using Milliseconds = std::chrono::milliseconds;

    WordsClient(int port, Milliseconds timeout) : m_port(port), m_timeout(timeout) {}
    WordsClient(const WordsClient &) = delete;
    WordsClient &operator=(const WordsClient &) = delete;

    // Holding registers, functions 3 and 16; at most as many as one request carries, so that all or
    // none are read or written. False on failure, `words` untouched. `timeout`, less than a second,
    // is for what the service needs more time for.
    bool read(unsigned int address, unsigned short *words, int count);
    bool write(unsigned int address, const unsigned short *words, int count);
    bool write(unsigned int address, const unsigned short *words, int count, Milliseconds timeout);
    // A coil, function 1. False if it is off, and on failure.
    bool coil(int address);

private:
    struct Close
    {
        void operator()(modbus_t *connection) const
        {
            modbus_close(connection);
            modbus_free(connection);
        }
    };
    using Connection = std::unique_ptr<modbus_t, Close>;
    // Returns the count of what was transferred; -1, with errno, on failure.
    using Request = std::function<int(modbus_t *connection)>;

    bool ask(const Request &request, int count, Milliseconds timeout);
    Connection connect() const;
    void takeFailure(int error);
    void lose();
    void waitForService();

    const int m_port;
    const Milliseconds m_timeout;
    std::mutex m_mutex;
    std::condition_variable m_lost;
    Connection m_connection;
    bool m_isAway = false;
    bool m_hasWaiter = false;
    Fault m_fault;
    // Told once: they concern some words and not others.
    Fault m_refusal;
    Fault m_nonsense;
};

} // namespace board
