// About, System, what comes before everything else, and panels that lack something.
#include "tools/PanelWalk.h"

#include <QThread>

namespace {

constexpr const char *SLOWLY = "600";      // ms that a service takes to do as asked
constexpr unsigned long SCANNED_MS = 1200; // until a page's first look for networks has ended

void communication(PanelSteps &panel)
{
    panel.touch("tab_System", 1);
    panel.awaitSeen("btn_ComL");
    panel.at("com");
    panel.touch("btn_CommunIndetail");
    panel.awaitSeen("Communication");
    panel.at("com-settings");
    panel.touch("btn_Canl");
    panel.awaitGone("Communication");
    panel.touch("btn_TimeOutIndetail");
    panel.awaitSeen("Communication");
    panel.at("com-timeout");
    panel.ask({latin("fail"), latin("backstage.AddrWrite"), latin("-1"), latin("1")});
    panel.touch("btn_Save");
    panel.awaitGone("Communication");
    panel.awaitSeen("lab_NotSaved");
    panel.at("com-not-saved");
}

void settings(PanelSteps &panel)
{
    panel.touch("btn_Sysset");
    panel.touch("tab_System", 0);
    panel.awaitSeen("comboBox");
    panel.at("general");
    panel.touch("btn_BeepSwitch");
    panel.at("general-other-beep");
    panel.touch("line_BacklightTime");
    panel.awaitSeen("SoftKeyboard");
    panel.at("keyboard-number-wide");
    panel.key("btn_close"); // the first key of a process has no effect
    panel.key("btn_close");
    panel.awaitGone("SoftKeyboard");
    panel.touchList("comboBox");
    panel.at("zones");
    panel.touchList("comboBox", 1);
    panel.ask({latin("fail"), latin("backstage.AddrWrite"), latin("-1"), latin("1")});
    panel.touch("btn_SetTime");
    panel.box("general-not-saved");
    communication(panel);
    panel.touch("tab_System", 2);
    panel.awaitSeen("CHBtn");
    panel.at("language");
}

// On a board that tells nothing, with a clock that may not be set.
void unreadable(PanelSteps &panel)
{
    panel.startIn("unreadable");
    panel.awaitSeen("tab_Machine");
    panel.at("about-unreadable");
    panel.touch("btn_Sysset");
    panel.awaitSeen("comboBox");
    panel.at("general-locked");
}

// Networks that have been seen stay on the list; a panel that never saw one has none.
void nobodyInRange(PanelSteps &panel, bool searchFails)
{
    panel.startIn("nobody-in-range");
    panel.ask({latin("delay"), latin("netT.getAPList"), latin(SLOWLY)});
    if (searchFails)
        panel.ask({latin("fail"), latin("netT.getAPList"), latin("-1")});
    panel.touch("btn_Net");
    panel.touch("tab_Net", 1);
    panel.await(
        [&] { return panel.process().widget(latin("btn_WifiSwitch"), latin("enabled")).toBool(); },
        latin("the Wi-Fi device"));
    if (!searchFails)
        panel.at("wifi-searching");
    QThread::msleep(SCANNED_MS);
    panel.at(searchFails ? "wifi-search-failed" : "wifi-empty");
}

} // namespace

void walkPages(PanelSteps &panel)
{
    panel.start();
    panel.awaitSeen("tab_Machine");
    panel.at("about");
    panel.touch("tab_Machine", 1);
    panel.at("version");
    settings(panel);
    panel.touch("btn_Reboot");
    panel.box("restart", "btn_Cancel");
}

void walkGate(PanelSteps &panel)
{
    panel.start({latin("-p"), latin("secret")});
    panel.awaitSeen("SoftKeyboard");
    panel.at("keyboard-password");
    panel.key("btn_c_q"); // the first key of a process has no effect
    panel.key("btn_c_Shift");
    panel.key("btn_c_q");
    panel.at("keyboard-capitals");
    panel.key("btn_c_char");
    panel.at("keyboard-symbols");
    panel.key("btn_s_123");
    panel.at("keyboard-digits");
    panel.key("btn_n_abc");
    panel.key("btn_c_enter");
    panel.box("password-error");
}

// Without the network service.
void walkAlone(PanelSteps &panel)
{
    panel.startIn("no-network-service");
    panel.box("no-network-service");
    panel.touch("btn_Net");
    panel.touch("tab_Net", 0);
    panel.awaitSeen("btn_EthSwitch");
    panel.at("ethernet-unknown");
    panel.touch("tab_Net", 1);
    panel.at("wifi-unknown");
    panel.touch("tab_Net", 2);
    panel.at("4g-unknown");
    nobodyInRange(panel, false);
    nobodyInRange(panel, true);
    unreadable(panel);
}
