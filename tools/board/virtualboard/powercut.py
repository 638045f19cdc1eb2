"""Power cuts without cutting: all writes of the data disk are logged, and the disk is built again as a
cut at any moment would have left it.

What was written before the last flush is on the disk. Of what came after it a disk may have kept
anything in any order, so a random part of it is. The log's format is that of the kernel's dm-log-writes
(Documentation/admin-guide/device-mapper/log-writes.rst), which QEMU's blklogwrites writes."""

import dataclasses
import os
import random
import shutil
import struct
import subprocess

from .commands import run

MAGIC = 0x6A736677736872
FLUSH, FUA, DISCARD = 1, 2, 4
HEAD = struct.Struct("<QQQI")
ENTRY = struct.Struct("<QQQQ")


class BadLog(Exception):
    """The file is no log of writes."""


@dataclasses.dataclass(frozen=True)
class Entry:
    """One request: bytes at an offset of the disk, and whether all before, and it, had to be kept."""

    offset: int
    data: bytes
    flush: bool
    forced: bool


def read_log(path):
    """All entries of a log, in order; an unfinished last one is left out."""
    with open(path, "rb") as log:
        first = log.read(HEAD.size)
        if not first:
            return      # the head comes with the first write
        magic, _, _, sector = HEAD.unpack(first)
        if magic != MAGIC:
            raise BadLog(path)
        log.seek(sector)
        while len(head := log.read(sector)) == sector:
            place, count, flags, _ = ENTRY.unpack_from(head)
            if (place, count, flags) == (0, 0, 0):
                return
            size = 0 if flags & DISCARD else count * sector
            data = log.read(size)
            if len(data) < size:
                return
            yield Entry(place * sector, data, bool(flags & FLUSH), bool(flags & FUA))


def _write(image, entry):
    image.seek(entry.offset)
    image.write(entry.data)


class _Replay:
    """The disk as its flushes leave it, and what is still under way."""

    def __init__(self, path):
        self._path = path
        self._pending = []

    def take(self, entry):
        if entry.flush:
            with open(self._path, "r+b") as image:
                for waiting in self._pending:
                    _write(image, waiting)
            self._pending = []
        if entry.data:
            self._pending.append(entry)

    def cut(self, path, chance):
        """The disk after a cut now: some of what was under way has arrived."""
        run(["cp", "--sparse=always", self._path, path])
        with open(path, "r+b") as image:
            for entry in self._pending:
                if entry.forced or chance.random() < 0.5:
                    _write(image, entry)


def length(log):
    """Number of requests that a log has now."""
    return sum(1 for _ in read_log(log))


def cuts(log, before, scratch, count, seed=1, first=0):
    """Disks after a power cut, at count moments spread over the log from request first on: the number of
    requests until then, and a path, which the next call overwrites. before is the disk when the log began,
    scratch a folder."""
    entries = list(read_log(log))
    moments = {first + round((i + 1) * (len(entries) - first) / count) for i in range(count)}
    chance = random.Random(seed)
    shutil.copy(before, scratch / "replay.raw")
    replay = _Replay(scratch / "replay.raw")
    for number, entry in enumerate(entries, 1):
        replay.take(entry)
        if number in moments:
            replay.cut(scratch / "cut.raw", chance)
            yield number, scratch / "cut.raw"


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
        """disks: what cuts() gives. numbers are the requests before each."""
        self.numbers, self._size = [], 0
        for number, disk in disks:
            self._size = disk.stat().st_size
            run(["dd", f"if={disk}", f"of={path}", "bs=1M", f"seek={len(self.numbers) * self._size}",
                 "oflag=seek_bytes", "conv=notrunc,sparse", "status=none"])
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
