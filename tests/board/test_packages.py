"""The packages themselves, before anybody installs them."""

import os
import pathlib

import pytest

from virtualboard import packages
from virtualboard.commands import run


@pytest.fixture(scope="module")
def debs():
    folder = os.environ.get("SYSSET_BOARD_DEBS") or packages.packages_step()
    return sorted(pathlib.Path(folder).glob("*.deb"))


def test_lintian_has_nothing_to_say(debs):
    run(["lintian", "--allow-root", "--fail-on", "error,warning", *debs])


def test_every_command_has_a_page_in_the_manual(debs):
    listed = "".join(run(["dpkg-deb", "-c", deb]).decode() for deb in debs)
    names = [line.split()[5] for line in listed.splitlines()]
    commands = [name for name in names if name.startswith(("./usr/bin/", "./usr/libexec/")) and name[-1] != "/"]
    pages = {pathlib.PurePath(name).name.split(".")[0] for name in names if "/man/man" in name}
    assert commands
    assert [name for name in commands if pathlib.PurePath(name).name not in pages] == []
