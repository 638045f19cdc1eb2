// The Ethernet page of the Network group.
#pragma once

#include "network/AddressEditor.h"
#include "network/DeviceSwitch.h"
#include "platform/net.h"

#include <QWidget>

#include <memory>
#include <optional>
#include <string>

namespace Ui {
class NetEth;
}

// Shows the wired device as the network service's records describe it, and sends the service what
// the operator asks for. There is no save button: a field is sent when its keyboard closes. The
// device's state is never guessed; it changes on the page when a record says so. GUI thread.
class NetEth : public QWidget
{
    Q_OBJECT

public:
    explicit NetEth(QWidget *parent = nullptr);
    ~NetEth() override;

    // A new record of kind "ETH".
    void setNetInfo(const netT::stAllNetInfo_tag &record);

    // Sets texts and style sheets anew, after a language change.
    void retranslate();

    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void slot_ButtonPressed();

private:
    void press(QObject *target);
    void enableControls();
    void updateHint();
    void setEthPage(bool on);
    void showAddressing(const netT::stAllNetInfo_tag &record);
    void showDhcpView();
    void showStaticView();
    void underline(bool underlined);
    void showBlock(bool visible);
    void watchRadios(bool watched);

    std::unique_ptr<Ui::NetEth> ui;
    std::optional<DeviceSwitch> m_switch;
    std::optional<AddressEditor> m_addresses;
    std::string m_sDevName;
    std::string m_sMac;
    bool m_bDhcp = true;
};
