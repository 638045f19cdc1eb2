"""One virtual board: a QEMU without acceleration, and everything that can be done to it from outside."""

import contextlib
import dataclasses
import functools
import datetime
import json
import math
import os
import pathlib
import signal
import subprocess
import time

from .agent import Agent
from .image import Image
from .jsonlines import JsonLines, Refused
from .commands import run

MEMORY_MB = 768
QEMU = "qemu-system-x86_64"

COMMAND_LINE = ("console=ttyS0 panic=1 quiet loglevel=4 mitigations=off nokaslr no_timer_check "
                "tsc=reliable clocksource=tsc rcupdate.rcu_expedited=1 cryptomgr.notests audit=0 "
                "apparmor=0 net.ifnames=0 8250.nr_uarts=8 acpi_backlight=video "
                "systemd.show_status=0 vt.global_cursor_default=0")

# What the board's firmware says that it is.
SMBIOS = "type=1,manufacturer=Panels,product=KV070T,version=1,serial=A2108150042"

MODEM_PORTS = ("modem-at", "modem-data")
SOCKETS = ("qmp", "agent", "control", "console", "com1", "com2", *MODEM_PORTS)
NETWORKS = {"eth0": "virtio-net-pci", "eth1": "e1000"}

# Where each disk stands on the bus: the kernel numbers them in this order, vda first. The two slots of the
# firmware, the data disk, and what the boot loader remembers.
DISKS = {"slot-a": 0x01, "data": 0x02, "slot-b": 0x1A, "boot": 0x1B}

# Cards of the far ends, which are in the same QEMU: the other end of each cable, and of the mobile network.
FAR_CARD = "e1000e"
LINES = ("eth0-line.board", "eth1-line.board", "mobile-line.board")


class GaveUp(Exception):
    """QEMU ended, or never reached the state that was waited for."""


@dataclasses.dataclass(frozen=True)
class Screen:
    """Size of the panel's screen in pixels."""

    width: int = 1024
    height: int = 600

    @classmethod
    def parse(cls, text):
        """Of WIDTHxHEIGHT; ValueError if it is not that."""
        width, height = (int(part) for part in text.split("x"))
        if not (320 <= width <= 1920 and 240 <= height <= 1200):
            raise ValueError("a screen has 320x240 to 1920x1200 pixels")
        return cls(width, height)

    def __str__(self):
        return f"{self.width}x{self.height}"


def _make_overlay(path, backing, form):
    """A disk that holds only what differs from the one behind it."""
    path.unlink(missing_ok=True)
    run(["qemu-img", "create", "-q", "-f", "qcow2", "-b", backing, "-F", form, path])


def disk_file(folder, name):
    """Where a board has one of its disks."""
    return folder / f"{name}.qcow2"


def make_disks(folder, image):
    """Disks of a new board, as the factory fills them."""
    for name, backing in image.disks.items():
        _make_overlay(disk_file(folder, name), backing, "raw")


def copy_disks(folder, kept):
    """Disks that begin as those of another board."""
    for name in DISKS:
        _make_overlay(disk_file(folder, name), disk_file(kept, name), "qcow2")


def overlay_disk(path):
    """A disk for QEMU: the overlay at path. What is filled with zeros takes no room."""
    return {"driver": "qcow2", "file": {"driver": "file", "filename": str(path)}, "discard": "unmap",
            "detect-zeroes": "unmap"}


def raw_disk(path):
    """A disk for QEMU: the plain image at path."""
    return {"driver": "raw", "file": {"driver": "file", "filename": str(path)}}


def logged_disk(path, log):
    """A plain image whose every write is also kept in a log, in the order in which it came."""
    return {"driver": "blklogwrites", "file": raw_disk(path), "log": {"driver": "file", "filename": str(log)}}


def _sockets(folder):
    return [f"-qmp unix:{folder}/qmp,server=on,wait=off",
            f"-chardev socket,id=console,path={folder}/console,server=on,wait=off,"
            f"logfile={folder}/console.log,logappend=on -serial chardev:console",
            f"-chardev socket,id=com1,path={folder}/com1,server=on,wait=off -serial chardev:com1",
            f"-chardev socket,id=com2,path={folder}/com2,server=on,wait=off -serial chardev:com2",
            f"-chardev socket,id=agent,path={folder}/agent,server=on,wait=off",
            f"-chardev socket,id=control,path={folder}/control,server=on,wait=off",
            "-device virtio-serial-pci -device virtserialport,chardev=agent,name=org.qemu.guest_agent.0",
            "-device virtserialport,chardev=control,name=panel.control"]


def _card(model, wire, name, mac):
    return f"-device {model},netdev={wire},id={name}-card,mac={mac},romfile="


def _line(folder, name):
    """A wire whose other end is a socket that a program of the laboratory may bind."""
    return (f"-netdev dgram,id={name},local.type=unix,local.path={folder}/{name}.board,"
            f"remote.type=unix,remote.path={folder}/{name}.lab")


def _networks(folder, has_desk):
    """Each cable ends in a hub, on which are the far end's card, a line to the laboratory, and, on a board
    to play with, a network of this computer's."""
    lines = []
    for number, (name, model) in enumerate(NETWORKS.items()):
        hub = f"hubid={number + 1}"
        lines += [f"-netdev hubport,id={name},{hub}", _card(model, name, name, f"52:54:00:00:00:{number + 1:02}"),
                  f"-netdev hubport,id={name}-far,{hub}",
                  _card(FAR_CARD, f"{name}-far", f"{name}-far", f"02:00:00:00:f0:{number:02}"),
                  _line(folder, f"{name}-line"), f"-netdev hubport,id={name}-hub,{hub},netdev={name}-line"]
        if has_desk:
            lines += [f"-netdev user,id={name}-desk,net=10.0.{number + 2}.0/24",
                      f"-netdev hubport,id={name}-desk-hub,{hub},netdev={name}-desk"]
    return lines + [_line(folder, "mobile-line"), _card(FAR_CARD, "mobile-line", "mobile", "02:00:00:00:f0:04")]


def _devices(folder, screen):
    return [f"-device VGA,id=video,addr=0x10,edid=on,xres={screen.width},yres={screen.height},vgamem_mb=16",
            "-device virtio-tablet-pci,id=touch -device virtio-rng-pci",
            f"-chardev file,id=backlight,path={folder}/backlight,append=on "
            "-device isa-debugcon,iobase=0x900,chardev=backlight",
            "-device qemu-xhci,id=usb -device i6300esb -action watchdog=reset",
            "-device pcie-root-port,id=slot1,chassis=1 -device pcie-root-port,id=slot2,chassis=2",
            *_modem(folder)]


def _modem_port(name):
    return {"driver": "pci-serial", "id": f"{name}-port", "chardev": name, "bus": f"{name}-slot"}


def _modem(folder):
    """Two serial lines that can be pulled. One of USB could not be kept: QEMU does not save its state."""
    for number, name in enumerate(MODEM_PORTS):
        port = ",".join(f"{key}={value}".removeprefix("driver=") for key, value in _modem_port(name).items())
        yield (f"-chardev socket,id={name},path={folder}/{name},server=on,wait=off "
               f"-device pcie-root-port,id={name}-slot,chassis={number + 3},addr={0x18 + number:#x} -device {port}")


def _memory(path, shared):
    """Memory of QEMU's own, or a file's: changed in the file, or only in this machine's copy of it."""
    if path is None:
        return f"memory-backend-ram,id=ram,size={MEMORY_MB}M"
    return f"memory-backend-file,id=ram,size={MEMORY_MB}M,mem-path={path},share={'on' if shared else 'off'}"


@functools.lru_cache
def _clock(ticks):
    """What tells the kernel how fast its clock's counter ticks."""
    return f" tsc_early_khz={run([ticks]).decode().strip()}" if ticks.exists() else ""


def _disks(folder, others):
    """All disks. Only the data disk has its flushes carried out on this computer: power cuts are those of QEMU."""
    for name, slot in DISKS.items():
        own = {**overlay_disk(disk_file(folder, name)), "cache": {"direct": False, "no-flush": True}}
        if name == "data":
            own = overlay_disk(disk_file(folder, name))
        yield from ("-blockdev", json.dumps({**(others.get(name) or own), "node-name": name}), "-device",
                    f"virtio-blk-pci,drive={name},id={name}-disk,serial={name},addr={slot:#x}")


def command_line(folder, image, screen, memory, display, others, clock, has_desk):
    """QEMU's arguments. Both sides of a kept state must have the same devices in the same order."""
    arguments = [QEMU, "-accel", "tcg,thread=multi", "-cpu", "Nehalem", "-smp", "2", "-m", str(MEMORY_MB),
                 "-nodefaults", "-no-user-config", "-name", "panel", "-display", display,
                 "-kernel", str(image.kernel), "-initrd", str(image.initrd), "-append",
                 COMMAND_LINE + _clock(image.ticks),
                 "-machine", "q35,memory-backend=ram,pcspk-audiodev=speaker",
                 "-object", _memory(*memory),
                 "-smbios", SMBIOS, "-rtc", f"base={clock},clock=host",
                 "-acpitable", f"file={image.firmware}",
                 "-audiodev", f"wav,id=speaker,path={folder}/beeper.wav",
                 *_disks(folder, others)]
    for line in _sockets(folder) + _networks(folder, has_desk) + _devices(folder, screen):
        arguments += line.split()
    return arguments


class Machine:
    """A running board in a folder of its own, which has its disks, sockets and logs. has_desk: its cables
    lead to networks of this computer's, with addresses for who asks."""

    def __init__(self, folder, screen, has_desk=True):
        self.folder = pathlib.Path(folder)
        self.screen = screen
        self.has_desk = has_desk
        self.agent = Agent(self.folder / "agent")
        self.monitor = None
        self.pid = None
        self._process = None

    def start(self, image, *, memory=(None, False), display="none", others=None, incoming=False):
        """Starts QEMU on the disks of the folder, or on others, by name. memory is a file to keep the memory in,
        and whether to change that file."""
        for name in SOCKETS + LINES:
            (self.folder / name).unlink(missing_ok=True)
        arguments = command_line(self.folder, image, self.screen, memory, display, others or {}, self._kept_clock(),
                                 self.has_desk)
        if incoming:
            arguments += ["-incoming", "defer"]
        with open(self.folder / "qemu.log", "ab") as log:
            self._process = subprocess.Popen(arguments, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                             start_new_session=True)
        self.pid = self._process.pid
        self._save()
        self._connect()

    def _save(self):
        facts = {"pid": self.pid, "screen": str(self.screen)}
        (self.folder / "machine.json").write_text(json.dumps(facts))

    @classmethod
    def _started_in(cls, folder):
        facts = json.loads((pathlib.Path(folder) / "machine.json").read_text())
        machine = cls(folder, Screen.parse(facts["screen"]))
        machine.pid = facts["pid"]
        return machine

    @classmethod
    def runs_in(cls, folder):
        """Whether the board that another process has started there runs."""
        try:
            return cls._started_in(folder).is_running()
        except (FileNotFoundError, ValueError):
            return False

    @classmethod
    def attach(cls, folder):
        """A board that another process has started; FileNotFoundError if there is none."""
        machine = cls._started_in(folder)
        if not machine.is_running():
            raise FileNotFoundError(folder)
        machine._connect()
        return machine

    def _connect(self):
        try:
            self.monitor = JsonLines(self.folder / "qmp")
            self.monitor.receive(20)
            self.monitor.call("qmp_capabilities")
        except (OSError, EOFError, TimeoutError) as error:
            raise GaveUp(f"QEMU did not start: {error}\n{self._last_words()}") from error

    def is_running(self):
        """Whether QEMU is there; false too once its number belongs to another program."""
        if self._process is not None:
            return self._process.poll() is None
        try:
            return QEMU.encode() in pathlib.Path(f"/proc/{self.pid}/cmdline").read_bytes()
        except OSError:
            return False

    def _last_words(self):
        """How QEMU ended, and what it said."""
        status = "" if self._process is None else f"status {self._process.returncode}\n"
        return status + (self.folder / "qemu.log").read_text(errors="replace")[-2000:]

    def cut_power(self):
        """Ends QEMU at once: what the board had not written is lost. The hardware clock goes on, as one
        with a battery does, and the light behind the screen goes out."""
        if self.is_running():
            with contextlib.suppress(Refused, OSError, EOFError, TimeoutError):
                self._keep_clock()
            os.kill(self.pid, signal.SIGKILL)
        self._ended()
        (self.folder / "backlight").write_bytes(b"")

    def _keep_clock(self):
        """Notes how many seconds the hardware clock is ahead of the host's."""
        told = self.monitor.call("qom-get", path="/machine", property="rtc-time")
        clock = datetime.datetime(1900 + told["tm_year"], 1 + told["tm_mon"], told["tm_mday"], told["tm_hour"],
                                  told["tm_min"], told["tm_sec"], tzinfo=datetime.timezone.utc)
        (self.folder / "clock").write_text(str(math.ceil(clock.timestamp() - time.time())))

    def _kept_clock(self):
        """The time at which QEMU's hardware clock starts."""
        try:
            ahead = int((self.folder / "clock").read_text())
        except FileNotFoundError:
            return "utc"
        now = datetime.datetime.fromtimestamp(time.time() + ahead, datetime.timezone.utc)
        return now.strftime("%Y-%m-%dT%H:%M:%S")

    def quit(self):
        """Ends QEMU in order, so that files it writes are complete; the board is not asked."""
        if self.is_running():
            with contextlib.suppress(EOFError, OSError):
                self.monitor.call("quit")
        self._ended()

    def _ended(self):
        if self._process is not None:
            self._process.wait(20)
        end = time.monotonic() + 20
        while self.is_running() and time.monotonic() < end:
            time.sleep(0.01)
        if self.monitor is not None:
            self.monitor.close()
            self.monitor = None
        self.agent.close()

    def wait_until(self, condition, timeout, what):
        """Asks again and again; what the condition returned, or GaveUp."""
        end = time.monotonic() + timeout
        while True:
            result = condition()
            if result:
                return result
            if not self.is_running():
                raise GaveUp(f"QEMU ended while waiting for {what}: {self._last_words()}")
            if time.monotonic() > end:
                raise GaveUp(f"no {what} within {timeout} s")
            time.sleep(0.02)

    def wait_restart(self, timeout=60):
        """Waits for a reset of the board; the agent must be found anew after it."""
        self.monitor.event("RESET", timeout)
        self.agent.close()

    # What a hand does to the board.

    def cable(self, name, plugged):
        """Plugs or pulls a network cable."""
        self.monitor.call("set_link", name=f"{name}-card", up=plugged)

    def plug(self, name, node, **device):
        """Plugs a stick: a block device described as QEMU's blockdev-add wants it."""
        self.monitor.call("blockdev-add", **{"node_name": name, **node})
        self.monitor.call("device_add", driver="usb-storage", id=f"{name}-stick", drive=name, bus="usb.0",
                          removable=True, **device)

    def pull(self, name):
        """Pulls a stick, in the middle of whatever is under way."""
        self.monitor.call("device_del", id=f"{name}-stick")
        self.monitor.event("DEVICE_DELETED", device=f"{name}-stick")
        self.monitor.call("blockdev-del", node_name=name)

    def pull_modem(self):
        for name in MODEM_PORTS:
            self.monitor.call("device_del", id=f"{name}-port")
        for name in MODEM_PORTS:
            self.monitor.event("DEVICE_DELETED", device=f"{name}-port")

    def plug_modem(self):
        for name in MODEM_PORTS:
            self.monitor.call("device_add", **_modem_port(name))

    def press_reset(self):
        """The reset button."""
        self.monitor.call("system_reset")
        self.wait_restart()

    def backlight(self):
        """The level that the panel has set last, in percent; 0 before it has set one."""
        levels = (self.folder / "backlight").read_bytes()
        return levels[-1] if levels else 0
