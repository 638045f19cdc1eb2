#include "network/NetWiFi.h"

#include "app/look/BoxHelpers.h"
#include "app/look/FontStyle.h"
#include "app/look/Screen.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "input/FieldKeyboard.h"
#include "network/WifiPara.h"
#include "platform/cos_process.h"
#include "platform/cos_thread.h"
#include "ui_NetWiFi.h"

#include <QMouseEvent>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace {

constexpr unsigned int TIMEOUT_MS = 5000;
constexpr int REFRESH_TICK_MS = 200;
constexpr int REPEAT_FOR_EVER = -1;
constexpr int LONGEST_PASSWORD = 32;
constexpr double BOX_SHARE = 0.6; // of the page
// How long the service may seem idle before a join that was asked for counts as lost.
constexpr qint64 JOIN_PATIENCE_MS = 15000;
// A tap that followed another while the service held the page up: the rows have moved since.
constexpr qint64 SECOND_TAP_MS = 400;
// What no record has told is asked for again, after the patience with a join has ended.
constexpr int ASK_AGAIN_MS = 16000;

constexpr SwitchPolicy WIFI_SWITCH = {
    true,
    "netDeviceUp [%s] ok \n",
    "netDeviceUp [%s] error \n",
    "netDeviceDown [%s] ok \n",
    "netDeviceDown [%s] error \n",
};

} // namespace

[[gnu::hot]] int UpdataWifiList(void *page)
{
    if (page != nullptr)
        static_cast<NetWiFi *>(page)->refresh();
    return 0;
}

NetWiFi::NetWiFi(QWidget *parent)
    : QWidget(parent),
      ui(std::make_unique<Ui::NetWiFi>()),
      m_refresh({[this] { emit sgl_MovieStart(); }, [this] { emit sgl_MovieStop(); },
                 [this] { emit sgl_RefWifiList(); },
                 [this] { emit sgl_UpdataState(netT::WIFI_FAILED); }})
{
    ui->setupUi(this);
    m_switch.emplace(DeviceSwitch::Widgets{ui->btn_WifiSwitch, ui->label_move, ui->label_null,
                                           ui->lab_WifiStatus},
                     WIFI_SWITCH);
    m_switch->setTexts(tr("Enable"), tr("Unplugged"));
    ui->lab_Scan->setFixedSize(touchHeight() / 2, touchHeight() / 2);
    QSizePolicy policy = ui->lab_Scan->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    ui->lab_Scan->setSizePolicy(policy);
    m_topRow.emplace(ConnectedRow::Widgets{ui->pageLayout, ui->wid_wifiConnect, ui->line_Connect,
                                           ui->list_Wifi});
    ui->wid_wifiConnect->installEventFilter(this);
    makeConnections();
    showDevice();
}

NetWiFi::~NetWiFi() = default;

void NetWiFi::makeConnections()
{
    connect(ui->btn_WifiSwitch, &QPushButton::clicked, this, &NetWiFi::slot_ButtonPressed);
    connect(ui->list_Wifi, &QListWidget::itemClicked, this, &NetWiFi::slot_itemClicked);
    connect(this, &NetWiFi::sgl_RefWifiList, this, &NetWiFi::slot_RefWifiList);
    connect(this, &NetWiFi::sgl_UpdataState, this, &NetWiFi::slot_UpdataState);
    connect(this, &NetWiFi::sgl_MovieStart, ui->lab_Scan, &LoadingLabel::start);
    connect(this, &NetWiFi::sgl_MovieStop, ui->lab_Scan, &LoadingLabel::stop);
    connect(this, &NetWiFi::sgl_MovieStop, this, [this] {
        m_bScanned = isOn(); // it may tell of a scan that the device has not lived to see
        sayWhatIsMissing();
    });
    connect(this, &NetWiFi::sgl_SetExist, this, &NetWiFi::slot_SetExist);
    m_askAgain.setSingleShot(true);
    m_askAgain.setInterval(ASK_AGAIN_MS);
    connect(&m_askAgain, &QTimer::timeout, this, &NetWiFi::askAgain);
}

void NetWiFi::startRefresh()
{
    if (COS::CosOsState::GetProcessPIDByName("netServer") < 0) {
        runBox(BOX_INFORMATION, this, tr("netServer not run"));
        return;
    }
    COS::CCosRateTimer::addTimer(UpdataWifiList, this, "UpdataWifiList", REFRESH_TICK_MS,
                                 REPEAT_FOR_EVER, 0);
}

void NetWiFi::retranslate()
{
    ui->retranslateUi(this);
    setStyleWhenSeen(this, wifiStyle());
    ui->lab_WifiCaption->setMinimumWidth(captionWidth());
    sayWhatIsMissing();
    m_switch->setTexts(tr("Enable"), tr("Unplugged"));
    ui->list_Wifi->retranslate();
    m_topRow->retranslate();
}

// --- Visibility --------------------------------------------------------------------------------

void NetWiFi::setPageVisible(bool visible)
{
    m_bTab = visible;
    updateVisible();
}

void NetWiFi::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_bShown = true;
    updateVisible();
}

void NetWiFi::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_bShown = false;
    updateVisible();
}

void NetWiFi::updateVisible()
{
    m_refresh.setVisible(m_bTab && m_bShown);
    if (m_bTopRowDue && m_refresh.isVisible())
        showTopRow();
}

// --- The device --------------------------------------------------------------------------------

void NetWiFi::setNetInfo(const netT::stAllNetInfo_tag &record)
{
    printRecord(record, m_addresses);
    const bool exists = netT::netIsExist(record.sDevName, false, TIMEOUT_MS) >= 0;
    emit sgl_SetExist(exists);
    if (!exists) {
        std::puts("net [wlan] Is not Exist!");
        return;
    }
    m_sDevName = record.sDevName;
    const bool on = saysEnable(record.sFunction);
    if (on != m_switch->isOn())
        slot_Enable(on);
    if (!on)
        return;
    takeAddressing(record);
    if (!reportState())
        m_askAgain.start();
}

void NetWiFi::slot_SetExist(bool exists)
{
    m_switch->setPresent(exists);
    if (!exists)
        leaveDevice();
    showDevice();
}

void NetWiFi::slot_Enable(bool on)
{
    m_switch->setOn(on);
    if (!on)
        leaveDevice();
    showDevice();
}

void NetWiFi::slot_ButtonPressed()
{
    m_switch->press();
    showDevice();
    m_switch->request(m_sDevName);
}

// Nothing that was known of its networks and addresses holds any more.
void NetWiFi::leaveDevice()
{
    m_refresh.setEnabled(false);
    m_refresh.setState(netT::WIFI_IDLE);
    m_sinceJoin.invalidate();
    m_askAgain.stop();
    m_bScanned = false;
    m_addresses = {};
    m_sMac.clear();
    hideTopRow();
    if (m_pDialog != nullptr)
        m_pDialog->hide();
}

bool NetWiFi::isOn() const
{
    return m_switch->isPresent() && m_switch->isOn();
}

// A device that is not there, is off or has been asked to change, is left alone.
void NetWiFi::showDevice()
{
    const bool usable = isOn() && m_switch->isReady();
    const bool changed = usable != ui->list_Wifi->isEnabled();
    m_refresh.setEnabled(usable);
    slot_MoveShow(usable);
    ui->wid_wifiConnect->setEnabled(usable);
    ui->list_Wifi->setEnabled(usable);
    if (changed)
        RefWifiList();
    sayWhatIsMissing();
}

void NetWiFi::slot_MoveShow(bool shown)
{
    ui->lab_Scan->setVisible(shown);
}

void NetWiFi::takeAddressing(const netT::stAllNetInfo_tag &record)
{
    const AddressTexts former = std::exchange(m_addresses, addressesOf(record));
    const AddressTexts &now = m_addresses;
    m_bDhcp = saysEnable(record.sDhcp);
    emit sgl_DHCP(m_bDhcp);
    if (now.sIpAddr != former.sIpAddr || now.sSubnetMask != former.sSubnetMask ||
        now.sGateway != former.sGateway)
        emit sgl_IpPara(now.sIpAddr, now.sSubnetMask, now.sGateway);
    if (now.sPrefDns != former.sPrefDns || now.sAlterDns != former.sAlterDns)
        emit sgl_Dns(now.sPrefDns, now.sAlterDns);
    if (std::exchange(m_sMac, record.sMacAddr) != m_sMac)
        emit sgl_Mac(m_sMac);
    m_topRow->setAddress(now.sIpAddr);
}

// --- The connection ----------------------------------------------------------------------------

// What a record leaves open: how the connection stands. Returns whether the service has answered.
bool NetWiFi::reportState()
{
    netT::WIFI_STATE_T state = netT::WIFI_IDLE;
    if (netT::getStatus(state, false, TIMEOUT_MS) < 0)
        return false;
    if (state == netT::WIFI_FAILED) {
        // Queued: its message would hold up the records behind this one.
        if (m_refresh.isVisible() && m_refresh.takeFailure())
            QMetaObject::invokeMethod(this, &NetWiFi::reportFailure, Qt::QueuedConnection);
    } else if (isNews(state)) {
        slot_UpdataState(state);
    }
    return true;
}

// The record that told the end of joining may have met a service too busy to say more, and joining
// that was never begun ends without one. A service that does not answer now either is let be: the
// question holds the page up.
void NetWiFi::askAgain()
{
    const bool later = !m_refresh.isVisible();
    if (later || (isOn() && reportState() && isJoining(m_refresh.state())))
        m_askAgain.start();
}

bool NetWiFi::isNews(int state) const
{
    const int shown = m_refresh.state();
    if (isJoining(state))
        return state != shown;
    // On its way into a network the service passes through states in which it is in none.
    const bool passing = m_sinceJoin.isValid() && !m_sinceJoin.hasExpired(JOIN_PATIENCE_MS);
    return state == netT::WIFI_CONNECTED || shown == netT::WIFI_CONNECTED ||
           (isJoining(shown) && !passing);
}

void NetWiFi::reportFailure()
{
    // Unless the device has gone, or another network is being joined, meanwhile.
    if (m_refresh.state() == netT::WIFI_FAILED)
        slot_UpdataState(netT::WIFI_FAILED);
}

void NetWiFi::slot_UpdataState(int state)
{
    std::printf("slot_UpdataState = [%d]\n", state);
    if (state < netT::WIFI_IDLE || state > netT::WIFI_CONNECTED)
        return;
    m_refresh.setState(state);
    if (state == netT::WIFI_CONNECTED || state == netT::WIFI_FAILED)
        m_sinceJoin.invalidate();
    if (isJoining(state))
        m_askAgain.start();
    else
        m_askAgain.stop();
    m_bTopRowDue = isJoining(state) || state == netT::WIFI_CONNECTED;
    if (!m_bTopRowDue)
        hideTopRow();
    else if (m_refresh.isVisible())
        showTopRow();
    if (state == netT::WIFI_FAILED) {
        m_refresh.suspendPoll();
        tellFailure();
    }
}

void NetWiFi::tellFailure()
{
    if (std::exchange(m_bTelling, true))
        return;
    const QSize offset = fractionOf(size(), (1 - BOX_SHARE) / 2, (1 - BOX_SHARE) / 2);
    runBox(BOX_WARNING, this,
           tr("Failed to connect Network! Wrong password or weak signal, please reconnect."),
           fractionOf(size(), BOX_SHARE, BOX_SHARE),
           mapTo(window(), {offset.width(), offset.height()}));
    m_bTelling = false;
}

void NetWiFi::slot_itemClicked(QListWidgetItem *item)
{
    const auto accessPoint = ui->list_Wifi->chosen(item);
    const bool again = m_sinceJoin.isValid() && !m_sinceJoin.hasExpired(SECOND_TAP_MS);
    if (again || !accessPoint || accessPoint->sSsid.empty())
        return;
    KeyboardRequest request = textRequest(this, nullptr, KB_MODE_HIDDEN_TEXT, LONGEST_PASSWORD);
    request.caption = ListItem::shownName(accessPoint->sSsid);
    QString password;
    if (isSecured(*accessPoint) && !editWithKeyboard(request, &password))
        return;
    // The device may have gone while the password was typed.
    if (isOn() && m_switch->isReady())
        join(*accessPoint, password.toStdString());
}

void NetWiFi::join(const netT::stApInfo_tag &accessPoint, const std::string &password)
{
    m_refresh.suspendPoll();
    slot_UpdataState(netT::WIFI_IDLE);
    std::printf("============setConnectInfo =[%s] [%s] [%d]\n", accessPoint.sSsid.c_str(),
                password.c_str(), accessPoint.nSecurity);
    const bool taken = netT::setConnectInfo(accessPoint.sSsid, password, false, TIMEOUT_MS) >= 0;
    std::puts(taken ? "setConnectInfo ===== ok" : "setConnectInfo ===== err");
    m_sCurrent = accessPoint.sSsid;
    m_topRow->setAccessPoint(accessPoint);
    netT::connectwifi();
    // Only now: until the joining has begun the service may still tell the former failure.
    if (taken)
        m_refresh.resumePoll();
    RefWifiList();
    m_sinceJoin.start();
    slot_UpdataState(netT::WIFI_CONNECTING);
}

// --- The parameters ----------------------------------------------------------------------------

bool NetWiFi::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == ui->wid_wifiConnect && isPress(watched, event))
        openParameters();
    return QWidget::eventFilter(watched, event);
}

void NetWiFi::openParameters()
{
    keyClick();
    WifiPara dialog(this);
    connect(this, &NetWiFi::sgl_DHCP, &dialog, &WifiPara::slot_DHCP);
    connect(this, &NetWiFi::sgl_Dns, &dialog, &WifiPara::slot_Dns);
    connect(this, &NetWiFi::sgl_IpPara, &dialog, &WifiPara::slot_IpPara);
    connect(this, &NetWiFi::sgl_Mac, &dialog, &WifiPara::slot_Mac);
    AddressTexts &now = m_addresses;
    netT::getIp(m_sDevName, now.sIpAddr, now.sSubnetMask, now.sGateway, false, TIMEOUT_MS);
    netT::getDns(m_sDevName, now.sPrefDns, now.sAlterDns, false, TIMEOUT_MS);
    emit sgl_DHCP(m_bDhcp);
    if (!now.sIpAddr.empty())
        emit sgl_IpPara(now.sIpAddr, now.sSubnetMask, now.sGateway);
    emit sgl_Dns(now.sPrefDns, now.sAlterDns);
    emit sgl_Mac(m_sMac);
    std::printf("m_strEthIP = [%s], m_strSubnetMask = [%s], m_strGateWay = [%s],"
                "m_strDnsPrimary = [%s], m_strDnsSecondary = [%s] m_strMac = [%s]\n",
                now.sIpAddr.c_str(), now.sSubnetMask.c_str(), now.sGateway.c_str(),
                now.sPrefDns.c_str(), now.sAlterDns.c_str(), m_sMac.c_str());
    dialog.setDevName(m_sDevName);
    m_pDialog = &dialog;
    dialog.exec();
    m_pDialog = nullptr;
}
