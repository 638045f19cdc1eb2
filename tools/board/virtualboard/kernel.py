"""Debian's kernel for the virtual board: the plain ELF, an initrd that finds the root, modules, and
what the firmware adds to them."""

import lzma
import pathlib
import platform
import shutil

from . import cache
from .commands import run, scratch

HERE = pathlib.Path(__file__).resolve().parent.parent
INIT = HERE / "init.c"
TICKS = HERE / "ticks.c"
BACKLIGHT = HERE / "backlight.asl"

# virtio_net, too: its card is eth0 whatever else udev finds first.
INITRD_MODULES = ["crc32c_generic", "virtio_pci", "virtio_blk", "ext4", "virtio_net"]

MODULES = """
    virtio_pci virtio_blk virtio_net virtio_console virtio_input virtio_rng e1000 bochs video
    evdev pcspkr i6300esb autofs4 configfs loop dm_mod af_packet
    xhci_pci usb_storage uas sd_mod sr_mod usbhid hid_generic usbserial ftdi_sio
    ext4 vfat exfat isofs udf nls_ascii nls_utf8 nls_cp437 nls_iso8859_1
    e1000e mac80211_hwsim ccm cmac gcm ctr ppp_async ppp_deflate
    dm_verity squashfs
""".split()


def plain_kernel(image):
    """The ELF inside a bzImage. Started by PVH it has nothing to unpack: under emulation that
    is 2 s of every start, and 10 s of every restart."""
    data = image.read_bytes()
    at = data.find(b"\xfd7zXZ\0")
    return lzma.LZMADecompressor(format=lzma.FORMAT_XZ).decompress(data[at:])


class _Modules:
    """The modules of an unpacked kernel package."""

    def __init__(self, root):
        self.root = root
        self.folder = next((root / "lib/modules").iterdir())
        self.version = self.folder.name
        run(["depmod", "-b", root, self.version])

    def files(self, names):
        """Files of the modules and of all that they need, in the order to load them."""
        found = []
        for name in names:
            told = run(["modprobe", "-d", self.root, "-S", self.version, "--show-depends", name])
            for line in told.decode().splitlines():
                kind, _, path = line.partition(" ")
                path = pathlib.Path(path.strip())
                if kind == "insmod" and path not in found:
                    found.append(path)
        return found


def _make_initrd(modules, out, place):
    tree = place / "initrd"
    (tree / "modules").mkdir(parents=True)
    run(["gcc", "-O2", "-Wall", "-Wextra", "-Werror", "-static", "-s", "-o", tree / "init", INIT])
    for number, path in enumerate(modules.files(INITRD_MODULES)):
        shutil.copy(path, tree / "modules" / f"{number:02}-{path.name}")
    run(["sh", "-c", 'cd "$1" && find . | cpio --quiet -o -H newc -R 0:0 >"$2"', "sh", tree, out / "initrd"])


def _make_modules(modules, out):
    target = out / "modules" / modules.version
    for path in modules.files(MODULES):
        copy = target / path.relative_to(modules.folder)
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(path, copy)
    for name in ("modules.builtin", "modules.builtin.modinfo", "modules.order"):
        shutil.copy(modules.folder / name, target)
    root = out / "tree"
    (root / "lib").mkdir(parents=True)
    (out / "modules").rename(root / "lib/modules")
    run(["depmod", "-b", root, modules.version])


def kernel_step(debian):
    """Folder with vmlinux, initrd, backlight.aml, tree/lib/modules to lay over the root, and the program
    ticks."""
    def make(out):
        with scratch() as place:
            run(["dpkg-deb", "-x", debian / "kernel.deb", place])
            modules = _Modules(place)
            image = place / "boot" / f"vmlinuz-{modules.version}"
            (out / "vmlinux").write_bytes(plain_kernel(image))
            _make_initrd(modules, out, place)
            _make_modules(modules, out)
        run(["iasl", "-p", out / "backlight", BACKLIGHT])
        if platform.machine() == "x86_64":
            run(["gcc", "-O2", "-Wall", "-Wextra", "-Werror", "-o", out / "ticks", TICKS])
    inputs = [debian.name, platform.machine(), INIT, TICKS, BACKLIGHT, *INITRD_MODULES, *MODULES]
    return cache.step("kernel", "Preparing the kernel", inputs, make)
