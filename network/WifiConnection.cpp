#include "network/WifiConnection.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

using Lock = std::lock_guard<std::mutex>;

constexpr std::int64_t JOIN_PATIENCE_MS = 15000;
constexpr std::int64_t SECOND_TOUCH_MS = 400;

std::optional<WifiLink> linkOf(int state)
{
    switch (state) {
    case netT::WIFI_IDLE:
    case netT::WIFI_INACTIVE:
    case netT::WIFI_DISCONNECTED:
    case netT::WIFI_DISABLED:
        return WifiLink::Apart;
    case netT::WIFI_SCANNED:
        return WifiLink::Found;
    case netT::WIFI_CONNECTING:
        return WifiLink::Joining;
    case netT::WIFI_FAILED:
        return WifiLink::Failed;
    case netT::WIFI_CONNECTED:
        return WifiLink::Connected;
    default:
        return std::nullopt;
    }
}

bool isOnItsWay(WifiLink link)
{
    return link == WifiLink::Found || link == WifiLink::Joining;
}

} // namespace

// --- The connection ----------------------------------------------------------------------------

WifiActions WifiConnection::setVisible(bool visible)
{
    const Lock lock(m_mutex);
    m_bVisible = visible;
    if (!visible || !std::exchange(m_bNetworkHidden, false))
        return NOTHING;
    return ASK_NETWORK;
}

void WifiConnection::setDevice(bool on, bool usable)
{
    const Lock lock(m_mutex);
    m_bOn = on;
    m_bUsable = usable;
}

WifiActions WifiConnection::leaveDevice()
{
    {
        const Lock lock(m_mutex);
        ++m_nTicket;
        m_nJoined.reset();
        m_bOn = false;
        m_bUsable = false;
        m_bScanned = false;
    }
    return take(netT::WIFI_IDLE);
}

WifiActions WifiConnection::answered(std::optional<int> state, AskedBy by, std::int64_t nowMs)
{
    const Lock lock(m_mutex);
    if (!state)
        return by == AskedBy::Record ? WAIT : NOTHING;
    const auto link = linkOf(*state);
    if (link == WifiLink::Failed)
        return m_bVisible && announceFailure() ? ANNOUNCE_FAILURE : NOTHING;
    if (link && isNews(*link, nowMs))
        return TAKE_STATE;
    return by == AskedBy::TimeOut && isOnItsWay() ? WAIT : NOTHING;
}

bool WifiConnection::isNews(WifiLink link, std::int64_t nowMs) const
{
    if (::isOnItsWay(link))
        return link != m_link;
    const bool passing = m_nJoined && nowMs - *m_nJoined <= JOIN_PATIENCE_MS;
    return link == WifiLink::Connected || m_link == WifiLink::Connected ||
           (isOnItsWay() && !passing);
}

bool WifiConnection::isOvertaken(int state)
{
    const Lock lock(m_mutex);
    if (state != netT::WIFI_FAILED)
        return false;
    if (m_nOvertaken == 0) {
        m_nAnnounced -= std::min(m_nAnnounced, 1U);
        return false;
    }
    --m_nOvertaken;
    return true;
}

WifiActions WifiConnection::take(int state)
{
    const Lock lock(m_mutex);
    const auto link = linkOf(state);
    if (!link)
        return NOTHING;
    m_link = *link;
    const bool failed = m_link == WifiLink::Failed;
    const bool connected = m_link == WifiLink::Connected;
    if (failed || connected)
        m_nJoined.reset();
    if (failed)
        suspendPolls();
    else
        m_nOvertaken += std::exchange(m_nAnnounced, 0);

    WifiActions actions = isOnItsWay() ? WAIT : STOP_WAITING;
    const bool hasNetwork = isOnItsWay() || connected;
    m_bNetworkHidden = hasNetwork && !m_bVisible;
    if (hasNetwork && m_bVisible)
        actions |= ASK_NETWORK;
    if (!hasNetwork) {
        m_sNetwork.clear();
        actions |= HIDE_NETWORK;
    }
    if (failed && !std::exchange(m_bBoxOpen, true))
        actions |= SHOW_FAILURE;
    return actions;
}

WifiActions WifiConnection::named(const std::optional<std::string> &network)
{
    const Lock lock(m_mutex);
    if (network)
        m_sNetwork = *network;
    else if (m_sNetwork.empty())
        return WAIT; // the row would show the name that stood there before
    return isOnItsWay() || m_link == WifiLink::Connected ? SHOW_NETWORK : NOTHING;
}

WifiActions WifiConnection::timedOut() const
{
    const Lock lock(m_mutex);
    if (!m_bVisible)
        return WAIT;
    return m_bOn ? ASK_STATE : NOTHING;
}

void WifiConnection::failureRead()
{
    const Lock lock(m_mutex);
    m_bBoxOpen = false;
}

bool WifiConnection::isOnItsWay() const
{
    return ::isOnItsWay(m_link);
}

bool WifiConnection::isJoining() const
{
    const Lock lock(m_mutex);
    return isOnItsWay();
}

bool WifiConnection::isUsable() const
{
    const Lock lock(m_mutex);
    return m_bUsable;
}

// --- Joining -----------------------------------------------------------------------------------

bool WifiConnection::mayJoin(const netT::stApInfo_tag &accessPoint, std::int64_t nowMs) const
{
    const Lock lock(m_mutex);
    const bool isSecondTouch = m_nJoined && nowMs - *m_nJoined <= SECOND_TOUCH_MS;
    return !accessPoint.sSsid.empty() && !isSecondTouch;
}

void WifiConnection::beginJoin()
{
    const Lock lock(m_mutex);
    suspendPolls();
}

void WifiConnection::joined(const netT::stApInfo_tag &accessPoint, bool taken, std::int64_t nowMs)
{
    const Lock lock(m_mutex);
    m_sNetwork = accessPoint.sSsid;
    m_nJoined = nowMs;
    m_bPolls = m_bPolls || taken;
}

// --- The refresh job ---------------------------------------------------------------------------

bool WifiConnection::isWatched() const
{
    const Lock lock(m_mutex);
    return m_bVisible && m_bUsable;
}

bool WifiConnection::mayScan() const
{
    const Lock lock(m_mutex);
    return m_link != WifiLink::Joining;
}

bool WifiConnection::scanned(bool failed, std::vector<netT::stApInfo_tag> list)
{
    const Lock lock(m_mutex);
    m_bScanFailed = failed;
    m_bScanned = m_bOn;
    if (list.empty() || !m_bUsable)
        return false;
    store(list);
    return true;
}

std::optional<unsigned> WifiConnection::pollTicket() const
{
    const Lock lock(m_mutex);
    return m_bPolls ? std::optional(m_nTicket) : std::nullopt;
}

bool WifiConnection::pollFailed(unsigned ticket)
{
    const Lock lock(m_mutex);
    return ticket == m_nTicket && m_bVisible && m_bOn && announceFailure();
}

bool WifiConnection::announceFailure()
{
    if (std::exchange(m_link, WifiLink::Failed) == WifiLink::Failed)
        return false;
    ++m_nAnnounced;
    return true;
}

void WifiConnection::suspendPolls()
{
    m_bPolls = false;
    ++m_nTicket;
}

// --- The list ----------------------------------------------------------------------------------

void WifiConnection::setList(std::vector<netT::stApInfo_tag> list)
{
    const Lock lock(m_mutex);
    store(list);
}

void WifiConnection::store(std::vector<netT::stApInfo_tag> &list)
{
    std::stable_sort(list.begin(), list.end(),
                     [](const netT::stApInfo_tag &one, const netT::stApInfo_tag &other) {
                         return one.nLevel > other.nLevel;
                     });
    m_list.swap(list);
}

bool WifiConnection::isCurrent(const netT::stApInfo_tag &accessPoint) const
{
    netT::stApInfo_tag current;
    current.sSsid = m_sNetwork;
    return !m_sNetwork.empty() && isSameNetwork(accessPoint, current);
}

std::vector<netT::stApInfo_tag> WifiConnection::rows() const
{
    std::vector<netT::stApInfo_tag> others;
    if (m_bOn)
        std::copy_if(m_list.begin(), m_list.end(), std::back_inserter(others),
                     [this](const netT::stApInfo_tag &each) { return !isCurrent(each); });
    return others;
}

std::optional<int> WifiConnection::level() const
{
    const Lock lock(m_mutex);
    const auto own = std::find_if(m_list.begin(), m_list.end(),
                                  [this](const auto &each) { return isCurrent(each); });
    return own == m_list.end() ? std::nullopt : std::optional(own->nLevel);
}

WifiConnection::Search WifiConnection::search() const
{
    const Lock lock(m_mutex);
    if (!m_bScanned)
        return Search::Running;
    if (m_bScanFailed)
        return Search::Failed;
    return m_sNetwork.empty() ? Search::FoundNothing : Search::FoundNoOther;
}
