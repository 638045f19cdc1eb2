"""What the network pages live on is killed at any moment; the operator goes on."""

import json
import random
import time

import pytest

from lab import NotSeen, wait_for
from wifi_page import WIFI, is_joined, join, open_page

KILLS = 50
PROGRAMS = ["netServer", "NetworkManager", "wpa_supplicant", "ModemManager"]
UNITS = ["sysset-network", "NetworkManager", "wpa_supplicant", "ModemManager"]
HANGS_S = 300       # all kills, on a computer that does something else besides
TIMEOUT_S = 5       # of a call of the network pages
RECORDS = ("runuser -u panel -- busctl -j call org.sysset.Network1 /org/sysset/Network1 org.sysset.Network1 "
           "GetDevices b 0")


def killer(chance):
    """Lines of shell that kill the programs in turns, at random moments; one that is away has to come first."""
    for kill in range(KILLS):
        if kill % len(PROGRAMS) == 0:
            turn = chance.sample(PROGRAMS, len(PROGRAMS))
        yield f"sleep {chance.uniform(0.1, 1.0):.2f}"
        yield f"until kill -KILL $(pidof {turn[kill % len(PROGRAMS)]}) 2>/dev/null; do sleep 0.1; done"


def network_pages(panel):
    """Touches all pages of the network, and opens the dialog of the network that is joined, if one is. Returns
    how long each touch took to show."""
    def timed(seen, name, row=None):
        began = time.monotonic()
        panel.touch(name, row)
        wait_for(seen, f"{name} touched", 60)
        return time.monotonic() - began

    took = [timed(lambda t=tab: panel.widget("tab_Net").index == t, "tab_Net", tab) for tab in (0, 2, 3, WIFI)]
    if panel.is_seen("wid_wifiConnect"):
        try:
            took.append(timed(lambda: panel.is_seen("radio_Dhcp") or not panel.is_seen("wid_wifiConnect"),
                              "wid_wifiConnect"))
            took.append(timed(lambda: not panel.is_seen("pushButton_2"), "pushButton_2"))
        except NotSeen:     # it closes when the device goes
            assert not panel.is_seen("pushButton_2")
    return took


def records(panel):
    status, told = panel.try_shell(RECORDS)
    return status == 0 and json.loads(told)["data"]


def settled(panel):
    former = records(panel)
    time.sleep(2)
    return former == records(panel) and former


def is_same(now, before):
    differences = [pair for pair in zip(now[0], before[0]) if pair[0] != pair[1]] if now else ["no answer"]
    if differences or len(now[0]) != len(before[0]):
        raise NotSeen(f"{differences}")
    return True


@pytest.mark.long
def test_services_of_the_network_killed_under_a_working_finger(networked):
    panel, seed = networked, random.randrange(10000)
    print(f"seed {seed}")
    open_page(panel)
    join(panel, "Guests")
    before = wait_for(lambda: settled(panel), "records that stand still")
    healthy = max(network_pages(panel))
    program = panel.shell("systemctl show -P MainPID -P NRestarts sysset")
    panel.shell("cat >/run/killer", stdin="\n".join(killer(random.Random(seed))).encode())
    panel.shell("systemd-run -q --unit killer sh /run/killer")
    took = []
    began = time.monotonic()
    while panel.service_is("killer") == "active":
        took += network_pages(panel)
        assert time.monotonic() - began < HANGS_S, "a service does not come back"
    lasted, began = time.monotonic() - began, time.monotonic()
    assert panel.shell("systemctl show -P MainPID -P NRestarts sysset") == program
    wait_for(lambda: is_same(records(panel), before), "the records as before", 60)
    wait_for(lambda: is_joined(panel, "Guests"), "joined again", 60)
    print(f"{KILLS} kills in {lasted:.0f} s; {len(took)} touches, slowest {max(took):.1f} s, without killing "
          f"{healthy:.1f} s; right again after {time.monotonic() - began:.1f} s")
    assert max(took) < TIMEOUT_S + 3 * healthy
    restarts = panel.shell(f"systemctl show -P NRestarts {' '.join(UNITS)}").split()
    assert sum(map(int, restarts)) >= KILLS
    assert panel.shell("systemctl --failed --plain --no-legend") == ""
    assert not panel.is_seen("btn_Ok")
