#include "platform/linux/SystemBus.h"

#include "platform/posix/threads.h"

#include <cstdint>
#include <utility>

namespace board {
namespace {

using std::chrono::milliseconds;

// How long an answer may take as far as the library is concerned: whoever waits has a time of his
// own, and the bus itself ends a call whose service dies.
constexpr std::uint64_t FOREVER = UINT64_MAX;

// In which a service that runs answers the question; until then nobody is refused for its sake.
constexpr milliseconds QUESTION_TIME{50};

} // namespace

class SystemBus::Waiting final : public Exchange
{
public:
    void end(const std::string &error) override
    {
        const std::lock_guard lock(m_mutex);
        if (!m_error)
            m_error = error;
        m_changed.notify_all();
    }

    std::optional<std::string> wait(Clock::time_point deadline)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_until(lock, deadline, [this] { return m_error.has_value(); });
        return m_error;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<std::string> m_error;
};

// A service that has not answered, and the question that waits for it.
struct SystemBus::Silent
{
    Clock::time_point asked = Clock::now();
    Connection connection; // before the proxy, which uses it
    std::unique_ptr<sdbus::IProxy> proxy;
    bool isOver = false;
};

std::string SystemBus::exchange(const BusMethod &method, milliseconds timeout, const Begin &begin)
{
    const auto deadline = Clock::now() + timeout;
    if (isSilent(method.service))
        return NO_ANSWER;
    const Connection bus = connection(deadline);
    if (!bus)
        return isLate() ? NO_ANSWER : NO_BUS;
    try {
        const auto waiting = std::make_shared<Waiting>();
        const std::shared_ptr<void> proxy = begin(*bus, waiting);
        if (const std::optional<std::string> error = waiting->wait(deadline))
            return *error;
    } catch (const sdbus::Error &error) {
        return error.getName();
    }
    noteSilence(bus, method);
    return NO_ANSWER;
}

SystemBus::Outcome SystemBus::call(const BusMethod &method, milliseconds timeout,
                                   const Arguments &arguments)
{
    const auto answer = std::make_shared<std::optional<sdbus::MethodReply>>();
    Outcome outcome;
    outcome.error = exchange(method, timeout, [&](sdbus::IConnection &bus, const auto &exchange) {
        std::shared_ptr<sdbus::IProxy> proxy = sdbus::createProxy(bus, method.service, method.path);
        sdbus::MethodCall message = proxy->createMethodCall(method.interface, method.name);
        if (arguments)
            arguments(message);
        proxy->callMethod(message, [=](sdbus::MethodReply &reply, const sdbus::Error *error) {
            if (error == nullptr)
                *answer = reply;
            exchange->end(error == nullptr ? std::string() : error->getName());
        });
        return proxy;
    });
    if (outcome.error.empty())
        outcome.reply = *answer;
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
            connection->setMethodCallTimeout(FOREVER);
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

bool SystemBus::isLate()
{
    const std::lock_guard lock(m_mutex);
    return m_isLate;
}

bool SystemBus::isSilent(const std::string &service)
{
    std::shared_ptr<Silent> silent;
    std::shared_ptr<Silent> before; // ended without the mutex
    std::unique_lock lock(m_mutex);
    const auto found = m_silent.find(service);
    if (found == m_silent.end())
        return false;
    silent = found->second;
    m_changed.wait_until(lock, silent->asked + QUESTION_TIME, [&] { return silent->isOver; });
    if (!silent->isOver)
        return true;
    if (const auto now = m_silent.find(service); now != m_silent.end() && now->second == silent) {
        m_silent.erase(now);
        before = std::exchange(m_over[service], silent);
    }
    return false;
}

// Not a ping: a library's own thread may answer that (GDBus's does) while the service hangs.
void SystemBus::noteSilence(const Connection &connection, const BusMethod &method)
{
    const auto silent = std::make_shared<Silent>();
    silent->connection = connection;
    journal(Severity::Warning, std::string(method.service) + " does not answer");
    try {
        silent->proxy = sdbus::createProxy(*connection, method.service, method.path);
        sdbus::MethodCall question =
            silent->proxy->createMethodCall("org.freedesktop.DBus.Properties", "GetAll");
        question << std::string(method.interface);
        silent->proxy->callMethod(question, [this, watched = std::weak_ptr(silent),
                                             service = std::string(method.service)](
                                                sdbus::MethodReply &, const sdbus::Error *) {
            if (const auto alive = watched.lock())
                endSilence(*alive, service);
        });
    } catch (const sdbus::Error &) {
        return; // the connection is being lost
    }
    const std::lock_guard lock(m_mutex);
    m_silent[method.service] = silent;
}

void SystemBus::endSilence(Silent &silent, const std::string &service)
{
    std::unique_lock lock(m_mutex);
    silent.isOver = true;
    m_changed.notify_all();
    const auto answering = m_answering.find(service);
    const auto told = answering == m_answering.end() ? nullptr : answering->second;
    lock.unlock();
    if (told)
        told();
}

void SystemBus::whenAnswering(const std::string &service, std::function<void()> told)
{
    const std::lock_guard lock(m_mutex);
    m_answering[service] = std::move(told);
}

SystemBus &systemBus()
{
    static SystemBus &bus = *new SystemBus;
    return bus;
}

} // namespace board
