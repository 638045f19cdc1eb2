"""A board that is not as it should be: the program starts, says so in a line, and loses nothing."""

import pathlib

import pytest

import conftest
from lab import wait_for
from virtualboard import kept
from virtualboard.machine import Screen, overlay_disk

CONF = "/etc/sysset/panel.conf"
BEEPER = "echo pcspkr >/sys/bus/platform/drivers/pcspkr"

# What is done to the board; what the program and the words service say of it, each in one line.
FAULTS = {
    "no panel.conf": (f"rm {CONF}", ["panel.conf"], []),
    "a folder for panel.conf": (f"rm {CONF}; mkdir {CONF}", ["panel.conf"], ["panel.conf"]),
    "a panel.conf that is no text": (f"head -c 5000 /dev/urandom >{CONF}", ["panel.conf"], ["panel.conf"]),
    "wrong values in panel.conf": ("printf '[buzzer]\\ntones=1\\n[display]\\nsize=x\\n"
                                   f"[words]\\nclock=\\377\\n' >{CONF}", ["panel.conf"], ["panel.conf"]),
    "another size in panel.conf": (f"printf '[display]\\nsize=320x240\\n' >{CONF}", [], []),
    "no beeper": (f"{BEEPER}/unbind", ["no input device plays tones"], []),
    "no backlight": ("echo LNXVIDEO:00 >/sys/bus/acpi/drivers/video/unbind", [],
                     ["brightness cannot be set"]),
}

# A words service that is none, on the board's own perl.
STAND_IN = pathlib.Path(__file__).with_name("stand_in.pl")
# On a busy board the stand-in may be late besides, which is told too.
LATE = ["the words service does not answer", "the words service answers"]
MANNERS = {"few": ("", "the words service gives an answer that makes no sense"), "wild": ("65535", None)}


def says(panel, unit, lines):
    told = [line for line in panel.told(unit) if not line.startswith(("listening", "clock set"))]
    assert len(told) == len(lines) and all(part in line for part, line in zip(lines, told)), told


def test_faults_of_the_board_are_told_in_a_line_each(delivered):
    panel = delivered
    panel.shell(f"cp {CONF} /run/panel.conf")
    for fault, (command, program, words) in FAULTS.items():
        print(fault)
        panel.shell(command)
        panel.shell("systemctl restart sysset-words sysset")
        panel.wait_started()
        says(panel, "sysset", program)
        says(panel, "sysset-words", words)
        panel.shell(f"rm -rf {CONF}; cp /run/panel.conf {CONF}; {BEEPER}/bind; true")


def test_a_screen_that_comes_late(delivered):
    driver = "echo 0000:00:10.0 >/sys/bus/pci/drivers/bochs-drm"
    waits = "no framebuffer /dev/fb0: the program waits for it"
    delivered.shell(f"systemctl stop sysset; {driver}/unbind; systemctl start --no-block sysset")
    wait_for(lambda: waits in delivered.told("sysset"), "the line that says so")
    delivered.shell(f"{driver}/bind")
    wait_for(lambda: delivered.service_is("sysset") == "active", "the program", 60)
    delivered.wait_started()
    says(delivered, "sysset", [waits, "the framebuffer is there"])
    assert delivered.shell("systemctl show -P NRestarts sysset") == "0"


@pytest.mark.parametrize("manner", MANNERS)
def test_a_words_service_that_makes_no_sense(panel, manner):
    shown, line = MANNERS[manner]
    healthy = panel.widgets("line_BacklightTime")[0].text
    panel.shell("cat >/run/stand-in", stdin=STAND_IN.read_bytes())
    panel.shell("systemctl stop sysset sysset-words; systemctl mask -q --runtime sysset-words;"
                f"systemd-run -q --unit stand-in perl /run/stand-in {manner};"
                "until ss -Hltn sport = :1502 | grep -q .; do sleep 0.2; done; systemctl start sysset",
                timeout=180)
    panel.open_pages()
    panel.press_through()
    panel.touch("tab_System", 0)
    assert panel.text("line_BacklightTime") == shown
    told = [each.split(":")[0] for each in panel.told("sysset")]
    assert [each for each in told if each not in LATE] == ([line] if line else [])
    if line:
        panel.shell("systemctl stop stand-in; systemctl unmask -q --runtime sysset-words")
        panel.shell("systemctl start sysset-words")
        panel.wait_text("line_BacklightTime", healthy, 30)


def test_a_screen_of_another_size(request, built):
    with conftest.at_work(request, kept.cold_machine(built, Screen(800, 480)), built) as panel:
        panel.wait_started(180)
        assert panel.hands.frame().size == (800, 480)
        says(panel, "sysset", [])


@pytest.mark.parametrize("year, told_by, line", [
    (1999, "init.scope", "System time before build time, advancing clock."),
    (2040, "sysset-words", "the clock says the year 2040: it is to be set")], ids=["1999", "2040"])
def test_a_clock_of_another_time(panel, year, told_by, line):
    panel.shell(f"hwclock --utc --set --date '{year}-03-01 12:00'")
    panel.hands.press_reset()
    panel.wait_started()
    panel.open_pages()
    panel.try_shell("systemctl is-system-running --wait")   # timedated is slow while the network starts
    assert panel.shell(f"journalctl -b -o cat --no-pager | grep -cF '{line}'") == "1", told_by
    panel.touch("btn_Sysset")
    panel.touch("line_Year")
    panel.type("2027")
    panel.set_clock()
    assert panel.shell("date +%Y") == panel.shell("hwclock --utc | cut -c1-4") == "2027"


def kept_settings(panel):
    """What the data disk holds: brightness and language."""
    return panel.shell("cd /mnt/data; grep -h '^10591 ' sysset/words/words.? | sort; cat prj/LangugeSet.cof")


def keep_brightness(panel):
    panel.touch("btn_Sysset")
    panel.drag("slider_Backlightness", 70)
    wait_for(lambda: "10591 70" in kept_settings(panel), "the brightness is kept")
    return kept_settings(panel)


def change_settings(panel, brightness):
    panel.touch("btn_Sysset")
    panel.touch("tab_System", 2)
    panel.touch("ENBtn")
    panel.touch("tab_System", 0)
    panel.drag("slider_Backlightness", brightness)


def is_told(panel, why):
    wait_for(lambda: f"settings are not kept: {why}" in panel.told("sysset-words"), "the line that says so")
    assert len([line for line in panel.told("sysset") if "language is not kept" in line]) == 1


def test_a_full_data_disk(panel):
    before = keep_brightness(panel)
    panel.shell("for size in 64k 1k; do dd if=/dev/zero bs=$size >>/mnt/data/full; done 2>/dev/null; sync")
    change_settings(panel, 40)
    is_told(panel, "No space left on device")
    assert kept_settings(panel) == before
    panel.power_cycle()
    panel.open_pages()
    assert panel.hands.backlight() == 70 and kept_settings(panel) == before
    panel.touch("btn_Sysset")
    panel.drag("slider_Backlightness", 45)
    panel.shell("rm /mnt/data/full")
    wait_for(lambda: "10591 45" in kept_settings(panel), "what could not be kept is kept now")


def test_a_read_only_data_disk(panel):
    before, machine = keep_brightness(panel), panel.hands.machine
    panel.shell("mount -o remount,ro /mnt/data")
    panel.hands.cut_power()
    machine.start(panel.image, others={"data": {**overlay_disk(machine.folder / "data.qcow2"), "read-only": True}})
    panel.wait_started()
    panel.open_pages()
    assert panel.hands.backlight() == 70
    change_settings(panel, 40)
    wait_for(lambda: panel.hands.backlight() == 40, "a setting works although it is not kept")
    is_told(panel, "Read-only file system")
    panel.power_cycle()
    panel.open_pages()
    assert panel.hands.backlight() == 70 and kept_settings(panel) == before
