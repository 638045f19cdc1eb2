"""Programs for the page with PLC projects, and the PLCs at the far end of the panel's first port."""

import itertools
import json
import pathlib
import random
import re
import socket
import subprocess
import sys
import threading
import time

import ppp
from update_page import PLC, have, percent

PLC_TOOL = pathlib.Path(__file__).resolve().with_name("plc.py")
BEGIN, DATA, END = 0x41, 0x42, 0x43     # docs/decisions/0008-legacy-plc-download.md
ANSWER = 0x80
TAKEN, WRONG_SUM = 0, 4


# What the operator reads.
DONE, FAILED = "Download successfully!\n{}", "Download failure!\n{}"
UPDATED, UPDATED_CH = "Updated PLC program!", "PLC 程序已更新！"
CABLE = "\r\n2.Communication cable is abnormal"
TIMEOUT = f"Download timeout,\r\nThe reasons may be as follows:\r\n1.Communication parameter setting error{CABLE}"
PASSWORD = "Download password error!!"
NO_PLC = "Unable to communicate with the PLC!"
PROGRAM = f"Download the PLC program failed!\r\n1.please check the PLC program!{CABLE}"
PARAMETERS = f"Download the PLC parameter failed!\r\n1.please check the PLC parameter setting!{CABLE}"
MEMORY = f"Download the PLC memory failed!\r\n1.please check the PLC memory!{CABLE}"
CAM = f"Failed to download the electronic CAM table!\r\n1.please check the related parameters!{CABLE}"
NO_PROTECTION = "The file contains prohibit uploading setting, but this PLC does not support it!!"
NO_MASK = "The file contains subroutine encryption setting, but this PLC does not support it!!"
UNREADABLE = "Failed to read file !!"


def content(size):
    """A program as the maker's tool has it for a size."""
    return random.Random(size).randbytes(size)


def make(path, options, folder):
    """Makes a program at path of files in a folder."""
    have("make-plc-program", *options.split(), path, folder=folder)


def watch_bar(panel):
    """Until the box comes; seconds that the bar stood still at most, and its values."""
    longest, values, since = 0, [None], time.monotonic()
    while not panel.is_seen("btn_Ok"):
        value, now = percent(panel, PLC), time.monotonic()
        longest = max(longest, now - since)
        if value not in (None, values[-1]):
            values.append(value)
            since = now
    return longest, values[1:]


def failed_steps(panel):
    """As the journal has them; a step that failed in each of its attempts is one."""
    steps = re.findall(r"^PLC, ([\w ]+): ", panel.journal("sysset"), re.M)
    return [step for step, _ in itertools.groupby(steps)]


class Plc:
    """A PLC for programs of the current format, in a process of its own. What it is told and what it keeps is
    in a folder (plc.py)."""

    def __init__(self, hands, folder):
        self._command = [sys.executable, PLC_TOOL, *hands.plc_line(), folder]
        self._folder = folder
        self._process = None
        folder.mkdir()

    def order(self, **orders):
        """Has it be and do otherwise and forget what it keeps, and plugs a line in that was pulled."""
        for kept in self._folder.glob("*.*"):
            kept.unlink()
        (self._folder / "orders").write_text(json.dumps(orders))
        if self._process is None or self._process.poll() is not None:
            self._process = subprocess.Popen(self._command)

    def kept(self, name):
        """Bytes of a section, or what a JSON file of its holds."""
        data = (self._folder / name).read_bytes()
        return json.loads(data) if name.endswith(".json") else data

    @property
    def program(self):
        return self.kept("program.bin")

    def close(self):
        if self._process is not None:
            self._process.kill()
            self._process.wait()
            self._process = None


class OlderPlc:
    """A PLC for programs of the older format."""

    def __init__(self, hands):
        self.program = b""
        self._last = None
        self._line = hands.serial_line("com1")
        threading.Thread(target=self._serve, daemon=True).start()

    def close(self):
        self._line.shutdown(socket.SHUT_RDWR)

    def _serve(self):
        rest = b""
        with self._line:
            while data := self._line.recv(1 << 14):
                *frames, rest = (rest + data).split(b"\r\n")
                for frame in frames:
                    self._take(bytes.fromhex(frame.decode().removeprefix(":")))

    def _take(self, frame):
        function, number, data = frame[0], frame[1], frame[2:-1]
        if sum(frame) % 0x100 != 0:      # the LRC is behind the content
            return
        code = TAKEN
        if function == BEGIN:
            self.program = b""
        elif function == DATA and number != self._last:
            self.program += data
        elif function == END:
            length, check = len(self.program), ppp.check(self.program)   # CRC-16 of ISO 3309, as PPP's
            if data != length.to_bytes(4, "little") + check.to_bytes(2, "little"):
                code = WRONG_SUM
        self._last = number
        answer = bytes([function | ANSWER, number, code])
        self._line.sendall(b":%s\r\n" % (answer + bytes([-sum(answer) % 0x100])).hex().upper().encode())
