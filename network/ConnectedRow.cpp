#include "network/ConnectedRow.h"

#include "app/look/Screen.h"

#include <QVBoxLayout>

ConnectedRow::ConnectedRow(const Widgets &widgets) : m_widgets(widgets)
{
    m_widgets.place->setMinimumHeight(touchHeight() * 3 / 2); // two lines
    hide();
}

ListItem *ConnectedRow::item()
{
    if (m_pItem == nullptr) {
        m_pItem = new ListItem;
        m_widgets.place->layout()->addWidget(m_pItem);
    }
    return m_pItem;
}

void ConnectedRow::setAccessPoint(const netT::stApInfo_tag &accessPoint)
{
    item()->setAccessPoint(accessPoint);
}

void ConnectedRow::setLevel(int level)
{
    item()->setLevel(level);
}

void ConnectedRow::setAddress(const std::string &address)
{
    if (m_pItem != nullptr)
        m_pItem->setAddress(address);
}

void ConnectedRow::show(ListItem::Mode mode)
{
    item()->setMode(mode);
    m_widgets.place->show();
    m_widgets.separator->show();
    stretch(1, 2, 20);
}

void ConnectedRow::hide()
{
    if (m_pItem != nullptr)
        m_pItem->setMode(ListItem::IDLE);
    m_widgets.place->hide();
    m_widgets.separator->hide();
    stretch(0, 0, 23);
}

void ConnectedRow::retranslate()
{
    if (m_pItem != nullptr)
        m_pItem->retranslate();
}

void ConnectedRow::stretch(int place, int separator, int list)
{
    m_widgets.page->setStretchFactor(m_widgets.place, place);
    m_widgets.page->setStretchFactor(m_widgets.separator, separator);
    m_widgets.page->setStretchFactor(m_widgets.list, list);
}
