#include "network/WifiRefresh.h"

#include "platform/cos_time.h"

#include <algorithm>

namespace {

constexpr std::int64_t PERIOD_MS = 10000;
constexpr std::int64_t NEVER = -PERIOD_MS - 1; // the first tick is due at once
constexpr unsigned int TIMEOUT_MS = 5000;

} // namespace

WifiRefresh::WifiRefresh(Reports reports) : m_reports(std::move(reports)), m_nLastRefresh(NEVER) {}

[[gnu::hot]] void WifiRefresh::run()
{
    if (m_bVisible && m_bEnabled)
        refresh();
}

void WifiRefresh::refresh()
{
    const std::int64_t now = COS::CosTime::GetTickCountCos();
    if (now - m_nLastRefresh <= PERIOD_MS)
        return;
    m_nLastRefresh = now;
    if (m_nState != netT::WIFI_CONNECTING)
        scan();
    if (m_bPolls)
        poll();
}

void WifiRefresh::scan()
{
    m_reports.scanBegins();
    std::vector<netT::stApInfo_tag> list;
    m_bScanFailed = netT::getAPList(list, true, TIMEOUT_MS) < 0;
    m_reports.scanEnds();
    // A scan that found nothing, or whose device is off by now, changes nothing.
    if (!list.empty() && m_bEnabled)
        takeScan(std::move(list));
}

void WifiRefresh::takeScan(std::vector<netT::stApInfo_tag> list)
{
    std::stable_sort(list.begin(), list.end(),
                     [](const netT::stApInfo_tag &one, const netT::stApInfo_tag &other) {
                         return one.nLevel > other.nLevel;
                     });
    {
        const std::unique_lock<std::mutex> lock(m_mutex);
        m_list.swap(list);
    }
    m_reports.listChanged();
}

void WifiRefresh::suspendPoll()
{
    m_bPolls = false;
    ++m_nSuspensions;
}

void WifiRefresh::poll()
{
    const unsigned int suspensions = m_nSuspensions;
    netT::WIFI_STATE_T state = netT::WIFI_IDLE;
    if (netT::getStatus(state, false, TIMEOUT_MS) < 0 || state != netT::WIFI_FAILED)
        return;
    // An answer that was long under way may be about a network that is no longer asked for, or meet
    // a page that has been left; it will be asked for again.
    if (suspensions == m_nSuspensions && m_bVisible && takeFailure())
        m_reports.joiningFailed();
}
