"""From power-on to the first picture, and every way to a restart."""

import time

import pytest

from lab import wait_for
from virtualboard import kept

TABS = {"btn_Machine": "tab_Machine", "btn_Net": "tab_Net", "btn_UpData": "tab_UpData", "btn_Sysset": "tab_System"}


def test_switched_on_for_the_first_time_it_shows_the_program(new_panel):
    began = time.monotonic()
    kept.wait_for_picture(new_panel.hands.machine)
    print(f"first frame {time.monotonic() - began:.1f} s after power-on")
    new_panel.wait_started()
    assert new_panel.try_shell("systemctl is-system-running --wait")[1] == "running", \
        new_panel.try_shell("systemctl --failed")
    assert new_panel.service_is("sysset.service") == "active"


@pytest.mark.parametrize("button", TABS)
def test_a_finger_reaches_every_page(panel, button):
    panel.touch(button)
    wait_for(lambda: panel.items(TABS[button]), "the page")
    for tab in range(len(panel.items(TABS[button]))):
        panel.touch(TABS[button], tab)
        wait_for(lambda t=tab: panel.widget(TABS[button]).index == t, f"tab {tab}")
        assert panel.hands.ask("ui", "fit") == []


def test_restart_asks_and_resets_the_board(panel):
    panel.touch("btn_Reboot")
    panel.touch("btn_Cancel")
    panel.touch("btn_Net")
    wait_for(lambda: panel.widget("tab_Net"), "the panel goes on")
    panel.touch("btn_Reboot")
    panel.touch("btn_Ok")
    panel.hands.wait_restart(60)


def test_the_end_of_the_program_resets_the_board(panel):
    panel.hands.ask("quit")
    panel.hands.wait_restart(60)


def test_a_program_that_dies_comes_back_without_a_restart(delivered):
    uptime = delivered.shell("cat /proc/sys/kernel/random/boot_id")
    delivered.shell("systemctl kill -s SEGV sysset")
    wait_for(lambda: delivered.service_is("sysset") == "active", "the program again", 30)
    delivered.wait_started()
    assert delivered.shell("cat /proc/sys/kernel/random/boot_id") == uptime
