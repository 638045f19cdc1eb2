// The dialog over the Wi-Fi page in which the wireless device's addresses are seen and set.
#pragma once

#include "network/AddressEditor.h"

#include <QDialog>

#include <memory>
#include <optional>
#include <string>

namespace Ui {
class WifiPara;
}

// Every field is sent as soon as its keyboard closes; the button only closes the dialog. The page
// that opens it tells what the service reports, through the slots. GUI thread.
class WifiPara : public QDialog
{
    Q_OBJECT

public:
    // Sized and placed over `page`.
    explicit WifiPara(QWidget *page);
    ~WifiPara() override;

    // The device that is set. Asks the service whether it uses DHCP, for the fields' look alone.
    void setDevName(const std::string &device);

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void slot_DHCP(bool on);
    void slot_Mac(std::string mac);
    // Dotted texts; one that has not four parts clears its fields.
    void slot_IpPara(std::string address, std::string mask, std::string gateway);
    void slot_Dns(std::string preferred, std::string alternate);
    void slot_ButtonPressed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void press(QObject *target);
    void setLook(bool dhcp);

    std::unique_ptr<Ui::WifiPara> ui;
    std::optional<AddressEditor> m_addresses;
};
