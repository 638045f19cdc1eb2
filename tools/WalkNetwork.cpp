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

void ethernet(PanelSteps &panel)
{
    panel.touch("tab_Net", 0);
    panel.awaitSeen("radio_Dhcp");
    panel.awaitSeen("widget_EthIndetail");
    panel.at("ethernet-dhcp");
    const QByteArray address =
        panel.process().get(latin("net.devices.0.sIpAddr")).toString().toUtf8();
    panel.await(
        [&panel] {
            panel.set("net.devices.0.sIpAddr", R"("")"); // a lease may still come in between
            return panel.process().isVisible(latin("lab_replacwidgetEth"));
        },
        latin("an address that is gone"));
    panel.at("ethernet-no-address");
    panel.set("net.devices.0.sIpAddr", '"' + address + '"');
    panel.awaitSeen("widget_EthIndetail");
    panel.touch("radio_Static");
    panel.awaitSeen("widget_EthIndetail");
    panel.await(
        [&panel] { return panel.process().widget(latin("line_Ip4"), latin("enabled")).toBool(); },
        latin("fields that can be edited"));
    panel.at("ethernet-static");
    panel.touch("line_Ip4");
    panel.awaitSeen("SoftKeyboard");
    panel.at("keyboard-number");
    panel.key("btn_close"); // the first key of a process has no effect
    panel.key("btn_close");
    panel.awaitGone("SoftKeyboard");
    panel.touch("btn_EthSwitch");
    panel.passing("ethernet-pending");
    panel.awaitSeen("lab_EthStatus");
    panel.at("ethernet-off");
    panel.set("net.devices.0.present", "false");
    panel.at("ethernet-absent");
    panel.set("net.devices.0.present", "true");
}

// A password that is not taken, and then a join from elsewhere that succeeds.
void joinWifi(PanelSteps &panel)
{
    const QByteArray user =
        QJsonDocument(panel.process().get(latin("wifi.user")).toObject()).toJson();
    panel.await([&panel] { return panel.process().press(latin("list_Wifi"), 0); },
                latin("networks"));
    panel.awaitSeen("SoftKeyboard");
    for (const char *letter :
         {"btn_c_w", "btn_c_r", "btn_c_o", "btn_c_n", "btn_c_g", "btn_c_w", "btn_c_o", "btn_c_r"})
        panel.key(letter);
    panel.ask({latin("delay"), latin("netT.setConnectInfo"), latin(SLOWLY)});
    panel.key("btn_c_enter");
    panel.awaitGone("SoftKeyboard");
    panel.at("wifi-connecting");
    panel.box("wifi-failed");
    panel.ask({latin("delay"), latin("clear")});
    panel.set("wifi.user", user.constData());
    panel.set("net.cable.wlan0", "-1");
    panel.set("net.cable.wlan0", "0");
    panel.set("wifi.state", "7");
    panel.awaitSeen("wid_wifiConnect");
}

void wifi(PanelSteps &panel)
{
    panel.touch("tab_Net", WIFI_TAB);
    panel.awaitSeen("wid_wifiConnect");
    panel.await([&panel] { return panel.process().press(latin("list_Wifi"), 0); },
                latin("networks"));
    panel.awaitSeen("SoftKeyboard");
    panel.key("btn_c_o");
    panel.at("wifi-password");
    panel.key("btn_Eye");
    panel.at("wifi-password-shown");
    panel.key("btn_close");
    panel.awaitGone("SoftKeyboard");
    panel.at("wifi");
    joinWifi(panel);
    panel.await(
        [&panel] {
            return !panel.process().widget(latin("lab_ip"), latin("text")).toString().isEmpty();
        },
        latin("an address"));
    panel.touch("wid_wifiConnect");
    panel.awaitSeen("WifiPara");
    panel.at("wifi-parameters");
    panel.touch("radio_Static");
    panel.at("wifi-parameters-static");
    panel.touch("pushButton_2");
    panel.awaitGone("WifiPara");
    panel.touch("btn_WifiSwitch");
    panel.passing("wifi-pending");
    panel.awaitSeen("lab_WifiStatus");
    panel.at("wifi-off");
}

void cellular(PanelSteps &panel)
{
    panel.touch("tab_Net", CELLULAR_TAB);
    panel.awaitSeen("radio_auto");
    panel.at("4g");
    panel.touch("radio_manual");
    panel.awaitSeen("wdg_vpn");
    panel.at("4g-manual");
    panel.touch("line_ApnName");
    panel.awaitSeen("SoftKeyboard");
    panel.at("keyboard-text");
    panel.key("btn_close");
    panel.awaitGone("SoftKeyboard");
    panel.touch("btn_4G");
    panel.passing("4g-pending");
    panel.awaitSeen("lab_4gStatus");
    panel.at("4g-off");
}

} // namespace

void walkNetwork(PanelSteps &panel)
{
    panel.start();
    panel.awaitSeen("tab_Machine");
    panel.touch("btn_Net");
    ethernet(panel);
    wifi(panel);
    cellular(panel);
}

void walkDiagnosis(PanelSteps &panel)
{
    panel.start();
    panel.awaitSeen("tab_Machine");
    panel.touch("btn_Net");
    panel.touch("tab_Net", EXTEND_TAB);
    panel.awaitSeen("btn_check");
    panel.await(
        [&panel] {
            return !panel.process().widget(latin("combox"), latin("text")).toString().isEmpty();
        },
        latin("the preferred network"));
    panel.at("extend");
    panel.touchList("combox");
    panel.at("extend-list");
    panel.touchList("combox", 0);
    panel.await([&panel] { return panel.process().get(latin("cloud.started")).toBool(); },
                latin("the cloud"));
    panel.touch("btn_check");
    panel.awaitSeen("NetWorkTestUi");
    panel.at("diagnosis");
    panel.ask({latin("delay"), latin("netT.netTping"), latin(SLOWLY)});
    panel.touch("btn_StartDiag");
    panel.at("diagnosis-running");
    panel.ask({latin("delay"), latin("clear")});
    const auto ended = [&panel] {
        return panel.process().widget(latin("btn_StartDiag"), latin("enabled")).toBool();
    };
    panel.await(ended, latin("the diagnosis"));
    panel.at("diagnosis-passed");
    panel.set("cloud.status", "-4");
    panel.set("net.cable.eth0", "-1");
    panel.set("net.ping", R"({"*": {"min": 8, "avg": 640, "max": 920, "lost": 20}})");
    panel.set("wifi.signal", "40");
    QThread::msleep(2200); // until the cloud has been looked at again
    panel.touch("btn_StartDiag");
    QThread::msleep(100);
    panel.await(ended, latin("the diagnosis"));
    panel.at("diagnosis-failed");
}
