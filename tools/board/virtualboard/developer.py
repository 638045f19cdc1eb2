"""The developer's program on a board: as the packaged one, and it names the widgets on its pages, so
that a finger finds them. It is laid over a booted board; the image holds the packaged one alone."""

import pathlib
import shutil

from . import cache, packages
from .commands import run

HERE = pathlib.Path(__file__).resolve().parent.parent
OVERLAY = HERE / "developer"
BRIDGE = HERE / "bridge.c"

STARTED = """set -e
tar -xf - -C /
systemctl daemon-reload
udevadm control --reload
udevadm trigger --settle --subsystem-match=virtio-ports
systemctl -q enable --now board-bridge
systemctl restart sysset
"""


def program_step():
    """The developer's program of the checkout as it is now; the packages' build makes it too."""
    return packages.packages_step() / packages.DEVELOPERS_PROGRAM


def overlay_step(program):
    """A tar of what is laid over a board."""
    def make(out):
        tree = out / "tree"
        shutil.copytree(OVERLAY, tree)
        binaries = tree / "usr/local/bin"
        binaries.mkdir(parents=True)
        shutil.copy(program, binaries / "sysset-dev")
        run(["gcc", "-O2", "-Wall", "-Wextra", "-Werror", "-static", "-s", "-o",
             binaries / "board-bridge", BRIDGE])
        run(["tar", "-cf", out / "overlay.tar", "--owner=0", "--group=0", "--mode=u+rwX,go+rX,go-w",
             "-C", tree, "etc", "usr"])
        shutil.rmtree(tree)
    inputs = [OVERLAY, BRIDGE, pathlib.Path(program)]
    return cache.step("overlay", "Preparing the developer's overlay", inputs, make) / "overlay.tar"


def lay_over(board, overlay):
    """Puts the developer's program in place and starts it."""
    board.agent.run(STARTED, stdin=overlay.read_bytes())
