"""The Wi-Fi page as an operator sees and touches it."""

import re
import time

from lab import wait_for

WIFI = 1    # tab


def open_page(panel):
    """Until it lists what is in range."""
    panel.touch("btn_Net")
    panel.touch("tab_Net", WIFI)
    wait_for(lambda: "Guests" in panel.items("list_Wifi"), "the list", 40)


def parts(widget):
    """Texts and icons of a row."""
    names = {child.name: child for child in widget.walk()}
    icons = {name: re.sub(r".*/|\).*", "", names[name].style or "") for name in ("lab_signal", "lab_Ok")}
    return names["lab_ssid"].text, icons["lab_signal"], icons["lab_Ok"], names["lab_ip"].text


def address(panel):
    """As the kernel has it, None without."""
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
    """How long it took."""
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
