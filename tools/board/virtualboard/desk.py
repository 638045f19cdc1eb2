"""The verbs of the tool "board"."""

import json
import os
import shutil
import socket
import time

from . import agent, cache, commands, debian, image, kept, machine, packages, screen, sound, sticks
from .machine import Machine, Screen

TROUBLES = (machine.GaveUp, machine.Refused, agent.CommandFailed, commands.CommandFailed,
            debian.MissingPackage, OSError, TimeoutError, ValueError)


POWER_IS_CUT = "power-is-cut"    # a file in the board's folder


class _NotRunning(OSError):
    pass


def _mark():
    """A link to the running board's folder."""
    return cache.folder() / "running"


def _board():
    try:
        return Machine.attach(_mark().resolve(strict=True))
    except FileNotFoundError:
        raise _NotRunning("no board is running; begin with: board start") from None


def _free_vnc_display():
    """The first free display; a viewer wants the port 5900 and its number."""
    for number in range(100):
        with socket.socket() as probe:
            if probe.connect_ex(("127.0.0.1", 5900 + number)):
                return number
    raise ValueError("no port for VNC is free")


def _display(no_window):
    """How the screen is shown, for QEMU, and a line that tells so."""
    if no_window:
        return "none", "The board runs."
    if os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"):
        return "gtk,show-cursor=on", "The board runs in a window."
    number = _free_vnc_display()
    return (f"vnc=127.0.0.1:{number}",
            f"There is no display here. Look at the panel with a VNC viewer on this machine: 127.0.0.1:{5900 + number}")


def start(arguments):
    """Starts a fresh copy of the kept board."""
    size = Screen.parse(arguments.lcd)
    if _mark().exists():
        stop(arguments)
    debs = arguments.debs or packages.packages_step()
    built = image.build(debs)
    base = kept.kept_step("kept", built, size)
    display, told = _display(arguments.no_window)
    board = kept.restore(base, built, size, display=display)
    (board.folder / "start.json").write_text(json.dumps({"debs": str(debs), "display": display}))
    _mark().unlink(missing_ok=True)
    _mark().symlink_to(board.folder)
    print(told)


def stop(_):
    """Ends the board, also one that has ended already."""
    folder = _mark().resolve()
    try:
        Machine.attach(folder).quit()
    except FileNotFoundError:
        pass
    shutil.rmtree(folder, ignore_errors=True)
    _mark().unlink(missing_ok=True)


def power(arguments):
    """Cuts the power, or starts the board from its disks."""
    folder = _mark().resolve(strict=True)
    if arguments.state == "cut":
        (folder / POWER_IS_CUT).touch()
        return _board().cut_power()
    facts = json.loads((folder / "machine.json").read_text())
    told = json.loads((folder / "start.json").read_text())
    board = Machine(folder, Screen.parse(facts["screen"]))
    board.start(image.build(told["debs"]), display=told["display"])
    (folder / POWER_IS_CUT).unlink(missing_ok=True)


def cable(arguments):
    _board().cable(arguments.name, arguments.state == "in")


def stick(arguments):
    """Plugs a stick made of a folder; a file is taken for a stick's image as it is."""
    board = _board()
    path = arguments.folder.resolve(strict=True)
    if path.is_dir():
        sticks.make_fat_stick(board.folder / f"{arguments.name}.img", path)
        path = board.folder / f"{arguments.name}.img"
    node = sticks.slow_node(board, path) if arguments.slow else sticks.node(path, arguments.read_only)
    board.plug(arguments.name, node)


def unplug(arguments):
    _board().pull(arguments.name)


def beep(_):
    recording = _board().folder / "beeper.wav"
    for tone in sound.tones(recording):
        print(f"{tone.seconds * 1000:5.0f} ms  {tone.hertz:5.0f} Hz")
    print(f"The recording, for your ears: {recording}")


def light(_):
    print(_board().backlight())


def shot(arguments):
    screen.frame(_board()).save(arguments.file, "PNG")


def shell(arguments):
    status, output = _board().agent.try_run(" ".join(arguments.command), timeout=600)
    if output:
        print(output)
    return status


def touch(arguments):
    screen.touch(_board(), arguments.x, arguments.y)


def wait(_):
    """Until QEMU has ended, unless its power is cut. QEMU is not asked: it has one visitor at a time."""
    folder = _mark().resolve(strict=True)
    while folder.exists() and (Machine.runs_in(folder) or (folder / POWER_IS_CUT).exists()):
        time.sleep(0.2)


VERBS = {verb.__name__: verb for verb in
         (start, stop, power, cable, stick, unplug, beep, light, shot, shell, touch, wait)}

