"""The preferred link: the order of the three, and one that leads nowhere gives way."""

import time

import pytest

from ethernet_page import open_page, wait_lease
from lab import wait_for

EXTEND = 3      # tab
ROWS = {"eth0": 0, "wlan0": 1, "4g": 2}
GIVES_WAY_S = 30
PENALTY = 20000     # NetworkManager's, for one that leads nowhere
ORDER_S = 30    # from a touch to the routes; a call is dialled anew, and then asked whether it leads anywhere
CALL = "runuser -u panel -- busctl call org.sysset.Network1 /org/sysset/Network1 org.sysset.Network1 "


def metrics(panel):
    """Of each link with a way out."""
    found = {}
    for line in panel.shell("ip -4 route show default").splitlines():
        words = line.split()
        metric = words[words.index("metric") + 1] if "metric" in words else "0"
        name = words[words.index("dev") + 1]
        found["4g" if name.startswith("ppp") else name] = int(metric)
    return found


def routes(panel):
    """Links with a way out, the best first."""
    found = metrics(panel)
    return sorted(found, key=found.get)


def taken(panel):
    """The link that a packet to the far host takes."""
    words = panel.shell("ip route get 10.99.0.1").split()
    name = words[words.index("dev") + 1]
    return "4g" if name.startswith("ppp") else name


def all_up(panel):
    """All three links, joined as their pages would."""
    name = " ".join(str(byte) for byte in b"Guests")
    panel.shell(f"{CALL} SetNetwork ayayb 6 {name} 0 false; {CALL} JoinNetwork")
    open_page(panel)
    wait_lease(panel)
    wait_for(lambda: {"eth0", "wlan0", "4g"} <= set(routes(panel)), "three ways out", 60)
    # None is taken for one that leads nowhere, whatever the order of NetworkManager's steps was.
    wait_for(lambda: all(metric < PENALTY for metric in metrics(panel).values()), "metrics", 30)


def prefer(panel, link, others=ROWS):
    """Chooses it by touch; the others that are up follow."""
    panel.touch("tab_Net", EXTEND)
    panel.choose("combox", ROWS[link])
    order = [link, *[other for other in others if other != link]]
    try:
        wait_for(lambda: [r for r in routes(panel) if r in ROWS] == order and taken(panel) == link,
                 f"order {order}", ORDER_S)
    except Exception:
        print(panel.shell("ip -4 route; nmcli dev; nmcli con show panel-wlan0 | grep metric"))
        raise


def wait_link(panel, transfer, link):
    began = time.monotonic()
    try:
        wait_for(lambda: transfer.link(1) == link, f"a transfer over {link}", GIVES_WAY_S + 2)
    except Exception:
        print(panel.shell("ip -4 route; nmcli -f DEVICE,STATE,IP4-CONNECTIVITY dev; ss -tn"))
        raise
    print(f"over {link} after {time.monotonic() - began:.1f} s")


def test_each_order_and_the_preferred_one_unplugged(networked):
    all_up(networked)
    for link in ("wlan0", "eth0"):
        prefer(networked, link)
    networked.shell(f"{CALL} JoinNetwork")      # goes on while the order changes
    prefer(networked, "4g")
    networked.modem.pull()
    wait_for(lambda: taken(networked) == "eth0", "the next", GIVES_WAY_S)
    prefer(networked, "wlan0", ["eth0"])
    networked.air.pull_adapter()
    wait_for(lambda: taken(networked) == "eth0", "the next", GIVES_WAY_S)


@pytest.mark.long
def test_one_that_leads_nowhere_gives_way_and_comes_back(networked):
    all_up(networked)
    for link, following in [("eth0", "wlan0"), ("wlan0", "eth0")]:
        prefer(networked, link)
        with networked.far.transfer() as transfer:
            wait_link(networked, transfer, link)
            networked.far.gateway(link, False)
            wait_link(networked, transfer, following)
        networked.far.gateway(link, True)
        wait_for(lambda: taken(networked) == link, f"the way over {link} again", GIVES_WAY_S)
        # A connection keeps its sender's address, by which the far end tells the links apart: a new one.
        with networked.far.transfer() as transfer:
            wait_link(networked, transfer, link)
