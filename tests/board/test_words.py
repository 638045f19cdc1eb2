"""The words service fails in every way, and comes back."""

import time

import pytest

from lab import wait_for

NOT_SAVED = {"ENBtn": "Not saved: not all settings were read. Please try again.",
             "CHBtn": "未保存：设置未能全部读取，请重试。"}
NOT_SET = {"ENBtn": "Failed to update time!", "CHBtn": "更新时间失败！"}

# How the service fails, and how it comes back. Nobody wakes a silent one: that is its watchdog's part.
# One that is killed is killed again and again while the finger is at work.
FAULTS = {"silent": ("systemctl kill -s STOP sysset-words", "true"),
          "dead": ("systemctl stop sysset-words", "systemctl start sysset-words"),
          "killed": ("systemd-run -q --unit killer sh -c "
                     "'while :; do systemctl kill -s KILL sysset-words; sleep 0.3; done'",
                     "systemctl stop killer")}

SERVICES = "sysset-words dbus systemd-logind systemd-timedated polkit"


def says_what_it_cannot_do(panel, language):
    panel.touch("tab_System", 1)
    panel.touch("line_HmiStation")
    panel.type("7")
    panel.wait_text("lab_NotSaved", NOT_SAVED[language])
    panel.touch("tab_System", 0)
    panel.touch("btn_SetTime")
    wait_for(lambda: panel.by_text(NOT_SET[language], "Label"), "the box that says so")
    panel.touch("btn_Ok")


@pytest.mark.alone
@pytest.mark.parametrize("fault, language", [("silent", "ENBtn"), ("dead", "CHBtn"), ("killed", "CHBtn")])
def test_no_page_freezes_and_the_values_come_back(panel, fault, language):
    panel.touch("btn_Sysset")
    panel.touch("tab_System", 2)
    panel.touch(language)
    healthy = sum(panel.press_through())
    port, serial = panel.text("line_ComNum"), panel.text("line_SerialCommiation")
    fail, mend = FAULTS[fault]
    panel.shell(fail)
    failing = sum(panel.press_through())
    print(f"{healthy:.1f} s healthy, {failing:.1f} s {fault}")
    # The same touches: a second for the fault, and a half more for the moods of an emulated board.
    assert failing < 1.5 * healthy + 1
    if fault != "killed":
        says_what_it_cannot_do(panel, language)
    panel.shell(mend)
    panel.touch("tab_System", 1)
    while panel.text("line_ComNum") != port:
        before = panel.text("line_ComNum")
        panel.touch("btn_ComR")
        wait_for(lambda b=before: panel.text("line_ComNum") != b, "the next port")
    panel.wait_text("line_SerialCommiation", serial, 40)


def seconds_to_start(panel):
    began = time.monotonic()
    panel.shell("systemctl restart sysset")
    return time.monotonic() - began


@pytest.mark.alone
@pytest.mark.parametrize("signal", ["STOP", "KILL"])
def test_a_start_without_any_service(panel, signal):
    brightness = panel.widgets("line_Backlightness")[0].text
    healthy = min(seconds_to_start(panel) for _ in range(2))
    panel.shell(f"systemctl mask -q --runtime {SERVICES}; systemctl kill -s {signal} {SERVICES}; true")
    alone = min(seconds_to_start(panel) for _ in range(2))
    print(f"{healthy:.1f} s with all services, {alone:.1f} s without")
    assert alone < healthy + 2
    told = [line for line in panel.told("sysset") if "words" in line]
    assert told == ["the words service does not answer: its settings cannot be read or written"]
    panel.open_pages()
    if signal == "KILL":    # a notice says that no network service runs
        panel.touch("btn_Ok")
        wait_for(lambda: not panel.is_seen("btn_Ok"), "no notice")
    panel.touch("btn_Sysset")
    panel.wait_text("line_Backlightness", "")
    assert not panel.widget("comboBox").enabled
    panel.touch("tab_System", 1)
    assert not panel.widget("btn_ComR").enabled
    panel.shell(f"systemctl unmask -q --runtime {SERVICES}; systemctl kill -s CONT {SERVICES};"
                "systemctl start sysset-words")
    panel.wait_text("line_ComNum", "COM1-1", 30)
    panel.touch("tab_System", 0)
    panel.wait_text("line_Backlightness", brightness)
    wait_for(lambda: panel.widget("comboBox").enabled, "the zones can be chosen")
