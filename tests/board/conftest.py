"""Boards for the stories: kept ones, restored for each story, and what is left of those that fail."""

import os
import pathlib
import shutil

import pytest

import lab
from virtualboard import cache, developer, image, kept, packages
from virtualboard.machine import Screen

SIZE = Screen()


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    """Lets a fixture see whether its story failed."""
    result = (yield).get_result()
    if result.when == "call":
        item.failed = result.failed


@pytest.fixture(scope="session")
def built():
    """The image: of the packages in $SYSSET_BOARD_DEBS, or of those that the checkout makes."""
    return image.build(os.environ.get("SYSSET_BOARD_DEBS") or packages.packages_step())


@pytest.fixture(scope="session")
def packaged(built):
    """A kept board as it is delivered."""
    return kept.kept_step("kept", built, SIZE)


def developers_step(built):
    """The same with the developer's program in the place of the packaged one, its pages open."""
    program = os.environ.get("SYSSET_BOARD_PROGRAM") or developer.program_step()
    overlay = developer.overlay_step(program)

    def prepare(board):
        developer.lay_over(board, overlay)
        panel = lab.Panel(lab.VirtualHands(board), built)
        panel.open_pages()
        kept.wait_until_still(board)

    return kept.kept_step("stories", built, SIZE, prepare, [overlay])


@pytest.fixture(scope="session")
def developers(built):
    """The folder of that board."""
    return developers_step(built)


def _keep_evidence(request, panel):
    if getattr(request.node, "failed", False):
        folder = cache.folder() / "failed" / request.node.name
        shutil.rmtree(folder, ignore_errors=True)
        lab.evidence(panel, folder)
        print(f"What it left behind is in {folder}")


def _restored(request, base, built, **options):
    machine = kept.restore(base, built, SIZE, **options)
    panel = lab.Panel(lab.VirtualHands(machine), built)
    yield panel
    _keep_evidence(request, panel)
    kept.remove(machine)


@pytest.fixture
def panel(request, developers, built):
    """A running panel whose widgets can be found by name."""
    yield from _restored(request, developers, built)


@pytest.fixture
def delivered(request, packaged, built):
    """A running panel as it is delivered."""
    yield from _restored(request, packaged, built)


@pytest.fixture
def new_panel(request, built):
    """A panel that has just been switched on for the first time."""
    machine = kept.cold_machine(built, SIZE)
    panel = lab.Panel(lab.VirtualHands(machine), built)
    yield panel
    _keep_evidence(request, panel)
    kept.remove(machine)


@pytest.fixture
def folder(tmp_path):
    """A folder for a stick's files."""
    place = tmp_path / "files"
    place.mkdir()
    return pathlib.Path(place)
