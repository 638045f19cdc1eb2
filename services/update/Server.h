#pragma once

#include "platform/posix/LoopbackSocket.h"
#include "services/update/Desk.h"

namespace updates {

// The UDP socket on 127.0.0.1. Runs in the event loop's thread.
class Server
{
public:
    // Throws std::system_error if the port is not to be had. The desk must outlive this.
    Server(sd_event *event, int port, Desk &desk);
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

private:
    static int onRequest(sd_event_source *, int fd, unsigned events, void *self);
    void serve();

    Desk &m_desk;
    os::LoopbackSocket m_socket;
    service::Source m_source;
};

} // namespace updates
