#pragma once

#include "platform/sim/LoopbackSocket.h"
#include "platform/sim/UpdateDesk.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace sim {

// One life of the update service's thread, "update", and of the socket that it answers at. It
// sleeps without waking until there is something to do. Made by make_shared, because a thread that
// does not end in time outlives its owner's interest in it.
class UpdateServer : public std::enable_shared_from_this<UpdateServer>
{
public:
    UpdateServer();
    ~UpdateServer();
    UpdateServer(const UpdateServer &) = delete;
    UpdateServer &operator=(const UpdateServer &) = delete;

    // Before start(): takes the port. False if that fails.
    bool bind(int port);
    // Starts the thread.
    void start();

    // update.alive has changed: the service dies, or comes back at the same port, which it
    // keeps meanwhile. Any thread, also
    // with the panel locked.
    void setAlive(bool alive);
    // Waits until the thread has seen to that. The panel is not locked.
    void settle(std::chrono::milliseconds patience);
    // Ends the thread, an install under way and replies held back included. Returns false if it
    // still runs after `patience`. The panel is not locked.
    bool stop(std::chrono::milliseconds patience);

private:
    using Clock = std::chrono::steady_clock;

    struct HeldReply
    {
        sockaddr_in to;
        std::string bytes;
    };

    void run();
    void wake() const;
    bool followOrders();
    void die();
    void waitForWork() const;
    void serve();
    void answer(const LoopbackSocket::Datagram &request, const Json &update);
    void sendDue();

    // Of the thread alone, once it runs.
    LoopbackSocket m_socket;
    UpdateDesk m_desk;
    std::multimap<Clock::time_point, HeldReply> m_held; // by the moment when they go out

    const int m_wakeUp; // eventfd(2)
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_orders = 0; // calls of setAlive()
    int m_followed = 0;
    bool m_killed = false; // since the last look
    bool m_alive = true;
    bool m_stopping = false;
    bool m_running = false;
};

} // namespace sim
