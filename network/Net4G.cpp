#include "network/Net4G.h"

#include "app/look/BoxHelpers.h"
#include "app/look/FontStyle.h"
#include "app/look/OutsideText.h"
#include "app/look/Screen.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "input/FieldKeyboard.h"
#include "network/OctetGroup.h"
#include "network/ServiceTimeouts.h"
#include "network/SignalIcon.h"
#include "platform/cos_process.h"
#include "ui_Net4G.h"

#include <QEvent>

#include <array>
#include <cstdio>
#include <tuple>
#include <utility>

namespace {

constexpr int LONGEST_APN_TEXT = 15;
constexpr std::size_t ICCID_TEXT = 0; // of the AT information
constexpr std::size_t IMEI_TEXT = 4;
constexpr std::size_t CSQ_NUMBER = 0;

// Shows the beginning of a text that is too long for the field.
void showFrom(QLineEdit *field, const std::string &text)
{
    field->setText(QString::fromStdString(text));
    field->home(false);
}

bool isSame(const netT::stApnInfo_tag &one, const netT::stApnInfo_tag &other)
{
    const auto fields = [](const netT::stApnInfo_tag &apn) {
        return std::tie(apn.sName, apn.sAuth, apn.sUser, apn.sPassword, apn.sMode);
    };
    return fields(one) == fields(other);
}

} // namespace

int CallBackup(netT::tag_atCollect &info, void *page)
{
    if (page == nullptr)
        return -1;
    static_cast<Net4G *>(page)->takeAtInfo(info);
    return 0;
}

Net4G::Net4G(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::Net4G>())
{
    ui->setupUi(this);
    const int touch = touchHeight();
    ui->lab_4gSignal->setFixedSize(touch, touch);
    m_switch.emplace(
        DeviceSwitch::Widgets{ui->btn_4G, ui->lab_move, ui->lab_null, ui->lab_4gStatus},
        PLAIN_SWITCH);
    m_switch->setTexts(tr("Enable"), tr("Unplugged"));
    for (QWidget *control :
         std::initializer_list<QWidget *>{ui->radio_auto, ui->radio_manual, ui->line_ApnName,
                                          ui->line_ApnAuth, ui->line_ApnUsr, ui->line_ApnPwd}) {
        control->setMinimumHeight(touch);
        control->installEventFilter(this);
    }
    setPresent(false);
    showAddress(std::string());
    showApnMode(false);
    connect(ui->btn_4G, &QPushButton::clicked, this, &Net4G::slot_ButtonPressed);
}

Net4G::~Net4G() = default;

void Net4G::start()
{
    if (COS::CosOsState::GetProcessPIDByName("netServer") < 0) {
        runBox(BOX_INFORMATION, this, tr("netServer not run"));
        return;
    }
    std::puts("init 4g At Info NetWork start");
    const int result = netT::get4gAtInfoCallBackup(CallBackup, this);
    std::puts(result < 0 ? "init 4g At Info NetWork Error" : "init 4g At Info NetWork OK");
}

void Net4G::setNetInfo(const netT::stAllNetInfo_tag &record)
{
    printRecord(record, m_addresses);
    const bool present = netT::netIsExist(record.sDevName, false, NET_SERVICE_TIMEOUT_MS) >= 0;
    setPresent(present);
    if (!present) {
        std::printf("net [%s] Is not Exist!\n", record.sDevName.c_str());
        showAddress(std::string());
        return;
    }
    m_sDevName = record.sDevName;
    const bool on = saysEnable(record.sFunction);
    listen(on);
    if (on != m_switch->isOn())
        setOn(on);
    m_addresses = addressesOf(record);
    showAddress(m_addresses.sIpAddr);
}

void Net4G::takeAtInfo(const netT::tag_atCollect &info)
{
    {
        const std::lock_guard<std::mutex> lock(m_atMutex);
        m_atInfo = info;
    }
    m_bAtInfoNew = true;
    emit sgl_4GNetChange();
}

netT::tag_atCollect Net4G::atInfo() const
{
    const std::lock_guard<std::mutex> lock(m_atMutex);
    return m_atInfo;
}

void Net4G::retranslate()
{
    ui->retranslateUi(this);
    for (QLabel *caption : {ui->lab_4gCaption, ui->lab_IccidCaption, ui->lab_ApnName})
        caption->setMinimumWidth(fontPixelSize() * 9 / 2);
    m_switch->setTexts(tr("Enable"), tr("Unplugged"));
    updateApnHint();
    setStyleWhenSeen(this, cellularStyle());
}

bool Net4G::eventFilter(QObject *watched, QEvent *event)
{
    if (isPress(watched, event))
        press(watched);
    return QWidget::eventFilter(watched, event);
}

void Net4G::press(QObject *target)
{
    const bool manual = target == ui->radio_manual;
    if (manual || target == ui->radio_auto) {
        keyClick();
        m_apn.sMode = manual ? "enable" : "disable";
        showApnMode(manual);
        sendApn();
    } else {
        edit(static_cast<QLineEdit *>(target));
    }
}

// Sends the field in any case: in text mode the keyboard does not report whether a text was
// entered.
void Net4G::edit(QLineEdit *field)
{
    const int mode = field == ui->line_ApnPwd ? KB_MODE_HIDDEN_TEXT : KB_MODE_TEXT;
    KeyboardRequest request = textRequest(this, field, mode, LONGEST_APN_TEXT);
    request.sizeOf = KeyboardSizeOf::Page;
    request.widthFactor = 0.8;
    request.heightFactor = 0.9;
    request.xFactor = 0.1;
    request.yFactor = 0.15;
    m_bEditing = true;
    editWithKeyboard(request);
    field->home(false);
    m_bEditing = false;
    if (m_switch->isPresent())
        sendApn();
    if (std::exchange(m_bRefreshDue, false))
        refreshApn();
}

// In default mode always, in manual mode only with a name.
void Net4G::sendApn()
{
    m_apn.sName = ui->line_ApnName->text().toStdString();
    m_apn.sAuth = ui->line_ApnAuth->text().toStdString();
    m_apn.sUser = ui->line_ApnUsr->text().toStdString();
    m_apn.sPassword = ui->line_ApnPwd->text().toStdString();
    m_bApnUnsent = saysEnable(m_apn.sMode) && m_apn.sName.empty();
    if (!m_bApnUnsent && netT::setApn(m_apn, false, MODEM_TIMEOUT_MS) >= 0)
        m_servedApn = m_apn;
}

void Net4G::refreshApn()
{
    m_bRefreshDue = m_bEditing;
    if (m_bEditing) // refreshing would overwrite the entry
        return;
    netT::stApnInfo_tag apn;
    if (netT::getApn(apn, false, MODEM_TIMEOUT_MS) < 0) {
        ui->radio_auto->setChecked(true);
        return;
    }
    // Each change of the signal comes here; it must not undo a choice that is not complete yet.
    if (m_bApnUnsent && isSame(apn, m_servedApn))
        return;
    m_bApnUnsent = false;
    m_apn = m_servedApn = apn;
    showApnMode(saysEnable(apn.sMode) && m_switch->isOn());
    showFrom(ui->line_ApnName, apn.sName);
    showFrom(ui->line_ApnAuth, apn.sAuth);
    showFrom(ui->line_ApnUsr, apn.sUser);
    showFrom(ui->line_ApnPwd, apn.sPassword);
}

void Net4G::showApnMode(bool manual)
{
    (manual ? ui->radio_manual : ui->radio_auto)->setChecked(true);
    ui->wdg_vpn->setVisible(manual);
    ui->lab_vpn->setVisible(!manual);
    updateApnHint();
}

// Only where it is known: the default radio is also checked while the device is off, and if the
// service does not answer.
void Net4G::updateApnHint()
{
    const bool used = m_switch->isPresent() && m_switch->isOn() && !m_apn.sMode.empty();
    ui->lab_vpn->setText(used ? tr("The default access point is used.") : QString());
}

void Net4G::slot_ButtonPressed()
{
    m_switch->press();
    listen(!m_switch->isOn());
    m_switch->request(m_sDevName);
}

// A queued signal may arrive after the device was switched off. One run shows the latest of all
// that has come: each run asks for the APN, which a slow service may take a second to answer.
void Net4G::slot_4GNetChange()
{
    if (m_bListening && m_bAtInfoNew.exchange(false))
        showAtInfo();
}

void Net4G::showAtInfo()
{
    const netT::tag_atCollect info = atInfo();
    if (m_sIccid != info.texts[ICCID_TEXT]) {
        m_sIccid = info.texts[ICCID_TEXT];
        ui->label_iccid->setText(shownBytes(m_sIccid));
    }
    if (m_sImei != info.texts[IMEI_TEXT]) {
        m_sImei = info.texts[IMEI_TEXT];
        ui->label_Imei->setText(shownBytes(m_sImei));
    }
    if (m_nCsq != info.numbers[CSQ_NUMBER]) {
        m_nCsq = info.numbers[CSQ_NUMBER];
        m_nBars = modemBars(m_nCsq).value_or(m_nBars);
        showSignal();
    }
    refreshApn();
}

void Net4G::listen(bool on)
{
    if (std::exchange(m_bListening, on) == on)
        return;
    if (on)
        connect(this, &Net4G::sgl_4GNetChange, this, &Net4G::slot_4GNetChange);
    else
        disconnect(this, &Net4G::sgl_4GNetChange, this, &Net4G::slot_4GNetChange);
}

void Net4G::setPresent(bool present)
{
    m_switch->setPresent(present);
    ui->radio_auto->setEnabled(present);
    ui->radio_manual->setEnabled(present);
    ui->wdg_vpn->setEnabled(present);
    showSignal();
    updateApnHint();
}

void Net4G::setOn(bool on)
{
    m_switch->setOn(on);
    showSignal();
    updateApnHint();
    if (on)
        showAtInfo(); // from before the device was on
    else
        refreshApn();
}

void Net4G::showAddress(const std::string &dotted)
{
    const std::array<QLabel *, 4> labels = {ui->lab_4gIP_1, ui->lab_4gIP_2, ui->lab_4gIP_3,
                                            ui->lab_4gIP_4};
    const auto octets = octetsOf(dotted);
    for (std::size_t i = 0; i < labels.size(); ++i)
        labels[i]->setText(octets ? (*octets)[i] : QString());
    ui->wdg_4gIP->setVisible(octets.has_value());
}

void Net4G::showSignal()
{
    const bool working = m_switch->isPresent() && m_switch->isOn();
    setStyleWhenSeen(ui->lab_4gSignal, borderImageStyle(modemSignalIcon(working ? m_nBars : 0)));
}
