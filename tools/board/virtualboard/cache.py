"""Steps whose results are kept by the digest of their inputs: what has not changed is not made again."""

import contextlib
import fcntl
import hashlib
import os
import pathlib
import shutil

from .progress import Progress

CHECKOUT = pathlib.Path(__file__).resolve().parents[3]
KEPT_VERSIONS = 2   # of each step, so that going back to the other branch costs nothing


def folder():
    """Where results are kept: $SYSSET_BOARD_CACHE, or build/board in the checkout."""
    place = pathlib.Path(os.environ.get("SYSSET_BOARD_CACHE") or CHECKOUT / "build" / "board")
    place.mkdir(parents=True, exist_ok=True)
    return place.resolve()


def _add_file(digest, path, name):
    mode = path.lstat().st_mode & 0o111
    digest.update(f"{name} {mode:o}\0".encode(errors="surrogateescape"))
    digest.update(os.readlink(path).encode() if path.is_symlink() else path.read_bytes())


def digest_of(inputs):
    """One digest of texts, files and whole folders. Names, contents and execute bits count."""
    digest = hashlib.sha256()
    for item in inputs:
        if not isinstance(item, pathlib.Path):
            digest.update(f"text {item}\0".encode())
        elif item.is_dir():
            for path in sorted(p for p in item.rglob("*") if not p.is_dir() or p.is_symlink()):
                _add_file(digest, path, path.relative_to(item))
        else:
            _add_file(digest, item, item.name)
    return digest.hexdigest()[:16]


@contextlib.contextmanager
def locked(name):
    """Only one process at a time makes the step of that name."""
    with open(folder() / f"{name}.lock", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield


def _forget_old(name, current):
    versions = [p for p in folder().glob(f"{name}-*") if p.is_dir() and p != current]
    versions.sort(key=lambda p: p.stat().st_mtime, reverse=True)
    for place in versions[KEPT_VERSIONS - 1:]:
        shutil.rmtree(place, ignore_errors=True)


def step(name, title, inputs, make):
    """The folder with the step's result. make(folder) fills it if no earlier one fits the inputs."""
    place = folder() / f"{name}-{digest_of(inputs)}"
    with locked(name):
        if place.is_dir():
            os.utime(place)
            return place
        fresh = folder() / f"{name}.new"
        shutil.rmtree(fresh, ignore_errors=True)
        fresh.mkdir()
        with Progress(title):
            make(fresh)
        fresh.rename(place)
        _forget_old(name, place)
    return place
