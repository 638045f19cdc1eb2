"""Projects from a stick: one that is installed, those that are not, and what a power cut leaves of them."""

import random
import time

import pytest

import conftest
import update_page
from lab import wait_for
from update_page import choose, outcome, percent, plug
from virtualboard import powercut

DONE = "Download successfully!\nUpdated, please restart HMI!"
FAILED = "Download failure!\n"
NO_PROJECT = FAILED + "The project img file is not found in Udisk."
UNFIT = FAILED + "Project file unmatched. Please select the project that matches HMI firmware."
NOT_DONE = FAILED + "Failed to update, please restart HMI!"
MODEL = FAILED + "HMI model: KV070T\nModel settings in project: {}\nModel does not match, please modify it!"

CLOUD = """<?xml version="1.0"?><cloud version="1"><region>Europe</region><server url="{}" port="8883"/></cloud>"""
PROJECT = "/mnt/data/prj"
TREE = f"cd {PROJECT} && find . -type f -print0 | sort -z | xargs -0 sha256sum"
HALVES = "ls -A /mnt/data | grep '^[.]' || :"
FIRMWARE = 100
PULLS = 10
CUTS = conftest.by_night(200, 20)
REAL_CUTS = 20
WHOLE = 3_000_000       # bytes of a project that takes a while


def noise(size, seed=1):
    return random.Random(seed).randbytes(size)


@pytest.fixture
def maker(folder, tmp_path):
    return update_page.Maker(tmp_path, folder)


@pytest.fixture
def ready(panel, maker):
    return update_page.ready(panel, maker, FIRMWARE)


def test_a_project_is_installed_and_in_force_after_a_restart(ready, maker, folder):
    panel = ready
    maker.project("Line 1.tmt3", {"cloud/cloud.xml": CLOUD.format("one.example"), "pages/1": noise(WHOLE)})
    maker.project("Line 2.tmt3", {"screens/a/b/c.bin": noise(500), "空": ""}, version=FIRMWARE)
    plug(panel, folder)
    choose(panel, "Line 1.tmt3")
    values = set()
    while not panel.is_seen("btn_Ok"):
        values.add(percent(panel))
    assert outcome(panel) == DONE
    assert len(values - {None, 0, 100}) > 1, values
    installed = panel.shell(TREE)
    assert "./pages/1" in installed and "./LangugeSet.cof" in installed
    assert panel.shell(f"stat -c %U {PROJECT} {PROJECT}/LangugeSet.cof") == "panel\npanel"
    panel.touch("btn_Reboot")
    panel.touch("btn_Ok")
    panel.hands.wait_restart(60)
    panel.wait_started()
    panel.open_pages()
    assert panel.shell(TREE) == installed
    assert panel.text("btn_UpData") == "Update"     # in the language that was chosen
    panel.touch("btn_UpData")
    choose(panel, "Line 2.tmt3")
    assert outcome(panel) == DONE
    assert panel.shell(f"cd {PROJECT}; find . -type f -printf '%P ' | sort") != ""
    assert panel.try_shell(f"test -e {PROJECT}/pages")[0] == 1
    assert panel.shell(HALVES) == ""


def test_what_is_refused_leaves_the_project_as_it_is(ready, maker, folder, tmp_path):
    panel = ready
    before = panel.shell(TREE)
    strangers = update_page.Maker(tmp_path / "strangers", folder)
    small = {"a": "x"}
    cases = {"model": MODEL.format("KV100"), "unsigned": NO_PROJECT, "stranger": NO_PROJECT, "tampered": NO_PROJECT,
             "cut": NO_PROJECT, "newer": UNFIT, "room": NOT_DONE}
    maker.project("model.tmt3", small, model="KV100")
    maker.project("unsigned.tmt3", small, keys="none")
    maker.project("stranger.tmt3", small, keys=strangers.keys)
    maker.project("newer.tmt3", small, version=FIRMWARE + 1)
    maker.project("room.tmt3", {"a": bytes(80 << 20)})
    for name, spoil in {"tampered": lambda data: data[:-9] + b"!" + data[-8:],
                        "cut": lambda data: data[:44] + (len(data) - 1048).to_bytes(4, "little") + data[48:-1000]
                        }.items():
        path = maker.project(f"{name}.tmt3", {"a": noise(WHOLE)})
        path.write_bytes(spoil(path.read_bytes()))
    plug(panel, folder)
    for name, said in cases.items():
        choose(panel, f"{name}.tmt3")
        assert outcome(panel) == said, name
        assert panel.shell(TREE) == before, name
    assert panel.shell(HALVES) == ""


@pytest.mark.long
def test_a_stick_pulled_while_it_is_read(ready, maker, folder):
    panel = ready
    before = panel.shell(TREE)
    maker.project("Line 1.tmt3", {"a": noise(WHOLE)})
    ends = []
    for pull in range(PULLS):
        plug(panel, folder, slow=True)
        choose(panel, "Line 1.tmt3")
        wait_for(lambda p=pull: panel.is_seen("btn_Ok") or (percent(panel) or 0) in range(9 * p, 100), "the bar")
        panel.hands.pull("stick")
        ends.append(outcome(panel))
        is_whole = ends[-1] == DONE
        assert is_whole or ends[-1] in (NO_PROJECT, MODEL.format(""))   # the latter before it was looked at
        assert (panel.shell(TREE) == before) != is_whole
        if is_whole:
            break
        wait_for(lambda: panel.items("list_Pro") == [], "an empty list")
    assert ends.count(NO_PROJECT) > PULLS // 2, ends


@pytest.fixture
def logged(request, developers, built, tmp_path, maker):
    """The same, and the log of the writes of the data disk."""
    log = powercut.Log(tmp_path)
    with conftest.logged(request, developers, built, {"data": log}) as panel:
        yield update_page.ready(panel, maker, FIRMWARE), log


@pytest.mark.long
def test_a_power_cut_leaves_the_old_or_the_new_one(logged, maker, folder, tmp_path):
    panel, log = logged
    maker.project("Line 1.tmt3", {"old/a": noise(200_000), "version": "1"}, version=1)
    maker.project("Line 2.tmt3", {**{f"new/{n}": noise(40_000, n) for n in range(300)}, "version": "2"}, version=2)
    plug(panel, folder)
    trees = []
    for name in ("Line 1.tmt3", "Line 2.tmt3"):
        begun = log.length()
        choose(panel, name)
        assert outcome(panel) == DONE
        trees.append(panel.shell(TREE))
    ended = log.length()
    panel.hands.cut_power()
    disks = powercut.SideBySide(log.cuts(CUTS, first=begun), tmp_path / "all.raw")
    panel.hands.power_on(panel.image)
    panel.wait_started()
    device = panel.hands.add_disk("cuts", tmp_path / "all.raw")
    found = []
    assert len(disks.numbers) == CUTS
    for index in range(CUTS):
        panel.shell("systemctl stop sysset sysset-words sysset-update")
        disks.put_in_place(panel.shell, device, index, "/mnt/data")
        panel.shell("systemctl start sysset-update")
        found.append(trees.index(panel.shell(TREE)))
        assert panel.shell(HALVES) == ""
    print(f"{ended - begun} requests; old or new: {found}")
    assert found == sorted(found) and set(found) == {0, 1}


@pytest.mark.long
@pytest.mark.nightly
def test_the_power_is_cut_while_one_is_installed(ready, maker, folder):
    panel, chance, trees = ready, random.Random(1), {}
    for name in ("Line 1.tmt3", "Line 2.tmt3"):
        maker.project(name, {f"{name}/{n}": noise(60_000, n) for n in range(50)})
    plug(panel, folder)
    for name in ("Line 2.tmt3", "Line 1.tmt3"):
        choose(panel, name)
        assert outcome(panel) == DONE
        trees[panel.shell(TREE)] = name
    for _ in range(REAL_CUTS):
        in_force = trees[panel.shell(TREE)]
        choose(panel, "Line 1.tmt3" if in_force == "Line 2.tmt3" else "Line 2.tmt3")
        time.sleep(chance.uniform(0, 8))
        panel.power_cycle()
        print(in_force, "->", trees[panel.shell(TREE)])
        panel.wait_booted()
        assert panel.shell(HALVES) == ""
        panel.open_pages()
        panel.touch("btn_UpData")
        plug(panel, folder)
