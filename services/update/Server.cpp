#include "services/update/Server.h"

#include "platform/posix/Bytes.h"

#include <cerrno>

namespace updates {
namespace {

constexpr std::size_t COMMAND_SIZE = 4;

} // namespace

Server::Server(sd_event *event, int port, Desk &desk) : m_desk(desk)
{
    service::require(m_socket.bind(port) ? 0 : -EADDRINUSE, "port of the update service");
    sd_event_source *source = nullptr;
    service::require(sd_event_add_io(event, &source, m_socket.fd(), EPOLLIN, onRequest, this),
                     "socket");
    m_source.reset(source);
}

int Server::onRequest(sd_event_source *, int, unsigned, void *self)
{
    static_cast<Server *>(self)->serve();
    return 0;
}

// What is too short to be a request is dropped.
void Server::serve()
{
    const auto request = m_socket.receive();
    if (!request || request->bytes.size() < COMMAND_SIZE)
        return;
    m_desk.answer(static_cast<int>(os::numberFrom(request->bytes, 0)),
                  request->bytes.substr(COMMAND_SIZE),
                  [this, from = request->from](const os::UpdateStatus &status) {
                      m_socket.send(from, os::encodeUpdateStatus(status));
                  });
}

} // namespace updates
