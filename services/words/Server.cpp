#include "services/words/Server.h"

#include "services/words/Client.h"
#include "services/words/Journal.h"

#include <algorithm>
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace words {
namespace {

constexpr std::size_t MOST_CLIENTS = 16;
constexpr const char *LOOPBACK = "127.0.0.1"; // nothing of the panel listens to a network
constexpr int BACKLOG = 16;

int listenAt(modbus_t *context)
{
    const int fd = modbus_tcp_listen(context, BACKLOG);
    if (fd < 0)
        throw std::system_error(errno, std::generic_category(), "cannot listen");
    return fd;
}

} // namespace

Server::Server(sd_event *event, int port, Handler handler)
    : m_event(event),
      m_handler(std::move(handler)),
      m_modbus(modbus_new_tcp(LOOPBACK, port)),
      m_listener(listenAt(m_modbus.get()))
{
    ::fcntl(m_listener.get(), F_SETFL, O_NONBLOCK);
    sd_event_source *source = nullptr;
    require(sd_event_add_io(event, &source, m_listener.get(), EPOLLIN, onConnection, this),
            "listener");
    m_source.reset(source);
}

Server::~Server() = default;

int Server::port() const
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(m_listener.get(), reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

int Server::onConnection(sd_event_source *, int, unsigned, void *self)
{
    static_cast<Server *>(self)->accept();
    return 0;
}

void Server::accept()
{
    const int fd = ::accept4(m_listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd < 0)
        return;
    makeRoom();
    m_clients.push_back(std::make_shared<Client>(*this, fd));
    m_clients.back()->start();
}

// Rather than refuse a new client, who may be the program after its restart.
void Server::makeRoom()
{
    if (m_clients.size() >= MOST_CLIENTS)
        m_clients.pop_front();
}

void Server::moveBack(const Client *client)
{
    const auto place = std::find_if(m_clients.begin(), m_clients.end(),
                                    [=](const auto &each) { return each.get() == client; });
    m_clients.splice(m_clients.end(), m_clients, place);
}

void Server::drop(const Client *client)
{
    m_clients.remove_if([=](const auto &each) { return each.get() == client; });
}

} // namespace words
