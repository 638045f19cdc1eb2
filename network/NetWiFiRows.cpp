// The Wi-Fi page's rows: the network that the panel is in, and those in range.
#include "network/NetWiFi.h"
#include "ui_NetWiFi.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace {

constexpr unsigned int TIMEOUT_MS = 5000;

} // namespace

void NetWiFi::setAccessPoints(std::vector<netT::stApInfo_tag> list)
{
    m_refresh.takeScan(std::move(list));
}

// A new scan also tells how strong the network of the top row is by now.
void NetWiFi::slot_RefWifiList()
{
    RefWifiList();
    m_refresh.withList([this](const std::vector<netT::stApInfo_tag> &list) {
        const auto current =
            std::find_if(list.begin(), list.end(), [this](const netT::stApInfo_tag &accessPoint) {
                return isCurrent(accessPoint);
            });
        if (current != list.end())
            m_topRow->setLevel(current->nLevel);
    });
}

void NetWiFi::RefWifiList()
{
    m_refresh.withList([this](const std::vector<netT::stApInfo_tag> &list) {
        m_rows.clear();
        if (isOn()) {
            std::copy_if(
                list.begin(), list.end(), std::back_inserter(m_rows),
                [this](const netT::stApInfo_tag &accessPoint) { return !isCurrent(accessPoint); });
        }
        ui->list_Wifi->setAccessPoints(m_rows);
    });
    sayWhatIsMissing();
}

// Where the networks would stand. Nothing as long as no record has told of the device.
void NetWiFi::sayWhatIsMissing()
{
    QString text = tr("Searching for networks.");
    if (!m_switch->isPresent())
        text = m_switch->isKnown() ? tr("No WLAN device was found.") : QString();
    else if (!m_switch->isOn())
        text = tr("WLAN is switched off.");
    else if (m_bScanned && m_refresh.hasScanFailed())
        text = tr("The search for networks failed. It is repeated every ten seconds.");
    else if (m_bScanned)
        text = m_sCurrent.empty() ? tr("No network was found.") : tr("No other network was found.");
    ui->list_Wifi->setEmptyText(text);
}

// By its name, which is all that joining goes by.
bool NetWiFi::isCurrent(const netT::stApInfo_tag &accessPoint) const
{
    return !m_sCurrent.empty() && accessPoint.sSsid == m_sCurrent;
}

// Asks the service: only for a page that is seen.
void NetWiFi::showTopRow()
{
    m_bTopRowDue = false;
    netT::stUserInfo_tag info;
    if (netT::getConnectInfo(info, true, TIMEOUT_MS) == 0) {
        std::printf("getConnectInfo = [%s][%s][%d]\n", info.sSsid.c_str(), info.sPassword.c_str(),
                    info.nSecurity);
        m_sCurrent = info.sSsid;
        const int level = netT::getSignal(true, TIMEOUT_MS);
        m_topRow->setAccessPoint({info.nId, level, info.sSsid, std::string(), info.nSecurity});
    } else if (m_sCurrent.empty()) {
        m_askAgain.start(); // a row without a name would show the one that stood there before
        return;
    }
    m_topRow->show(isJoining(m_refresh.state()) ? ListItem::CONNECTING : ListItem::CONNECTED);
    m_topRow->setAddress(m_addresses.sIpAddr);
    RefWifiList();
}

// The network that stood there goes back into the list, if it is in range.
void NetWiFi::hideTopRow()
{
    m_bTopRowDue = false;
    m_sCurrent.clear();
    m_topRow->hide();
    RefWifiList();
}
