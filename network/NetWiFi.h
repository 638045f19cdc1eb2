// The Wi-Fi page of the Network group.
#pragma once

#include "network/ConnectedRow.h"
#include "network/DeviceSwitch.h"
#include "network/NetRecord.h"
#include "network/WifiConnection.h"
#include "network/WifiRefresh.h"
#include "platform/net.h"

#include <QTimer>
#include <QWidget>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class QListWidgetItem;
class WifiPara;

namespace Ui {
class NetWiFi;
}

// Shows the wireless device, the network that it is in or joins, and those in range; joins one that
// is touched. GUI thread, but for what is marked otherwise and the signals of the refresh job.
// The rate timer must have ended before the page goes.
class NetWiFi : public QWidget
{
    Q_OBJECT

public:
    explicit NetWiFi(QWidget *parent = nullptr);
    ~NetWiFi() override;

    // Starts the refresh job, or tells the operator that the network service does not run. Once.
    void startRefresh();

    // A new record of kind "WIFI".
    void setNetInfo(const netT::stAllNetInfo_tag &record);

    // The device of the last record whose device was there; empty before.
    const std::string &deviceName() const { return m_sDevName; }

    // Whether the page is the tab that is seen of its group. It may be covered all the same.
    void setPageVisible(bool visible);

    // Sets texts and style sheets anew, after a language change.
    void retranslate();

    // One tick of the refresh job. Rate timer's thread.
    void refresh() { m_refresh.run(); }

    // Shows another list of access points, in any order, as the refresh job does. Any thread.
    void setAccessPoints(std::vector<netT::stApInfo_tag> list);

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void sgl_RefWifiList();
    void sgl_MovieStart();
    void sgl_MovieStop();
    void sgl_UpdataState(int state);
    void sgl_DHCP(bool on);
    void sgl_Mac(std::string mac);
    void sgl_IpPara(std::string address, std::string mask, std::string gateway);
    void sgl_Dns(std::string preferred, std::string alternate);
    void sgl_SetExist(bool exists);

public slots:
    void slot_SetExist(bool exists);
    void slot_Enable(bool on);
    void slot_ButtonPressed();
    // Rebuilds the rows.
    void RefWifiList();
    void slot_itemClicked(QListWidgetItem *item);
    // Whether the place of the scan's animation is there.
    void slot_MoveShow(bool shown);
    // A state of the connection, of WIFI_STATE_T; any other is ignored.
    void slot_UpdataState(int state);
    void slot_RefWifiList();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void makeConnections();
    bool isOn() const;
    void leaveDevice();
    void showDevice();
    void updateVisible();
    void explainEmptyList();
    QString searchText() const;

    void takeAddressing(const netT::stAllNetInfo_tag &record);
    void perform(WifiActions actions);
    void askState(WifiConnection::AskedBy by);
    void askNetwork();
    void showNetwork();
    void showFailureBox();

    void join(const netT::stApInfo_tag &accessPoint, const std::string &password);
    void openParameters();

    std::unique_ptr<Ui::NetWiFi> ui;
    std::optional<DeviceSwitch> m_switch;
    std::optional<ConnectedRow> m_topRow;
    WifiPara *m_pDialog = nullptr; // while it is open
    WifiConnection m_connection;
    WifiRefresh m_refresh;
    QTimer m_timeOut{this}; // of m_connection

    std::string m_sDevName;
    AddressTexts m_addresses;
    std::string m_sMac;
    bool m_bDhcp = true;
    bool m_bTab = false; // is the tab that is seen of its group
};

// The refresh job. `page` is the NetWiFi; nothing is done without one. Returns 0. Rate timer's
// thread.
int UpdataWifiList(void *page);
