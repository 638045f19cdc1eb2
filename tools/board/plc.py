#!/usr/bin/python3
"""A PLC at the far end of a panel's serial line, by the register map of docs/porting/plc.md. Frames are
pymodbus's; the driver's own code has no part in it.

    tools/board/plc.py --pty /tmp/panel/dev/THAL/tty/com1-232 FOLDER
    tools/board/plc.py --socket BOARD/com1 FOLDER
    tools/board/plc.py --node /dev/ttyUSB0 --framing 115200N1 FOLDER

FOLDER has "orders", a JSON object with what the PLC is and does otherwise (DEFAULTS), read before each
request; a change of it gives "times" anew. There the PLC keeps what it has: program.bin, parameters.bin,
cam.bin, extension.bin, memory.json, state.json, and a line for each request in "log"."""

import argparse
import contextlib
import json
import logging
import os
import pathlib
import pty
import random
import select
import socket
import struct
import termios
import time
import tty
import zlib

from pymodbus.factory import ServerDecoder
from pymodbus.file_message import WriteFileRecordRequest, WriteFileRecordResponse
from pymodbus.framer.rtu_framer import ModbusRtuFramer
from pymodbus.register_read_message import ReadHoldingRegistersRequest, ReadHoldingRegistersResponse
from pymodbus.register_write_message import WriteMultipleRegistersRequest, WriteMultipleRegistersResponse

STATION = 1
IDENTITY, STATUS, ORDER = 0xFF00, 0xFF20, 0xFF40
MARK, MAP_VERSION = 0x5043, 1
SECTIONS = ("program", "parameters", "cam", "extension")
RECORDS_OF_FILE = 10000
COMMANDS = ("unlock", "protect", "stop", "start", "begin", "end", "check", "hide", "leave")
STOPPED, RUNNING = 0, 1
DONE, BUSY, REFUSED, WRONG_PASSWORD, TOO_LARGE, WRONG_SUM, LOCKED, UNSUPPORTED, NOT_STOPPED = range(9)
ILLEGAL_FUNCTION, ILLEGAL_ADDRESS, FAILURE = 1, 2, 4
LOCKED_AFTER_S = 60
PARITIES = {"N": 0, "E": termios.PARENB, "O": termios.PARENB | termios.PARODD}
STOP_BITS = {"1": 0, "2": termios.CSTOPB}
FRAME_PAUSE_S = 0.05                     # what a frame may stop for in the middle

DEFAULTS = {
    "type": 5, "version": 3, "mark": MARK,
    "password": None,                    # the download password that it asks for
    "can": ["protect", "hide"],
    "capacity": {"program": 262144, "parameters": 65536, "cam": 65536, "extension": 65536},
    "busy": 0,                           # seconds that a command takes
    # "how" it fails "at" what: a command, "begin program", "records program", "memory", "identity", "status",
    # or "any" of them. "after" so many that go well, so many "times", -1 always. HOW has how.
    "at": None, "how": "silent", "after": 0, "times": -1,
}
HOW = ("silent", "refuse", "exception", "nonsense", "cut", "foreign", "restart", "hang up")


class Exceptional(Exception):
    """An exception response of that code."""


class HungUp(Exception):
    """The line is pulled."""


class Plc:
    """What the PLC has and how it answers; knows nothing of its line."""

    def __init__(self, folder):
        self.folder = folder
        self._text, self._orders, self._met, self._failed = None, DEFAULTS, 0, 0
        self._state, self._number, self._result, self._until = RUNNING, 0, DONE, 0.0
        self._is_unlocked, self._last = False, 0.0
        self._section, self._size, self._sum, self._files = None, 0, 0, {}
        self.memory = {}
        self.protection, self.hides = None, False

    def answer(self, request):
        """(response, how it is spoilt, if it is) to a request."""
        self._read_orders()
        name = self._name(request)
        trouble = self._trouble(name)
        if time.monotonic() - self._last > LOCKED_AFTER_S or trouble == "restart":
            self._is_unlocked = False
        self._last = time.monotonic()
        with open(self.folder / "log", "a") as log:
            log.write(name + (f" ({trouble})" if trouble else "") + "\n")
        try:
            if trouble == "exception" or (trouble == "refuse" and name not in self._commands()):
                raise Exceptional(FAILURE)
            return self._obey(request, trouble == "refuse"), trouble
        except Exceptional as exception:
            return request.doException(exception.args[0]), trouble

    def _read_orders(self):
        file = self.folder / "orders"
        text = file.read_text() if file.exists() else "{}"
        if text != self._text:
            self._text, self._orders, self._met, self._failed = text, DEFAULTS | json.loads(text), 0, 0

    def _trouble(self, name):
        orders = self._orders
        if orders["at"] not in ("any", name):
            return None
        self._met += 1
        if self._met <= orders["after"] or self._failed == orders["times"]:
            return None
        self._failed += 1
        return orders["how"]

    @staticmethod
    def _commands():
        return {*COMMANDS, *(f"{edge} {section}" for edge in ("begin", "end") for section in SECTIONS)}

    @staticmethod
    def _name(request):
        if isinstance(request, WriteFileRecordRequest):
            section = request.records[0].file_number // 256 - 1 if request.records else -1
            return f"records {SECTIONS[section]}" if 0 <= section < len(SECTIONS) else "records"
        if isinstance(request, ReadHoldingRegistersRequest):
            return {IDENTITY: "identity", STATUS: "status"}.get(request.address, "read")
        if not isinstance(request, WriteMultipleRegistersRequest) or request.address != ORDER:
            return "memory"
        command, section = request.values[1], request.values[2] - 1
        name = COMMANDS[command - 1] if 1 <= command <= len(COMMANDS) else "unknown"
        return f"{name} {SECTIONS[section]}" if name in ("begin", "end") and section < len(SECTIONS) else name

    def _obey(self, request, refuses):
        if isinstance(request, ReadHoldingRegistersRequest):
            return self._tell(request)
        if isinstance(request, WriteFileRecordRequest):
            return self._take_records(request)
        if not isinstance(request, WriteMultipleRegistersRequest):
            raise Exceptional(ILLEGAL_FUNCTION)
        if request.address == ORDER:
            self._take_order(request.values, refuses)
        else:
            self._take_memory(request)
        return WriteMultipleRegistersResponse(request.address, request.count)

    def _is_locked(self):
        return self._orders["password"] is not None and not self._is_unlocked

    def _tell(self, request):
        orders = self._orders
        blocks = {
            IDENTITY: [orders["mark"], MAP_VERSION, orders["type"], orders["version"],
                       int(orders["password"] is not None) + 2 * self._is_unlocked],
            STATUS: [self._number, BUSY if time.monotonic() < self._until else self._result, self._state],
        }
        for section in SECTIONS:
            blocks[IDENTITY] += divmod(orders["capacity"].get(section, 0), 0x10000)
        values = blocks.get(request.address)
        if values is None:
            values = [self.memory.get(request.address + i, 0) for i in range(request.count)]
        if request.count > len(values):
            raise Exceptional(ILLEGAL_ADDRESS)
        return ReadHoldingRegistersResponse(values[:request.count])

    def _take_memory(self, request):
        if self._is_locked():
            raise Exceptional(FAILURE)
        if request.address + request.count > IDENTITY:
            raise Exceptional(ILLEGAL_ADDRESS)
        self.memory.update(enumerate(request.values, request.address))

    def _take_records(self, request):
        for record in request.records:
            section, file = divmod(record.file_number, 256)
            at = 2 * (file * RECORDS_OF_FILE + record.record_number)
            is_inside = record.record_number + record.record_length <= RECORDS_OF_FILE
            if section != self._section or not is_inside or at + len(record.record_data) > self._size + 1:
                raise Exceptional(ILLEGAL_ADDRESS)
            self._files[at] = record.record_data
        return WriteFileRecordResponse(request.records)

    def _take_order(self, values, refuses):
        if len(values) < 8:
            raise Exceptional(ILLEGAL_ADDRESS)
        number, command, index = values[:3]
        if number == self._number:       # said already
            return
        self._number = number
        self._until = time.monotonic() + self._orders["busy"]
        size, check = values[3] << 16 | values[4], values[5] << 16 | values[6]
        text = struct.pack(f">{len(values) - 8}H", *values[8:])[:values[7]].decode("latin-1")
        handler = ORDERS.get(command)
        if refuses:
            self._result = REFUSED
        elif handler is None:
            self._result = UNSUPPORTED
        elif self._is_locked() and command not in FREE:
            self._result = LOCKED
        else:
            self._result = handler(self, index, size, check, text)
        self._keep("state.json", {"state": self._state, "protection": self.protection, "hides": self.hides})

    def _keep(self, name, what):
        (self.folder / name).write_bytes(what if isinstance(what, bytes) else json.dumps(what).encode())

    # Commands, each with its result.

    def _unlock(self, _index, _size, _check, text):
        self._is_unlocked = self._orders["password"] in (None, text)
        return DONE if self._is_unlocked else WRONG_PASSWORD

    def _protect(self, _index, _size, _check, text):
        if "protect" not in self._orders["can"]:
            return UNSUPPORTED
        self.protection = text
        return DONE

    def _stop(self, *_):
        self._state = STOPPED
        return DONE

    def _start(self, *_):
        self._state = RUNNING
        return DONE

    def _begin(self, index, size, check, _text):
        if not 1 <= index <= len(SECTIONS):
            return UNSUPPORTED
        if self._state != STOPPED:
            return NOT_STOPPED
        if size > self._orders["capacity"].get(SECTIONS[index - 1], 0):
            return TOO_LARGE
        self._section, self._size, self._sum, self._files = index, size, check, {}
        return DONE

    def _end(self, index, size, check, _text):
        content = bytearray(size)
        for at, data in self._files.items():
            content[at:at + len(data)] = data
        content = bytes(content[:size])
        if (index, size, check) != (self._section, self._size, self._sum) or zlib.crc32(content) != check:
            return WRONG_SUM
        self._keep(SECTIONS[index - 1] + ".bin", content)
        return DONE

    def _check(self, address, count, check, _text):
        values = [self.memory.get(address + i, 0) for i in range(count)]
        if zlib.crc32(struct.pack(f">{count}H", *values)) != check:
            return WRONG_SUM
        self._keep("memory.json", self.memory)
        return DONE

    def _hide(self, *_):
        if "hide" not in self._orders["can"]:
            return UNSUPPORTED
        self.hides = True
        return DONE

    def _leave(self, *_):
        self._is_unlocked = False
        return DONE


ORDERS = dict(enumerate((Plc._unlock, Plc._protect, Plc._stop, Plc._start, Plc._begin, Plc._end, Plc._check,
                         Plc._hide, Plc._leave), 1))
FREE = (1, 9)                            # unlock, leave


class Line:
    """The PLC's end of a line: an open file, a terminal or a stream socket. With a rate frames take the
    time that they would on a line of ten bits a byte."""

    def __init__(self, plc, file, baud=None):
        self._plc, self._file, self._baud = plc, file, baud
        self._framer = ModbusRtuFramer(ServerDecoder())

    def serve(self):
        """Until the far end closes, or the line is to be pulled."""
        while True:
            if not select.select([self._file], [], [], FRAME_PAUSE_S)[0]:
                self._framer.resetFrame()
                select.select([self._file], [], [])
            data = os.read(self._file, 1024)
            if not data:
                return
            self._pass(len(data))
            with contextlib.suppress(struct.error, IndexError):   # a frame that is whole and makes no sense
                self._framer.processIncomingPacket(data, self._answer, [STATION])

    def _pass(self, count):
        if self._baud:
            time.sleep(10 * count / self._baud)

    def _answer(self, request):
        response, trouble = self._plc.answer(request)
        if trouble == "hang up":
            raise HungUp
        response.unit_id = request.unit_id + (trouble == "foreign")
        packet = self._framer.buildPacket(response)
        packet = {"silent": b"", "cut": packet[:-1], "nonsense": random.randbytes(len(packet))}.get(trouble, packet)
        self._pass(len(packet))
        while packet:
            packet = packet[os.write(self._file, packet):]


def serve_terminal(plc, link, baud):
    """Makes a pseudo-terminal, with a link to its far end. The line is pulled when this ends."""
    near, far = pty.openpty()            # the far end stays open here: else the near one fails without a panel
    tty.setraw(far)
    link.parent.mkdir(parents=True, exist_ok=True)
    link.unlink(missing_ok=True)
    link.symlink_to(os.ttyname(far))
    try:
        Line(plc, near, baud).serve()
    finally:
        link.unlink(missing_ok=True)


def serve_socket(plc, path, baud):
    """The line of a virtual board, for as long as the board is there."""
    while True:
        with contextlib.suppress(OSError), socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as line:
            line.connect(str(path))
            Line(plc, line.fileno(), baud).serve()
        time.sleep(0.2)


def framing(text):
    """Of RATE, parity N, E or O, and stop bits, as in 9600E1: the terminal's flags and its speed."""
    rate, parity, stop = text[:-2], text[-2:-1], text[-1:]
    if parity not in PARITIES or stop not in STOP_BITS or not hasattr(termios, f"B{rate}"):
        raise argparse.ArgumentTypeError(f"{text} is not as 9600E1")
    return PARITIES[parity] | STOP_BITS[stop], getattr(termios, f"B{rate}")


def serve_node(plc, node, form):
    """A serial port of this computer, until it is pulled."""
    flags, speed = form
    file = os.open(node, os.O_RDWR | os.O_NOCTTY)
    tty.setraw(file)
    settings = termios.tcgetattr(file)
    settings[2] = termios.CS8 | termios.CREAD | termios.CLOCAL | flags
    settings[4:6] = speed, speed
    termios.tcsetattr(file, termios.TCSANOW, settings)
    Line(plc, file).serve()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    line = parser.add_mutually_exclusive_group(required=True)
    line.add_argument("--pty", type=pathlib.Path, help="makes a pseudo-terminal with this name")
    line.add_argument("--socket", type=pathlib.Path, help="connects with this UNIX stream socket")
    line.add_argument("--node", type=pathlib.Path, help="takes this serial port")
    parser.add_argument("--framing", type=framing, default="115200N1", help="of the serial port; default: %(default)s")
    parser.add_argument("--baud", type=int, help="takes the time that a line of this rate would")
    parser.add_argument("folder", type=pathlib.Path)
    options = parser.parse_args()
    logging.getLogger("pymodbus").setLevel(logging.CRITICAL)   # it takes each exception response for an error
    options.folder.mkdir(parents=True, exist_ok=True)
    plc = Plc(options.folder)
    with contextlib.suppress(HungUp, KeyboardInterrupt):
        if options.pty:
            serve_terminal(plc, options.pty, options.baud)
        elif options.node:
            serve_node(plc, options.node, options.framing)
        else:
            serve_socket(plc, options.socket, options.baud)


if __name__ == "__main__":
    main()
