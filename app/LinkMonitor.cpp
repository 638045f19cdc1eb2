#include "app/LinkMonitor.h"

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

LinkMonitor::LinkMonitor(Events events)
    : m_events(std::move(events)),
      m_links{{{PLATFORM::DEV_ETH, "ETH", true, false},
               {PLATFORM::DEV_WIFI, "WIFI", true, false},
               {PLATFORM::DEV_4G, "4G", false, false}}}
{
}

bool LinkMonitor::run(const std::vector<netT::stAllNetInfo_tag> &records)
{
    std::array<bool, std::tuple_size_v<decltype(m_links)>> online{};
    for (const netT::stAllNetInfo_tag &record : records) {
        if (m_bStopped)
            return false;
        m_events.beforeRecord();
        for (std::size_t i = 0; i < m_links.size(); ++i) {
            if (record.sNetType == m_links[i].kind) // the last record of a kind decides
                online[i] = isOnline(record, m_links[i].pinged);
        }
    }
    if (m_bStopped)
        return false;
    for (std::size_t i = 0; i < m_links.size(); ++i) {
        if (std::exchange(m_links[i].online, online[i]) != online[i])
            m_events.changed(m_links[i].type, online[i]);
    }
    return true;
}

bool LinkMonitor::isAnyOnline() const
{
    return std::any_of(m_links.begin(), m_links.end(),
                       [](const Link &link) { return link.online; });
}
