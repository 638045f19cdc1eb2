#include "platform/posix/LoopbackSocket.h"

#include <sys/socket.h>
#include <unistd.h>

namespace os {
namespace {

const sockaddr *generic(const sockaddr_in &address)
{
    return reinterpret_cast<const sockaddr *>(&address);
}

} // namespace

sockaddr_in loopbackAddress(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool LoopbackSocket::bind(int port)
{
    close();
    m_fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_in address = loopbackAddress(port);
    if (m_fd >= 0 && ::bind(m_fd, generic(address), sizeof address) == 0)
        return true;
    close();
    return false;
}

void LoopbackSocket::close()
{
    if (m_fd != -1)
        ::close(m_fd);
    m_fd = -1;
    m_refusing = false;
}

// A socket that is connected to itself receives from nobody else; AF_UNSPEC disconnects it and
// keeps a port that bind(2) was given, connect(2).
void LoopbackSocket::setRefusing(bool refusing)
{
    sockaddr_in peer = loopbackAddress(port());
    if (!refusing)
        peer.sin_family = AF_UNSPEC;
    if (::connect(m_fd, generic(peer), sizeof peer) == 0)
        m_refusing = refusing;
    while (m_refusing && receive())
        continue;
}

int LoopbackSocket::port() const
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(m_fd, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

std::optional<LoopbackSocket::Datagram> LoopbackSocket::receive() const
{
    Datagram datagram{{}, std::string(LARGEST_DATAGRAM, '\0')};
    socklen_t size = sizeof datagram.from;
    const ssize_t got = ::recvfrom(m_fd, datagram.bytes.data(), datagram.bytes.size(), 0,
                                   reinterpret_cast<sockaddr *>(&datagram.from), &size);
    if (got < 0)
        return std::nullopt;
    datagram.bytes.resize(static_cast<std::size_t>(got));
    return datagram;
}

void LoopbackSocket::send(const sockaddr_in &to, const std::string &bytes) const
{
    ::sendto(m_fd, bytes.data(), bytes.size(), 0, generic(to), sizeof to);
}

} // namespace os
