// The 4G page of the Network group.
#pragma once

#include "network/DeviceSwitch.h"
#include "network/NetRecord.h"
#include "platform/net.h"

#include <QWidget>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

class QLineEdit;

namespace Ui {
class Net4G;
}

// Hands the modem's AT information to `page`, a Net4G. Always 0; -1 without a page. Network
// client's thread.
int CallBackup(netT::tag_atCollect &info, void *page);

// Shows the cellular device as the network service's records describe it, and the modem as its AT
// information does; sends the service what the operator asks for. The device's switch changes on
// the page when a record says so. GUI thread, but for what is marked otherwise.
class Net4G : public QWidget
{
    Q_OBJECT

public:
    explicit Net4G(QWidget *parent = nullptr);
    ~Net4G() override;

    // Registers for the modem's AT information, for the life of the program; tells the operator if
    // the network service does not run. Once.
    void start();

    // A new record of kind "4G".
    void setNetInfo(const netT::stAllNetInfo_tag &record);

    // Copies the AT information and emits sgl_4GNetChange(). Any thread.
    void takeAtInfo(const netT::tag_atCollect &info);

    // Sets texts and style sheets anew, after a language change.
    void retranslate();

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void sgl_4GNetChange();

private slots:
    void slot_ButtonPressed();
    void slot_4GNetChange();

private:
    void press(QObject *target);
    void edit(QLineEdit *field);
    void setPresent(bool present);
    void setOn(bool on);
    void listen(bool on);
    void showAddress(const std::string &dotted);
    void showSignal();
    void refreshApn();
    void showApnMode(bool manual);
    void updateApnHint();
    void sendApn();
    void showAtInfo();
    netT::tag_atCollect atInfo() const;

    std::unique_ptr<Ui::Net4G> ui;
    std::optional<DeviceSwitch> m_switch;
    std::string m_sDevName;
    AddressTexts m_addresses; // of the latest record
    std::string m_sIccid;
    std::string m_sImei;
    int m_nCsq = 0;
    int m_nBars = 0;                 // the signal icon's, while the device is on
    netT::stApnInfo_tag m_apn;       // what the page shows
    netT::stApnInfo_tag m_servedApn; // what the service holds, as far as known
    bool m_bListening = false;
    bool m_bApnUnsent = false;  // chosen by the operator, not yet complete enough to send
    bool m_bEditing = false;    // the keyboard is open
    bool m_bRefreshDue = false; // an APN refresh waits for it to close

    mutable std::mutex m_atMutex; // guards the copy, which the network client's thread writes
    netT::tag_atCollect m_atInfo;
    std::atomic<bool> m_bAtInfoNew{false}; // the copy has not been shown since it was written
};
