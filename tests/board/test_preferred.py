"""The preferred link: the order of the three, and one that is unplugged gives way."""

from lab import wait_for
from test_ethernet import open_page, wait_lease

EXTEND = 3      # tab
ROWS = {"eth0": 0, "wlan0": 1, "4g": 2}
GIVES_WAY_S = 30
ORDER_S = 20    # from a touch to the routes; a call is dialled anew
CALL = "runuser -u panel -- busctl call org.sysset.Network1 /org/sysset/Network1 org.sysset.Network1 "


def routes(panel):
    """Links with a way out, the best first."""
    found = {}
    for line in panel.shell("ip -4 route show default").splitlines():
        words = line.split()
        metric = words[words.index("metric") + 1] if "metric" in words else "0"
        name = words[words.index("dev") + 1]
        found["4g" if name.startswith("ppp") else name] = int(metric)
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


def prefer(panel, link, others=ROWS):
    """Chooses it by touch; the others that are up follow."""
    panel.touch("tab_Net", EXTEND)
    panel.choose("combox", ROWS[link])
    order = [link, *[other for other in others if other != link]]
    wait_for(lambda: [r for r in routes(panel) if r in ROWS] == order and taken(panel) == link,
             f"order {order}", ORDER_S)


def test_each_order_and_the_preferred_one_unplugged(networked):
    all_up(networked)
    prefer(networked, "4g")
    networked.modem.pull()
    wait_for(lambda: taken(networked) == "eth0", "the next", GIVES_WAY_S)
    prefer(networked, "wlan0", ["eth0"])
    networked.air.pull_adapter()
    wait_for(lambda: taken(networked) == "eth0", "the next", GIVES_WAY_S)
