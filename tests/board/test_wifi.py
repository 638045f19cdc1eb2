"""Wi-Fi by touch, and what NetworkManager, the kernel and the disk have of it."""

import re
import time

import air
from lab import wait_for

WIFI = 1                    # tab


def open_page(panel):
    panel.touch("btn_Net")
    panel.touch("tab_Net", WIFI)
    wait_for(lambda: "Guests" in panel.items("list_Wifi"), "the list", 40)


def parts(widget):
    """Texts and icons of a row."""
    names = {child.name: child for child in widget.walk()}
    icons = {name: re.sub(r".*/|\).*", "", names[name].style or "") for name in ("lab_signal", "lab_Ok")}
    return names["lab_ssid"].text, icons["lab_signal"], icons["lab_Ok"], names["lab_ip"].text


def address(panel):
    found = re.search(r"inet ([\d.]+)", panel.shell("ip -4 addr show dev wlan0"))
    return found and found[1]


def top_row(panel):
    """Name, and address if it is joined; nothing without a row."""
    if not panel.is_seen("wid_wifiConnect"):
        return None
    name, _, mark, shown = parts(panel.widget("wid_wifiConnect"))
    return (name, shown) if mark == "tick.png" else (name, None)


def is_joined(panel, name):
    row = top_row(panel)
    return row and row[0] == name and row[1] and row[1] == address(panel)


def wait_joined(panel, name, seconds=30):
    began = time.monotonic()
    wait_for(lambda: is_joined(panel, name), f"{name} joined", seconds)
    return time.monotonic() - began


def choose(panel, name, password=None):
    """Touches a network, and types its password; the moment in which joining has begun."""
    panel.touch("list_Wifi", wait_for(lambda: name in (rows := panel.items("list_Wifi")) and [rows.index(name)],
                                      f"{name} in the list")[0])
    if password is not None:
        panel.wait_text("lab_Field", name)
        panel.press_key("btn_c_123", lambda: panel.is_seen("btn_n_1"))
        panel.type(password)
    return time.monotonic()


def join(panel, name, password=None):
    choose(panel, name, password)
    return wait_joined(panel, name)


def test_a_network_goes_and_comes_and_is_kept(networked):
    panel = networked
    open_page(panel)
    times = {"Works 2+3": join(panel, "Works 2+3", air.PASSWORD)}

    def timed(what, condition, seconds=30):
        began = time.monotonic()
        wait_for(condition, what, seconds)
        times[what] = time.monotonic() - began

    panel.touch("btn_WifiSwitch")
    timed("off", lambda: not panel.items("list_Wifi") and not top_row(panel) and panel.is_seen("lab_WifiStatus"))
    assert "disconnected" in panel.shell("nmcli -t -f DEVICE,STATE dev | grep ^wlan0")
    panel.touch("btn_WifiSwitch")
    timed("on", lambda: is_joined(panel, "Works 2+3"))
    panel.air.pull_adapter()
    timed("pulled", lambda: not panel.widget("btn_WifiSwitch").enabled and not top_row(panel))
    assert panel.text("lab_WifiStatus") == "未接入"
    panel.air.plug_adapter()
    timed("plugged", lambda: is_joined(panel, "Works 2+3"))
    panel.air.gone("Works 2+3")
    # NetworkManager may have the station in its list still, and try it for 25 s: the row is there, without a tick.
    timed("gone", lambda: not (row := top_row(panel)) or not row[1], 45)
    panel.air.level("Works 2+3", 60)
    timed("back", lambda: is_joined(panel, "Works 2+3"), 45)
    new = set_last_octet(panel, 200)
    timed("static", lambda: is_joined(panel, "Works 2+3") and address(panel) == new)
    print(times)
    panel.power_cycle()
    began = time.monotonic()
    panel.touch("btn_Net")
    panel.touch("tab_Net", WIFI)
    timed("kept", lambda: is_joined(panel, "Works 2+3") and address(panel) == new, 60)
    print(times)


def set_last_octet(panel, octet):
    """Makes the address static with another last octet; returns it."""
    now = address(panel)
    panel.touch("wid_wifiConnect")
    panel.touch("radio_Static")
    wait_for(lambda: panel.widget("line_Ip4").enabled and panel.text("line_Ip4"), "fields")
    panel.touch("line_Ip4")
    wait_for(lambda: panel.is_seen("btn_n_1"), "the keyboard")
    panel.type(str(octet))
    panel.touch("pushButton_2")
    wait_for(lambda: not panel.is_seen("pushButton_2"), "the dialog closes")
    return now.rsplit(".", 1)[0] + f".{octet}"
