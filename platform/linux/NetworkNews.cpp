#include "platform/linux/NetworkNews.h"

#include "platform/posix/threads.h"

#include <algorithm>
#include <array>
#include <memory>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace board {
namespace {

constexpr std::chrono::milliseconds BUS_PAUSE(250); // between looks for a bus that is away
constexpr int AGAIN_MS = 1000;                      // after the service refused its records
constexpr unsigned int MODEM_MS = 1000;
constexpr int AT_ONCE = 256; // messages between two deliveries
constexpr const char *BUS = "org.freedesktop.DBus";

std::string ownerMatch()
{
    return std::string("type='signal',member='NameOwnerChanged',sender='") + BUS + "',interface='" +
           BUS + "',path='/org/freedesktop/DBus',arg0='" + NETWORK_SERVICE + "'";
}

} // namespace

// One connection, subscribed. What is lost with it throws sdbus::Error.
class NetworkNews::Watch
{
public:
    explicit Watch(NetworkNews &news)
        : m_news(news),
          m_bus(sdbus::createSystemBusConnection()),
          m_service(
              *m_bus, [this](const NetworkAnswer &answer) { takeAnswer(answer); },
              [this](const NetworkAnswer &signal) { takeSignal(signal); })
    {
        m_bus->setMethodCallTimeout(UINT64_MAX); // the bus itself ends a call whose service dies
        m_service.registerProxy();
        m_ownerMatch = m_bus->addMatch(
            ownerMatch(), [this](sdbus::Message &message) { takeOwnerChange(message); });
        ask();
    }

    [[noreturn]] void run()
    {
        for (;;) {
            for (int i = 0; i < AT_ONCE && m_bus->processPendingRequest(); ++i) {
            }
            m_news.deliver();
            wait();
        }
    }

private:
    void ask()
    {
        m_isRefused = false;
        m_service.GetDevices(m_news.flag());
        m_service.GetModem(m_news.flag());
    }

    void takeAnswer(const NetworkAnswer &answer)
    {
        if (answer.sender != BUS)
            m_owner = answer.sender;
        const bool isRecords = std::holds_alternative<NetworkRecords>(answer.value);
        m_isRefused = isRecords ? false : m_isRefused || errorOf(answer) == netT::ERR_FAILED;
        m_news.take(answer);
    }

    // The bus delivers what is sent to this connection's own name, too, whoever sends it.
    void takeSignal(const NetworkAnswer &signal)
    {
        if (signal.sender != m_owner)
            return;
        m_news.take(signal);
        m_news.makeDue(signal);
    }

    void takeOwnerChange(sdbus::Message &message)
    {
        if (message.getSender() != BUS)
            return;
        std::string name;
        std::string before;
        message >> name >> before >> m_owner;
        m_news.forget();
        if (!m_owner.empty())
            ask();
    }

    void wait()
    {
        const auto bus = m_bus->getEventLoopPollData();
        std::array<pollfd, 2> events{{{bus.fd, bus.events, 0}, {m_news.m_wake, POLLIN, 0}}};
        const bool asksAgain = m_isRefused && !m_news.m_records;
        const int longest = bus.getPollTimeout();
        const int count =
            ::poll(events.data(), events.size(), asksAgain && longest != 0 ? AGAIN_MS : longest);
        std::uint64_t wakes = 0;
        if ((events[1].revents & POLLIN) != 0 &&
            ::read(m_news.m_wake, &wakes, sizeof wakes) != sizeof wakes)
            return;
        if (count == 0 && asksAgain)
            ask();
    }

    NetworkNews &m_news;
    std::unique_ptr<sdbus::IConnection> m_bus;
    NetworkProxy m_service;
    sdbus::Slot m_ownerMatch;
    std::string m_owner; // unique name of the service; empty while it is away
    bool m_isRefused = false;
};

int NetworkNews::addRecords(netT::AllNetInfoCallback callback, void *context, bool flag,
                            unsigned int timeoutMs, bool repeat)
{
    const auto answer =
        callNetwork(timeoutMs, [&](NetworkProxy &service) { service.GetDevices(flag); });
    const std::lock_guard lock(m_mutex);
    m_flag = flag;
    return add(m_recordListeners, {callback, context, repeat, true}, errorOf(answer));
}

int NetworkNews::addModem(netT::AtInfoCallback callback, void *context)
{
    const auto answer =
        callNetwork(MODEM_MS, [](NetworkProxy &service) { service.GetModem(false); });
    const std::lock_guard lock(m_mutex);
    return add(m_modemListeners, {callback, context, true, true}, errorOf(answer));
}

// The mutex is held. A service that refuses is there, as without a modem.
template <typename Callback>
int NetworkNews::add(Listeners<Callback> &listeners, Listener<Callback> listener, int error)
{
    if (error == netT::ERR_NO_SERVICE || error == netT::ERR_TIMEOUT)
        return error;
    if (listener.callback == nullptr || !start())
        return netT::ERR_FAILED;
    listeners.push_back(listener);
    return wake() ? 0 : netT::ERR_FAILED;
}

bool NetworkNews::start()
{
    if (m_wake != -1)
        return true;
    m_wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_wake == -1 || !os::startThread("net", [this] { run(); })) {
        ::close(m_wake);
        m_wake = -1;
        return false;
    }
    systemBus().whenAnswering(NETWORK_SERVICE, [this] { tellAgain(); });
    return true;
}

bool NetworkNews::wake() const
{
    const std::uint64_t once = 1;
    return ::write(m_wake, &once, sizeof once) == sizeof once;
}

// A page that asked about a record meanwhile was refused, and took the device for unplugged.
void NetworkNews::tellAgain()
{
    const std::lock_guard lock(m_mutex);
    makeDue(m_recordListeners);
    makeDue(m_modemListeners);
    wake();
}

void NetworkNews::run()
{
    for (;;) {
        try {
            Watch watch(*this);
            watch.run();
        } catch (const sdbus::Error &) {
            forget(); // SystemBus tells the journal
        }
        std::this_thread::sleep_for(BUS_PAUSE);
    }
}

bool NetworkNews::flag()
{
    const std::lock_guard lock(m_mutex);
    return m_flag;
}

void NetworkNews::forget()
{
    m_records.reset();
    m_modem.reset();
    const std::lock_guard lock(m_mutex);
    makeDue(m_recordListeners);
    makeDue(m_modemListeners);
}

void NetworkNews::makeDue(const NetworkAnswer &signal)
{
    const std::lock_guard lock(m_mutex);
    if (std::holds_alternative<NetworkRecords>(signal.value))
        makeDue(m_recordListeners);
    else
        makeDue(m_modemListeners);
}

template <typename Callback>
void NetworkNews::makeDue(Listeners<Callback> &listeners)
{
    for (Listener<Callback> &listener : listeners)
        listener.isDue = true;
}

void NetworkNews::take(const NetworkAnswer &news)
{
    if (const auto *records = std::get_if<NetworkRecords>(&news.value))
        m_records = toRecords(*records);
    else if (const auto *modem = std::get_if<NetworkModem>(&news.value))
        m_modem = toModemNews(*modem);
}

void NetworkNews::deliver()
{
    deliver(m_recordListeners, m_records);
    deliver(m_modemListeners, m_modem);
}

template <typename Callback, typename News>
void NetworkNews::deliver(Listeners<Callback> &listeners, const std::optional<News> &news)
{
    if (!news)
        return;
    for (const Listener<Callback> &listener : takeDue(listeners)) {
        News copy = *news;
        listener.callback(copy, listener.context);
    }
}

template <typename Callback>
NetworkNews::Listeners<Callback> NetworkNews::takeDue(Listeners<Callback> &listeners)
{
    const std::lock_guard lock(m_mutex);
    Listeners<Callback> due;
    for (Listener<Callback> &listener : listeners)
        if (std::exchange(listener.isDue, false))
            due.push_back(listener);
    const auto isDone = [](const Listener<Callback> &listener) {
        return !listener.repeat && !listener.isDue;
    };
    listeners.erase(std::remove_if(listeners.begin(), listeners.end(), isDone), listeners.end());
    return due;
}

NetworkNews &networkNews()
{
    static NetworkNews &news = *new NetworkNews;
    return news;
}

} // namespace board
