"""Boards for the stories: kept ones, restored for each story, and what is left of those that fail."""

import contextlib
import shutil

import pytest

import lab
from virtualboard import cache, kept


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    """Lets a fixture see whether its story failed."""
    result = (yield).get_result()
    if result.when == "call":
        item.failed = result.failed


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
def at_work(request, machine, built):
    """The panel of a board, for one story."""
    panel = lab.Panel(lab.VirtualHands(machine), built)
    yield panel
    if getattr(request.node, "failed", False):
        folder = cache.folder() / "failed" / request.node.name
        shutil.rmtree(folder, ignore_errors=True)
        lab.evidence(panel, folder)
        print(f"What it left behind is in {folder}")
    panel.put_away()
    kept.remove(machine)


def restored(request, base, built, **options):
    """A fresh copy of a kept board for one story."""
    return at_work(request, kept.restore(base, built, lab.SIZE, **options), built)


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
