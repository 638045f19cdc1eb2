"""The board's disks as they leave the factory: the first slot's root, a second slot that is empty, the data disk
that /mnt/data is mounted from, and what the boot loader remembers."""

import os
import pathlib

from . import cache
from .commands import run, scratch

HERE = pathlib.Path(__file__).resolve().parent.parent
GUEST = HERE / "guest"
UNITS_OFF = HERE / "guest-off"
SLOT_BYTES = 900 << 20
CHANGED_SIZE = "600M"
# Order of the slots, then of A and of B: how many starts are left to try, 0 none, 9 it has proved itself.
BOOT_CHOICE, BOOT_BYTES = b"AB90", 64 << 10
DATA_SIZE = "64M"

# Runs under fakeroot, so that owners and device nodes of the tar survive without being root.
# The files .updated tell systemd that users, journal catalogue and caches are as /usr wants them.
MAKE_ROOT = """
set -eu
tar -xf "$SYSTEM" -C "$TREE" --exclude='./dev/*'
cp -a "$MODULES/." "$TREE/usr/"
cp -a "$GUEST/." "$TREE/"
rm -rf "$TREE"/var/lib/apt/lists/* "$TREE"/var/cache/apt "$TREE"/var/cache/debconf
find "$GUEST" "$MODULES" -mindepth 1 -printf '%P\\n' | sed "s,^lib/modules,usr/&," |
    (cd "$TREE" && xargs -d '\\n' chown -h 0:0)
grep -v '^#' "$UNITS_OFF" | while read -r unit; do
    ln -s /dev/null "$TREE/etc/systemd/system/$unit"
done
touch "$TREE/etc/.updated" "$TREE/var/.updated"
mke2fs -q -t ext4 -L root -m 0 -d "$TREE" "$OUT/root.ext4" "$SIZE"
"""


def _make_root(system, kernel, out):
    with scratch() as tree:
        run(["fakeroot", "sh", "-c", MAKE_ROOT],
            env={"OUT": str(out), "TREE": str(tree), "SYSTEM": f"{system}/system.tar",
                 "MODULES": f"{kernel}/tree", "GUEST": str(GUEST), "UNITS_OFF": str(UNITS_OFF),
                 "SIZE": f"{SLOT_BYTES >> 20}M"})


def change_root(source, path, files):
    """A root file system, one of the files of disks_step(), with some files changed: bytes by name, executable
    if they begin as a script; None for one that is not there. Smaller, so that it is written sooner."""
    run(["cp", "--sparse=always", source, path])
    run(["/sbin/resize2fs", path, CHANGED_SIZE])
    with scratch() as place:
        requests = []
        for number, (name, data) in enumerate(files.items()):
            requests += [f"rm {name}"]
            if data is not None:
                (place / str(number)).write_bytes(data)
                mode = "0100755" if data.startswith(b"#!") else "0100644"
                requests += [f"write {place / str(number)} {name}", f"sif {name} mode {mode}", f"sif {name} uid 0",
                             f"sif {name} gid 0"]
        (place / "requests").write_text("\n".join(requests))
        run(["/sbin/debugfs", "-w", "-f", place / "requests", path])


def file_of_root(path, name):
    """What a file of a root file system holds."""
    return run(["/sbin/debugfs", "-R", f"cat {name}", path])


def make_data_disk(path, size=DATA_SIZE):
    """An empty data disk, complete: nothing of it is left for the kernel to write later on."""
    run(["mke2fs", "-q", "-t", "ext4", "-L", "data", "-m", "0", "-E",
         "lazy_itable_init=0,lazy_journal_init=0,root_owner=0:0", path, size])


def files(folder):
    """Files of the disks, by the names that the machine has for them."""
    return {"slot-a": folder / "root.ext4", "data": folder / "data.ext4", "slot-b": folder / "empty", "boot": folder / "boot"}


def disks_step(system, kernel):
    """Folder with the disks."""
    def make(out):
        _make_root(system, kernel, out)
        make_data_disk(out / "data.ext4")
        (out / "empty").touch()
        os.truncate(out / "empty", SLOT_BYTES)
        (out / "boot").write_bytes(BOOT_CHOICE.ljust(BOOT_BYTES, b"\0"))
    inputs = [system.name, kernel.name, GUEST, UNITS_OFF, MAKE_ROOT, SLOT_BYTES, DATA_SIZE, BOOT_CHOICE]
    return cache.step("disks", "Making the disks", inputs, make)
