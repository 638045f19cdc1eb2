"""The update pages as an operator uses them, and what a maker puts on the stick for them."""

import pathlib
import subprocess
import sys

from lab import NotSeen, wait_for
from virtualboard import sticks

TOOLS = pathlib.Path(__file__).resolve().parents[1]
PROJECT, FIRMWARE, PLC = "Pro", "Image", "PlcPro"   # pages, as they are in the names of their widgets
TABS = {PROJECT: 0, FIRMWARE: 1, PLC: 2}
BARS = {PROJECT: "bar_Project", FIRMWARE: "bar_Image", PLC: "bar_PlcPro"}
LANGUAGE = 2                    # tab
MODEL = "KV070T"                # as the virtual board's firmware says
KEYRING = "/etc/sysset/update-keys.pem"
RELEASE = "/usr/lib/os-release"
ENDS_S = 60


def have(tool, *arguments, folder=None):
    """Has a tool of the maker's do something, in a folder."""
    subprocess.run([sys.executable, str(TOOLS / tool), *map(str, arguments)], check=True, cwd=folder,
                   stdout=subprocess.DEVNULL)


def maker(*arguments):
    """Has the maker's tool for projects do something."""
    have("make-update-file", *arguments)


class Maker:
    """Who makes projects: a folder with keys, and one whose files are on the stick."""

    def __init__(self, folder, stick):
        self.keys = folder / "keys"
        self._folder = folder
        self._stick = stick
        maker("keys", self.keys)

    def keyring(self):
        return (self.keys / "update-keys.pem").read_bytes()

    def project(self, name, files, *, keys=None, model=MODEL, version=0, kind="project"):
        """Makes a project, or a logo, of texts or bytes by name, and puts it on the stick; its path here."""
        content = self._folder / "content" / name
        for path, data in files.items():
            (content / path).parent.mkdir(parents=True, exist_ok=True)
            (content / path).write_bytes(data if isinstance(data, bytes) else data.encode())
        signing = ["--keys", keys or self.keys] if keys != "none" else []
        maker(kind, "--model", model, "--version", version, *signing, content, self._stick / name)
        return self._stick / name

    def firmware(self, name, image, *, version, keys=None, model=MODEL):
        """Makes a firmware of a slot's image, and puts it on the stick; its path here."""
        maker("firmware", "--model", model, "--version", version, "--keys", keys or self.keys, "--compression", "lz4",
              image, self._stick / name)
        return self._stick / name


def trust(panel, maker_):
    """Has the panel know a maker's keys."""
    panel.shell(f"mkdir -p /etc/sysset; cat >{KEYRING}", stdin=maker_.keyring())


def open_page(panel, page=PROJECT, language="EN"):
    """One of the pages, in a language, "EN" or "CH"."""
    panel.touch("btn_Sysset")
    panel.touch("tab_System", LANGUAGE)
    panel.touch(f"{language}Btn")
    panel.touch("btn_UpData")
    panel.touch("tab_UpData", TABS[page])


def ready(panel, maker_, version, page=PROJECT):
    """The panel knows a maker and its firmware's version, and shows a page in English."""
    trust(panel, maker_)
    panel.shell(f"echo IMAGE_VERSION={version} >>{RELEASE}")
    open_page(panel, page)
    return panel


def plug(panel, folder, page=PROJECT, **how):
    """Plugs a stick with the files of a folder; the rows that the open page lists then."""
    image = folder.parent / "stick.img"
    sticks.make_fat_stick(image, folder)
    panel.hands.plug("stick", image, **how)
    return wait_for(lambda: panel.items(f"list_{page}"), "the stick's files")


def choose(panel, name, page=PROJECT):
    """Has the file installed that is listed so, once the page can be touched."""
    rows = wait_for(lambda: panel.items(f"list_{page}"), "rows")
    panel.touch(f"list_{page}", rows.index(f"U1/{name}"))
    wait_for(lambda: name in panel.text(f"lab_{page}"), "the row is chosen")
    panel.touch(f"btn_DownLoad{page}")


def outcome(panel, seconds=ENDS_S):
    """What the box says at the end, which is closed."""
    wait_for(lambda: panel.is_seen("btn_Ok"), "the end", seconds)
    said = panel.text("label")
    panel.touch("btn_Ok")
    wait_for(lambda: not panel.is_seen("btn_Ok"), "the box closes")
    wait_for(lambda: is_read_only_again(panel), "the end of the job")
    return said


def is_read_only_again(panel):
    """The system partition, which a job looks after last: until then a press is for nothing, and its page waits. The
    virtual board has no such partition, so that each request for it is told as one that has failed."""
    told = panel.shell("journalctl -b -o cat --no-pager -u 'sysset-remount@*' | grep -c '^Failed to start' || :")
    return int(told) % 2 == 0


def percent(panel, page=PROJECT):
    """Of the bar; None while a box covers it."""
    try:
        return panel.widget(BARS[page]).value
    except NotSeen:
        return None
