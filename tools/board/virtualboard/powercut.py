"""Power cuts without cutting: all writes of a disk are logged, and the disk is built again as a cut at any
moment would have left it.

What was written before the last flush is on the disk. Of what came after it a disk may have kept
anything in any order, so a random part of it is. The log's format is that of the kernel's dm-log-writes
(Documentation/admin-guide/device-mapper/log-writes.rst), which QEMU's blklogwrites writes."""

import dataclasses
import mmap
import os
import pathlib
import random
import struct
import subprocess
import threading

from .commands import run

MAGIC = 0x6A736677736872
FLUSH, FUA, DISCARD = 1, 2, 4
HEAD = struct.Struct("<QQQI")
ENTRY = struct.Struct("<QQQQ")


class BadLog(Exception):
    """The file is no log of writes."""


class Damaged(Exception):
    """A cut has left a file system that is not whole."""


@dataclasses.dataclass(frozen=True)
class Entry:
    """One request: bytes at an offset of the disk, and whether all before, and it, had to be kept; the size of the
    log with it."""

    offset: int
    data: memoryview
    flush: bool
    forced: bool
    log_size: int


def read_log(path):
    """All entries of a log, in order; an unfinished last one is left out."""
    if os.stat(path).st_size < HEAD.size:
        return      # the head comes with the first write
    with open(path, "rb") as file:
        log = memoryview(mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ))
    magic, _, _, sector = HEAD.unpack_from(log)
    if magic != MAGIC:
        raise BadLog(path)
    at = sector
    while at + sector <= len(log):
        place, count, flags, _ = ENTRY.unpack_from(log, at)
        if (place, count, flags) == (0, 0, 0):
            return
        begin = at + sector
        at = begin if flags & DISCARD else begin + count * sector
        if at > len(log):
            return
        yield Entry(place * sector, log[begin:at], bool(flags & FLUSH), bool(flags & FUA), at)


def _write(image, entry):
    image.seek(entry.offset)
    image.write(entry.data)


class Log:
    """The log of a disk's writes, the disk, and the same as it was before: files of a folder."""

    def __init__(self, folder, name="data"):
        self.writes, self.disk, self.before = (folder / f"{name}.{kind}" for kind in ("writes", "disk", "before"))

    def length(self):
        """Number of requests that it has now."""
        return sum(1 for _ in read_log(self.writes))

    def size(self):
        """In bytes; more while a request is being noted than with Entry.log_size."""
        return os.stat(self.writes).st_size

    def cuts(self, count, first=0):
        """Disks after a power cut, at count moments spread over the log from request first on: the number of
        requests until then, and a path, which the next call overwrites."""
        replay, all_of_them = Replay(self), self.length()
        moments = {first + round((i + 1) * (all_of_them - first) / count) for i in range(count)}
        for number in sorted(moments):
            replay.go(lambda entry, n=number: replay.taken < n)
            yield number, replay.cut()


class Replay:
    """The disk of a log as its flushes leave it, and what is still under way, at one moment after the other."""

    def __init__(self, log, seed=1):
        self._log = log
        self._path = pathlib.Path(f"{log.disk}.replay")
        run(["cp", "--sparse=always", log.before, self._path])
        self._entries = read_log(log.writes)
        self._next = next(self._entries, None)
        self._chance = random.Random(seed)
        self._pending = []
        self.taken = 0

    def go(self, is_before):
        """On to the first request that is not before the moment."""
        while self._next is not None and is_before(self._next):
            self._take(self._next)
            self._next = next(self._entries, None)
            self.taken += 1

    def _take(self, entry):
        if entry.flush:
            with open(self._path, "r+b") as image:
                for waiting in self._pending:
                    _write(image, waiting)
            self._pending = []
        if entry.data:
            self._pending.append(entry)

    def cut(self):
        """The disk after a cut now: some of what was under way has arrived. The next call overwrites it."""
        path = pathlib.Path(f"{self._log.disk}.cut")
        run(["cp", "--sparse=always", self._path, path])
        with open(path, "r+b") as image:
            for entry in self._pending:
                if entry.forced or self._chance.random() < 0.5:
                    _write(image, entry)
        return path


class Moments(threading.Thread):
    """Notes how large some logs are, again and again, so that cuts of several disks are of one moment. What is
    known of a log is never from after what is known of the next one: who writes to the first one last is seen in
    that order."""

    PAUSE_S = 0.02

    def __init__(self, logs):
        super().__init__(daemon=True)
        self._logs = logs
        self._ended = threading.Event()
        self.noted = []     # sizes of the logs, moments at which nothing has changed left out
        self.start()

    def run(self):
        while not self._ended.wait(self.PAUSE_S):
            sizes = tuple(log.size() for log in self._logs)
            if sizes not in self.noted[-1:]:
                self.noted.append(sizes)

    def end(self):
        self._ended.set()
        self.join()


# Mounts the disks one after the other, so that the kernel replays their journals, and tells a digest of
# each one's tree: names, kinds, modes, owners, sizes, and what is in the files.
TELL_TREES = """set -e
mkdir -p /run/cut
at=0
while mount -o loop,offset=$at,sizelimit={size} {device} /run/cut; do
    cd /run/cut
    (find . -path ./lost+found -prune -o -printf '%P %y %m %u %s\\n' | sort
     find . -type f -exec sha256sum {{}} + | sort) | sha256sum
    cd /
    umount /run/cut
    at=$((at + {size}))
    [ $at -lt {end} ] || exit 0
done
exit 1
"""

# The disks have the label of the board's own: systemd may have taken that one away when they came.
PUT_IN_PLACE = """set -e
if mountpoint -q {place}; then umount {place}; fi
mount -o loop,offset={at},sizelimit={size},nodev,nosuid,noatime {device} {place}
"""


class SideBySide:
    """Disks of one size, one behind the other in one image, so that a board can be shown all of them at
    once; what is empty takes no space. `shell` runs a command on the board."""

    def __init__(self, disks, path):
        """disks: what cuts() gives. numbers are the requests before each. Damaged, if one is not whole once its
        journal is replayed."""
        self.numbers, self._size = [], 0
        for number, disk in disks:
            self._size = disk.stat().st_size
            run(["dd", f"if={disk}", f"of={path}", "bs=1M", f"seek={len(self.numbers) * self._size}",
                 "oflag=seek_bytes", "conv=notrunc,sparse", "status=none"])
            if wrong := recover(disk):
                raise Damaged(f"cut after {number} requests: {wrong}")
            self.numbers.append(number)
            os.truncate(path, len(self.numbers) * self._size)

    def trees(self, shell, device):
        """Digests of what is on the disks; device is what the board calls the image."""
        told = shell(TELL_TREES.format(device=device, size=self._size, end=len(self.numbers) * self._size),
                     timeout=600)
        return told.splitlines()

    def put_in_place(self, shell, device, index, place):
        """Mounts one of them in the place of what is mounted there."""
        shell(PUT_IN_PLACE.format(device=device, place=place, at=index * self._size, size=self._size))


def _check(path, *options):
    return subprocess.run(["/sbin/e2fsck", *options, path], stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)


def _debugfs(path, request):
    return subprocess.run(["/sbin/debugfs", "-R", request, path], stdin=subprocess.DEVNULL, check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout


def files_in(path, folder):
    """Files of a folder on a disk that is recovered: mode as octal digits, and bytes, by name."""
    found = {}
    for line in _debugfs(path, f"ls -p {folder}").decode().splitlines():
        fields = line.split("/")        # inode, mode, owner, group, name, size, one empty on either side
        if len(fields) > 5 and fields[2].startswith("100"):
            found[fields[5]] = fields[2][3:], _debugfs(path, f"cat {folder}/{fields[5]}")
    return found


def recover(path):
    """Replays the journal of a disk as a mount does, and checks all of it; what was wrong, or ""."""
    journal = _check(path, "-fy", "-E", "journal_only")
    if journal.returncode not in (0, 1):
        return journal.stdout.decode(errors="replace")
    whole = _check(path, "-fn")
    return whole.stdout.decode(errors="replace") if whole.returncode else ""
