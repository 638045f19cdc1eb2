#include "services/words/Client.h"

#include <algorithm>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace words {
namespace {

// MODBUS Messaging on TCP/IP Implementation Guide V1.0b, section 3.1.3: transaction, protocol,
// length of what follows, unit; each but the last of two bytes.
constexpr std::size_t PROTOCOL = 2;
constexpr std::size_t LENGTH = 4;
constexpr std::size_t UNIT = 6;
constexpr std::size_t HEADER_SIZE = 7;

constexpr std::size_t SHORTEST_FRAME = HEADER_SIZE + 1;

constexpr std::uint64_t FRAME_TIME = 1'000'000; // us from a frame's first byte to its last
constexpr std::uint64_t ACCURACY = 100'000;     // us

std::size_t wordAt(const std::uint8_t *bytes)
{
    return static_cast<std::size_t>(bytes[0] << 8 | bytes[1]);
}

} // namespace

Client::Client(Server &server, int fd) : m_server(server), m_socket(fd)
{
    const int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void Client::start()
{
    sd_event_source *source = nullptr;
    if (sd_event_add_io(m_server.m_event, &source, m_socket.get(), EPOLLIN, onReadable, this) < 0)
        return leave();
    m_readable.reset(source);
}

int Client::onReadable(sd_event_source *, int, unsigned, void *self)
{
    const auto client = static_cast<Client *>(self)->shared_from_this();
    if (!client->receive() || !client->handleFrames())
        client->leave();
    return 0;
}

int Client::onFrameLate(sd_event_source *, std::uint64_t, void *self)
{
    static_cast<Client *>(self)->shared_from_this()->leave();
    return 0;
}

// One portion a turn of the loop, so that a flood leaves room for the others.
bool Client::receive()
{
    const ssize_t count =
        ::recv(m_socket.get(), &m_bytes.at(m_size), m_bytes.size() - m_size, MSG_DONTWAIT);
    if (count < 0)
        return errno == EAGAIN || errno == EINTR;
    m_size += static_cast<std::size_t>(count);
    return count > 0;
}

// False if the client is to be dropped.
bool Client::handleFrames()
{
    while (!m_bWaiting && m_size >= HEADER_SIZE) {
        const std::size_t size = frameSize();
        if (size == 0)
            return false;
        if (m_size < size)
            break;
        if (!handleFrame(size))
            return false;
    }
    watchFrame();
    return true;
}

// 0 for what is no Modbus.
std::size_t Client::frameSize() const
{
    const std::size_t size = UNIT + wordAt(&m_bytes.at(LENGTH));
    const bool isModbus = wordAt(&m_bytes.at(PROTOCOL)) == 0;
    return isModbus && size >= SHORTEST_FRAME && size <= m_bytes.size() ? size : 0;
}

// False if the client is to be dropped. While an answer is waited for nothing more is read.
bool Client::handleFrame(std::size_t size)
{
    m_frameSize = size;
    m_server.moveBack(this);
    const auto answer = ask();
    if (answer)
        return finish(*answer);
    m_bWaiting = true;
    sd_event_source_set_enabled(m_readable.get(), SD_EVENT_OFF);
    return true;
}

std::optional<Answer> Client::ask()
{
    const Failure failure =
        parseRequest(&m_bytes.at(HEADER_SIZE), m_frameSize - HEADER_SIZE, m_request);
    if (failure != Failure::NONE)
        return Answer{failure, {}, {}};
    return m_server.m_handler(m_request, [client = weak_from_this()](const Answer &answer) {
        if (const auto self = client.lock())
            self->answerLater(answer);
    });
}

void Client::answerLater(const Answer &answer)
{
    m_bWaiting = false;
    sd_event_source_set_enabled(m_readable.get(), SD_EVENT_ON);
    if (!finish(answer) || !handleFrames())
        leave();
}

// False if the client does not take the answer: the socket never waits for one who does not read.
bool Client::finish(const Answer &answer)
{
    const bool sent = reply(answer);
    std::copy(m_bytes.begin() + static_cast<std::ptrdiff_t>(m_frameSize), m_bytes.end(),
              m_bytes.begin());
    m_size -= m_frameSize;
    m_late.reset();
    return sent;
}

// libmodbus answers out of a table; here it is just what the request is about.
bool Client::reply(const Answer &answer)
{
    modbus_t *modbus = m_server.m_modbus.get();
    modbus_set_socket(modbus, m_socket.get());
    if (answer.failure != Failure::NONE)
        return modbus_reply_exception(modbus, m_bytes.data(),
                                      static_cast<unsigned>(answer.failure)) > 0;
    std::vector<Word> words = m_request.values;
    if (m_request.kind == Request::Kind::READ_WORDS)
        words = answer.words;
    std::vector<std::uint8_t> coils = answer.coils;
    modbus_mapping_t table{};
    table.start_registers = table.start_bits = static_cast<int>(m_request.address);
    table.nb_registers = static_cast<int>(words.size());
    table.tab_registers = words.data();
    table.nb_bits = static_cast<int>(coils.size());
    table.tab_bits = coils.data();
    return modbus_reply(modbus, m_bytes.data(), static_cast<int>(m_frameSize), &table) > 0;
}

// A frame that has begun must end in time, however slowly its bytes drip in.
void Client::watchFrame()
{
    if (m_size == 0 || m_bWaiting || m_late)
        return;
    sd_event_source *source = nullptr;
    if (sd_event_add_time_relative(m_server.m_event, &source, CLOCK_MONOTONIC, FRAME_TIME, ACCURACY,
                                   onFrameLate, this) >= 0)
        m_late.reset(source);
}

void Client::leave()
{
    m_server.drop(this);
}

} // namespace words
