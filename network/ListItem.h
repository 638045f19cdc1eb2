// One Wi-Fi network: a row of the list, or the connected one above it. Its mark lab_Ok is the
// loading animation or the tick.
#pragma once

#include "network/AccessPoint.h"

#include <QWidget>

#include <memory>
#include <string>

namespace Ui {
class ListItem;
}

// GUI thread.
class ListItem : public QWidget
{
    Q_OBJECT

public:
    enum Mode {
        IDLE = 0,       // no mark
        CONNECTING = 1, // the loading animation
        CONNECTED = 2,  // a tick, and the address
    };

    explicit ListItem(QWidget *parent = nullptr);
    ~ListItem() override;

    // A network's name as a person can read it; a network that hides its name has a placeholder.
    static QString shownName(const std::string &ssid);

    // Whether it shows this network already, whatever its level.
    bool shows(const netT::stApInfo_tag &accessPoint) const;
    // Shows the network. A level that is none leaves the icon of the same network as it was.
    void setAccessPoint(const netT::stApInfo_tag &accessPoint);
    void setLevel(int level);
    void setMode(Mode mode);
    // The panel's own address in the network.
    void setAddress(const std::string &address);

    void retranslate();

private:
    void showLevel();

    std::unique_ptr<Ui::ListItem> ui;
    netT::stApInfo_tag m_accessPoint;
    bool m_bHasNetwork = false; // shows an access point at all
};
