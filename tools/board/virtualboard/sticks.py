"""U-disks: images made of a folder, and the ways in which a stick can be bad."""

import os
import pathlib
import random

from .commands import run
from .machine import raw_disk

MIB = 1 << 20
SECTOR = 512                 # bytes
FIRST_SECTOR = 2048          # where every current tool lets the first partition begin
SLOW_BYTES_A_SECOND = 1 << 20
BOOT_CODE = 440              # of the first sector; behind it the partition table begins


def _size_of(folder):
    files = sum(p.stat().st_size + 4096 for p in folder.rglob("*"))
    return max(64, 2 * files // MIB + 34) * MIB


def _entries(folder):
    return [os.fsencode(folder) + b"/" + name for name in sorted(os.listdir(os.fsencode(folder)))]


def make_fat_stick(path, folder):
    """A stick as a shop sells it, one FAT partition, with the files of a folder."""
    folder = pathlib.Path(folder)
    pathlib.Path(path).unlink(missing_ok=True)
    with open(path, "wb") as image:
        image.truncate(_size_of(folder))
    run(["sh", "-c", 'echo "$2,,c" | sfdisk -q "$1"', "sh", path, str(FIRST_SECTOR)])
    kilobytes = (_size_of(folder) - FIRST_SECTOR * SECTOR) // 1024
    run(["mkfs.vfat", "-F", "32", "-n", "STICK", "--offset", FIRST_SECTOR, path, kilobytes])
    if _entries(folder):
        run(["mcopy", "-s", "-Q", "-i", f"{path}@@{FIRST_SECTOR * SECTOR}", *_entries(folder), "::/"])


def make_ext4_stick(path, folder):
    """A stick from another Linux, whose names are whatever bytes they are; without a partition."""
    pathlib.Path(path).unlink(missing_ok=True)
    run(["mke2fs", "-q", "-t", "ext4", "-d", folder, path, f"{_size_of(pathlib.Path(folder)) // MIB}M"])


def _write_garbage(path, first, size, seed):
    with open(path, "r+b") as image:
        image.seek(first)
        image.write(random.Random(seed).randbytes(size))


def break_partition_table(path, seed):
    """Overwrites the table with entries that lie; the marks that make it a table stay."""
    _write_garbage(path, BOOT_CODE, 510 - BOOT_CODE, seed)


def break_sectors(path, first, count, seed):
    """Overwrites sectors with garbage."""
    _write_garbage(path, first * SECTOR, count * SECTOR, seed)


def node(path, read_only=False):
    """A stick for QEMU."""
    return {**raw_disk(path), "read-only": read_only}


def slow_node(board, path, bytes_a_second=SLOW_BYTES_A_SECOND):
    """A stick that reads no faster than that."""
    group = f"slow{random.getrandbits(32):x}"
    limits = {"bps-total": bytes_a_second, "bps-total-max": bytes_a_second}
    board.monitor.call("object-add", **{"qom-type": "throttle-group", "id": group, "limits": limits})
    return {"driver": "throttle", "throttle-group": group, "file": raw_disk(path)}


def worn_node(path, first_bad, last_bad):
    """A stick that cannot read these sectors."""
    errors = [{"event": "none", "iotype": "read", "errno": 5, "sector": s, "once": False}
              for s in range(first_bad, last_bad + 1)]
    return {"driver": "blkdebug", "image": raw_disk(path), "inject-error": errors}
