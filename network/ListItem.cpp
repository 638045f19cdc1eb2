#include "network/ListItem.h"

#include "app/look/OutsideText.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "network/SignalIcon.h"
#include "ui_ListItem.h"

ListItem::ListItem(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::ListItem>())
{
    ui->setupUi(this);
    growLayouts(this);
    const int side = touchHeight() * 3 / 4;
    ui->lab_signal->setFixedSize(side, side);
    ui->lab_Ok->setFixedSize(side, side);
    ui->lab_ip->setPadded(true); // as the name on its chip
    setMode(IDLE);
}

ListItem::~ListItem() = default;

QString ListItem::shownName(const std::string &ssid)
{
    return ssid.empty() ? tr("Hidden network") : shownBytes(ssid);
}

bool ListItem::shows(const netT::stApInfo_tag &accessPoint) const
{
    return m_bHasNetwork && isSameNetwork(accessPoint, m_accessPoint);
}

void ListItem::setAccessPoint(const netT::stApInfo_tag &accessPoint)
{
    const bool another = !shows(accessPoint);
    m_accessPoint = accessPoint;
    m_bHasNetwork = true;
    if (another) {
        ui->lab_ssid->setText(shownName(accessPoint.sSsid));
        if (!isLevel(accessPoint.nLevel))
            setStyleOnce(ui->lab_signal, QString());
    }
    showLevel();
}

void ListItem::setLevel(int level)
{
    m_accessPoint.nLevel = level;
    showLevel();
}

void ListItem::showLevel()
{
    if (isLevel(m_accessPoint.nLevel))
        showIcon(ui->lab_signal, wifiSignalIcon(m_accessPoint));
}

void ListItem::setMode(Mode mode)
{
    ui->lab_Ok->setVisible(mode != IDLE);
    ui->lab_ip->setVisible(mode == CONNECTED);
    ui->lab_ssid->setChip(mode == CONNECTED);
    switch (mode) {
    case IDLE:
        ui->lab_Ok->stop();
        setStyleOnce(ui->lab_ssid, QString());
        break;
    case CONNECTING:
        setStyleOnce(ui->lab_Ok, QString());
        ui->lab_Ok->start();
        setStyleOnce(ui->lab_ssid, textColourStyle(QStringLiteral("connectingName")));
        break;
    case CONNECTED:
        ui->lab_Ok->stop();
        showIcon(ui->lab_Ok, QStringLiteral("tick.png"));
        setStyleOnce(ui->lab_ssid, textColourStyle(QStringLiteral("connectedName")));
        break;
    }
}

void ListItem::setAddress(const std::string &address)
{
    ui->lab_ip->setText(shownBytes(address));
}

void ListItem::retranslate()
{
    if (m_bHasNetwork)
        ui->lab_ssid->setText(shownName(m_accessPoint.sSsid));
}
