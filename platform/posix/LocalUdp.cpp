#include "platform/posix/LocalUdp.h"

#include "platform/local_udp.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/LoopbackSocket.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <mutex>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>

namespace os {
namespace {

using CBB::CbbLocalUdp;
using Clock = std::chrono::steady_clock;

constexpr int LARGEST_PORT = 65535;
constexpr std::size_t PARKED_SOCKETS = 64;

struct Endpoint
{
    const char *name;
    const char *variable; // of the environment
    int usualPort;
    std::atomic<int> movedTo; // 0: not moved
};

// Every local service that the panel has. The port is below those that the kernel hands out by
// itself (ip_local_port_range, ip(7)).
std::array<Endpoint, 1> endpoints{{{"DownLoad", "SYSSET_UDP_DOWNLOAD", 27401, {0}}}};

Endpoint *findEndpoint(const std::string &name)
{
    const auto found = std::find_if(endpoints.begin(), endpoints.end(),
                                    [&](const Endpoint &each) { return name == each.name; });
    return found == endpoints.end() ? nullptr : &*found;
}

bool isPort(int port)
{
    return port > 0 && port <= LARGEST_PORT;
}

std::optional<int> portFromEnvironment(const char *variable)
{
    // Safe as long as nobody changes the environment, which is what the header asks for.
    const char *text = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
    if (text == nullptr)
        return std::nullopt;
    int port = 0;
    const char *end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, port);
    const bool whole = error == std::errc() && stop == end;
    return whole && isPort(port) ? std::optional(port) : std::nullopt;
}

// Of the ports that the kernel picks by itself it may pick the very one that is asked: the socket
// would then answer itself.
bool talksToItself(int fd, const sockaddr_in &service)
{
    sockaddr_in own{};
    socklen_t size = sizeof own;
    return ::getsockname(fd, reinterpret_cast<sockaddr *>(&own), &size) == 0 &&
           own.sin_port == service.sin_port;
}

int errorOf(int number)
{
    return number == ECONNREFUSED ? CbbLocalUdp::ERR_NO_SERVICE : CbbLocalUdp::ERR_SYSTEM;
}

// connect(2) gives the socket a port of its own and keeps out whatever comes from another address.
// 0 or an Error.
int connectTo(int fd, int port)
{
    const sockaddr_in service = loopbackAddress(port);
    if (::connect(fd, reinterpret_cast<const sockaddr *>(&service), sizeof service) != 0)
        return errorOf(errno);
    return talksToItself(fd, service) ? CbbLocalUdp::ERR_NO_SERVICE : 0;
}

int sendWhole(int fd, const std::string &body)
{
    while (::send(fd, body.data(), body.size(), 0) < 0) {
        if (errno != EINTR)
            return errorOf(errno);
    }
    return 0;
}

// poll(2) takes an int; what is longer is waited for in several turns.
int millisecondsTo(Clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT_MAX));
}

// True once there is a datagram, or an error, to take; false when the time is over.
bool waitForReply(int fd, Clock::time_point deadline)
{
    pollfd waiting{fd, POLLIN, 0};
    int timeLeft = 0;
    do {
        timeLeft = millisecondsTo(deadline);
        if (::poll(&waiting, 1, timeLeft) > 0)
            return true;
    } while (timeLeft > 0);
    return false;
}

// A datagram with a wrong checksum wakes poll(2) and is gone at the receive, hence MSG_DONTWAIT.
int receiveReply(int fd, std::string &reply, Clock::time_point deadline)
{
    reply.resize(LARGEST_DATAGRAM);
    while (waitForReply(fd, deadline)) {
        const ssize_t size = ::recv(fd, reply.data(), reply.size(), MSG_DONTWAIT);
        if (size >= 0) {
            reply.resize(static_cast<std::size_t>(size));
            return static_cast<int>(size);
        }
        if (errno != EINTR && errno != EAGAIN)
            return errorOf(errno);
    }
    return CbbLocalUdp::ERR_TIMEOUT;
}

// A reply knows the request that it answers by nothing but the port it is sent to. As long as one
// may still come, the port therefore must not be given to a later request: the sockets of
// unanswered requests stay open, unread, until so many younger ones have gone unanswered that a
// service would have to be minutes late.
void parkUnanswered(FileDescriptor socket)
{
    static std::mutex mutex;
    static auto &parked = *new std::deque<FileDescriptor>; // for threads that outlive main()
    const std::lock_guard lock(mutex);
    parked.push_back(std::move(socket));
    if (parked.size() > PARKED_SOCKETS)
        parked.pop_front();
}

} // namespace

int localUdpPort(const std::string &endpoint)
{
    const Endpoint *known = findEndpoint(endpoint);
    if (known == nullptr)
        return -1;
    const int moved = known->movedTo;
    return portFromEnvironment(known->variable).value_or(moved != 0 ? moved : known->usualPort);
}

int moveLocalUdpPort(const std::string &endpoint, int port)
{
    if (Endpoint *known = findEndpoint(endpoint))
        known->movedTo = port;
    return localUdpPort(endpoint);
}

int exchangeDatagram(int port, const std::string &body, std::string &reply, unsigned int timeoutMs)
{
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    reply.clear();
    if (!isPort(port))
        return CbbLocalUdp::ERR_ENDPOINT;
    FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket.isOpen())
        return CbbLocalUdp::ERR_SYSTEM;
    int result = connectTo(socket.get(), port);
    if (result == 0)
        result = sendWhole(socket.get(), body);
    if (result == 0)
        result = receiveReply(socket.get(), reply, deadline);
    if (result < 0)
        reply.clear();
    if (result == CbbLocalUdp::ERR_TIMEOUT)
        parkUnanswered(std::move(socket));
    return result;
}

} // namespace os
