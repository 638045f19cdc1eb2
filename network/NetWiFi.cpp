#include "network/NetWiFi.h"

#include "app/look/BoxHelpers.h"
#include "app/look/FontStyle.h"
#include "app/look/Screen.h"
#include "app/look/StyleSheets.h"
#include "app/look/WidgetLook.h"
#include "input/FieldKeyboard.h"
#include "network/ServiceTimeouts.h"
#include "network/WifiPara.h"
#include "platform/cos_process.h"
#include "platform/cos_thread.h"
#include "platform/cos_time.h"
#include "ui_NetWiFi.h"

#include <cstdio>
#include <utility>

namespace {

constexpr int REFRESH_TICK_MS = 200;
constexpr int REPEAT_FOR_EVER = -1;
constexpr int LONGEST_PASSWORD = 32;
constexpr double BOX_SHARE = 0.6; // of the page
// More than the service is given to come into a network, 15 s.
constexpr int ASK_AGAIN_MS = 16000;

constexpr SwitchPolicy WIFI_SWITCH = {
    true,
    "netDeviceUp [%s] ok \n",
    "netDeviceUp [%s] error \n",
    "netDeviceDown [%s] ok \n",
    "netDeviceDown [%s] error \n",
};

} // namespace

int UpdataWifiList(void *page)
{
    if (page != nullptr)
        static_cast<NetWiFi *>(page)->refresh();
    return 0;
}

NetWiFi::NetWiFi(QWidget *parent)
    : QWidget(parent),
      ui(std::make_unique<Ui::NetWiFi>()),
      m_refresh(m_connection, {[this] { emit sgl_MovieStart(); }, [this] { emit sgl_MovieStop(); },
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
    connect(this, &NetWiFi::sgl_MovieStop, this, &NetWiFi::explainEmptyList);
    connect(this, &NetWiFi::sgl_SetExist, this, &NetWiFi::slot_SetExist);
    m_timeOut.setSingleShot(true);
    m_timeOut.setInterval(ASK_AGAIN_MS);
    connect(&m_timeOut, &QTimer::timeout, this, [this] { perform(m_connection.timedOut()); });
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
    explainEmptyList();
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
    updateVisible();
}

void NetWiFi::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    updateVisible();
}

void NetWiFi::updateVisible()
{
    perform(m_connection.setVisible(m_bTab && isVisible()));
}

// --- The device --------------------------------------------------------------------------------

void NetWiFi::setNetInfo(const netT::stAllNetInfo_tag &record)
{
    printRecord(record, m_addresses);
    const bool exists = netT::netIsExist(record.sDevName, false, NET_SERVICE_TIMEOUT_MS) >= 0;
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
    askState(WifiConnection::AskedBy::Record);
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

void NetWiFi::leaveDevice()
{
    m_addresses = {};
    m_sMac.clear();
    perform(m_connection.leaveDevice());
    if (m_pDialog != nullptr)
        m_pDialog->hide();
}

bool NetWiFi::isOn() const
{
    return m_switch->isPresent() && m_switch->isOn();
}

// Disabled while the device is absent, off, or has been asked to change.
void NetWiFi::showDevice()
{
    const bool usable = isOn() && m_switch->isReady();
    const bool changed = usable != ui->list_Wifi->isEnabled();
    m_connection.setDevice(isOn(), usable);
    slot_MoveShow(usable);
    ui->wid_wifiConnect->setEnabled(usable);
    ui->list_Wifi->setEnabled(usable);
    if (changed)
        RefWifiList();
    explainEmptyList();
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

void NetWiFi::perform(WifiActions actions)
{
    if ((actions & STOP_WAITING) != 0)
        m_timeOut.stop();
    if ((actions & WAIT) != 0)
        m_timeOut.start();
    if ((actions & HIDE_NETWORK) != 0) {
        m_topRow->hide();
        RefWifiList();
    }
    if ((actions & ASK_NETWORK) != 0)
        askNetwork();
    if ((actions & SHOW_NETWORK) != 0)
        showNetwork();
    if ((actions & ASK_STATE) != 0)
        askState(WifiConnection::AskedBy::TimeOut);
    if ((actions & ANNOUNCE_FAILURE) != 0) // its box would hold up the records behind this one
        QMetaObject::invokeMethod(
            this, [this] { slot_UpdataState(netT::WIFI_FAILED); }, Qt::QueuedConnection);
    if ((actions & SHOW_FAILURE) != 0)
        showFailureBox();
}

void NetWiFi::askState(WifiConnection::AskedBy by)
{
    netT::WIFI_STATE_T state = netT::WIFI_IDLE;
    std::optional<int> answer;
    if (netT::getStatus(state, false, NET_SERVICE_TIMEOUT_MS) >= 0)
        answer = state;
    const WifiActions actions = m_connection.answered(answer, by, COS::CosTime::GetTickCountCos());
    perform(actions);
    if ((actions & TAKE_STATE) != 0)
        slot_UpdataState(state);
}

void NetWiFi::slot_UpdataState(int state)
{
    if (m_connection.isOvertaken(state))
        return;
    std::printf("slot_UpdataState = [%d]\n", state);
    perform(m_connection.take(state));
}

void NetWiFi::askNetwork()
{
    netT::stUserInfo_tag info;
    std::optional<std::string> name;
    if (netT::getConnectInfo(info, true, NET_SERVICE_TIMEOUT_MS) == 0) {
        std::printf("getConnectInfo = [%s][%s][%d]\n", info.sSsid.c_str(), info.sPassword.c_str(),
                    info.nSecurity);
        const int level = netT::getSignal(true, NET_SERVICE_TIMEOUT_MS);
        m_topRow->setAccessPoint({info.nId, level, info.sSsid, std::string(), info.nSecurity});
        name = info.sSsid;
    }
    perform(m_connection.named(name));
}

void NetWiFi::showNetwork()
{
    m_topRow->show(m_connection.isJoining() ? ListItem::CONNECTING : ListItem::CONNECTED);
    m_topRow->setAddress(m_addresses.sIpAddr);
    RefWifiList();
}

void NetWiFi::showFailureBox()
{
    const QSize offset = fractionOf(size(), (1 - BOX_SHARE) / 2, (1 - BOX_SHARE) / 2);
    runBox(BOX_WARNING, this,
           tr("Failed to connect Network! Wrong password or weak signal, please reconnect."),
           fractionOf(size(), BOX_SHARE, BOX_SHARE),
           mapTo(window(), {offset.width(), offset.height()}));
    m_connection.failureRead();
}

// --- The networks in range ---------------------------------------------------------------------

void NetWiFi::setAccessPoints(std::vector<netT::stApInfo_tag> list)
{
    m_connection.setList(std::move(list));
    emit sgl_RefWifiList();
}

void NetWiFi::slot_RefWifiList()
{
    RefWifiList();
    if (const auto level = m_connection.level())
        m_topRow->setLevel(*level);
}

void NetWiFi::RefWifiList()
{
    m_connection.withRows([this](const std::vector<netT::stApInfo_tag> &rows) {
        ui->list_Wifi->setAccessPoints(rows);
    });
    explainEmptyList();
}

// Empty until the first record.
void NetWiFi::explainEmptyList()
{
    QString text;
    if (!m_switch->isPresent())
        text = m_switch->isKnown() ? tr("No WLAN device was found.") : QString();
    else if (!m_switch->isOn())
        text = tr("WLAN is switched off.");
    else
        text = searchText();
    ui->list_Wifi->setEmptyText(text);
}

QString NetWiFi::searchText() const
{
    switch (m_connection.search()) {
    case WifiConnection::Search::Running:
        break;
    case WifiConnection::Search::Failed:
        return tr("The search for networks failed. It is repeated every ten seconds.");
    case WifiConnection::Search::FoundNothing:
        return tr("No network was found.");
    case WifiConnection::Search::FoundNoOther:
        return tr("No other network was found.");
    }
    return tr("Searching for networks.");
}

void NetWiFi::slot_itemClicked(QListWidgetItem *item)
{
    const auto accessPoint = ui->list_Wifi->chosen(item);
    if (!accessPoint || !m_connection.mayJoin(*accessPoint, COS::CosTime::GetTickCountCos()))
        return;
    KeyboardRequest request = textRequest(this, nullptr, KB_MODE_HIDDEN_TEXT, LONGEST_PASSWORD);
    request.caption = ListItem::shownName(accessPoint->sSsid);
    QString password;
    if (isSecured(*accessPoint) && !editWithKeyboard(request, &password))
        return;
    // The device may have gone while the password was typed.
    if (m_connection.isUsable())
        join(*accessPoint, password.toStdString());
}

void NetWiFi::join(const netT::stApInfo_tag &accessPoint, const std::string &password)
{
    m_connection.beginJoin();
    slot_UpdataState(netT::WIFI_IDLE);
    std::printf("============setConnectInfo =[%s] [%s] [%d]\n", accessPoint.sSsid.c_str(),
                password.c_str(), accessPoint.nSecurity);
    const bool taken =
        netT::setConnectInfo(accessPoint.sSsid, password, false, NET_SERVICE_TIMEOUT_MS) >= 0;
    std::puts(taken ? "setConnectInfo ===== ok" : "setConnectInfo ===== err");
    m_topRow->setAccessPoint(accessPoint);
    netT::connectwifi();
    // Only now: until the joining has begun the service may still tell the former failure.
    m_connection.joined(accessPoint, taken, COS::CosTime::GetTickCountCos());
    RefWifiList();
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
    netT::getIp(m_sDevName, now.sIpAddr, now.sSubnetMask, now.sGateway, false,
                NET_SERVICE_TIMEOUT_MS);
    netT::getDns(m_sDevName, now.sPrefDns, now.sAlterDns, false, NET_SERVICE_TIMEOUT_MS);
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
