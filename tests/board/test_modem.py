"""4G by touch, and what ModemManager, NetworkManager and the far end have of it."""

import time

import farends
import modem
from cellular_page import DIALLED_S, address, bars, enter, open_page
from ethernet import HOST
from lab import wait_for

GONE_S = 30
AT_ONCE_S = 25          # a login that is right, after one that was wrong
LEVEL_S = 60            # ModemManager asks for the signal twice a minute

USER, RIGHT, WRONG = "panel", "kestrel", "sparrow"   # words that no journal has by chance


def timed(what, condition, seconds):
    """How long it took."""
    began = time.monotonic()
    wait_for(condition, what, seconds)
    took = time.monotonic() - began
    print(f"{what}: {took:.1f} s")
    return took


def wait_dialled(panel, seconds=DIALLED_S):
    """Until the page shows the address and a far host answers over the link."""
    return timed("dialled", lambda: address(panel) == modem.ADDRESS
                 and panel.try_shell(f"ping -c1 -W5 -I ppp0 {HOST}")[0] == 0, seconds)


def wait_hung_up(panel, seconds=GONE_S):
    took = timed("hung up", lambda: address(panel) is None, seconds)
    wait_for(lambda: panel.try_shell("ip link show ppp0")[0] != 0, "no link")
    return took


def mm_state(panel):
    return farends.modem_state(panel.try_shell)


def kept(panel, *fields):
    """Of the profile, as NetworkManager has it."""
    return panel.shell(f"nmcli -s -g {','.join(fields)} con show \"$(nmcli -g NAME con | grep ^panel-modem)\"").splitlines()


def test_it_is_dialled_and_switched_off_and_on(networked):
    panel = networked
    open_page(panel)
    wait_dialled(panel)
    assert (panel.text("label_Imei"), panel.text("label_iccid")) == (modem.Modem.IMEI, modem.Modem.ICCID)
    assert bars(panel) == 3
    wait_for(lambda: "dev eth0" in panel.shell(f"ip route get {HOST}"), "the way over Ethernet")
    with panel.far.transfer() as transfer:
        wait_for(lambda: transfer.link() == "eth0", "the transfer over Ethernet, which is preferred")
        panel.hands.cable("eth0", False)
        wait_for(lambda: transfer.link() == "4g", "the transfer over 4G", 40)
    panel.touch("btn_4G")
    wait_hung_up(panel)
    wait_for(lambda: mm_state(panel) == "disabled", "a modem that is disabled", GONE_S)
    assert panel.is_seen("lab_4gStatus") and bars(panel) == 0
    assert kept(panel, "connection.autoconnect") == ["no"]
    panel.modem.signal(9)
    panel.touch("btn_4G")
    wait_for(lambda: not panel.is_seen("lab_4gStatus"), "on")
    panel.touch("btn_4G")   # the modem is being probed, and is off when it is back
    wait_for(lambda: panel.is_seen("lab_4gStatus"), "off again", GONE_S)
    wait_for(lambda: mm_state(panel) == "disabled", "a modem that is disabled", DIALLED_S)
    panel.touch("btn_4G")
    wait_dialled(panel)
    timed("the signal", lambda: bars(panel) == 2, LEVEL_S)
    assert kept(panel, "connection.autoconnect") == ["yes"]


def test_the_own_access_point_and_its_login(networked):
    panel = networked
    panel.modem.apn = "factory"
    panel.modem.login("pap", USER, RIGHT)
    open_page(panel)
    panel.touch("radio_manual")
    wait_for(lambda: panel.is_seen("line_ApnName"), "the fields")
    enter(panel, "line_ApnName", "factory")
    enter(panel, "line_ApnUsr", USER)
    enter(panel, "line_ApnPwd", WRONG)
    wait_for(lambda: any("login wrong" in line for line in panel.modem.said), "a login that is refused", DIALLED_S)
    assert address(panel) is None
    enter(panel, "line_ApnPwd", RIGHT)
    assert wait_dialled(panel) < AT_ONCE_S
    panel.modem.login("chap", USER, RIGHT)
    panel.modem.said.clear()
    enter(panel, "line_ApnAuth", "chap")
    wait_for(lambda: any("login right" in line for line in panel.modem.said), "a login by chap", DIALLED_S)
    wait_dialled(panel)
    wait_for(lambda: kept(panel, "gsm.apn", "gsm.username", "gsm.password", "ppp.refuse-pap")
             == ["factory", USER, RIGHT, "yes"], "the profile, whose password nmcli asks for by itself")
    for word in (RIGHT, WRONG):
        assert panel.shell(f"journalctl -b --no-pager | grep -cw {word} || :") == "0"


def test_modem_sim_and_network_go_and_come(networked):
    panel = networked
    open_page(panel)
    wait_dialled(panel)
    panel.modem.apn = "another"
    panel.modem.drop_call()
    wait_hung_up(panel)
    panel.modem.apn = None
    panel.modem.pull_sim()
    timed("no signal", lambda: bars(panel) == 0, GONE_S)
    panel.modem.pull()
    timed("pulled", lambda: panel.is_seen("lab_4gStatus") and panel.text("lab_4gStatus") == "未接入", GONE_S)
    assert not panel.widget("btn_4G").enabled and mm_state(panel) == "none"
    panel.modem.plug()
    timed("no SIM", lambda: panel.widget("btn_4G").enabled and panel.text("label_iccid") == "", DIALLED_S)
    assert mm_state(panel) == "failed" and address(panel) is None
    panel.modem.pull()
    timed("pulled", lambda: not panel.widget("btn_4G").enabled, GONE_S)
    panel.modem.insert_sim()
    panel.modem.plug()
    wait_dialled(panel)
    assert panel.text("label_iccid") == modem.Modem.ICCID
