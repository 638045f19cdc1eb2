"""What the panel's networks lead to: made ready on the host, laid over a booted board and started there."""

import pathlib
import shutil
import time

import air
from virtualboard import cache
from virtualboard.commands import run

HERE = pathlib.Path(__file__).resolve().parent
SOURCES = HERE / "far"
MODULES = [HERE / "farends.py", HERE / "air.py"]
MODULES = [HERE / "farends.py", HERE / "air.py"]
PROGRAMS = ["air"]
PLACE = "usr/local/lib/far"

START = "tar -xf - -C / && systemctl daemon-reload && systemctl -q enable --now far"


def overlay_step():
    """A tar of programs and configuration."""
    files = air.configuration()

    def make(out):
        tree = out / "tree"
        shutil.copytree(SOURCES / "etc", tree / "etc")
        place = tree / PLACE
        place.mkdir(parents=True)
        for program in PROGRAMS:
            run(["gcc", "-O2", "-Wall", "-Wextra", "-Werror", "-static", "-s", "-o", place / program,
                 SOURCES / f"{program}.c"])
        shutil.copy(SOURCES / "up", place)
        for name, text in files.items():
            (place / name).write_text(text)
        run(["tar", "-cf", out / "overlay.tar", "--owner=0", "--group=0", "--mode=u+rwX,go+rX,go-w",
             "-C", tree, "etc", "usr"])
        shutil.rmtree(tree)
    return cache.step("far", "Preparing the far ends", [SOURCES, str(files)], make) / "overlay.tar"


def set_up(board, overlay):
    """Puts the far ends in place; they come up with every further start of the board by themselves."""
    board.agent.run(START, stdin=overlay.read_bytes(), timeout=120)
    board.wait_until(lambda: len(seen(board.agent.run)) == len(air.NETWORKS), 60, "list of all stations")


def seen(shell):
    """Level in percent of each station that NetworkManager lists, by its address."""
    told = shell("nmcli -t -e no -f SIGNAL,BSSID dev wifi list --rescan no")
    return {line.split(":", 1)[1].lower(): int(line.split(":", 1)[0]) for line in told.splitlines()}
