#include "platform/linux/SystemBus.h"

#include "platform/posix/threads.h"

#include <atomic>
#include <utility>

namespace board {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

// How long a ping waits for a service to wake up; the bus itself ends it when the service dies.
constexpr std::chrono::hours PATIENCE(24);

std::uint64_t inMicroseconds(std::chrono::nanoseconds time)
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<microseconds>(std::max(time, std::chrono::nanoseconds(1000)))
            .count());
}

} // namespace

// What the caller and the bus's thread share of one call.
struct SystemBus::Exchange
{
    std::mutex mutex;
    std::condition_variable changed;
    Outcome outcome;
    bool isOver = false;

    void end(sdbus::MethodReply &reply, const sdbus::Error *error)
    {
        const std::lock_guard lock(mutex);
        isOver = true;
        if (error == nullptr)
            outcome.reply = reply;
        else
            outcome.error = error->getName();
        changed.notify_all();
    }

    Outcome wait(Clock::time_point deadline)
    {
        std::unique_lock lock(mutex);
        changed.wait_until(lock, deadline, [this] { return isOver; });
        return outcome;
    }
};

// A service that has not answered, and the ping that waits for it.
struct SystemBus::Silent
{
    Connection connection; // before the proxy, which uses it
    std::unique_ptr<sdbus::IProxy> proxy;
    std::atomic<bool> isOver{false};
};

SystemBus::Outcome SystemBus::call(const BusMethod &method, milliseconds timeout,
                                   const Arguments &arguments)
{
    const auto deadline = Clock::now() + timeout;
    if (isSilent(method.service))
        return {};
    const Connection bus = connection(deadline);
    if (!bus)
        return {};
    const auto exchange = std::make_shared<Exchange>();
    Outcome outcome;
    try {
        const auto proxy = sdbus::createProxy(*bus, method.service, method.path);
        sdbus::MethodCall message = proxy->createMethodCall(method.interface, method.name);
        if (arguments)
            arguments(message);
        proxy->callMethod(
            message,
            [exchange](sdbus::MethodReply &reply, const sdbus::Error *error) {
                exchange->end(reply, error);
            },
            inMicroseconds(PATIENCE));
        outcome = exchange->wait(deadline);
    } catch (const sdbus::Error &error) {
        outcome.error = error.getName();
    }
    if (!outcome && outcome.error.empty())
        noteSilence(bus, method.service);
    return outcome;
}

SystemBus::Connection SystemBus::connection(Clock::time_point deadline)
{
    std::unique_lock lock(m_mutex);
    if (m_connection || m_isLate)
        return m_connection;
    m_isConnecting = true;
    if (!m_hasThread)
        m_hasThread = os::startThread("bus", [this] { run(); });
    m_changed.notify_all();
    m_isLate =
        m_hasThread && !m_changed.wait_until(lock, deadline, [this] { return !m_isConnecting; });
    return m_connection;
}

void SystemBus::run()
{
    for (;;) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isConnecting; });
        lock.unlock();
        Connection connection;
        try {
            connection = sdbus::createSystemBusConnection();
            m_fault.mended("the system bus is there");
        } catch (const sdbus::Error &error) {
            m_fault.tell("no system bus: " + error.getMessage());
        }
        lock.lock();
        m_connection = connection;
        m_isConnecting = false;
        m_isLate = false;
        m_changed.notify_all();
        lock.unlock();
        if (!connection)
            continue;
        try {
            connection->enterEventLoop();
        } catch (const sdbus::Error &error) {
            journal(Severity::Warning,
                    std::string("the system bus is lost: ") + error.getMessage());
        }
        lock.lock();
        m_connection.reset();
        m_silent.clear();
    }
}

bool SystemBus::isSilent(const std::string &service)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_silent.find(service);
    if (found == m_silent.end())
        return false;
    if (!found->second->isOver)
        return true;
    m_silent.erase(found);
    return false;
}

void SystemBus::noteSilence(const Connection &connection, const std::string &service)
{
    const auto silent = std::make_shared<Silent>();
    silent->connection = connection;
    journal(Severity::Warning, service + " does not answer");
    try {
        silent->proxy = sdbus::createProxy(*connection, service, "/");
        sdbus::MethodCall ping =
            silent->proxy->createMethodCall("org.freedesktop.DBus.Peer", "Ping");
        silent->proxy->callMethod(
            ping,
            [watched = std::weak_ptr(silent)](sdbus::MethodReply &, const sdbus::Error *) {
                if (const auto alive = watched.lock())
                    alive->isOver = true;
            },
            inMicroseconds(PATIENCE));
    } catch (const sdbus::Error &) {
        return; // the connection is being lost
    }
    const std::lock_guard lock(m_mutex);
    m_silent[service] = silent;
}

SystemBus &systemBus()
{
    static SystemBus &bus = *new SystemBus;
    return bus;
}

} // namespace board
