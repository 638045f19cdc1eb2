#include "app/CloudMonitor.h"

#include "platform/board.h"

#include <algorithm>
#include <utility>

namespace {

constexpr unsigned int PING_TIMEOUT_MS = 50000;

bool answersPing(const netT::stAllNetInfo_tag &record)
{
    netT::stNetCommuPacketInfo_tag statistics;
    return netT::netTping(record.sDevName, std::string(), record.sAlterDns, statistics, false, 1,
                          true, PING_TIMEOUT_MS) >= 0;
}

bool isOnline(const netT::stAllNetInfo_tag &record, bool pinged)
{
    if (record.sFunction != "enable" || record.sIpAddr.empty())
        return false;
    return !pinged || (!record.sAlterDns.empty() && answersPing(record));
}

} // namespace

CloudMonitor::CloudMonitor(netT::CAsyncClient &client, netT::CAsyncClient::MessageHandler handler,
                           void *context, Events events)
    : m_client(client),
      m_start(client, handler, context),
      m_events(std::move(events)),
      m_links{{{PLATFORM::DEV_ETH, "ETH", true, false},
               {PLATFORM::DEV_WIFI, "WIFI", true, false},
               {PLATFORM::DEV_4G, "4G", false, false}}}
{
}

void CloudMonitor::run(const std::vector<netT::stAllNetInfo_tag> &records)
{
    if (m_bStopped)
        return;
    m_start.run();
    const bool anyOnline = checkLinks(records);
    if (!m_bStopped)
        checkCloud(anyOnline);
}

bool CloudMonitor::checkLinks(const std::vector<netT::stAllNetInfo_tag> &records)
{
    std::array<bool, LINK_COUNT> online{}; // the last record of a kind decides
    for (const netT::stAllNetInfo_tag &record : records) {
        if (m_bStopped)
            return false;
        m_events.beforeRecord();
        for (std::size_t i = 0; i < LINK_COUNT; ++i) {
            if (record.sNetType == m_links[i].kind)
                online[i] = isOnline(record, m_links[i].pinged);
        }
    }
    if (m_bStopped)
        return false;
    for (std::size_t i = 0; i < LINK_COUNT; ++i) {
        if (std::exchange(m_links[i].online, online[i]) != online[i])
            m_events.linkChanged(m_links[i].type, online[i]);
    }
    return std::find(online.begin(), online.end(), true) != online.end();
}

void CloudMonitor::checkCloud(bool anyOnline)
{
    const int status = anyOnline ? m_client.getConnectedStatus() : -1;
    m_events.checked(m_start.loadResult(), status, m_start.region());
    const bool up = status == 1;
    if (up == m_bCloudUp)
        return;
    m_bCloudUp = up;
    m_events.cloudChanged(up);
}
