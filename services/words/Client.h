// One connection of the Modbus/TCP server.
#pragma once

#include "services/words/Server.h"

#include <array>

namespace words {

// libmodbus' own modbus_receive() waits inside for the rest of a frame, so that the bytes are
// gathered here; requests and replies in whole frames are libmodbus'.
class Client : public std::enable_shared_from_this<Client>
{
public:
    // Takes over the socket.
    Client(Server &server, int fd);
    void start();

private:
    static int onReadable(sd_event_source *, int fd, unsigned events, void *self);
    static int onFrameLate(sd_event_source *, std::uint64_t time, void *self);

    bool receive();
    bool handleFrames();
    std::size_t frameSize() const;
    bool handleFrame(std::size_t size);
    std::optional<Answer> ask();
    void answerLater(const Answer &answer);
    bool finish(const Answer &answer);
    bool reply(const Answer &answer);
    void watchFrame();
    void leave();

    Server &m_server;
    os::FileDescriptor m_socket;
    std::array<std::uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> m_bytes{};
    std::size_t m_size = 0;      // bytes that have come
    std::size_t m_frameSize = 0; // of the frame that is being answered
    Request m_request;
    bool m_bWaiting = false; // for the answer
    Source m_readable;
    Source m_late;
};

} // namespace words
