"""All steps from packages to disks, in order."""

import dataclasses
import pathlib

from . import debian, disks, kernel


@dataclasses.dataclass(frozen=True)
class Image:
    """What a machine is started from; the key names all that went into it."""

    kernel: pathlib.Path
    initrd: pathlib.Path
    firmware: pathlib.Path
    ticks: pathlib.Path
    disks: dict     # what is on each when the board is new, by the names of machine.DISKS
    key: str


def build(debs_folder):
    """The image with the packages of that folder. A second call takes no time."""
    debs = debian.find_debs(pathlib.Path(debs_folder).resolve())
    plain = debian.debian_step(debs)
    system = debian.system_step(plain, debs)
    linux = kernel.kernel_step(plain)
    place = disks.disks_step(system, linux)
    return Image(linux / "vmlinux", linux / "initrd", linux / "backlight.aml", linux / "ticks",
                 disks.files(place), place.name)
