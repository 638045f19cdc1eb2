// The Network group of the walk.
#include "tools/PanelWalk.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

namespace {

constexpr int WIFI_TAB = 1;
constexpr int CELLULAR_TAB = 2;
constexpr int EXTEND_TAB = 3;
constexpr const char *SLOWLY = "600"; // ms that a service takes to do as asked

QString latin(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

void PanelWalk::network()
{
    start();
    awaitSeen("tab_Machine");
    touch("btn_Net");
    ethernet();
    wifi();
    cellular();
}

void PanelWalk::ethernet()
{
    touch("tab_Net", 0);
    awaitSeen("radio_Dhcp");
    awaitSeen("widget_EthIndetail");
    at("ethernet-dhcp");
    const QByteArray address = m_panel->get(latin("net.devices.0.sIpAddr")).toString().toUtf8();
    await(
        [this] {
            set("net.devices.0.sIpAddr", R"("")"); // a lease may still come in between
            return m_panel->isVisible(latin("lab_replacwidgetEth"));
        },
        latin("an address that is gone"));
    at("ethernet-no-address");
    set("net.devices.0.sIpAddr", '"' + address + '"');
    awaitSeen("widget_EthIndetail");
    touch("radio_Static");
    awaitSeen("widget_EthIndetail");
    await([this] { return m_panel->widget(latin("line_Ip4"), latin("enabled")).toBool(); },
          latin("fields that can be edited"));
    at("ethernet-static");
    touch("line_Ip4");
    awaitSeen("SoftKeyboard");
    at("keyboard-number");
    key("btn_close"); // the first key of a process has no effect
    key("btn_close");
    awaitGone("SoftKeyboard");
    touch("btn_EthSwitch");
    passing("ethernet-pending");
    awaitSeen("lab_EthStatus");
    at("ethernet-off");
    set("net.devices.0.present", "false");
    at("ethernet-absent");
    set("net.devices.0.present", "true");
}

void PanelWalk::wifi()
{
    touch("tab_Net", WIFI_TAB);
    awaitSeen("wid_wifiConnect");
    await([this] { return m_panel->press(latin("list_Wifi"), 0); }, latin("networks"));
    awaitSeen("SoftKeyboard");
    key("btn_c_o");
    at("wifi-password");
    key("btn_Eye");
    at("wifi-password-shown");
    key("btn_close");
    awaitGone("SoftKeyboard");
    at("wifi");
    joinWifi();
    await([this] { return !m_panel->widget(latin("lab_ip"), latin("text")).toString().isEmpty(); },
          latin("an address"));
    touch("wid_wifiConnect");
    awaitSeen("WifiPara");
    at("wifi-parameters");
    touch("radio_Static");
    at("wifi-parameters-static");
    touch("pushButton_2");
    awaitGone("WifiPara");
    touch("btn_WifiSwitch");
    passing("wifi-pending");
    awaitSeen("lab_WifiStatus");
    at("wifi-off");
}

// A password that is not taken, and then a join from elsewhere that succeeds.
void PanelWalk::joinWifi()
{
    const QByteArray user = QJsonDocument(m_panel->get(latin("wifi.user")).toObject()).toJson();
    await([this] { return m_panel->press(latin("list_Wifi"), 0); }, latin("networks"));
    awaitSeen("SoftKeyboard");
    for (const char *letter :
         {"btn_c_w", "btn_c_r", "btn_c_o", "btn_c_n", "btn_c_g", "btn_c_w", "btn_c_o", "btn_c_r"})
        key(letter);
    ask({latin("delay"), latin("netT.setConnectInfo"), latin(SLOWLY)});
    key("btn_c_enter");
    awaitGone("SoftKeyboard");
    at("wifi-connecting");
    box("wifi-failed");
    ask({latin("delay"), latin("clear")});
    set("wifi.user", user.constData());
    set("net.cable.wlan0", "-1");
    set("net.cable.wlan0", "0");
    set("wifi.state", "7");
    awaitSeen("wid_wifiConnect");
}

void PanelWalk::cellular()
{
    touch("tab_Net", CELLULAR_TAB);
    awaitSeen("radio_auto");
    at("4g");
    touch("radio_manual");
    awaitSeen("wdg_vpn");
    at("4g-manual");
    touch("line_ApnName");
    awaitSeen("SoftKeyboard");
    at("keyboard-text");
    key("btn_close");
    awaitGone("SoftKeyboard");
    touch("btn_4G");
    passing("4g-pending");
    awaitSeen("lab_4gStatus");
    at("4g-off");
}

void PanelWalk::diagnosis()
{
    start();
    awaitSeen("tab_Machine");
    touch("btn_Net");
    touch("tab_Net", EXTEND_TAB);
    awaitSeen("btn_check");
    await([this] { return !m_panel->widget(latin("combox"), latin("text")).toString().isEmpty(); },
          latin("the preferred network"));
    at("extend");
    touch("combox");
    QThread::msleep(420);
    at("extend-list");
    touch("combox", 0);
    QThread::msleep(420);
    await([this] { return m_panel->get(latin("cloud.started")).toBool(); }, latin("the cloud"));
    touch("btn_check");
    awaitSeen("NetWorkTestUi");
    at("diagnosis");
    ask({latin("delay"), latin("netT.netTping"), latin(SLOWLY)});
    touch("btn_StartDiag");
    at("diagnosis-running");
    ask({latin("delay"), latin("clear")});
    const auto ended = [this] {
        return m_panel->widget(latin("btn_StartDiag"), latin("enabled")).toBool();
    };
    await(ended, latin("the diagnosis"));
    at("diagnosis-passed");
    set("cloud.status", "-4");
    set("net.cable.eth0", "-1");
    set("net.ping", R"({"*": {"min": 8, "avg": 640, "max": 920, "lost": 20}})");
    set("wifi.signal", "40");
    QThread::msleep(2200); // until the cloud has been looked at again
    touch("btn_StartDiag");
    QThread::msleep(100);
    await(ended, latin("the diagnosis"));
    at("diagnosis-failed");
}
