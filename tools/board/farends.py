"""What the panel's networks lead to: made ready on the host, laid over a booted board and started there."""

import pathlib
import shutil

import air
import ethernet
import modem
from virtualboard import cache
from virtualboard.commands import run

HERE = pathlib.Path(__file__).resolve().parent
SOURCES = HERE / "far"
MODULES = [HERE / f"{name}.py" for name in ("farends", "air", "ethernet", "modem", "ppp")]
PROGRAMS = ["air", "far"]
PLACE = "usr/local/lib/far"

START = """set -e
tar -xf - -C /
systemctl daemon-reload
udevadm control --reload
systemctl -q enable --now far
udevadm trigger --settle --subsystem-match=tty
"""


def overlay_step():
    """A tar of programs and configuration."""
    files = {**air.configuration(ethernet.NAME_SERVERS), **ethernet.configuration()}

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


def set_up(board, hands, overlay):
    """Puts the far ends in place; they come up with every further start of the board by themselves. The
    network service dials as soon as there is a modem: the board is kept with the call."""
    mobile = modem.Modem(hands)
    try:
        board.agent.run(START, stdin=overlay.read_bytes(), timeout=120)
        board.wait_until(lambda: len(seen(board.agent.run)) == len(air.NETWORKS), 60, "list of all stations")
        board.wait_until(lambda: modem_state(board.agent.try_run) == "connected", 90, "modem that is dialled")
        board.wait_until(lambda: has_address(board.agent.run), 30, "address of the call")
    finally:
        mobile.close()


def has_address(shell):
    """Whether NetworkManager has brought the modem's link up."""
    return "gsm:connected" in shell("nmcli -t -f TYPE,STATE dev")


def modem_state(try_shell):
    """As ModemManager tells it: failed, locked, searching, registered, connected ...; none for no modem."""
    status, told = try_shell("mmcli -m any -K")
    lines = dict(line.split(":", 1) for line in told.splitlines() if ":" in line) if status == 0 else {}
    return {key.strip(): value.strip() for key, value in lines.items()}.get("modem.generic.state", "none")


def seen(shell):
    """Level in percent of each station that NetworkManager lists, by its address."""
    told = shell("nmcli -t -e no -f SIGNAL,BSSID dev wifi list --rescan no")
    return {line.split(":", 1)[1].lower(): int(line.split(":", 1)[0]) for line in told.splitlines()}
