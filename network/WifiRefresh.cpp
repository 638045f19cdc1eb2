#include "network/WifiRefresh.h"

#include "network/ServiceTimeouts.h"
#include "network/WifiConnection.h"
#include "platform/cos_time.h"

#include <utility>

namespace {

constexpr std::int64_t PERIOD_MS = 10000;
constexpr std::int64_t NEVER = -PERIOD_MS - 1; // the first tick is due at once

} // namespace

WifiRefresh::WifiRefresh(WifiConnection &connection, Reports reports)
    : m_connection(connection), m_reports(std::move(reports)), m_nLastMs(NEVER)
{
}

void WifiRefresh::run()
{
    if (!m_connection.isWatched())
        return;
    const std::int64_t now = COS::CosTime::GetTickCountCos();
    if (now - m_nLastMs <= PERIOD_MS)
        return;
    m_nLastMs = now;
    if (m_connection.mayScan())
        scan();
    if (const auto ticket = m_connection.pollTicket())
        poll(*ticket);
}

void WifiRefresh::scan()
{
    m_reports.scanBegins();
    std::vector<netT::stApInfo_tag> list;
    const bool failed = netT::getAPList(list, true, NET_SERVICE_TIMEOUT_MS) < 0;
    const bool changed = m_connection.scanned(failed, std::move(list));
    m_reports.scanEnds();
    if (changed)
        m_reports.listChanged();
}

void WifiRefresh::poll(unsigned ticket)
{
    netT::WIFI_STATE_T state = netT::WIFI_IDLE;
    const bool answered = netT::getStatus(state, false, NET_SERVICE_TIMEOUT_MS) >= 0;
    if (answered && state == netT::WIFI_FAILED && m_connection.pollFailed(ticket))
        m_reports.joiningFailed();
}
