#include "network/NetEth.h"

#include "app/look/FontStyle.h"
#include "app/look/Screen.h"
#include "app/look/Spacing.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "network/NetRecord.h"
#include "network/ServiceTimeouts.h"
#include "ui_NetEth.h"

#include <QLineEdit>
#include <QMouseEvent>

#include <cstdio>

NetEth::NetEth(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::NetEth>())
{
    ui->setupUi(this);
    m_switch.emplace(
        DeviceSwitch::Widgets{ui->btn_EthSwitch, ui->label_move, ui->label_null, ui->lab_EthStatus},
        PLAIN_SWITCH);
    m_switch->setTexts(tr("Enable"), tr("Unplugged"));
    m_addresses.emplace(this, ETHERNET_POLICY);
    for (QWidget *radio : {ui->radio_Dhcp, ui->radio_Static})
        radio->setMinimumHeight(touchHeight());
    for (QLineEdit *field : findChildren<QLineEdit *>())
        field->setMinimumHeight(touchHeight());
    setEthPage(false);
    enableControls();
    connect(ui->btn_EthSwitch, &QPushButton::clicked, this, &NetEth::slot_ButtonPressed);
}

NetEth::~NetEth() = default;

void NetEth::setNetInfo(const netT::stAllNetInfo_tag &record)
{
    printRecord(record, m_addresses->stored());
    const bool present = netT::netIsExist(record.sDevName, false, NET_SERVICE_TIMEOUT_MS) >= 0;
    m_switch->setPresent(present);
    enableControls();
    if (!present) {
        std::printf("net [%s] Is not Exist!\n", record.sDevName.c_str());
        return;
    }
    m_sDevName = record.sDevName;
    m_addresses->setDevice(m_sDevName);

    const bool on = saysEnable(record.sFunction);
    if (on != m_switch->isOn()) {
        setEthPage(on);
        enableControls();
    }
    if (!on)
        return;
    showAddressing(record);
    m_addresses->update(addressesOf(record));
    if (m_sMac != record.sMacAddr) {
        m_sMac = record.sMacAddr;
        ui->lab_EthMac->setText(QString::fromStdString(m_sMac));
    }
}

void NetEth::retranslate()
{
    ui->retranslateUi(this);
    const int caption = captionWidth();
    ui->lab_EthCaption->setMinimumWidth(caption);
    ui->addressGrid->setColumnMinimumWidth(0, caption + spacing(2));
    updateHint();
    m_switch->setTexts(tr("Enable"), tr("Unplugged"));
    setStyleWhenSeen(this, growingRadioStyle());
    setStyleWhenSeen(ui->widget_EthIndetail, addressStyle(m_addresses->isEditable()));
}

bool NetEth::eventFilter(QObject *watched, QEvent *event)
{
    if (isPress(watched, event))
        press(watched);
    return QWidget::eventFilter(watched, event);
}

void NetEth::press(QObject *target)
{
    if (target == ui->radio_Static) {
        keyClick();
        m_addresses->stopDhcp();
        showStaticView();
    } else if (target == ui->radio_Dhcp) {
        keyClick();
        m_addresses->startDhcp();
        showDhcpView();
    } else if (QLineEdit *field = m_addresses->fieldOf(target)) {
        m_addresses->edit(field);
    }
}

void NetEth::slot_ButtonPressed()
{
    m_switch->press();
    enableControls();
    m_switch->request(m_sDevName);
}

// Disabled while the device is absent or has been asked to change.
void NetEth::enableControls()
{
    const bool enabled = m_switch->isReady();
    ui->radio_Dhcp->setEnabled(enabled);
    ui->radio_Static->setEnabled(enabled);
    ui->widget_EthIndetail->setEnabled(enabled);
    watchRadios(enabled);
    updateHint();
}

// The text in place of the addresses; empty until the first record.
void NetEth::updateHint()
{
    QString text;
    if (!m_switch->isPresent())
        text = m_switch->isKnown() ? tr("No Ethernet device was found.") : QString();
    else
        text = m_switch->isOn() ? tr("Waiting for an address.") : tr("Ethernet is switched off.");
    ui->lab_replacwidgetEth->setText(text);
}

void NetEth::setEthPage(bool on)
{
    std::printf("NetEth setEthPage [%d]\n", on ? 1 : 0);
    m_switch->setOn(on);
    ui->radio_Dhcp->setVisible(on);
    ui->radio_Static->setVisible(on);
    if (on) {
        showBlock(!m_bDhcp);
        return;
    }
    showDhcpView();
    m_addresses->forget();
    m_sMac.clear();
}

void NetEth::showAddressing(const netT::stAllNetInfo_tag &record)
{
    if (saysEnable(record.sDhcp)) {
        if (!m_bDhcp)
            showDhcpView();
        showBlock(!record.sIpAddr.empty());
    } else {
        if (m_bDhcp)
            showStaticView();
        showBlock(true);
    }
}

void NetEth::showDhcpView()
{
    m_bDhcp = true;
    m_addresses->setEditable(false);
    ui->radio_Dhcp->setChecked(true);
    showBlock(false);
    underline(false);
}

void NetEth::showStaticView()
{
    m_bDhcp = false;
    showBlock(true);
    ui->radio_Static->setChecked(true);
    m_addresses->setEditable(true);
    underline(true);
}

void NetEth::underline(bool underlined)
{
    const auto setStyle = isVisible() ? setStyleOnce : setStyleWhenSeen;
    setStyle(ui->widget_EthIndetail, addressStyle(underlined));
}

void NetEth::showBlock(bool visible)
{
    ui->widget_EthIndetail->setVisible(visible);
    ui->lab_replacwidgetEth->setVisible(!visible);
}

void NetEth::watchRadios(bool watched)
{
    for (QRadioButton *radio : {ui->radio_Dhcp, ui->radio_Static}) {
        if (watched)
            radio->installEventFilter(this);
        else
            radio->removeEventFilter(this);
    }
}
