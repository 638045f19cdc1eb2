// The far end of the words client, in all ways that it can fail.
#pragma once

#include "platform/posix/FileDescriptor.h"

#include <QByteArray>

#include <array>
#include <atomic>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>

// Serves on a port of the loopback interface, one connection at a time, on a thread of its own.
class ModbusPeer
{
public:
    enum Manner { Answers, Silent, Nonsense, TooFew, Drips, Refuses, HangsUp };

    ModbusPeer() = default;
    ~ModbusPeer() { stop(); }
    Q_DISABLE_COPY(ModbusPeer)

    int port() const { return m_port; }
    int requests() const { return m_requests; }

    // At the port of before, if there was one. Register N holds N; coils are on.
    void start(Manner manner)
    {
        stop();
        m_manner = manner;
        m_listener = os::FileDescriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const int on = 1;
        ::setsockopt(m_listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(m_port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto *generic = reinterpret_cast<sockaddr *>(&address);
        if (::bind(m_listener.get(), generic, size) != 0 || ::listen(m_listener.get(), 8) != 0)
            qFatal("the peer cannot listen");
        ::getsockname(m_listener.get(), generic, &size);
        m_port = ntohs(address.sin_port);
        m_stops = false;
        m_thread = std::thread([this] { serve(); });
    }

    // As a service that is killed: connections break, nobody listens.
    void stop()
    {
        m_stops = true;
        if (m_thread.joinable())
            m_thread.join();
        m_listener = os::FileDescriptor();
    }

    void behave(Manner manner) { m_manner = manner; }

private:
    bool waits(int fd) const
    {
        pollfd event{fd, POLLIN, 0};
        while (!m_stops && ::poll(&event, 1, 5) == 0)
            continue;
        return !m_stops;
    }

    void serve()
    {
        while (waits(m_listener.get())) {
            const os::FileDescriptor client(::accept(m_listener.get(), nullptr, nullptr));
            std::array<char, 300> request{};
            while (m_manner != HangsUp && waits(client.get()) &&
                   ::recv(client.get(), request.data(), request.size(), 0) > 0)
                answer(client.get(), request);
        }
    }

    // Modbus application protocol: transaction, protocol, length, unit, function, address, count.
    void answer(int client, const std::array<char, 300> &request)
    {
        ++m_requests;
        const auto word = [&](std::size_t at) {
            return static_cast<quint8>(request[at]) * 256 + static_cast<quint8>(request[at + 1]);
        };
        const char function = request[7];
        QByteArray body(1, function);
        if (m_manner == Refuses)
            body = QByteArray(1, static_cast<char>(function | 0x80)) + '\2';
        else if (function == 1)
            body += "\1\1";
        else if (function == 16)
            body += QByteArray(&request[8], 4);
        else
            body += registers(word(8), m_manner == TooFew ? word(10) / 2 : word(10));
        QByteArray reply(request.data(), 4);
        reply += QByteArray(1, '\0') + static_cast<char>(body.size() + 1) + request[6] + body;
        if (m_manner == Nonsense)
            reply = "HTTP/1.1 400 Bad Request\r\n\r\n";
        send(client, reply);
    }

    static QByteArray registers(int address, int count)
    {
        QByteArray bytes(1, static_cast<char>(count * 2));
        for (int i = address; i < address + count; ++i)
            bytes += QByteArray(1, static_cast<char>(i >> 8)) + static_cast<char>(i);
        return bytes;
    }

    void send(int client, const QByteArray &reply) const
    {
        if (m_manner == Silent)
            return;
        const int step = m_manner == Drips ? 1 : reply.size();
        for (int at = 0; at < reply.size() && !m_stops; at += step) {
            ::send(client, reply.constData() + at, static_cast<std::size_t>(step), MSG_NOSIGNAL);
            if (step == 1)
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    }

    int m_port = 0;
    os::FileDescriptor m_listener;
    std::atomic<Manner> m_manner{Answers};
    std::atomic<int> m_requests{0};
    std::atomic<bool> m_stops{false};
    std::thread m_thread;
};
