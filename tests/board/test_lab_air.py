"""The laboratory's air, as NetworkManager's own tool sees it."""

import pytest

import air
import farends
from lab import wait_for

JOINED = "nmcli -t -f GENERAL.STATE,IP4.ADDRESS dev show wlan0"


def profile(panel, name, more=""):
    """A profile for a network; its name is an argument of its own, whatever is in it."""
    panel.shell("read -r name; nmcli con add type wifi con-name trial ifname wlan0 autoconnect no "
                f"ipv6.method disabled ssid \"$name\" {more}", f"{name}\n".encode())


def with_key(kind, word=air.PASSWORD):
    return f"wifi-sec.key-mgmt {kind} wifi-sec.psk {word}"


def test_all_stations_are_seen_at_their_levels_which_move(networked):
    assert farends.seen(networked.shell) == air.usual_strengths()
    networked.air.level("Works", 20)
    networked.air.gone("Guests")
    networked.air.crowd(200)
    networked.shell("nmcli dev wifi rescan")
    seen = wait_for(lambda: len(s := farends.seen(networked.shell)) == 200 and s, "a crowd")
    assert seen["02:00:00:00:01:00"] == 20


@pytest.mark.parametrize("name, more", [
    ("Works", with_key("wpa-psk")),
    ("Guests", ""),
    ("Works 3", with_key("sae")),
    ("Hidden one", with_key("wpa-psk") + " 802-11-wireless.hidden yes"),
    ("厂区 – Büro", with_key("wpa-psk")),
])
def test_a_network_is_joined(networked, name, more):
    profile(networked, name, more)
    networked.shell("nmcli -w 30 con up trial")
    assert "10.1." in networked.shell(JOINED)


@pytest.mark.parametrize("name, more, reason", [
    ("Works", with_key("wpa-psk", "wrong-password"), "Secrets were required"),
    ("No address", "ipv4.dhcp-timeout 5", "IP configuration could not be reserved"),
])
def test_a_network_is_not_joined(networked, name, more, reason):
    profile(networked, name, more)
    status, told = networked.try_shell("nmcli -w 30 con up trial")
    assert status and reason in told


def test_a_station_goes_and_comes_and_the_adapter_is_pulled(networked):
    profile(networked, "Works", with_key("wpa-psk"))
    networked.shell("nmcli con mod trial connection.autoconnect yes; nmcli -w 30 con up trial")
    networked.air.gone("Works")
    wait_for(lambda: "10.1." not in networked.shell(JOINED), "no address")
    networked.air.level("Works", 60)
    wait_for(lambda: "10.1." in networked.shell(JOINED), "the network again")
    networked.air.pull_adapter()
    wait_for(lambda: "wlan0" not in networked.shell("nmcli -t dev"), "no adapter")
    networked.air.plug_adapter()
    wait_for(lambda: "10.1." in networked.try_shell(JOINED)[1], "the adapter joined again")
