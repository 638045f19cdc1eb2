"""What is seen on a board's screen, and the finger on it."""

import time

from PIL import Image

AXIS = 32767   # a touch device's coordinates go from 0 to this, whatever the screen


def frame(machine):
    """The picture on the screen now."""
    path = machine.folder / "frame.ppm"
    machine.monitor.call("screendump", filename=str(path))
    with Image.open(path) as picture:
        picture.load()
        return picture


def colours(picture):
    """Number of colours; a console has a handful, the program more than a hundred."""
    return len(picture.getcolors(1 << 24))


def _send(machine, *events):
    machine.monitor.call("input-send-event", events=list(events))


def _axis(name, value, size):
    return {"type": "abs", "data": {"axis": name, "value": int((value + 0.5) * AXIS / size)}}


def move(machine, x, y):
    """Brings the finger, up or down, over a place."""
    # The kernel passes on changes alone: a program that has been started since the last touch would
    # not hear where the finger is if that was the same place.
    _send(machine, _axis("x", x + 1, machine.screen.width), _axis("y", y + 1, machine.screen.height))
    _send(machine, _axis("x", x, machine.screen.width), _axis("y", y, machine.screen.height))


def finger(machine, down):
    """Puts the finger down or lifts it."""
    _send(machine, {"type": "btn", "data": {"button": "left", "down": down}})


def touch(machine, x, y, hold=0.06):
    """A short touch of one place."""
    move(machine, x, y)
    finger(machine, True)
    time.sleep(hold)
    finger(machine, False)
