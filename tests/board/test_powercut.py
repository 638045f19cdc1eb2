"""The power is cut at a hundred moments while an operator changes settings: each is the old or the new one."""

import functools
import time

import pytest

import conftest
from lab import wait_for
from virtualboard import powercut

CUTS = 100
KEPT_WITHIN_S = 1.0     # what the words service promises; the zone is synced at once
FIRST_ZONE = "UTC+08:00 Beijing"
DATA = "/mnt/data"
ZONE_FILE = f"{DATA}/etc/tz/tz.conf"


@pytest.fixture
def logged(request, developers, built, tmp_path):
    """A running panel, and the log of its writes."""
    log = powercut.Log(tmp_path)
    with conftest.logged(request, developers, built, {"data": log}) as panel:
        yield panel, log


# The history of a setting: each value with the number of requests in the log before which the disk cannot
# have it, and after which it must.
def allowed_at(history, number):
    """The values that a cut after that many requests may leave."""
    latest = max(i for i, (_, kept_by, _) in enumerate(history) if kept_by <= number)
    return {value for begun, _, value in history[latest:] if begun < number}


def shown(panel, name):
    return panel.widgets(name)[0].text


def change(panel, name, value):
    panel.touch("tab_System", 2 if name == "btn_Net" else 0)
    if name == "btn_Net":
        panel.touch(value)
    elif name == "comboBox":
        panel.choose(name, value)
    else:
        panel.touch(name)
        panel.type(value)


# What a finger does, in this order: where the setting is seen, and its new value or what is touched for it.
CHANGES = [("line_Backlightness", "70"), ("comboBox", 3), ("line_BacklightTime", "1200"), ("line_BeepTime", "200"),
           ("btn_Net", "ENBtn"), ("line_BeepType", "5"), ("comboBox", 1), ("line_Backlightness", "45"),
           ("line_BacklightTime", "30"), ("line_BeepType", "2"), ("line_BeepTime", "50"), ("comboBox", 4),
           ("line_Backlightness", "80")]
NOT_PROMISED_AT_ONCE = "btn_Net"    # the language's file is replaced whole, whenever the disk does it


def change_all(panel, log):
    """Makes all changes by touch; the history of each setting."""
    panel.touch("btn_Sysset")
    wait_for(lambda: panel.widget("comboBox"), "the page")
    histories = {name: [(-1, 0, shown(panel, name))] for name, *_ in CHANGES}
    for name, value in CHANGES:
        before, begun = shown(panel, name), log.length()
        change(panel, name, value)
        wait_for(lambda n=name, b=before: shown(panel, n) != b, f"{name} changes")
        time.sleep(KEPT_WITHIN_S)
        kept_by = float("inf") if name == NOT_PROMISED_AT_ONCE else log.length()
        histories[name].append((begun, kept_by, shown(panel, name)))
    return histories


@pytest.mark.long
def test_a_power_cut_leaves_each_setting_old_or_new(logged, tmp_path):
    panel, log = logged
    histories = change_all(panel, log)
    disks = powercut.SideBySide(log.cuts(CUTS), tmp_path / "all.raw")
    device = panel.hands.add_disk("cuts", tmp_path / "all.raw")
    trees = disks.trees(panel.shell, device)
    assert len(trees) == len(disks.numbers) == CUTS

    @functools.cache
    def start_on(tree):
        """What is shown with such a tree on the data disk, equal ones being started on once."""
        panel.shell("systemctl stop sysset sysset-words")
        disks.put_in_place(panel.shell, device, trees.index(tree), DATA)
        zone_size = panel.shell(f"stat -c %s {ZONE_FILE} && systemctl start sysset")
        values = {name: wait_for(lambda n=name: shown(panel, n), name) for name in histories}
        return values, zone_size == "0"

    for number, tree in zip(disks.numbers, trees):
        values, zone_lost = start_on(tree)
        for name, value in values.items():
            allowed = {FIRST_ZONE} if zone_lost and name == "comboBox" else allowed_at(histories[name], number)
            assert value in allowed, f"{name} after {number} requests"
    print(f"{disks.numbers[-1]} requests, {start_on.cache_info().misses} different disks")

    panel.shell(f"systemctl stop sysset; : >{ZONE_FILE}; systemctl start sysset")
    wait_for(lambda: shown(panel, "comboBox") == FIRST_ZONE, "the first zone")
