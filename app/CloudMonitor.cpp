#include "app/CloudMonitor.h"

#include "platform/board.h"

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

CloudMonitor::CloudMonitor(const netT::CAsyncClient &client, Events events)
    : m_client(client),
      m_events(std::move(events)),
      m_links{{{PLATFORM::DEV_ETH, "ETH", true, false},
               {PLATFORM::DEV_WIFI, "WIFI", true, false},
               {PLATFORM::DEV_4G, "4G", false, false}}}
{
}

void CloudMonitor::run(const std::vector<netT::stAllNetInfo_tag> &records)
{
    checkCloud(checkLinks(records));
}

bool CloudMonitor::checkLinks(const std::vector<netT::stAllNetInfo_tag> &records)
{
    bool anyOnline = false;
    for (Link &link : m_links) {
        bool online = false;
        for (const netT::stAllNetInfo_tag &record : records) {
            if (record.sNetType == link.kind)
                online = isOnline(record, link.pinged);
        }
        anyOnline = anyOnline || online;
        if (online == link.online)
            continue;
        link.online = online;
        m_events.linkChanged(link.type, online);
    }
    return anyOnline;
}

void CloudMonitor::checkCloud(bool anyOnline)
{
    const int status = anyOnline ? m_client.getConnectedStatus() : -1;
    m_events.checked(m_nLoadResult, status);
    const bool up = status == 1;
    if (up == m_bCloudUp)
        return;
    m_bCloudUp = up;
    m_events.cloudChanged(up);
}
