"""A booted board, kept: memory in a file, state of the devices beside it, both disks frozen. A fresh
copy of it runs after a fraction of a second, as often and as many at once as wanted."""

import inspect
import tempfile
import pathlib
import shutil
import time

from . import cache, machine, screen
from .commands import run
from .machine import DISKS, Machine, copy_disks, disk_file, make_disks

# The memory file is mapped, not sent: what is kept of the devices is a few megabytes.
CAPABILITIES = [{"capability": "x-ignore-shared", "state": True}]
MANY_COLOURS = 50       # a console shows fewer, the program more
BOOT_TIMEOUT_S = 180


def scratch_folder():
    """A folder for one machine. Names of sockets are short: the checkout's path might be too long."""
    return pathlib.Path(tempfile.mkdtemp(prefix="panel-"))


def cold_machine(image, size, has_desk=True, **options):
    """A board with factory-new disks, switched on just now."""
    board = Machine(scratch_folder(), size, has_desk)
    make_disks(board.folder, image)
    board.start(image, **options)
    return board


def wait_for_picture(board, timeout=BOOT_TIMEOUT_S):
    """Waits until the program has drawn itself."""
    board.wait_until(lambda: screen.colours(screen.frame(board)) > MANY_COLOURS, timeout, "picture")


def wait_until_still(board, seconds=1.0, timeout=30):
    """Waits until nothing has moved on the screen for that long."""
    last, since = None, time.monotonic()

    def still():
        nonlocal last, since
        now = screen.frame(board).tobytes()
        if now != last:
            last, since = now, time.monotonic()
        return time.monotonic() - since > seconds

    board.wait_until(still, timeout, "picture that stands still")


def wait_until_booted(board):
    """Waits for the end of the start, whether or not some unit of it failed, and for the program."""
    board.agent.connect(BOOT_TIMEOUT_S)
    board.agent.try_run("systemctl is-system-running --wait", BOOT_TIMEOUT_S)
    board.agent.run("findmnt /mnt/data")   # a busy computer may have let the data disk come too late
    wait_for_picture(board)
    wait_until_still(board)
    board.wait_until(lambda: board.agent.try_run("test -e /run/sysset-good/done")[0] == 0, BOOT_TIMEOUT_S,
                     "firmware that has proved itself")


def _freeze(board, state):
    board.agent.run("sync")
    board.monitor.call("stop")
    board.monitor.call("migrate-set-capabilities", capabilities=CAPABILITIES)
    board.monitor.call("migrate", uri=f"exec:cat >{state}")
    board.wait_until(lambda: board.monitor.call("query-migrate").get("status") == "completed", 60, "kept state")


def _make(image, size, prepare, has_desk):
    def make(out):
        board = cold_machine(image, size, has_desk, memory=(out / "memory", True))
        try:
            wait_until_booted(board)
            if prepare is not None:
                prepare(board)
            _freeze(board, board.folder / "state")
        finally:
            board.quit()
        for name in ("state", *(disk_file(out, disk).name for disk in DISKS), "backlight", "console.log"):
            shutil.move(board.folder / name, out / name)
        shutil.rmtree(board.folder)
    return make


def kept_step(name, image, size, prepare=None, inputs=(), has_desk=True):
    """Folder of the kept board. prepare(board) brings a booted board to where stories begin; inputs
    are what that depends on."""
    devices = inspect.getsource(machine)
    qemu = run([machine.QEMU, "--version"]).decode().splitlines()[0]
    everything = [image.key, image.kernel, image.initrd, size, devices, qemu, inspect.getsource(_freeze), *inputs]
    title = f"Booting a board of {size} to keep it as {name}"
    return cache.step(f"{name}-{size}", title, everything, _make(image, size, prepare, has_desk))


def restore(kept, image, size, display="none", others=None, has_desk=True):
    """A fresh copy of a kept board, running, its clock set."""
    board = Machine(scratch_folder(), size, has_desk)
    copy_disks(board.folder, kept)
    shutil.copy(kept / "backlight", board.folder)
    board.start(image, memory=(kept / "memory", False), display=display, others=others, incoming=True)
    board.monitor.call("migrate-set-capabilities", capabilities=CAPABILITIES)
    board.monitor.call("migrate-incoming", uri=f"exec:cat {kept}/state")
    board.wait_until(lambda: _is_running(board), 30, "restored board")
    board.agent.connect()
    board.agent.run(f"date -u -s @{time.time():.3f} >/dev/null")
    return board


def _is_running(board):
    state = board.monitor.call("query-status")["status"]
    if state in ("paused", "prelaunch", "postmigrate"):
        board.monitor.call("cont")
    return state == "running"


def flat_copy(kept, name, path):
    """One of the kept board's disks as a plain image."""
    run(["qemu-img", "convert", "-O", "raw", disk_file(kept, name), path])


def remove(board):
    """Ends a board for good: its disks and logs are removed with it."""
    board.cut_power()
    shutil.rmtree(board.folder, ignore_errors=True)


