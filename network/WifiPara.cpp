#include "network/WifiPara.h"

#include "app/look/DismissGuard.h"
#include "app/look/FontStyle.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/Theme.h"
#include "app/look/WidgetLook.h"
#include "network/ServiceTimeouts.h"
#include "platform/net.h"
#include "ui_WifiPara.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int SHADOW = 10;          // pixels around the dialog
constexpr int DARKEST_SHADOW = 150; // alpha
constexpr int ROWS = 7;

// 0.9 of the page's width; as high as its rows need, or what is left of the screen.
void place(QWidget *dialog, const QWidget *page)
{
    const QSize offset = fractionOf(page->size(), 0.05, 0.1);
    const int top = page->mapTo(page->window(), QPoint(0, offset.height())).y();
    const int wished = (ROWS + 1) * touchHeight() + 2 * SHADOW;
    const int height = std::min(wished, screenSize().height() - top);
    placeOverPage(dialog, {fractionOf(page->size(), 0.9, 0).width(), height}, page,
                  {offset.width(), offset.height()});
}

} // namespace

WifiPara::WifiPara(QWidget *page) : QDialog(page), ui(std::make_unique<Ui::WifiPara>())
{
    ui->setupUi(this);
    growLayouts(this);
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    new DismissGuard(this, false);
    m_addresses.emplace(this, WIFI_POLICY);
    m_addresses->setEditable(false);
    ui->radio_Dhcp->installEventFilter(this);
    ui->radio_Static->installEventFilter(this);
    connect(ui->pushButton_2, &QPushButton::clicked, this, &WifiPara::slot_ButtonPressed);
    const int touch = touchHeight();
    for (QWidget *control :
         std::initializer_list<QWidget *>{ui->radio_Dhcp, ui->radio_Static, ui->pushButton_2})
        control->setMinimumHeight(touch);
    ui->pushButton_2->setMinimumWidth(2 * touch);
    ui->addressGrid->setColumnMinimumWidth(0, captionWidth());
    setStyleSheet(wifiParaStyle());
    place(this, page);
}

WifiPara::~WifiPara() = default;

void WifiPara::setDevName(const std::string &device)
{
    m_addresses->setDevice(device);
    setLook(netT::isNetDeviceDhcp(device, true, NET_SERVICE_TIMEOUT_MS) == 0);
}

bool WifiPara::eventFilter(QObject *watched, QEvent *event)
{
    if (isPress(watched, event))
        press(watched);
    return QDialog::eventFilter(watched, event);
}

void WifiPara::press(QObject *target)
{
    if (target == ui->radio_Static) {
        keyClick();
        m_addresses->setEditable(true);
        m_addresses->stopDhcp();
        setLook(false);
    } else if (target == ui->radio_Dhcp) {
        keyClick();
        m_addresses->setEditable(false);
        m_addresses->startDhcp();
        setLook(true);
    } else if (QLineEdit *field = m_addresses->fieldOf(target)) {
        m_addresses->edit(field);
    }
}

void WifiPara::setLook(bool dhcp)
{
    setStyleOnce(ui->widget_EthIndetail, addressStyle(!dhcp));
}

void WifiPara::slot_DHCP(bool on)
{
    setLook(on);
    (on ? ui->radio_Dhcp : ui->radio_Static)->setChecked(true);
    m_addresses->setEditable(!on);
}

void WifiPara::slot_Mac(std::string mac)
{
    ui->lab_EthMac->setText(QString::fromStdString(mac));
}

void WifiPara::slot_IpPara(std::string address, std::string mask, std::string gateway)
{
    m_addresses->showAddress(address, mask, gateway);
}

void WifiPara::slot_Dns(std::string preferred, std::string alternate)
{
    m_addresses->showDns(preferred, alternate);
}

void WifiPara::slot_ButtonPressed()
{
    keyClick();
    hide();
}

// Also hidden by the page when the device goes, maybe under an open keyboard.
void WifiPara::hideEvent(QHideEvent *event)
{
    m_addresses->setEditable(false);
    QDialog::hideEvent(event);
}

void WifiPara::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect().adjusted(SHADOW, SHADOW, -SHADOW, -SHADOW),
                     themeColour(QStringLiteral("dialogPaper")));
    painter.setBrush(Qt::NoBrush);
    for (int inset = SHADOW; inset >= 1; --inset) {
        const double alpha = DARKEST_SHADOW - 50 * std::sqrt(SHADOW - inset);
        painter.setPen(themeColour(QStringLiteral("shadow"), static_cast<int>(alpha)));
        painter.drawRect(inset, inset, width() - 2 * inset, height() - 2 * inset);
    }
}
