"""Ethernet by touch, and what NetworkManager and the kernel make of it."""

import time

from ethernet_page import ETHERNET, GROUPS, LEASE_S, NET, RECORD_S, fields, open_page, wait_fields, wait_lease
from lab import wait_for

WAITING, OFF = "正在等待分配地址。", "以太网已关闭。"
ICON_S = 20     # its ping is every 2 s, and waits for an answer of its own


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
    networked.shell("nmcli -w 30 con up panel-eth1")    # it has asked for an address in vain until now
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
    for tab, switch in ((1, "btn_WifiSwitch"), (2, "btn_4G")):
        networked.touch("tab_Net", tab)
        networked.touch(switch)
    wait_for(lambda: {"preferred=4G", "off=modem;wlan0;"} <= set(networked.shell(kept).split()), "all kept")
    networked.power_cycle()
    networked.open_pages()
    open_page(networked)
    wait_fields(networked, wanted, 60)
    wait_in_force(networked, "192.168.30.5/24", "192.168.30.1", timeout=30)
    networked.touch("tab_Net", 3)
    wait_for(lambda: networked.widget("combox").index == 2, "4G")
    for tab, status in ((1, "lab_WifiStatus"), (2, "lab_4gStatus")):
        networked.touch("tab_Net", tab)
        wait_for(lambda s=status: networked.is_seen(s), "off")
    assert not {"wlan0", "ppp0"} & set(networked.shell("ip -4 -o addr | cut -d' ' -f2").split())


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
    networked.touch("radio_Dhcp")
    wait_for(lambda: "method=auto" in profile(networked), "DHCP")
    wait_for(lambda: fields(networked) == leased, "the lease again", LEASE_S)
