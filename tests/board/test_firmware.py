"""Firmware from a stick: the panel starts it on trial, keeps it, or goes back to the one before."""

import contextlib
import random
import time

import pytest

import conftest
import lab
import update_page
from lab import wait_for
from update_page import FIRMWARE, KEYRING, RELEASE, choose, outcome, percent, plug
from virtualboard import developer, disks, machine, powercut
from virtualboard.commands import run
from virtualboard.jsonlines import Refused

DONE = "Updated firmware\r\nPlease restart HMI!!"
NO_FIRMWARE = "Failed to get Udisk HMI firmware."
NO_MODEL = "Failed to get Udisk HMI model."
NEWER = "Project file unmatched. Please select the project that matches HMI firmware."
MODEL = "HMI model: KV070T\nModel settings in firmware: {}\nModel does not match, please re-select the firmware file!"
ASKED = "The firmware is a newer version."

OLD, NEW = 100, 102
CHOICE = "head -c 4 /dev/disk/by-id/virtio-boot"   # tools/board/init.c tells what it says
BACK_S = 400
CHOICES = ["AB90", "BA93", "BA92", "BA99"]              # in the course of an install and its first start
CUTS = conftest.by_night(200, 20)
STARTS = CUTS // 10
REAL_CUTS = 20
TRIAL = {"/etc/systemd/system/sysset-trial.timer":
         b"[Unit]\nConditionPathExists=!/var/lib/sysset/firmware-proved\n[Timer]\nOnBootSec=45s\n"}
# What an install leaves beside all else; of a note that was being written the one before, and a part of it.
NOTES = ["./rauc", "./sysset/firmware-trial*", "./sysset/versions.d*"]
PROFILES = "./network/profiles"     # written anew at each start, under other names too: whose they are counts
DATA = (f"cd /mnt/data && grep -h ^id= {PROFILES}/*.nmconnection | sort -u && find . " +
        "".join(f"-path '{path}' -prune -o " for path in (*NOTES, PROFILES)) +
        "-type f -print | sort | xargs sha256sum")


@pytest.fixture
def maker(folder, tmp_path):
    return update_page.Maker(tmp_path, folder)


@pytest.fixture
def at_firmware(panel, maker):
    return update_page.ready(panel, maker, OLD, FIRMWARE)


def root(built, path, files):
    """The image of a slot: the board's own with another version and some files changed."""
    release = disks.file_of_root(built.disks["slot-a"], RELEASE) + f"IMAGE_VERSION={NEW}\n".encode()
    disks.change_root(built.disks["slot-a"], path, {RELEASE: release, **files})
    return path


def ending(panel):
    """Texts of the box that ends an install, without its heading; the values that the bar had until then."""
    values = set()
    while not panel.is_seen("btn_Ok"):
        values.add(percent(panel, FIRMWARE))
    return outcome(panel).split("\n", 1)[1], values - {None, 0, 100}


def answer_question(panel, button):
    wait_for(lambda: panel.text("label").startswith(ASKED), "the question")
    panel.touch(button)


def slot(panel):
    """The one that runs, as the system has it; nothing while the board starts."""
    agent = panel.hands.machine.agent
    agent.close()
    with contextlib.suppress(OSError, EOFError, Refused):
        agent.connect(10)
        return agent.run("cat /run/slot", 10)


def version_row(panel, name):
    """That of HMI Version, which asks anew whenever it is opened; nothing without one."""
    panel.touch("tab_Machine", 0)
    panel.touch("tab_Machine", 1)
    return next((row for row in panel.items("list_Version") if row.startswith(name)), None)


def restart(panel):
    panel.touch("btn_Reboot")
    panel.touch("btn_Ok")
    panel.hands.wait_restart(60)


@pytest.mark.long
def test_a_firmware_is_asked_about_started_and_kept(at_firmware, maker, folder, built, tmp_path):
    panel = at_firmware
    maker.firmware("panel.osf3", root(built, tmp_path / "root", {}), version=NEW)
    panel.shell("mkdir -p /mnt/data/prj && echo version=101 >/mnt/data/prj/.project && sync")
    plug(panel, folder, FIRMWARE)
    choose(panel, "panel.osf3", FIRMWARE)
    answer_question(panel, "btn_Cancel")
    assert ending(panel)[0] == NEWER
    assert panel.shell(CHOICE) == "AB90"
    choose(panel, "panel.osf3", FIRMWARE)
    answer_question(panel, "btn_Ok")
    said, values = ending(panel)
    assert said == DONE and len(values) > 5, values
    assert panel.shell(CHOICE) == "BA93"
    before = panel.shell(DATA)
    restart(panel)
    panel.wait_started()
    assert slot(panel) == "SLOT=B" and f"IMAGE_VERSION={NEW}" in panel.shell(f"cat {RELEASE}")
    wait_for(lambda: panel.shell(CHOICE) == "BA99", "the firmware has proved itself", 90)
    assert panel.shell(DATA) == before
    assert panel.try_shell("ls /mnt/data/sysset/firmware-trial /mnt/data/sysset/versions.d")[0] != 0
    assert panel.shell("systemctl --failed --plain --no-legend") == ""


BROKEN = [
    pytest.param({"/usr/sbin/init": None}, 3, id="does not start"),
    pytest.param({"/usr/bin/sysset": b"#!/bin/false\n", **TRIAL}, 1, id="has a program that crashes"),
    pytest.param({"/etc/fstab": b"LABEL=none /mnt/data ext4 nofail,x-systemd.device-timeout=2s 0 2\n", **TRIAL}, 1,
                 id="does not find its data"),
]


@pytest.mark.long
@pytest.mark.parametrize("files, tries", BROKEN)
def test_the_one_before_comes_back_if_the_new_one(files, tries, at_firmware, maker, folder, built, tmp_path):
    panel = at_firmware
    maker.firmware("panel.osf3", root(built, tmp_path / "root", files), version=NEW)
    plug(panel, folder, FIRMWARE)
    choose(panel, "panel.osf3", FIRMWARE)
    assert ending(panel)[0] == DONE
    panel.shell(f"printf BA9{tries} | dd of=/dev/disk/by-id/virtio-boot conv=notrunc,fsync status=none")
    before = panel.shell(DATA)
    restart(panel)
    wait_for(lambda: slot(panel) == "SLOT=A", "the one before", BACK_S)
    panel.wait_started()
    panel.open_pages()
    assert panel.shell(CHOICE) == "BA90" and panel.shell(DATA) == before
    row = wait_for(lambda: version_row(panel, f"Firmware {NEW}"), "the operator is told")
    assert row.endswith("did not start; the one before is back")


@pytest.mark.long
def test_what_is_refused_leaves_the_firmware_as_it_is(at_firmware, maker, folder, tmp_path):
    panel = at_firmware
    image = tmp_path / "image"
    image.write_bytes(random.Random(1).randbytes(6 << 20))
    strangers = update_page.Maker(tmp_path / "strangers", folder)
    cases = {"model.osf3": MODEL.format("KV100"), "stranger.osf3": NO_FIRMWARE, "tampered.osf3": NO_FIRMWARE,
             "cut.osf3": NO_MODEL, "logo.osf2": DONE, "logos.osf2": NO_FIRMWARE}
    maker.firmware("model.osf3", image, version=NEW, model="KV100")
    maker.firmware("stranger.osf3", image, version=NEW, keys=strangers.keys)
    for name, spoil in {"tampered": lambda data: data[:3 << 20] + b"!!" + data[(3 << 20) + 2:],
                        "cut": lambda data: data[:-5000]}.items():
        path = maker.firmware(f"{name}.osf3", image, version=NEW)
        path.write_bytes(spoil(path.read_bytes()))
    image.write_bytes(random.Random(2).randbytes(24 << 20))
    maker.firmware("good.osf3", image, version=NEW)
    maker.project("logo.osf2", {"logo.bmp": "a picture"}, kind="logo")
    maker.project("logos.osf2", {"logo.bmp": "a stranger's"}, kind="logo", keys=strangers.keys)
    plug(panel, folder, FIRMWARE, slow=True)
    for name, said in cases.items():
        choose(panel, name, FIRMWARE)
        assert ending(panel)[0] == said, name
        assert panel.shell(CHOICE) == "AB90", name
    assert panel.shell("cat /mnt/data/logo/logo.bmp") == "a picture"
    choose(panel, "good.osf3", FIRMWARE)
    wait_for(lambda: (percent(panel, FIRMWARE) or 0) in range(10, 90), "the bar")
    panel.hands.pull("stick")
    assert ending(panel)[0] == NO_FIRMWARE
    assert panel.shell(CHOICE) == "AB90"
    assert panel.try_shell("ls /mnt/data/sysset/firmware-trial")[0] != 0


@pytest.fixture
def logged(request, developers, built, tmp_path, maker):
    """The same, and the logs of the disks that an install writes to."""
    logs = {name: powercut.Log(tmp_path, name) for name in ("boot", "slot-b", "data")}
    with conftest.logged(request, developers, built, logs) as panel:
        yield update_page.ready(panel, maker, OLD, FIRMWARE), logs


def spread(moments, count):
    """So many of them, half of them from before the choice of the boot loader has changed first."""
    turn = next(i for i, sizes in enumerate(moments) if sizes[0] > moments[0][0])
    def some(part):
        return [part[(2 * i + 1) * len(part) // count] for i in range(count // 2)]
    return some(moments[:turn]) + some(moments[turn:])


def cuts(logs, moments):
    """The disk of the boot loader, slot and data disk at each of the moments; paths are overwritten."""
    replays = [powercut.Replay(log) for log in logs.values()]
    for sizes in moments:
        for replay, size in zip(replays, sizes):
            replay.go(lambda entry, most=size: entry.log_size <= most)
        boot, slot_b, data = replays
        yield boot.cut(), slot_b, data.cut()


@pytest.mark.long
def test_a_power_cut_leaves_the_old_or_the_new_one(logged, maker, folder, built, tmp_path):
    panel, logs = logged
    image = root(built, tmp_path / "root", {})
    maker.firmware("panel.osf3", image, version=NEW)
    plug(panel, folder, FIRMWARE)
    before = panel.shell(DATA)
    moments = powercut.Moments(logs.values())
    choose(panel, "panel.osf3", FIRMWARE)
    assert ending(panel)[0] == DONE
    restart(panel)
    panel.wait_started()
    wait_for(lambda: panel.shell(CHOICE) == "BA99", "the firmware has proved itself", 90)
    moments.end()
    panel.hands.cut_power()
    found = []

    def data_disks():
        for number, (boot, slot_b, data) in enumerate(cuts(logs, spread(moments.noted, CUTS))):
            yield number, data
            found.append(boot.read_bytes()[:4].decode())
            if found[-1] == "BA93":
                run(["cmp", "-n", image.stat().st_size, slot_b.cut(), image])
            elif found[-1].startswith("BA"):
                assert powercut.recover(slot_b.cut()) == "", number

    everything = powercut.SideBySide(data_disks(), tmp_path / "all.raw")
    print(f"{len(moments.noted)} moments: {found}")
    assert found == sorted(found, key=CHOICES.index) and {"AB90", "BA92"} <= set(found)
    panel.hands.power_on(panel.image)
    panel.wait_started()
    device = panel.hands.add_disk("cuts", tmp_path / "all.raw")
    panel.shell("systemctl stop sysset sysset-words sysset-update")
    for index in range(CUTS):
        everything.put_in_place(panel.shell, device, index, "/mnt/data")
        assert panel.shell(DATA) == before, index
    for boot, slot_b, data in cuts(logs, spread(moments.noted, STARTS)):
        start_from(panel, {"boot": boot, "slot-b": slot_b.cut(), "data": data})
        assert panel.shell(DATA) == before


def start_from(panel, left):
    """Starts the board on what a cut has left of some disks; the slot that is chosen runs."""
    panel.hands.cut_power()
    panel.hands.machine.start(panel.image, others={name: machine.raw_disk(path) for name, path in left.items()})
    panel.wait_started()
    runs, version = ("B", NEW) if panel.shell(CHOICE).startswith("BA") else ("A", OLD)
    assert slot(panel) == f"SLOT={runs}" and f"IMAGE_VERSION={version}" in panel.shell(f"cat {RELEASE}")


@pytest.mark.long
@pytest.mark.nightly
def test_the_power_is_cut_while_one_is_installed(at_firmware, maker, folder, built, tmp_path):
    panel, chance = at_firmware, random.Random(1)
    maker.firmware("panel.osf3", root(built, tmp_path / "root", {KEYRING: maker.keyring()}), version=NEW)
    before = panel.shell(DATA)
    for _ in range(REAL_CUTS):
        plug(panel, folder, FIRMWARE)
        choose(panel, "panel.osf3", FIRMWARE)
        time.sleep(chance.uniform(0, 100))
        if panel.is_seen("btn_Ok"):
            assert ending(panel)[0] == DONE
            restart(panel)
            time.sleep(chance.uniform(0, 60))
        panel.power_cycle()
        choice, runs = panel.shell(CHOICE), slot(panel)
        print(choice, runs)
        assert runs == f"SLOT={choice[0]}" and panel.shell(DATA) == before
        if panel.try_shell("test -e /usr/local/bin/sysset-dev")[0] != 0:    # a firmware as it is delivered
            developer.lay_over(panel.hands.machine, lab.developers_overlay())
        panel.wait_booted()
        panel.open_pages()
        update_page.open_page(panel, FIRMWARE)
