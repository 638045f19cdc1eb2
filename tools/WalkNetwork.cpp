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
    panel.visit("ethernet-dhcp");
    const QByteArray address =
        panel.process().get(utf8("net.devices.0.sIpAddr")).toString().toUtf8();
    panel.await(
        [&panel] {
            panel.set("net.devices.0.sIpAddr", R"("")"); // a lease may still come in between
            return panel.process().isVisible(utf8("lab_replacwidgetEth"));
        },
        utf8("an address that is gone"));
    panel.visit("ethernet-no-address");
    panel.set("net.devices.0.sIpAddr", '"' + address + '"');
    panel.awaitSeen("widget_EthIndetail");
    panel.touch("radio_Static");
    panel.awaitSeen("widget_EthIndetail");
    panel.await(
        [&panel] { return panel.process().widget(utf8("line_Ip4"), utf8("enabled")).toBool(); },
        utf8("fields that can be edited"));
    panel.visit("ethernet-static");
    panel.touch("line_Ip4");
    panel.awaitSeen("SoftKeyboard");
    panel.visit("keyboard-number");
    panel.key("btn_close"); // the first key of a process has no effect
    panel.key("btn_close");
    panel.awaitGone("SoftKeyboard");
    panel.touch("btn_EthSwitch");
    panel.visitAtOnce("ethernet-pending");
    panel.awaitSeen("lab_EthStatus");
    panel.visit("ethernet-off");
    panel.set("net.devices.0.present", "false");
    panel.visit("ethernet-absent");
    panel.set("net.devices.0.present", "true");
}

// A wrong password, and then a join that does not come from the page and succeeds.
void joinWifi(PanelSteps &panel)
{
    const QByteArray user =
        QJsonDocument(panel.process().get(utf8("wifi.user")).toObject()).toJson();
    panel.await([&panel] { return panel.process().press(utf8("list_Wifi"), 0); }, utf8("networks"));
    panel.awaitSeen("SoftKeyboard");
    for (const char *letter :
         {"btn_c_w", "btn_c_r", "btn_c_o", "btn_c_n", "btn_c_g", "btn_c_w", "btn_c_o", "btn_c_r"})
        panel.key(letter);
    panel.ask({utf8("delay"), utf8("netT.setConnectInfo"), utf8(SLOWLY)});
    panel.key("btn_c_enter");
    panel.awaitGone("SoftKeyboard");
    panel.visit("wifi-connecting");
    panel.answerBox("wifi-failed");
    panel.ask({utf8("delay"), utf8("clear")});
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
    panel.await([&panel] { return panel.process().press(utf8("list_Wifi"), 0); }, utf8("networks"));
    panel.awaitSeen("SoftKeyboard");
    panel.key("btn_c_o");
    panel.visit("wifi-password");
    panel.key("btn_Eye");
    panel.visit("wifi-password-shown");
    panel.key("btn_close");
    panel.awaitGone("SoftKeyboard");
    panel.visit("wifi");
    joinWifi(panel);
    panel.await(
        [&panel] {
            return !panel.process().widget(utf8("lab_ip"), utf8("text")).toString().isEmpty();
        },
        utf8("an address"));
    panel.touch("wid_wifiConnect");
    panel.awaitSeen("WifiPara");
    panel.visit("wifi-parameters");
    panel.touch("radio_Static");
    panel.visit("wifi-parameters-static");
    panel.touch("pushButton_2");
    panel.awaitGone("WifiPara");
    panel.touch("btn_WifiSwitch");
    panel.visitAtOnce("wifi-pending");
    panel.awaitSeen("lab_WifiStatus");
    panel.visit("wifi-off");
}

void cellular(PanelSteps &panel)
{
    panel.touch("tab_Net", CELLULAR_TAB);
    panel.awaitSeen("radio_auto");
    panel.visit("4g");
    panel.touch("radio_manual");
    panel.awaitSeen("wdg_vpn");
    panel.visit("4g-manual");
    panel.touch("line_ApnName");
    panel.awaitSeen("SoftKeyboard");
    panel.visit("keyboard-text");
    panel.key("btn_close");
    panel.awaitGone("SoftKeyboard");
    panel.touch("btn_4G");
    panel.visitAtOnce("4g-pending");
    panel.awaitSeen("lab_4gStatus");
    panel.visit("4g-off");
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
            return !panel.process().widget(utf8("combox"), utf8("text")).toString().isEmpty();
        },
        utf8("the preferred network"));
    panel.visit("extend");
    panel.touchList("combox");
    panel.visit("extend-list");
    panel.touchList("combox", 0);
    panel.await([&panel] { return panel.process().get(utf8("cloud.started")).toBool(); },
                utf8("the cloud"));
    panel.touch("btn_check");
    panel.awaitSeen("NetWorkTestUi");
    panel.visit("diagnosis");
    panel.ask({utf8("delay"), utf8("netT.netTping"), utf8(SLOWLY)});
    panel.touch("btn_StartDiag");
    panel.visit("diagnosis-running");
    panel.ask({utf8("delay"), utf8("clear")});
    const auto ended = [&panel] {
        return panel.process().widget(utf8("btn_StartDiag"), utf8("enabled")).toBool();
    };
    panel.await(ended, utf8("the diagnosis"));
    panel.visit("diagnosis-passed");
    panel.set("cloud.status", "-4");
    panel.set("net.cable.eth0", "-1");
    panel.set("net.ping", R"({"*": {"min": 8, "avg": 640, "max": 920, "lost": 20}})");
    panel.set("wifi.signal", "40");
    QThread::msleep(2200); // until the cloud has been looked at again
    panel.touch("btn_StartDiag");
    QThread::msleep(100);
    panel.await(ended, utf8("the diagnosis"));
    panel.visit("diagnosis-failed");
}
