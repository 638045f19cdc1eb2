#pragma once

#include "platform/posix/LoopbackSocket.h"
#include "platform/sim/UpdateDesk.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace sim {

// The update service's thread, "update", and its socket. It does not wake until there is something
// to do. Made by make_shared: a thread that does not end in time keeps its object.
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

    // update.alive has changed: the service dies, or comes back at the same port, which it keeps
    // meanwhile. Any thread; the panel may be locked.
    void setAlive(bool alive);
    // Waits until the thread has followed every setAlive(). The panel is not locked.
    void settle(std::chrono::milliseconds timeout);
    // Ends the thread, a running install and delayed replies with it. Returns false if it still
    // runs after `timeout`. The panel is not locked.
    bool stop(std::chrono::milliseconds timeout);

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
    void answer(const os::LoopbackSocket::Datagram &request, const Json &update);
    void sendDue();

    // Touched by the thread alone once it runs.
    os::LoopbackSocket m_socket;
    UpdateDesk m_desk;
    std::multimap<Clock::time_point, HeldReply> m_held; // by the time when they are sent

    const int m_wakeUp; // eventfd(2)
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_orders = 0; // calls of setAlive()
    int m_followed = 0;
    bool m_killed = false; // since followOrders()
    bool m_alive = true;
    bool m_stopping = false;
    bool m_running = false;
};

} // namespace sim
