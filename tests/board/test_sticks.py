"""Sticks as people bring them: whatever is wrong with one, the panel goes on."""

import os
import time

import pytest

from lab import wait_for
from virtualboard import sticks

FILES = {"list_Pro": "Line 3.tmt3", "list_Image": "Panel.osf3", "list_PlcPro": "Press.bin"}


@pytest.fixture
def update_pages(panel):
    """A panel that shows the update pages."""
    panel.touch("btn_UpData")
    return panel


def put(folder, *names):
    for name in names:
        (folder / name).write_bytes(b"x")


def stick_of(folder, make=sticks.make_fat_stick):
    image = folder.parent / f"{folder.name}.img"
    make(image, folder)
    return image


def is_gone(panel):
    """The list is empty, and nothing is left of the stick's mount."""
    wait_for(lambda: panel.items("list_Pro") == [], "an empty list")
    wait_for(lambda: panel.try_shell("grep ' /run/sysset/usb' /proc/mounts")[0] == 1, "no mount")


def test_three_lists_and_the_icon_follow_a_stick(update_pages, folder):
    panel = update_pages
    put(folder, *FILES.values(), "notes.txt")
    absent = panel.widget("lab_usb").style
    for _ in range(2):
        panel.hands.plug("stick", stick_of(folder))
        for tab, (name, file) in enumerate(FILES.items()):
            panel.touch("tab_UpData", tab)
            panel.wait_items(name, [f"U1/{file}"])
        assert panel.widget("lab_usb").style != absent
        options = panel.shell("findmnt -n -o OPTIONS /run/sysset/usb/sda1").split(",")
        assert {"ro", "nosuid", "nodev", "noexec"} <= set(options)   # nothing can run from it
        panel.touch("tab_UpData", 0)
        panel.hands.pull("stick")
        is_gone(panel)
        assert panel.widget("lab_usb").style == absent


def test_names_are_shown_as_they_are_and_never_as_more(update_pages, folder):
    shown = ["工程-Büro.tmt3", "<b>bold<br> &amp; %s%n.tmt3", "$(reboot);`id`.tmt3", "-rf.tmt3", "x" * 250 + ".tmt3"]
    put(folder, *shown)
    (folder / os.fsdecode("工程".encode("gbk") + b".tmt3")).write_bytes(b"x")
    (folder / "line\nbreak\t.tmt3").write_bytes(b"x")
    update_pages.hands.plug("stick", stick_of(folder, sticks.make_ext4_stick))
    rows = wait_for(lambda: update_pages.items("list_Pro"), "rows")
    assert len(rows) == 7 and {f"U1/{name}" for name in shown} <= set(rows)
    assert r"U1/\xB9\xA4\xB3\xCC.tmt3" in rows
    assert not any("\n" in row for row in rows)


def seconds_to_leave(panel):
    began = time.monotonic()
    panel.touch("btn_Net")
    wait_for(lambda: panel.widget("tab_Net"), "the next page")
    return time.monotonic() - began


def test_ten_thousand_files(update_pages, folder):
    usual = seconds_to_leave(update_pages)
    update_pages.touch("btn_UpData")
    put(folder, *(f"project {number:05}.tmt3" for number in range(10000)))
    image = stick_of(folder, sticks.make_ext4_stick)
    update_pages.hands.plug("stick", image)
    wait_for(lambda: len(update_pages.items("list_Pro")) == 10000, "all rows", 60)
    assert seconds_to_leave(update_pages) < 1 + 2 * usual   # an emulated board has its own pace
    update_pages.hands.pull("stick")


def test_a_slow_stick_is_listed_and_pulled_while_it_is_listed_again(update_pages, folder):
    panel = update_pages
    put(folder, *(f"project {number:05}.tmt3" for number in range(4000)))
    image = stick_of(folder, sticks.make_ext4_stick)
    panel.hands.plug("stick", image, slow=True)
    wait_for(lambda: len(panel.items("list_Pro")) == 4000, "all rows", 60)
    panel.hands.pull("stick")
    is_gone(panel)
    panel.hands.plug("stick", image, slow=True)
    wait_for(lambda: panel.try_shell("findmnt /run/sysset/usb/sda")[0] == 0, "the mount", 30)
    panel.hands.pull("stick")
    is_gone(panel)
    panel.touch("btn_Net")
    wait_for(lambda: panel.widget("tab_Net"), "the panel goes on")


def garbled(make, first_sector, sectors):
    """Makes sticks of that kind with garbage in a part of them."""
    def make_garbled(image, folder):
        make(image, folder)
        sticks.break_sectors(image, first_sector, sectors, seed=first_sector)
    return make_garbled


BROKEN = [garbled(sticks.make_fat_stick, 0, 1),                         # nothing that says what it is
          garbled(sticks.make_fat_stick, sticks.FIRST_SECTOR + 32, 4096),   # file table and folder
          garbled(sticks.make_ext4_stick, 8, 4096),                     # all behind the super block
          *(lambda image, folder, s=seed: (sticks.make_fat_stick(image, folder),
                                           sticks.break_partition_table(image, s)) for seed in range(2))]


def test_of_a_broken_stick_nothing_is_listed_and_the_next_one_is(update_pages, folder):
    panel = update_pages
    put(folder, "a.tmt3")
    for make in BROKEN:
        panel.hands.plug("broken", stick_of(folder, make))
        wait_for(lambda: panel.try_shell("test -b /dev/sda")[0] == 0, "the disk")
        panel.shell("udevadm settle")
        assert panel.items("list_Pro") == []
        panel.hands.pull("broken")
        is_gone(panel)
    panel.hands.plug("whole", stick_of(folder))
    panel.wait_items("list_Pro", ["U1/a.tmt3"])


def test_a_write_protected_stick_works_and_stays_as_it_was(update_pages, folder):
    put(folder, "a.tmt3")
    image = stick_of(folder)
    before = image.read_bytes()
    update_pages.hands.plug("stick", image, read_only=True)
    update_pages.wait_items("list_Pro", ["U1/a.tmt3"])
    update_pages.hands.pull("stick")
    is_gone(update_pages)
    assert image.read_bytes() == before


def test_two_sticks_are_listed_one_behind_the_other(update_pages, folder):
    panel = update_pages
    put(folder, "first.tmt3")
    panel.hands.plug("one", stick_of(folder))
    panel.wait_items("list_Pro", ["U1/first.tmt3"])
    second = folder.parent / "second"
    second.mkdir()
    put(second, "second.tmt3")
    panel.hands.plug("two", stick_of(second))
    panel.wait_items("list_Pro", ["U1/first.tmt3", "U2/second.tmt3"])
    panel.hands.pull("one")   # empties the whole list; this is intended
    panel.wait_items("list_Pro", [])


def test_a_stick_that_is_there_at_the_start_is_listed(panel, folder):
    put(folder, "a.tmt3")
    panel.hands.plug("stick", stick_of(folder))
    panel.touch("btn_Reboot")
    panel.touch("btn_Ok")
    panel.hands.wait_restart(60)
    panel.wait_started()
    panel.open_pages()
    panel.touch("btn_UpData")
    panel.wait_items("list_Pro", ["U1/a.tmt3"], 30)
