"""Boards for the stories: kept ones, restored for each story, and what is left of those that fail."""

import contextlib
import fcntl
import os
import shutil

import pytest

import lab
from virtualboard import cache, kept, machine
from virtualboard.commands import run

IS_NIGHT = "SYSSET_NIGHT" in os.environ


def by_night(many, few):
    """How often something is done at night, and how often while somebody waits for the end."""
    return many if IS_NIGHT else few


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    """Lets a fixture see whether its story failed."""
    result = (yield).get_result()
    if result.when == "call":
        item.failed = result.failed


def pytest_collection_modifyitems(items):
    """The long ones first: two stories are played at a time, and neither player is to end much later."""
    for item in items:
        if item.get_closest_marker("nightly") and not IS_NIGHT:
            item.add_marker(pytest.mark.skip(reason="for a night: ./test board-long"))
    items.sort(key=lambda item: item.get_closest_marker("long") is None)


@pytest.fixture(autouse=True)
def turn(request):
    """One whose times are strict has the computer to itself."""
    is_alone = request.node.get_closest_marker("alone") is not None
    with open(cache.folder() / "stories.lock", "w", encoding="utf-8") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX if is_alone else fcntl.LOCK_SH)
        yield


@pytest.fixture(scope="session")
def built():
    """The image."""
    return lab.built()


@pytest.fixture(scope="session")
def packaged(built):
    """Folder of a kept board as it is delivered."""
    return lab.packaged_board(built)


@pytest.fixture(scope="session")
def developers(built):
    """Folder of a kept board with the developer's program."""
    return lab.developers_board(built)


@pytest.fixture(scope="session")
def networks(built):
    """Folder of a kept board with the developer's program, and networks around it."""
    return lab.networked_board(built)


@contextlib.contextmanager
def at_work(request, board, built):
    """The panel of a board, for one story."""
    panel = lab.Panel(lab.VirtualHands(board), built)
    yield panel
    if getattr(request.node, "failed", False):
        folder = cache.folder() / "failed" / f"{request.node.path.stem}-{request.node.name}"
        shutil.rmtree(folder, ignore_errors=True)
        lab.evidence(panel, folder)
        print(f"What it left behind is in {folder}")
    panel.put_away()
    kept.remove(board)


def restored(request, base, built, **options):
    """A fresh copy of a kept board for one story."""
    return at_work(request, kept.restore(base, built, lab.SIZE, **options), built)


def logged(request, base, built, logs, **options):
    """The same with logs of all writes of some of its disks, powercut.Log by the disk's name."""
    for name, log in logs.items():
        kept.flat_copy(base, name, log.before)
        run(["cp", "--sparse=always", log.before, log.disk])
        log.writes.touch()
    others = {name: machine.logged_disk(log.disk, log.writes) for name, log in logs.items()}
    return restored(request, base, built, others=others, **options)


@pytest.fixture
def panel(request, developers, built):
    """A running panel whose widgets can be found by name."""
    with restored(request, developers, built) as restored_panel:
        yield restored_panel


@pytest.fixture
def networked(request, networks, built):
    """A running panel with networks to join."""
    with restored(request, networks, built, has_desk=False) as restored_panel:
        yield restored_panel.with_modem()


@pytest.fixture
def delivered(request, packaged, built):
    """A running panel as it is delivered."""
    with restored(request, packaged, built) as restored_panel:
        yield restored_panel


@pytest.fixture
def new_panel(request, built):
    """A panel that has just been switched on for the first time."""
    with at_work(request, kept.cold_machine(built, lab.SIZE), built) as cold_panel:
        yield cold_panel


@pytest.fixture
def folder(tmp_path):
    """A folder for a stick's files."""
    place = tmp_path / "files"
    place.mkdir()
    return place
