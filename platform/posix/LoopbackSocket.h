// A service's end of a UDP socket on the loopback interface.
#pragma once

#include <cstddef>
#include <netinet/in.h>
#include <optional>
#include <string>

namespace os {

constexpr std::size_t LARGEST_DATAGRAM = 65507; // bytes, udp(7)

sockaddr_in loopbackAddress(int port);

// One thread at a time. No function waits.
class LoopbackSocket
{
public:
    struct Datagram
    {
        sockaddr_in from;
        std::string bytes;
    };

    LoopbackSocket() = default;
    ~LoopbackSocket() { close(); }
    LoopbackSocket(const LoopbackSocket &) = delete;
    LoopbackSocket &operator=(const LoopbackSocket &) = delete;

    // Opens the socket at `port`, 0 for any that is free. False, and not open, if that is taken.
    bool bind(int port);
    void close();

    // Drops what has come and refuses all senders, as if nobody listened there, but keeps the port
    // for this process; or ends that. Not for a socket that was bound to port 0.
    void setRefusing(bool refusing);
    bool isRefusing() const { return m_refusing; }

    int fd() const { return m_fd; }
    // The port that it is bound to; 0 if it is not open.
    int port() const;

    // The next datagram that has come, if any.
    std::optional<Datagram> receive() const;
    void send(const sockaddr_in &to, const std::string &bytes) const;

private:
    int m_fd = -1;
    bool m_refusing = false;
};

} // namespace os
