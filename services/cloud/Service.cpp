#include "services/cloud/Service.h"

#include "platform/paths.h"
#include "services/common/Journal.h"

#include <utility>

namespace cloud {
namespace {

using namespace std::chrono_literals;

constexpr const char *IDENTITY = "/mnt/data/cloud/identity.pem";
// Routes come one after the other.
constexpr auto NETWORK_SETTLES = 500ms;

} // namespace

Service::Service(GDBusConnection *bus, const std::string &helper)
    : m_clock(bus),
      m_enrolment(Store(panelPath(IDENTITY)), helper),
      m_requests([this](std::uint64_t number, const std::string &message) {
          m_door.tellRequest(number, m_configuration->requestTopic, message);
      }),
      m_door(bus, *this)
{
    m_network.add(g_network_monitor_get_default(), "network-changed",
                  [this] { m_settled.start(NETWORK_SETTLES, [this] { networkChanged(); }); });
}

// --- What the program asks ---------------------------------------------------------------------

void Service::start(const Configuration &configuration)
{
    m_requests.clear();
    if (m_configuration == configuration)
        return;
    m_configuration = configuration;
    m_bClockDoubted = false;
    m_enrolment.use(configuration);
    service::say("connecting to " + configuration.server);
    m_session.start();
}

bool Service::answer(std::uint64_t number, const std::string &message)
{
    if (message.size() > LARGEST_MESSAGE || !m_requests.answered(number))
        return false;
    if (!m_session.isStanding() || !m_broker.publish(message))
        service::warn("an answer is lost with the connection");
    return true;
}

// --- The stages --------------------------------------------------------------------------------

void Service::begin(Stage stage)
{
    switch (stage) {
    case Stage::Time:
        // A doubt is good for one try: a time server that is down must not stand in the way of a
        // certificate that is mended.
        return m_clock.begin(m_configuration->timeServer, std::exchange(m_bClockDoubted, false),
                             [this](const std::string &trouble) { settle(Stage::Time, trouble); });
    case Stage::Certificate:
        return m_enrolment.begin([this](const std::string &trouble, bool isDistrust) {
            m_bClockDoubted = isDistrust;
            settle(Stage::Certificate, trouble);
        });
    case Stage::Server:
        return m_broker.connect(*m_configuration, m_enrolment.identity().pem);
    case Stage::Subscription:
        return m_broker.subscribe();
    }
}

void Service::settle(Stage stage, const std::string &trouble)
{
    if (trouble.empty())
        m_session.passed(stage);
    else
        m_session.failed(stage, trouble);
}

void Service::end()
{
    m_clock.end();
    m_enrolment.end();
    m_broker.close();
}

void Service::wakeAfter(std::chrono::milliseconds time)
{
    m_alarm.start(time, [this] { m_session.woken(); });
}

double Service::chance()
{
    return std::uniform_real_distribution<double>(0, 1)(m_random);
}

void Service::tell(int status, const std::string &reason)
{
    if (status == CONNECTED)
        service::say("connected");
    else if (!reason.empty())
        service::warn("stopped (" + std::to_string(status) + "): " + reason);
    m_door.tellStatus();
}

// --- The connection ----------------------------------------------------------------------------

void Service::accepted()
{
    m_session.passed(Stage::Server);
}

void Service::subscribed()
{
    m_session.passed(Stage::Subscription);
    keepCertificate();
}

void Service::arrived(const std::string &message)
{
    if (!m_requests.add(message))
        service::warn("too many requests wait: one is dropped");
}

void Service::lost(const std::string &why, bool isDistrust, bool isRefused)
{
    m_bClockDoubted = isDistrust;
    if (isRefused)
        m_enrolment.doubt();
    m_session.lost(why);
}

void Service::networkChanged()
{
    if (m_session.isStanding() && !m_broker.isRouted())
        m_session.lost("the network has changed");
    m_session.networkChanged();
}

// As long as the connection stands nobody waits for it.
void Service::keepCertificate()
{
    m_enrolment.renew(chance());
    m_renewal.start(m_enrolment.untilRenewal(), [this] {
        if (m_session.isStanding())
            keepCertificate();
    });
}

} // namespace cloud
