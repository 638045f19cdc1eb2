#include "platform/linux/CloudLink.h"

#include "platform/linux/Journal.h"
#include "platform/posix/threads.h"

#include <chrono>
#include <systemd/sd-bus-protocol.h>
#include <thread>
#include <utility>

namespace board {
namespace {

constexpr const char *SERVICE = "org.sysset.Cloud1";
constexpr const char *PATH = "/org/sysset/Cloud1";
constexpr const char *BUS = "org.freedesktop.DBus";
constexpr const char *FAILED = "org.sysset.Cloud1.Error.Failed";
constexpr std::chrono::milliseconds BUS_PAUSE(250); // between looks for a bus that is away
constexpr std::size_t MOST_REQUESTS = 16;           // the service sends one at a time
constexpr int CONNECTED = 1;
constexpr int NOT_STARTED = -1;
constexpr int NO_TOPIC = -5;
constexpr int NO_HANDLER = -1; // the answer where nobody handles

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(const std::string &text)
{
    return {text.begin(), text.end()};
}

std::string ownerMatch()
{
    return std::string("type='signal',member='NameOwnerChanged',sender='") + BUS + "',interface='" +
           BUS + "',path='/org/freedesktop/DBus',arg0='" + SERVICE + "'";
}

// A base, so that it outlives the proxy.
struct Connection
{
    std::unique_ptr<sdbus::IConnection> bus;
};

} // namespace

// One connection, subscribed. What is lost with it throws sdbus::Error.
class CloudLink::Watch final : private Connection,
                               public sdbus::ProxyInterfaces<org::sysset::Cloud1_proxy>
{
public:
    explicit Watch(CloudLink &link)
        : Connection{sdbus::createSystemBusConnection()},
          ProxyInterfaces(*bus, SERVICE, PATH),
          m_link(link)
    {
        bus->setMethodCallTimeout(UINT64_MAX); // the bus itself ends a call whose service dies
        registerProxy();
        m_ownerMatch = bus->addMatch(ownerMatch(),
                                     [this](sdbus::Message &message) { takeOwnerChange(message); });
        start();
    }
    ~Watch() { unregisterProxy(); }
    Watch(const Watch &) = delete;
    Watch &operator=(const Watch &) = delete;

    void run() { bus->enterEventLoop(); }

    void start()
    {
        const std::lock_guard lock(m_link.m_mutex);
        const netT::CloudConfig &config = m_link.m_config;
        Start(config.sUrl, static_cast<std::uint16_t>(config.nPort), config.sCertUrl,
              static_cast<std::uint16_t>(config.nCertPort), config.sNtpUrl, config.sDeviceId,
              config.sSalt, config.sRequestTopic, config.sResponseTopic, bytesOf(m_link.m_trust));
    }

private:
    using Error = sdbus::Error;

    std::string sender() const { return getProxy().getCurrentlyProcessedMessage()->getSender(); }

    void set(int status)
    {
        m_link.m_status = status >= NO_TOPIC && status <= CONNECTED ? status : NOT_STARTED;
    }

    void onStartReply(const std::int32_t &status, const Error *error) override
    {
        if (error == nullptr) {
            m_owner = sender();
            return set(status);
        }
        set(NOT_STARTED);
        if (error->getName() == FAILED)
            journal(Severity::Warning, "the cloud service refuses what cloud.xml says");
        else if (error->getName() == SD_BUS_ERROR_ACCESS_DENIED)
            journal(Severity::Warning, "the bus does not let this user call the cloud service");
    }
    void onGetStatusReply(const std::int32_t &, const std::string &, const Error *) override {}
    void onAnswerReply(const Error *) override {}

    // The bus delivers what is sent to this connection's own name, too, whoever sends it.
    void onStatusChanged(const std::int32_t &status, const std::string &) override
    {
        if (sender() == m_owner)
            set(status);
    }
    void onRequest(const std::uint64_t &number, const std::string &topic,
                   const Bytes &message) override
    {
        if (sender() != m_owner)
            return;
        const std::lock_guard lock(m_link.m_mutex);
        if (m_link.m_requests.size() >= MOST_REQUESTS)
            return;
        m_link.m_requests.push_back({number, topic, std::string(message.begin(), message.end())});
        m_link.m_arrived.notify_one();
    }

    void takeOwnerChange(sdbus::Message &message)
    {
        if (message.getSender() != BUS)
            return;
        std::string name;
        std::string before;
        message >> name >> before >> m_owner;
        set(NOT_STARTED);
        forgetRequests();
        if (!m_owner.empty())
            start();
    }

    // Those of a service that is gone.
    void forgetRequests()
    {
        const std::lock_guard lock(m_link.m_mutex);
        m_link.m_requests.clear();
    }

    CloudLink &m_link;
    sdbus::Slot m_ownerMatch;
    std::string m_owner; // unique name of the service; empty while it is away
};

bool CloudLink::start(const netT::CloudConfig &config, std::string trust, Handler handler,
                      void *context)
{
    {
        const std::lock_guard handling(m_handling);
        m_handler = handler;
        m_pContext = context;
    }
    std::unique_lock lock(m_mutex);
    m_config = config;
    m_trust = std::move(trust);
    if (!m_bStarted)
        return m_bStarted = os::startThread("request", [this] { handleRequests(); }) &&
                            os::startThread("cloud", [this] { run(); });
    const std::shared_ptr<Watch> watch = m_watch;
    lock.unlock();
    if (watch)
        watch->start();
    return true;
}

void CloudLink::detach()
{
    const std::unique_lock handling(m_handling, os::PATIENCE_AT_EXIT);
    m_handler = nullptr;
}

void CloudLink::run()
{
    for (;;) {
        try {
            const auto watch = std::make_shared<Watch>(*this);
            {
                const std::lock_guard lock(m_mutex);
                m_watch = watch;
            }
            watch->run();
        } catch (const sdbus::Error &) {
            m_status = NOT_STARTED; // SystemBus tells the journal
        }
        {
            const std::lock_guard lock(m_mutex);
            m_watch.reset();
        }
        std::this_thread::sleep_for(BUS_PAUSE);
    }
}

void CloudLink::handleRequests()
{
    for (;;) {
        std::unique_lock lock(m_mutex);
        m_arrived.wait(lock, [this] { return !m_requests.empty(); });
        const Request request = std::move(m_requests.front());
        m_requests.pop_front();
        lock.unlock();
        const std::string answer = std::to_string(call(request));
        lock.lock();
        const std::shared_ptr<Watch> watch = m_watch;
        lock.unlock();
        try {
            if (watch)
                watch->Answer(request.number, bytesOf(answer));
        } catch (const sdbus::Error &) {
            journal(Severity::Warning, "an answer to the cloud is lost with the bus");
        }
    }
}

int CloudLink::call(const Request &request)
{
    const std::lock_guard handling(m_handling);
    return m_handler == nullptr ? NO_HANDLER
                                : m_handler(request.topic, request.message, m_pContext);
}

CloudLink &cloudLink()
{
    static CloudLink &link = *new CloudLink;
    return link;
}

} // namespace board
