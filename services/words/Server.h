// The Modbus/TCP server: many clients, none of which can keep another waiting.
#pragma once

#include "platform/posix/FileDescriptor.h"
#include "services/words/Event.h"
#include "services/words/Request.h"

#include <functional>
#include <list>
#include <modbus.h>
#include <optional>

namespace words {

// What a request comes to: a failure, or the words or coils that a read asked for.
struct Answer
{
    Failure failure = Failure::NONE;
    std::vector<Word> words;
    std::vector<std::uint8_t> coils; // 0 or 1 each
};

// Answers a request at once; or returns nothing, and calls `later` when it has the answer. That
// does nothing if the client has gone.
using Later = std::function<void(const Answer &)>;
using Handler = std::function<std::optional<Answer>(const Request &, const Later &later)>;

struct ModbusDeleter
{
    void operator()(modbus_t *context) const { modbus_free(context); }
};
using Modbus = std::unique_ptr<modbus_t, ModbusDeleter>;

class Client;

// Runs in the event loop's thread.
class Server
{
public:
    // Listens on 127.0.0.1. Throws std::system_error if the port is not to be had.
    Server(sd_event *event, int port, Handler handler);
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    // The port that is listened on, also where 0 was asked for.
    int port() const;

private:
    friend class Client;

    static int onConnection(sd_event_source *, int fd, unsigned events, void *self);
    void accept();
    void makeRoom();
    void moveBack(const Client *client);
    void drop(const Client *client);

    sd_event *m_event;
    Handler m_handler;
    Modbus m_modbus;
    os::FileDescriptor m_listener;
    Source m_source;
    std::list<std::shared_ptr<Client>> m_clients; // the one that spoke last at the end
};

} // namespace words
