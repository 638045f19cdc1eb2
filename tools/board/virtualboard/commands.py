"""Runs programs of the host; what they print is shown only if they fail."""

import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile

PATH = os.environ.get("PATH", "") + ":/usr/sbin:/sbin"   # a plain user's may lack mke2fs and depmod


class CommandFailed(Exception):
    """A program ended with an error; the text has its last lines."""


def run(arguments, **options):
    """Runs one program, an argument list as it is, and returns its output as bytes."""
    arguments = [a if isinstance(a, bytes) else str(a) for a in arguments]
    env = {**os.environ, "PATH": PATH, "LC_ALL": "C.UTF-8", **options.pop("env", {})}
    done = subprocess.run(arguments, env=env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=False, **options)
    if done.returncode:
        said = (done.stdout[-2000:] + done.stderr[-4000:]).decode(errors="replace")
        raise CommandFailed(f"{arguments[0]} ended with {done.returncode}:\n{said}")
    return done.stdout


MEMORY_DISK = pathlib.Path("/dev/shm")
ENOUGH_BYTES = 4 << 30


def _memory_free():
    text = pathlib.Path("/proc/meminfo").read_text()
    return int(text.split("MemAvailable:")[1].split()[0]) * 1024


def roomy_folder():
    """Where thousands of files are unpacked and removed again: in memory if there is enough of it,
    which takes a quarter of the time; else where the system has its temporary files."""
    free = min(shutil.disk_usage(MEMORY_DISK).free, _memory_free()) if MEMORY_DISK.is_dir() else 0
    return MEMORY_DISK if free > ENOUGH_BYTES and os.access(MEMORY_DISK, os.W_OK) else tempfile.gettempdir()


@contextlib.contextmanager
def scratch():
    """A folder for the time of a block."""
    with tempfile.TemporaryDirectory(prefix="panel-", dir=roomy_folder()) as place:
        yield pathlib.Path(place)
