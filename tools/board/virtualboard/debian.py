"""The panel's root file system: Debian 12, and our packages installed in it by apt, nothing else."""

import os
import re
import signal

from . import cache
from .commands import CommandFailed, roomy_folder, run

SUITE = "bookworm"

# What makes a Debian that boots; the packages of the panel bring what they need themselves. RAUC, for a board
# with two slots, is only recommended by them.
SYSTEM = ["systemd", "systemd-sysv", "dbus", "udev", "kmod", "polkitd", "iproute2", "procps",
          "ca-certificates", "util-linux-extra", "dosfstools", "rauc-service"]

# What only the virtual board needs: the agent through which its far end is reached, and what the networks
# and the cloud are made of that it is joined to.
BOARD = ["qemu-guest-agent", "hostapd", "dnsmasq-base", "iw", "iputils-ping", "mosquitto", "mosquitto-clients",
         "python3"]

# Drivers for OpenGL and character sets of the C library come with Qt and are never loaded on a
# framebuffer: without them, documents and translations the image has 340 MB instead of 520.
LIBRARIES = "/usr/lib/x86_64-linux-gnu"
LEFT_OUT = ["/usr/share/man/*", "/usr/share/doc/*", "/usr/share/locale/*", "/usr/share/info/*",
            "/usr/share/lintian/*", "/usr/lib/udev/hwdb.d/*", f"{LIBRARIES}/dri/*",
            f"{LIBRARIES}/gconv/*", f"{LIBRARIES}/libLLVM*", f"{LIBRARIES}/libz3*"]

PACKAGES = ["sysset", "sysset-cloud", "sysset-network", "sysset-services", "sysset-update"]

# fontconfig knows a folder's cache by the folder's time to the nanosecond; mmdebstrap's tar and mke2fs
# change times that are new or not whole seconds. Without this each start reads all fonts.
CACHE_FONTS = "find /usr/share/fonts -type d -exec touch -d 2020-01-01 {} + && fc-cache -f"

FETCH_KERNEL = ('cd /var/cache && apt-get -qq download '
                '$(apt-cache depends linux-image-amd64 | sed -n "s/.*Depends: //p") && '
                'mv linux-image-*.deb kernel.deb')


class MissingPackage(Exception):
    """A package of ours, or just one version of it, is not in the folder."""


def _find(folder, name):
    files = sorted(folder.glob(f"{name}_*.deb"))
    if len(files) != 1:
        raise MissingPackage(f"{folder} has {len(files)} packages named {name}")
    return files[0]


def _depends(deb):
    """Names of the packages that one depends on: of alternatives the first, versions left to apt."""
    text = run(["dpkg-deb", "-f", deb, "Depends", "Pre-Depends"]).decode()
    relations = re.sub(r"^(Pre-)?Depends:", ",", text, flags=re.M).split(",")
    names = (re.split(r"[\s(|:]", relation.strip(), 1)[0] for relation in relations)
    return {name for name in names if name}


def find_debs(folder):
    """Files of the panel's packages, and of those of ours that they depend on."""
    own = {path.name.split("_")[0] for path in folder.glob("*.deb")}
    found, wanted = {}, list(PACKAGES)
    while wanted:
        name = wanted.pop()
        if name not in found:
            found[name] = _find(folder, name)
            wanted += _depends(found[name]) & own
    return [found[name] for name in sorted(found)]


def needed_by(debs):
    """Debian's packages that ours depend on."""
    own = {deb.name.split("_")[0] for deb in debs}
    return sorted(set().union(*map(_depends, debs)) - own)


# What mmdebstrap 1.3 says when the helper that hands it a file dies of a broken pipe, as it did once in
# some thirty runs on a busy machine; the next attempt works.
BROKEN_PIPE = f"special hook failed with exit code {int(signal.SIGPIPE)}"
ATTEMPTS = 3


def _mmdebstrap(*arguments):
    mode = "root" if os.geteuid() == 0 else "unshare"
    for attempt in range(1, ATTEMPTS + 1):
        try:
            run(["mmdebstrap", f"--mode={mode}", "--quiet", *arguments], cwd="/",
                env={"TMPDIR": str(roomy_folder())})
            return
        except CommandFailed as failure:
            if attempt == ATTEMPTS or BROKEN_PIPE not in str(failure):
                raise


def _hooks(kind, *commands):
    return [f"--{kind}-hook={command}" for command in commands]


# Who is not root cannot unpack device nodes: mmdebstrap mounts its own on a folder that is there.
WITHOUT_DEVICES = "--skip=output/dev"
DEVICES_FOLDER = 'mkdir -p "$1/dev"'


def _make_debian(packages):
    def make(out):
        _mmdebstrap("--variant=minbase", WITHOUT_DEVICES, f"--include={','.join(packages)}",
                    "--aptopt=APT::Install-Recommends \"false\"",
                    *[f"--dpkgopt=path-exclude={path}" for path in LEFT_OUT],
                    *_hooks("customize", f"chroot \"$1\" sh -c '{FETCH_KERNEL}'",
                            f"download /var/cache/kernel.deb {out}/kernel.deb",
                            'rm "$1/var/cache/kernel.deb"'),
                    SUITE, f"{out}/debian.tar")
    return make


def _make_system(debian, debs):
    def make(out):
        inside = "/var/cache/panel"
        _mmdebstrap("--variant=custom", "--skip=update",
                    *_hooks("setup", f"tar-in {debian}/debian.tar /", DEVICES_FOLDER),
                    *_hooks("customize", f'mkdir "$1{inside}"',
                            f"copy-in {' '.join(map(str, debs))} {inside}",
                            f"chroot \"$1\" sh -c 'apt-get install -y -qq {inside}/*.deb'",
                            f'rm -r "$1{inside}"', f"chroot \"$1\" sh -c '{CACHE_FONTS}'"),
                    SUITE, f"{out}/system.tar")
    return make


def debian_step(debs):
    """Debian with all that our packages depend on, and the package of its kernel."""
    packages = SYSTEM + BOARD + needed_by(debs)
    inputs = [SUITE, *packages, *LEFT_OUT, FETCH_KERNEL, WITHOUT_DEVICES]
    return cache.step("debian", "Installing Debian's packages", inputs, _make_debian(packages))


def system_step(debian, debs):
    """The same with our packages installed."""
    inputs = [debian.name, DEVICES_FOLDER, CACHE_FONTS, *debs]
    return cache.step("system", "Installing the panel's packages", inputs, _make_system(debian, debs))
