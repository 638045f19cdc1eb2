"""The laboratory: a panel, an operator in front of it, and a technician behind it.

Stories know `Panel` alone. What it does to a board goes through `Hands`, so that the same stories can
be played on a real board by other hands. Names of widgets are told by the developer's program."""

import contextlib
import json
import os
import socket
import time

import air
import cloud
import ethernet
import farends
import modem
from virtualboard import developer, image, kept, packages, screen, sound, sticks, uart
from virtualboard.jsonlines import JsonLines
from virtualboard.machine import Screen, raw_disk
from wire import Wire

SIZE = Screen()

PATIENCE_S = 30      # an emulated board is some thirty times slower than a panel
LIFTED_S = 0.1       # between two touches, as a quick finger does it
KEY_PAUSE_S = 0.16   # the keyboard takes presses that follow faster for one
VISIBLE_CHOICES = 8  # rows of an open combo box, if it has so many


class NotSeen(AssertionError):
    """What a story waited for did not come to pass."""


class Widget:
    """A widget as it was when it was looked at."""

    def __init__(self, told):
        self.told = told

    def __getattr__(self, name):
        return self.told.get(name)

    @property
    def centre(self):
        x, y, width, height = self.told["rect"]
        return x + width // 2, y + height // 2

    def find(self, kind):
        """The first one of a class that is seen in it, or None."""
        return next((w for w in self.walk() if w.told["class"] == kind and w.visible), None)

    def walk(self):
        """This one and all in it."""
        yield self
        for child in self.told["children"]:
            yield from Widget(child).walk()


class VirtualHands:
    """A board in QEMU. Whoever has a real board writes these methods for it."""

    def __init__(self, machine):
        self.machine = machine
        self._control = None
        self._lifted = 0.0

    def frame(self):
        """The picture on the screen, as a PIL image."""
        return screen.frame(self.machine)

    def finger_at(self, x, y):
        screen.move(self.machine, x, y)

    def finger_down(self):
        time.sleep(max(0.0, self._lifted + LIFTED_S - time.monotonic()))
        screen.finger(self.machine, True)

    def finger_up(self):
        screen.finger(self.machine, False)
        self._lifted = time.monotonic()

    def ask(self, verb, *arguments):
        """One request to the developer's program."""
        if self._control is None:
            self._control = JsonLines(self.machine.folder / "control")
        self._control.send({"verb": verb, "args": list(map(str, arguments))})
        answer = self._control.receive(40)
        if not answer["ok"]:
            raise NotSeen(answer["error"])
        return answer["value"]

    def shell(self, command, stdin=None, timeout=60):
        """Output of a command that root runs on the board."""
        return self.machine.agent.run(command, timeout, stdin)

    def try_shell(self, command):
        """Status and output of a command that may fail."""
        return self.machine.agent.try_run(command)

    def far(self, command, stdin=None, timeout=60):
        """Output of a command that root runs where the far ends of the networks are."""
        return self.machine.agent.run(command, timeout, stdin)

    def wire(self, name):
        """The laboratory's own end of what a network cable, or the mobile network, leads to."""
        return Wire(self.machine.folder, f"{name}-line")

    def serial_line(self, name):
        """The far end of one of the modem's lines, or of the first port's, com1; OSError while the board is off."""
        line = socket.socket(socket.AF_UNIX)
        try:
            line.connect(str(self.machine.folder / name))
        except OSError:
            line.close()
            raise
        return line

    def plc_line(self):
        """The far end of the first port, as options of plc.py."""
        return ["--socket", self.machine.folder / "com1"]

    def framing(self):
        """A context whose set has, at its end, how the bytes were framed that left the serial ports within it:
        bits a second, parity, data bits, stop bits."""
        return uart.framing(self.machine)

    def pull_modem(self):
        self.machine.pull_modem()

    def plug_modem(self):
        self.machine.plug_modem()

    def cable(self, name, plugged):
        self.machine.cable(name, plugged)

    def plug(self, name, image, *, read_only=False, slow=False):
        """Plugs a stick, an image of which is in a file."""
        node = sticks.slow_node(self.machine, image) if slow else sticks.node(image, read_only)
        self.machine.plug(name, node)

    def pull(self, name):
        self.machine.pull(name)

    def add_disk(self, name, image):
        """A further disk that is in a file; what the board calls it."""
        self.machine.monitor.call("blockdev-add", **{"node_name": name, **raw_disk(image)})
        self.machine.monitor.call("device_add", driver="virtio-blk-pci", id=f"{name}-disk", drive=name, serial=name,
                                  bus="slot1")
        return f"/dev/disk/by-id/virtio-{name}"

    def backlight(self):
        """Percent of the light behind the screen."""
        return self.machine.backlight()

    def is_dark(self):
        """Whether the light is switched off. The virtual one has no switch, only a driver that has it."""
        return self.shell("cat /sys/class/backlight/*/bl_power") != "0"

    def sounded(self):
        """A mark in what the beeper has sounded until now."""
        return sound.length(self.machine.folder / "beeper.wav")

    def tones(self, since):
        """Tones behind a mark."""
        return sound.tones(self.machine.folder / "beeper.wav", since)

    def press_reset(self):
        self.machine.press_reset()
        self._forget_line()

    def wait_restart(self, timeout):
        """Waits until the board resets itself."""
        self.machine.wait_restart(timeout)
        self._forget_line()

    def cut_power(self):
        self.machine.cut_power()
        self._forget_line()

    def power_on(self, image):
        self.machine.start(image)

    def wait_started(self, timeout):
        kept.wait_for_picture(self.machine, timeout)
        self.machine.agent.connect(timeout)

    def _forget_line(self):
        if self._control is not None:
            self._control.close()
            self._control = None


def wait_for(condition, what, timeout=PATIENCE_S):
    """Asks until the answer is true, and returns it. A wait has no sleeps to be tuned in a story."""
    end = time.monotonic() + timeout
    while True:
        with contextlib.suppress(NotSeen) if time.monotonic() < end else contextlib.nullcontext():
            answer = condition()
            if answer:
                return answer
            if time.monotonic() > end:
                raise NotSeen(f"{what}: not within {timeout} s, last seen {answer!r}")
        time.sleep(0.03)


class Panel:
    """A panel on the bench."""

    def __init__(self, hands, image):
        self.hands = hands
        self.image = image
        self.shell = hands.shell
        self.try_shell = hands.try_shell
        self.air = air.Air(hands)
        self.far = ethernet.Far(hands)
        self.modem = None
        self.cloud = None

    def with_modem(self):
        """Has the modem in it that it was kept with."""
        self.modem = modem.Modem(self.hands, is_settled=True)
        return self

    def with_cloud(self):
        """Has its networks lead to a cloud, and lets it be reached; it is not bound to it yet."""
        self.cloud = cloud.Cloud(self.hands)
        self.cloud.let_in()
        self.open_pages()
        return self

    def put_away(self):
        """Ends what the laboratory does for this panel."""
        self.far.close()
        if self.modem is not None:
            self.modem.close()

    # What is seen.

    def widgets(self, name=None):
        """All widgets, or those of a name; those that are seen stand first."""
        told = self.hands.ask("ui", "dump", *([name] if name else []))
        roots = told if isinstance(told, list) else [told]
        found = [Widget(root) for root in roots] if name else [w for r in roots for w in Widget(r).walk()]
        return sorted(found, key=lambda widget: not widget.visible)

    def widget(self, name):
        """The widget of that name that is seen; NotSeen if none is."""
        found = self.widgets(name)
        if not found or not found[0].visible:
            raise NotSeen(f"{name} is not on the screen")
        return found[0]

    def is_seen(self, name):
        return any(widget.visible for widget in self.widgets(name))

    def text(self, name):
        return self.widget(name).text

    def items(self, name):
        """Rows of a list, tabs of a page."""
        return self.widget(name).items

    def by_text(self, text, kind="QPushButton"):
        """The widget with that text on it."""
        for widget in self.widgets():
            if widget.visible and widget.text == text and widget.__dict__["told"]["class"].endswith(kind):
                return widget
        raise NotSeen(f"no {kind} says {text!r}")

    def wait_text(self, name, text, timeout=PATIENCE_S):
        wait_for(lambda: self.text(name) == text, f"{name} says {text!r}", timeout)

    def wait_items(self, name, items, timeout=PATIENCE_S):
        wait_for(lambda: self.items(name) == items, f"{name} lists {items}", timeout)

    # What a finger does.

    def touch_at(self, x, y, hold=0.06):
        self.hands.finger_at(x + 1, y + 1)  # a position is told only when it changes
        self.hands.finger_at(x, y)
        self.hands.finger_down()
        time.sleep(hold)
        self.hands.finger_up()

    def touch(self, name, row=None):
        """Touches a widget as soon as it is there and enabled; of a list or a tab widget one row."""
        index = [] if row is None else [row]
        x, y = wait_for(lambda: self.hands.ask("ui", "where", name, *index), f"{name} can be touched")
        self.touch_at(x, y)

    def set_clock(self):
        """Has the clock take what the page shows, once those who do it are up: every touch wakes them, and on an
        emulated board their start takes longer than the program waits. Where it says so all the same, that is
        taken for once: a busy computer makes the board slower still."""
        for service in ("systemd-timedated", "polkit"):
            wait_for(lambda: self.service_is(service) == "active", f"{service} is up")
        if not self._touch_clock():
            self.touch("btn_Ok")
            wait_for(lambda: not self.is_seen("btn_Ok"), "the box closes")
            assert self._touch_clock(), "the clock is not set"

    def _touch_clock(self):
        """Whether it is set then, or a box says that it is not."""
        def times_set():
            return self.told("sysset-words").count("clock set")
        before = times_set()
        self.touch("btn_SetTime")
        wait_for(lambda: times_set() > before or self.is_seen("btn_Ok"), "an outcome")
        return not self.is_seen("btn_Ok")

    def drag(self, name, value):
        """Drags a slider's handle to a value that it takes."""
        self.slide(name, value)
        wait_for(lambda: self.widget(name).value == value, f"{name} has the value {value}")

    def slide(self, name, value):
        """Drags a slider's handle to a value, which it gives back if nobody takes it."""
        (x, y), (to_x, to_y) = wait_for(lambda: self.hands.ask("ui", "way", name, value), f"{name} can be dragged")
        self.hands.finger_at(x, y)
        self.hands.finger_down()
        for step in range(1, 6):
            self.hands.finger_at(x + (to_x - x) * step // 5, y + (to_y - y) * step // 5)
            time.sleep(0.03)
        self.hands.finger_up()

    def type(self, text, page="n", enter="enter"):
        """Types on the open keyboard's page n of numbers or c of letters, and enters it."""
        for end in range(1, len(text) + 1):
            self.press_key(f"btn_{page}_{text[end - 1]}", lambda e=end: self.text("line_Text") == text[:e])
        self.press_key(f"btn_{page}_{enter}", lambda: not self.is_seen("line_Text"))

    def press_key(self, key, is_taken):
        """The keyboard takes the first press of all for a trembling finger's."""
        time.sleep(KEY_PAUSE_S)
        self.touch(key)
        try:
            wait_for(is_taken, f"{key} is taken", 1)
        except NotSeen:
            self.touch(key)
            wait_for(is_taken, f"{key} is taken")

    def choose(self, name, row):
        """Chooses a row of a combo box that is in sight when its list opens."""
        self.touch(name)
        choices = wait_for(lambda: self.widget(name).find("QComboBoxListView"), f"{name} opens")
        x, y, width, height = choices.rect
        rows = min(VISIBLE_CHOICES, len(self.items(name)))
        self.touch_at(x + width // 2, y + height * (2 * row + 1) // (2 * rows))
        wait_for(lambda: self.widget(name).index == row, f"{name} has row {row}")

    def press_through(self):
        """Touches what asks the settings words: both pages, ports, a dialog, a slider. Returns how long
        each touch took to show."""
        def timed(seen, name, row=None):
            began = time.monotonic()
            self.touch(name, row)
            wait_for(seen, f"{name} touched", 60)
            return time.monotonic() - began

        def page(name):
            return lambda: self.widget(name)

        def next_port():
            before = self.text("line_ComNum")
            return timed(lambda: self.text("line_ComNum") != before, "btn_ComR")

        took = [timed(page("tab_Net"), "btn_Net"), timed(page("tab_System"), "btn_Sysset"),
                timed(page("line_Year"), "tab_System", 0)]
        began = time.monotonic()
        self.slide("slider_Backlightness", 75 - self.widget("slider_Backlightness").value // 2)
        took += [time.monotonic() - began, timed(page("btn_ComR"), "tab_System", 1)]
        if self.widget("btn_ComR").enabled:
            took += [next_port(), next_port(), timed(page("btn_Save"), "btn_CommunIndetail"),
                     timed(lambda: self.widgets("btn_Save")[:1] == [], "btn_Canl")]
        return took

    # What is heard.

    @contextlib.contextmanager
    def listening(self):
        """A list that has, after the block, the tones that sounded within it."""
        heard, since = [], self.hands.sounded()
        yield heard
        heard += self.hands.tones(since)

    # What a technician does.

    def open_pages(self, timeout=60):
        """Waits for the pages."""
        wait_for(lambda: self.widget("stackedWidget"), "the pages", timeout)

    def power_cycle(self):
        """Cuts the power, without a word to the board, and switches it on again."""
        self.hands.cut_power()
        self.hands.power_on(self.image)
        self.wait_started()

    def wait_booted(self):
        """Waits until all services are up, whether or not one has failed."""
        self.shell("systemctl is-system-running --wait || :", timeout=180)

    def wait_started(self, timeout=180):
        """Waits until the program has drawn itself and the board listens to commands."""
        self.hands.wait_started(timeout)

    def service_is(self, name):
        """State of a unit: active, failed, ..."""
        return self.try_shell(f"systemctl is-active {name}")[1]

    def told(self, unit):
        """Lines that a unit's own processes have told the journal since it was started last."""
        start = self.shell(f"journalctl --sync; systemctl show -P InvocationID {unit}")
        return self.shell(f"journalctl -b -o cat --no-pager _SYSTEMD_INVOCATION_ID={start}").splitlines()

    def journal(self, unit):
        """All that a unit has told the journal since the start."""
        return self.shell(f"journalctl -b -o cat --no-pager -u {unit}")


def evidence(panel, folder):
    """Keeps what a failed story leaves behind: picture, journal, console."""
    folder.mkdir(parents=True, exist_ok=True)
    with contextlib.suppress(Exception):
        panel.hands.frame().save(folder / "screen.png")
    with contextlib.suppress(Exception):
        (folder / "journal.txt").write_text(panel.shell("journalctl -b --no-pager | tail -400"))
    with contextlib.suppress(Exception):
        (folder / "widgets.json").write_text(json.dumps(panel.hands.ask("ui", "dump"), indent=1))
    if panel.modem is not None:
        (folder / "modem.txt").write_text("\n".join(panel.modem.said))
    with contextlib.suppress(Exception):
        (folder / "console.log").write_bytes((panel.hands.machine.folder / "console.log").read_bytes())


def built():
    """The image: of the packages in $SYSSET_BOARD_DEBS, or of those that the checkout makes."""
    return image.build(os.environ.get("SYSSET_BOARD_DEBS") or packages.packages_step())


def packaged_board(system):
    """Folder of a kept board as it is delivered."""
    return kept.kept_step("kept", system, SIZE)


def developers_overlay():
    """The developer's program, to be laid over a board."""
    return developer.overlay_step(os.environ.get("SYSSET_BOARD_PROGRAM") or developer.program_step())


def developers_board(system):
    """The same with the developer's program in the place of the packaged one, its pages open."""
    overlay = developers_overlay()
    return kept.kept_step("stories", system, SIZE, _with_pages(system, overlay), [overlay])


def _with_pages(system, overlay):
    def prepare(board):
        developer.lay_over(board, overlay)
        Panel(VirtualHands(board), system).open_pages()
        kept.wait_until_still(board)
    return prepare


def networked_board(system):
    """The developer's board with networks to join: the air is up, and all stations are seen."""
    overlay, networks = developers_overlay(), farends.overlay_step()

    def prepare(board):
        _with_pages(system, overlay)(board)
        farends.set_up(board, VirtualHands(board), networks)

    return kept.kept_step("networked", system, SIZE, prepare, [overlay, networks, *farends.MODULES],
                          has_desk=False)
