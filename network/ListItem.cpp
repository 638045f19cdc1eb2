#include "network/ListItem.h"

#include "app/look/OutsideText.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "ui_ListItem.h"

namespace {

constexpr int LEAST_SECURED = 2;
constexpr int STRONGEST = 100;
constexpr int STEPS = 4; // icons above the one without a signal

QString signalIcon(const netT::stApInfo_tag &accessPoint)
{
    return QStringLiteral("wifi%1_%2.png")
        .arg(isSecured(accessPoint) ? 2 : 1)
        .arg((accessPoint.nLevel * STEPS + STRONGEST - 1) / STRONGEST);
}

} // namespace

bool isSecured(const netT::stApInfo_tag &accessPoint)
{
    return accessPoint.nSecurity >= LEAST_SECURED;
}

bool isLevel(int level)
{
    return level >= 0 && level <= STRONGEST;
}

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
    return m_bNamed && accessPoint.sSsid == m_accessPoint.sSsid &&
           isSecured(accessPoint) == isSecured(m_accessPoint);
}

void ListItem::setAccessPoint(const netT::stApInfo_tag &accessPoint)
{
    const bool another = !shows(accessPoint);
    m_accessPoint = accessPoint;
    m_bNamed = true;
    if (another) {
        ui->lab_ssid->setText(shownName(accessPoint.sSsid));
        if (!isLevel(accessPoint.nLevel))
            setStyleOnce(ui->lab_signal, QString());
    }
    showSignal();
}

void ListItem::setLevel(int level)
{
    m_accessPoint.nLevel = level;
    showSignal();
}

void ListItem::showSignal()
{
    if (isLevel(m_accessPoint.nLevel))
        showIcon(ui->lab_signal, signalIcon(m_accessPoint));
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
    if (m_bNamed)
        ui->lab_ssid->setText(shownName(m_accessPoint.sSsid));
}
