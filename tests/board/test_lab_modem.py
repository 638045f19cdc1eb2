"""The laboratory's modem and its network, as ModemManager's and NetworkManager's own tools see them."""

import pytest

import farends
import modem
from lab import wait_for

PROFILE = ("nmcli con add type gsm con-name trial ifname '*' autoconnect no ipv6.method disabled "
           "gsm.apn factory ppp.refuse-eap yes ")


def state(panel):
    return farends.modem_state(panel.try_shell)


def wait_state(panel, *wanted):
    wait_for(lambda: state(panel) in wanted, f"a modem that is {wanted}", 40)


def is_up(panel):
    return panel.try_shell("nmcli -w 40 con up trial")[0] == 0


def test_it_is_registered_and_calls(networked):
    assert state(networked) == "registered"
    told = networked.shell("mmcli -m any; mmcli -i any")
    assert modem.Modem.IMEI in told and modem.Modem.ICCID in told and "signal quality: 64%" in told
    networked.shell(PROFILE)
    assert is_up(networked)
    networked.shell("ping -c1 -W3 -I ppp0 10.99.0.1")
    with networked.far.transfer() as transfer:
        wait_for(lambda: transfer.link() == "4g", "a transfer")


@pytest.mark.parametrize("kind", ["pap", "chap"])
def test_the_right_login_works_at_once_after_a_wrong_one(networked, kind):
    networked.modem.login(kind, "panel", "right")
    networked.shell(PROFILE + "gsm.username panel gsm.password wrong")
    assert not is_up(networked)
    networked.shell("nmcli con mod trial gsm.password right")
    assert is_up(networked)


def test_the_wrong_apn_is_refused(networked):
    networked.modem.apn = "another"
    networked.shell(PROFILE)
    assert not is_up(networked)
    networked.modem.apn = "factory"
    assert is_up(networked)


def test_sim_and_network_go_and_come(networked):
    networked.modem.register(modem.SEARCHING)
    wait_state(networked, "searching", "enabled")
    networked.modem.register(modem.HOME)
    wait_state(networked, "registered")
    networked.modem.pull()
    wait_state(networked, "none")
    networked.modem.has_sim = False
    networked.modem.plug()
    wait_state(networked, "failed")
    networked.modem.pull()
    wait_state(networked, "none")
    networked.modem.has_sim, networked.modem.pin = True, "1234"
    networked.modem.plug()
    wait_state(networked, "locked")
    networked.shell("mmcli -i any --pin=1234")
    wait_state(networked, "registered", "disabled", "enabled")
