"""The packages themselves, before anybody installs them."""

import os
import pathlib

from virtualboard import packages
from virtualboard.commands import run


def test_lintian_has_nothing_to_say():
    """Nor is there a command without a page in the manual, of which lintian warns."""
    folder = os.environ.get("SYSSET_BOARD_DEBS") or packages.packages_step()
    run(["lintian", "--allow-root", "--fail-on", "error,warning", *sorted(pathlib.Path(folder).glob("*.deb"))])
