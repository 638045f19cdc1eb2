#include "network/NetWorkTestRun.h"

#include "network/NetWorkTestItems.h"
#include "network/ServiceTimeouts.h"

#include <cstdio>
#include <utility>

namespace {

using Link = NetWorkTestLink;

constexpr int GATEWAY_PROBES = 1;
constexpr int SERVER_PROBES = 5;
constexpr int SHOW_MAX_ABOVE_MS = 500; // from here on the maximum is shown, not the average

constexpr int CONNECTED = 1;
constexpr int ATTACHED = 1;
constexpr int LOADED_WITHOUT_RESOURCE = -3;

struct Check
{
    Link::Outcome (Link::*run)() const;
    int item;
    bool stopsLink = true; // whether its failure does
};

constexpr Check ETHERNET_CHECKS[] = {
    {&Link::exists, ITEM_ETH_EXISTS},      {&Link::isUp, ITEM_ETH_UP},
    {&Link::isLinked, ITEM_ETH_CABLE},     {&Link::reachesGateway, ITEM_ETH_GATEWAY},
    {&Link::reachesCloud, ITEM_ETH_CLOUD}, {&Link::delay, ITEM_ETH_DELAY},
};

constexpr Check WIFI_CHECKS[] = {
    {&Link::exists, ITEM_WIFI_EXISTS},
    {&Link::isUp, ITEM_WIFI_UP},
    {&Link::isLinked, ITEM_WIFI_LINK},
    {&Link::wifiSignal, ITEM_WIFI_SIGNAL},
    {&Link::reachesGateway, ITEM_WIFI_GATEWAY},
    {&Link::reachesCloud, ITEM_WIFI_CLOUD},
    {&Link::delay, ITEM_WIFI_DELAY},
};

// Not in the order of the numbers; this is intended.
constexpr Check MODEM_CHECKS[] = {
    {&Link::exists, ITEM_4G_EXISTS},
    {&Link::isUp, ITEM_4G_UP},
    {&Link::modemSignal, ITEM_4G_SIGNAL},
    {&Link::hasCard, ITEM_4G_CARD},
    {&Link::isAttached, ITEM_4G_ATTACHED, false},
    {&Link::isLinked, ITEM_4G_LINK},
    {&Link::reachesCloud, ITEM_4G_CLOUD},
    {&Link::delay, ITEM_4G_DELAY},
};

struct Chain
{
    int heading;
    const Check *begin;
    const Check *end;
};

constexpr Chain CHAINS[] = {
    {ITEM_ETH, std::begin(ETHERNET_CHECKS), std::end(ETHERNET_CHECKS)},
    {ITEM_WIFI, std::begin(WIFI_CHECKS), std::end(WIFI_CHECKS)},
    {ITEM_4G, std::begin(MODEM_CHECKS), std::end(MODEM_CHECKS)},
};

Link::Outcome passedIf(bool passed)
{
    return {passed ? TEST_PASSED : TEST_FAILED, 0, passed};
}

int cloudState(int loadResult)
{
    if (loadResult >= 0)
        return TEST_PASSED;
    return loadResult == LOADED_WITHOUT_RESOURCE ? TEST_NO_RESOURCE : TEST_FAILED;
}

} // namespace

NetWorkTestLink::NetWorkTestLink(std::string device, const std::function<int()> &connectionStatus,
                                 const std::function<bool()> &stopped)
    : m_sDevice(std::move(device)), m_connectionStatus(connectionStatus), m_stopped(stopped)
{
}

Link::Outcome NetWorkTestLink::exists() const
{
    return passedIf(netT::netIsExist(m_sDevice, false, NET_SERVICE_TIMEOUT_MS) >= 0);
}

Link::Outcome NetWorkTestLink::isUp() const
{
    const int result = netT::isNetUp(m_sDevice, false, NET_SERVICE_TIMEOUT_MS);
    return passedIf(result >= 0 && result != 1);
}

Link::Outcome NetWorkTestLink::isLinked() const
{
    return passedIf(netT::checkEthCableLink(m_sDevice, false, NET_SERVICE_TIMEOUT_MS) >= 0);
}

Link::Address NetWorkTestLink::address() const
{
    Address found;
    std::string mask;
    if (netT::getIp(m_sDevice, found.own, mask, found.gateway, false, NET_SERVICE_TIMEOUT_MS) < 0)
        return {};
    return found;
}

// Without a target the service would ping the source instead, which always answers.
int NetWorkTestLink::ping(const std::string &target, const std::string &source, int count,
                          netT::stNetCommuPacketInfo_tag &statistics) const
{
    if (target.empty() || m_stopped())
        return netT::ERR_FAILED;
    return netT::netTping(m_sDevice, target, source, statistics, false, count, false,
                          PING_TIMEOUT_MS);
}

Link::Outcome NetWorkTestLink::reachesGateway() const
{
    const Address known = address();
    netT::stNetCommuPacketInfo_tag statistics;
    return passedIf(ping(known.gateway, known.own, GATEWAY_PROBES, statistics) >= 0);
}

Link::Outcome NetWorkTestLink::reachesCloud() const
{
    const int status = m_connectionStatus();
    if (status == CONNECTED)
        return passedIf(true);
    const bool named = status >= TEST_NO_TOPIC && status <= TEST_NO_TIME;
    return {named ? status : TEST_NO_SERVER};
}

Link::Outcome NetWorkTestLink::delay() const
{
    std::string server;
    const int known = netT::getNetServerAddr(server, false, NET_SERVICE_TIMEOUT_MS);
    std::printf("getNetServerAddr = [%s]\n", server.c_str());
    if (known < 0 || server.empty() || m_stopped())
        return passedIf(false);
    netT::stNetCommuPacketInfo_tag times;
    const int result = ping(server, address().own, SERVER_PROBES, times);
    std::printf("nRet = [%d] nMaxPacketTransTime=[%d] nMinPacketTransTime = [%d] "
                "\tnAvgPacketTransTime = [%d] nLostPackagePercentage = [%d]\n",
                result, times.nMaxPacketTransTime, times.nMinPacketTransTime,
                times.nAvgPacketTransTime, times.nLostPackagePercentage);
    if (result < 0) // the client is connected all the same: some servers do not answer pings
        return {TEST_DELAY, NO_ANSWER_MS, true};
    const bool slow = times.nMaxPacketTransTime > SHOW_MAX_ABOVE_MS;
    return {TEST_DELAY, slow ? times.nMaxPacketTransTime : times.nAvgPacketTransTime, true};
}

Link::Outcome NetWorkTestLink::wifiSignal() const
{
    return {TEST_SIGNAL, netT::getSignal(false, NET_SERVICE_TIMEOUT_MS), true};
}

Link::Outcome NetWorkTestLink::modemSignal() const
{
    return {TEST_SIGNAL, netT::getCsqSignal(false, MODEM_TIMEOUT_MS), true};
}

Link::Outcome NetWorkTestLink::hasCard() const
{
    std::string card;
    return passedIf(netT::getCCID(card, false, MODEM_TIMEOUT_MS) >= 0 && !card.empty());
}

Link::Outcome NetWorkTestLink::isAttached() const
{
    netT::stNetWorkRegis_tag mode;
    return passedIf(netT::get4gDialUpMode(mode, false, MODEM_TIMEOUT_MS) == 0 &&
                    mode.nDialUpMode == ATTACHED);
}

NetWorkTestRun::NetWorkTestRun(Input input) : m_input(std::move(input)) {}

int NetWorkTestRun::run() const
{
    const int load = m_input.loadResult;
    m_input.report(ITEM_CLOUD, TEST_RUNNING, 0);
    m_input.report(ITEM_CLOUD, cloudState(load), 0);
    std::printf("-----------------[%d]\n", load);
    std::printf("nTestCloudRet = [%d]\n", load);
    if (load < 0 && load != LOADED_WITHOUT_RESOURCE)
        return RESULT_NO_CONFIGURATION;
    for (std::size_t link = 0; link < std::size(CHAINS); ++link) {
        if (runLink(link))
            return RESULT_PASSED;
    }
    return RESULT_NO_LINK;
}

bool NetWorkTestRun::runLink(std::size_t link) const
{
    if (m_input.stopped())
        return false;
    const Chain &chain = CHAINS[link];
    const Link checks(m_input.devices[link], m_input.connectionStatus, m_input.stopped);
    m_input.report(chain.heading, TEST_HEADING, 0);
    for (const Check *check = chain.begin; check != chain.end; ++check) {
        m_input.report(check->item, TEST_RUNNING, 0);
        const Link::Outcome outcome = (checks.*check->run)();
        if (m_input.stopped())
            return false;
        m_input.report(check->item, outcome.state, outcome.value);
        if (!outcome.passed && check->stopsLink)
            return false;
    }
    return true;
}
