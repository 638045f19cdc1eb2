"""How a board's serial ports frame what they send, as QEMU traces it (its hw/char/trace-events)."""

import contextlib
import re

EVENTS = ("serial_update_parameters", "serial_write")
LINE = re.compile(r"parameters baudrate=(\d+) parity='(.)' data=(\d) stop=(\d)|write addr 0x(\w\w) val 0x(\w\w)")
SENDS, CONTROLS = 0, 3      # registers of a 16550; the first is the divisor's while the second has IS_DIVISOR
IS_DIVISOR = 0x80


@contextlib.contextmanager
def framing(machine):
    """A set that has, after the block, how the bytes were framed that were sent within it: bits a second, parity,
    data bits, stop bits."""
    framings, log = set(), machine.folder / "qemu.log"
    since = log.stat().st_size
    for is_on in (True, False):
        for event in EVENTS:
            machine.monitor.call("trace-event-set-state", name=event, enable=is_on)
        if is_on:
            yield framings
    framings.update(_framings(log.read_bytes()[since:].decode(errors="replace")))


def _framings(trace):
    setting, control = None, 0
    for baud, parity, data, stop, register, value in LINE.findall(trace):
        if baud:
            setting = int(baud), parity, int(data), int(stop)
        elif int(register, 16) == CONTROLS:
            control = int(value, 16)
        elif int(register, 16) == SENDS and not control & IS_DIVISOR:
            yield setting
