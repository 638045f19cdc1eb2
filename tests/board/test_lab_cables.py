"""The laboratory's cables and what they lead to, as NetworkManager's own tools see it."""

import pytest

from lab import wait_for

ADD = "nmcli con add type ethernet autoconnect no ipv6.method disabled "
DYNAMIC = ADD + "con-name trial ifname eth0 ipv4.dhcp-timeout "
STATIC = (ADD + "con-name static ifname eth1 ipv4.method manual "
          "ipv4.addresses 192.168.20.5/24 ipv4.gateway 192.168.20.1 ipv4.dns 10.99.0.53 ipv4.dad-timeout ")


def addresses(panel, port):
    return panel.shell(f"ip -4 -br address show {port}").split()[2:]


def answers(panel, port, host):
    return panel.try_shell(f"ping -c1 -W2 -I {port} {host}")[0] == 0


def test_a_dhcp_server_is_slow_or_silent(networked):
    networked.shell(DYNAMIC + "6")
    networked.shell("nmcli -w 20 con up trial")
    assert addresses(networked, "eth0")[0].startswith("192.168.10.1")
    networked.shell("nmcli con down trial")
    networked.far.dhcp("eth0", "silent")
    assert networked.try_shell("nmcli -w 20 con up trial")[0] != 0
    networked.far.dhcp("eth0", "slow")
    assert networked.try_shell("nmcli -w 20 con up trial")[0] != 0
    networked.far.dhcp("eth0")
    networked.shell("nmcli -w 20 con up trial")


@pytest.mark.parametrize("how, address", [
    ("address 0.0.0.0", []), ("noise", []), ("refuses", []),
    ("mask 255.255.255.255", ["192.168.10.77/32"]), ("gateway outside", ["192.168.10.77/24"])])
def test_a_dhcp_server_answers_nonsense(networked, how, address):
    networked.shell(DYNAMIC + "6")
    networked.far.dhcp("eth0", how)
    status, _ = networked.try_shell("nmcli -w 20 con up trial")
    assert (status == 0, addresses(networked, "eth0")) == (bool(address), address)


def test_a_transfer_moves_to_the_link_that_leads_somewhere(networked):
    networked.shell(DYNAMIC + "6")
    networked.shell(STATIC + "0")
    networked.shell("nmcli -w 20 con up trial; nmcli -w 20 con up static")
    with networked.far.transfer() as transfer:
        assert wait_for(transfer.link, "a transfer") == "eth0"
        networked.hands.cable("eth0", False)
        wait_for(lambda: transfer.link() == "eth1", "the other link")
        networked.far.beyond("eth1", False)
        assert answers(networked, "eth1", "192.168.20.1") and not answers(networked, "eth1", "10.99.0.1")
        networked.far.gateway("eth1", False)
        assert not answers(networked, "eth1", "192.168.20.1")
        networked.far.gateway("eth1", True)
        networked.far.beyond("eth1", True)
        wait_for(lambda: transfer.link() == "eth1", "the link again")


def test_another_host_has_the_address(networked):
    networked.far.claim("eth1", "192.168.20.5")
    networked.shell(STATIC + "3000")
    assert networked.try_shell("nmcli -w 20 con up static")[0] != 0
    networked.far.release("eth1", "192.168.20.5")
    networked.shell("nmcli -w 20 con up static")
