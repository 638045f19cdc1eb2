"""Our packages, built of the checkout as dpkg-buildpackage builds them, in a copy of it, and the
developer's program."""

import os
import pathlib
import shutil

from . import cache
from .commands import run

# What no package holds: a changed story or page must not build the program again.
NOT_PACKAGED = (".ci/", "bench/", "docs/", "tests/", "tools/board/", "run", "test", "README.md", "CHANGELOG.md",
                "CMakePresets.json")

CCACHE = "/usr/lib/ccache"

# In no package, and made of the same objects.
DEVELOPERS_PROGRAM = "sysset-dev"


def sources():
    """Names of the files that the program and its packages are made of, as they are now."""
    listed = run(["git", "-C", cache.CHECKOUT, "ls-files", "-z", "--cached", "--others", "--exclude-standard"])
    names = [os.fsdecode(name) for name in listed.split(b"\0") if name]
    return [n for n in names if not n.startswith(NOT_PACKAGED) and (cache.CHECKOUT / n).exists()]


def inputs():
    """The same with their contents, for the digest of a step."""
    return [item for name in sources() for item in (name, pathlib.Path(cache.CHECKOUT / name))]


def _copy(names, target):
    for name in names:
        copy = target / name
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(cache.CHECKOUT / name, copy, follow_symlinks=False)


def _make(out):
    source = out / "source"
    _copy(sources(), source)
    run(["dpkg-buildpackage", "--build=binary", "--no-sign"], cwd=source,
        env={"PATH": f"{CCACHE}:/usr/sbin:/sbin:{os.environ['PATH']}"})
    [build] = source.glob("obj-*")
    run(["cmake", "--build", build, "--target", DEVELOPERS_PROGRAM])
    run(["strip", "-o", out / DEVELOPERS_PROGRAM, build / "bin" / DEVELOPERS_PROGRAM])
    shutil.rmtree(source)


def packages_step():
    """Folder with packages and developer's program of the checkout as it is now, changes not committed
    included."""
    return cache.step("packages", "Building the packages", inputs(), _make)
