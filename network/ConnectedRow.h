// The place above the list of networks: the one that the panel is in, or on its way into.
#pragma once

#include "network/ListItem.h"

#include <string>

class QVBoxLayout;

// Gives its room to the list while there is no such network. GUI thread.
class ConnectedRow
{
public:
    struct Widgets
    {
        QVBoxLayout *page;
        QWidget *place;
        QWidget *separator;
        QWidget *list;
    };

    // The widgets, all in the layout `page`, must outlive the row. Starts hidden.
    explicit ConnectedRow(const Widgets &widgets);

    void setAccessPoint(const netT::stApInfo_tag &accessPoint);
    void setLevel(int level);
    // The panel's own address in the network.
    void setAddress(const std::string &address);
    // `mode` is CONNECTING or CONNECTED.
    void show(ListItem::Mode mode);
    void hide();
    void retranslate();

private:
    ListItem *item();
    void stretch(int place, int separator, int list);

    Widgets m_widgets;
    ListItem *m_pItem = nullptr; // from the first network on
};
