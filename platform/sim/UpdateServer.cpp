#include "platform/sim/UpdateServer.h"

#include "platform/posix/Bytes.h"
#include "platform/sim/Panel.h"

#include <algorithm>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace sim {
namespace {

constexpr std::size_t COMMAND_SIZE = 4;

int commandOf(const std::string &request)
{
    return static_cast<int>(os::numberFrom(request, 0));
}

// Notes the request, and returns what the service is ordered to do: the state without the notes.
Json takeOrders(Json &state, const std::string &request)
{
    Json &update = state["update"];
    appendLatest(update["requests"],
                 {{"command", commandOf(request)}, {"payload", request.substr(COMMAND_SIZE)}});
    Json orders;
    for (const auto &[key, value] : update.items())
        if (key != "requests")
            orders[key] = value;
    return orders;
}

} // namespace

UpdateServer::UpdateServer() : m_wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

UpdateServer::~UpdateServer()
{
    ::close(m_wakeUp);
}

bool UpdateServer::bind(int port)
{
    return m_socket.bind(port);
}

void UpdateServer::start()
{
    m_running = true;
    std::thread([self = shared_from_this()] { self->run(); }).detach();
}

// --- What others ask of the thread -------------------------------------------------------------

void UpdateServer::setAlive(bool alive)
{
    const std::lock_guard lock(m_mutex);
    m_killed = m_killed || !alive;
    m_alive = alive;
    ++m_orders;
    wake();
}

void UpdateServer::settle(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, timeout, [this] { return m_followed == m_orders || !m_running; });
}

bool UpdateServer::stop(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    m_stopping = true;
    wake();
    return m_changed.wait_for(lock, timeout, [this] { return !m_running; });
}

void UpdateServer::wake() const
{
    ::eventfd_write(m_wakeUp, 1);
}

// --- The thread --------------------------------------------------------------------------------

void UpdateServer::run()
{
    ::pthread_setname_np(::pthread_self(), "update");
    while (followOrders()) {
        waitForWork();
        serve();
        sendDue();
    }
    die();
    m_socket.close();
    const std::lock_guard lock(m_mutex);
    m_running = false;
    m_changed.notify_all();
}

bool UpdateServer::followOrders()
{
    std::unique_lock lock(m_mutex);
    while (m_followed != m_orders && !m_stopping) {
        const int orders = m_orders;
        const bool killed = std::exchange(m_killed, false);
        const bool alive = m_alive;
        lock.unlock();
        if (killed)
            die();
        if (alive && m_socket.isRefusing())
            m_socket.setRefusing(false);
        lock.lock();
        m_followed = orders;
        m_changed.notify_all();
    }
    return !m_stopping;
}

void UpdateServer::die()
{
    m_socket.setRefusing(true);
    m_held.clear();
    m_desk.abandon();
}

void UpdateServer::waitForWork() const
{
    pollfd events[] = {{m_wakeUp, POLLIN, 0},
                       {m_socket.isRefusing() ? -1 : m_socket.fd(), POLLIN, 0}};
    int timeout = -1;
    if (!m_held.empty()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(m_held.begin()->first - Clock::now());
        timeout = static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    }
    ::poll(events, std::size(events), timeout);
    eventfd_t wakeUps = 0;
    ::eventfd_read(m_wakeUp, &wakeUps);
}

void UpdateServer::serve()
{
    const auto request = m_socket.receive();
    if (!request || request->bytes.size() < COMMAND_SIZE)
        return;
    const Json update =
        panel().locked([&](Json &state) { return takeOrders(state, request->bytes); });
    if (!update.at("silent").get<bool>())
        answer(*request, update);
}

void UpdateServer::answer(const os::LoopbackSocket::Datagram &request, const Json &update)
{
    const UpdateAnswer reply =
        m_desk.answer(update, commandOf(request.bytes), request.bytes.substr(COMMAND_SIZE));
    if (reply.dies) {
        die();
        panel().locked([](Json &state) { state["update"]["alive"] = false; });
    }
    if (!reply.replies)
        return;
    const std::chrono::milliseconds late(update.at("late").get<int>());
    const auto how = update.at("reply").get<std::string>();
    m_held.emplace(Clock::now() + late, HeldReply{request.from, encodeReply(reply.status, how)});
}

void UpdateServer::sendDue()
{
    while (!m_held.empty() && m_held.begin()->first <= Clock::now()) {
        const HeldReply reply = std::move(m_held.extract(m_held.begin()).mapped());
        m_socket.send(reply.to, reply.bytes);
    }
}

} // namespace sim
