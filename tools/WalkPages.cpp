// About, System, the password question, and panels that lack something.
#include "tools/PanelWalk.h"

#include <QThread>

namespace {

constexpr const char *SLOWLY = "600";      // ms that a service takes to do as asked
constexpr unsigned long SCANNED_MS = 1200; // until a page's first look for networks has ended

void communication(PanelSteps &panel)
{
    panel.touch("tab_System", 1);
    panel.awaitSeen("btn_ComL");
    panel.visit("com");
    panel.touch("btn_CommunIndetail");
    panel.awaitSeen("Communication");
    panel.visit("com-settings");
    panel.touch("btn_Canl");
    panel.awaitGone("Communication");
    panel.touch("btn_TimeOutIndetail");
    panel.awaitSeen("Communication");
    panel.visit("com-timeout");
    panel.ask({utf8("fail"), utf8("backstage.AddrWrite"), utf8("-1"), utf8("1")});
    panel.touch("btn_Save");
    panel.awaitGone("Communication");
    panel.awaitSeen("lab_NotSaved");
    panel.visit("com-not-saved");
}

void settings(PanelSteps &panel)
{
    panel.touch("btn_Sysset");
    panel.touch("tab_System", 0);
    panel.awaitSeen("comboBox");
    panel.visit("general");
    panel.touch("btn_BeepSwitch");
    panel.visit("general-other-beep");
    panel.touch("line_BacklightTime");
    panel.awaitSeen("SoftKeyboard");
    panel.visit("keyboard-number-wide");
    panel.key("btn_close"); // the first key of a process has no effect
    panel.key("btn_close");
    panel.awaitGone("SoftKeyboard");
    panel.touchList("comboBox");
    panel.visit("zones");
    panel.touchList("comboBox", 1);
    panel.ask({utf8("fail"), utf8("backstage.AddrWrite"), utf8("-1"), utf8("1")});
    panel.touch("btn_SetTime");
    panel.answerBox("general-not-saved");
    communication(panel);
    panel.touch("tab_System", 2);
    panel.awaitSeen("CHBtn");
    panel.visit("language");
}

// On a board that tells nothing, with a clock that may not be set.
void unreadable(PanelSteps &panel)
{
    panel.startIn("unreadable");
    panel.awaitSeen("tab_Machine");
    panel.visit("about-unreadable");
    panel.touch("btn_Sysset");
    panel.awaitSeen("comboBox");
    panel.visit("general-locked");
}

// On a fresh panel: networks that were seen once stay on the list.
void nobodyInRange(PanelSteps &panel, bool searchFails)
{
    panel.startIn("nobody-in-range");
    panel.ask({utf8("delay"), utf8("netT.getAPList"), utf8(SLOWLY)});
    if (searchFails)
        panel.ask({utf8("fail"), utf8("netT.getAPList"), utf8("-1")});
    panel.touch("btn_Net");
    panel.touch("tab_Net", 1);
    panel.await(
        [&] { return panel.process().widget(utf8("btn_WifiSwitch"), utf8("enabled")).toBool(); },
        utf8("the Wi-Fi device"));
    if (!searchFails)
        panel.visit("wifi-searching");
    QThread::msleep(SCANNED_MS);
    panel.visit(searchFails ? "wifi-search-failed" : "wifi-empty");
}

} // namespace

void walkPages(PanelSteps &panel)
{
    panel.start();
    panel.awaitSeen("tab_Machine");
    panel.visit("about");
    panel.touch("tab_Machine", 1);
    panel.visit("version");
    settings(panel);
    panel.touch("btn_Reboot");
    panel.answerBox("restart", "btn_Cancel");
}

void walkGate(PanelSteps &panel)
{
    panel.start({utf8("-p"), utf8("secret")});
    panel.awaitSeen("SoftKeyboard");
    panel.visit("keyboard-password");
    panel.key("btn_c_q"); // the first key of a process has no effect
    panel.key("btn_c_Shift");
    panel.key("btn_c_q");
    panel.visit("keyboard-capitals");
    panel.key("btn_c_char");
    panel.visit("keyboard-symbols");
    panel.key("btn_s_123");
    panel.visit("keyboard-digits");
    panel.key("btn_n_abc");
    panel.key("btn_c_enter");
    panel.answerBox("password-error");
}

// Without the network service.
void walkAlone(PanelSteps &panel)
{
    panel.startIn("no-network-service");
    panel.answerBox("no-network-service");
    panel.touch("btn_Net");
    panel.touch("tab_Net", 0);
    panel.awaitSeen("btn_EthSwitch");
    panel.visit("ethernet-unknown");
    panel.touch("tab_Net", 1);
    panel.visit("wifi-unknown");
    panel.touch("tab_Net", 2);
    panel.visit("4g-unknown");
    nobodyInRange(panel, false);
    nobodyInRange(panel, true);
    unreadable(panel);
}
