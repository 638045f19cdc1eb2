"""Ethernet by touch, and what NetworkManager and the kernel make of it."""

import time

from lab import wait_for

ETHERNET = 0    # tab
WAITING, OFF = "正在等待分配地址。", "以太网已关闭。"
GROUPS = ["Ip", "Mask", "GateWay", "Dns1_", "Dns2_"]
NET = "192.168.10."
RECORD_S = 10   # from what happens on the board to what the page shows of it
LEASE_S = 40    # the far end's server answers, and NetworkManager may just have begun to wait longer
ICON_S = 20     # its ping is every 2 s, and waits for an answer of its own


def open_page(panel):
    panel.touch("btn_Net")
    panel.touch("tab_Net", ETHERNET)
    wait_for(lambda: panel.widget("wdg_Eth"), "the page")


def page(panel):
    """Texts of the page by their widgets' names; those that are seen."""
    return {w.name: w.text for w in panel.widget("wdg_Eth").walk() if w.visible and w.text is not None}


def fields(panel):
    """Address, mask, gateway and both servers as they are seen, or the hint in their place."""
    texts = page(panel)
    if "lab_replacwidgetEth" in texts:
        return texts["lab_replacwidgetEth"]
    return [".".join(texts[f"line_{group}{i}"] for i in range(1, 5)).strip(".") for group in GROUPS]


def wait_fields(panel, wanted, timeout=RECORD_S):
    return wait_for(lambda: (seen := fields(panel)) == wanted and seen, f"fields {wanted}", timeout)


def wait_lease(panel, timeout=LEASE_S):
    """The fields, once they show what the far end's server has given."""
    def leased():
        seen = fields(panel)
        rest = ["255.255.255.0", f"{NET}1", "10.99.0.53", "10.99.0.54"]
        return seen[0].startswith(f"{NET}1") and seen[1:] == rest and seen
    return wait_for(leased, "a lease", timeout)


def is_online(panel):
    return "EthInPut" in panel.widgets("lab_Eth")[0].style


def wait_icon(panel, online):
    wait_for(lambda: is_online(panel) == online, f"icon {'in' if online else 'out'}", ICON_S)


def put(panel, field, digits):
    """Types one octet."""
    panel.touch(f"line_{field}")
    wait_for(lambda: panel.is_seen("line_Text"), "the keyboard")
    panel.type(digits)


def in_force(panel):
    """Address and gateway as the kernel has them."""
    address = panel.shell("ip -4 -br address show eth0").split()[2:]
    way = panel.shell("ip route show default dev eth0").split()[1:3]
    return [*address, *way[1:]]


def wait_in_force(panel, *wanted, timeout=RECORD_S):
    wait_for(lambda: in_force(panel) == list(wanted), f"{wanted} in force", timeout)


def profile(panel):
    return panel.shell("cat /mnt/data/network/profiles/panel-eth0.nmconnection")


def assert_alive(panel):
    """The page answers a finger within what an operator takes for at once."""
    began = time.monotonic()
    panel.touch("tab_Net", 3)
    wait_for(lambda: panel.is_seen("btn_check"), "another tab")
    panel.touch("tab_Net", ETHERNET)
    wait_for(lambda: panel.is_seen("wdg_Eth"), "the page again")
    assert time.monotonic() - began < 5


def switch_off_and_on(panel, how):
    """With a server that is so when the port asks again."""
    panel.touch("btn_EthSwitch")
    wait_fields(panel, OFF)
    wait_in_force(panel)
    panel.far.dhcp("eth0", how)
    panel.touch("btn_EthSwitch")


def test_off_and_on_and_a_server_that_is_silent_slow_or_wrong(networked):
    open_page(networked)
    wait_lease(networked)
    wait_icon(networked, True)
    for how, address in [("silent", None), ("noise", None), ("mask 255.255.255.255", f"{NET}77"),
                         ("gateway outside", f"{NET}77")]:
        switch_off_and_on(networked, how)
        if address is None:
            wait_fields(networked, WAITING)
            wait_icon(networked, False)
        else:
            wait_for(lambda: fields(networked)[0] == address, how, LEASE_S)
        assert_alive(networked)
    switch_off_and_on(networked, "slow")
    wait_fields(networked, WAITING)
    wait_for(lambda: fields(networked)[0] == f"{NET}77", "a lease of a slow server", 60)


def test_a_static_address_is_typed_while_records_arrive(networked):
    """From nothing at all; the other port has an address."""
    networked.far.dhcp("eth1")
    networked.far.dhcp("eth0", "silent")
    networked.hands.cable("eth0", False)
    open_page(networked)
    wait_fields(networked, WAITING, LEASE_S)
    networked.touch("radio_Static")
    wait_fields(networked, [""] * len(GROUPS))
    networked.hands.cable("eth0", True)
    typed = []
    for number, octet in enumerate(f"{NET}5".split("."), 1):
        put(networked, f"Ip{number}", octet)
        typed.append(octet)
        networked.hands.cable("eth1", number % 2 == 0)
        wait_for(lambda: number % 2 or "eth1" in networked.shell("ip -4 route show default"), "the other")
        time.sleep(0.5)
        assert fields(networked)[0] == ".".join(typed)


def test_an_address_of_another_network_is_typed_and_all_is_kept(networked):
    open_page(networked)
    leased = wait_lease(networked)
    networked.touch("radio_Static")
    wait_for(lambda: "method=manual" in profile(networked), "static")
    assert fields(networked) == leased
    before = profile(networked)
    put(networked, "Ip3", "30")
    assert fields(networked)[0].startswith("192.168.30.")   # does not fit the gateway: refused, and stays
    assert profile(networked) == before
    put(networked, "GateWay3", "30")
    put(networked, "Ip4", "5")
    put(networked, "Dns2_4", "53")
    wanted = ["192.168.30.5", "255.255.255.0", "192.168.30.1", "10.99.0.53", "10.99.0.53"]
    wait_fields(networked, wanted)
    wait_in_force(networked, "192.168.30.5/24", "192.168.30.1")

    networked.touch("tab_Net", 3)
    networked.choose("combox", 2)
    kept = "cat /mnt/data/network/netserver/settings.conf"
    wait_for(lambda: "preferred=4G" in networked.shell(kept), "4G kept")
    networked.power_cycle()
    networked.open_pages()
    open_page(networked)
    wait_fields(networked, wanted, 60)
    wait_in_force(networked, "192.168.30.5/24", "192.168.30.1", timeout=30)
    networked.touch("tab_Net", 3)
    wait_for(lambda: networked.widget("combox").index == 2, "4G")


def test_cable_and_another_host_of_the_address(networked):
    open_page(networked)
    leased = wait_lease(networked)
    networked.touch("radio_Static")
    wait_for(lambda: "method=manual" in profile(networked), "static")
    wait_icon(networked, True)
    networked.hands.cable("eth0", False)
    wait_icon(networked, False)
    wait_in_force(networked)
    assert fields(networked) == leased      # the operator's, whether or not there is a link
    networked.far.claim("eth0", f"{NET}66")
    networked.hands.cable("eth0", True)
    wait_icon(networked, True)

    put(networked, "Ip4", "66")
    wait_for(lambda: f"{NET}66" in profile(networked), "the address kept")
    wait_icon(networked, False)
    assert f"{NET}66/24" not in in_force(networked)
    assert fields(networked)[0] == f"{NET}66"
    networked.far.release("eth0", f"{NET}66")
    wait_in_force(networked, f"{NET}66/24", f"{NET}1", timeout=30)
    wait_icon(networked, True)
