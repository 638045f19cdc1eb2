"""PLC programs from a stick: into a PLC of either format, and what the operator reads where that fails."""

import itertools

import pytest

import plc_page
from plc_page import (CAM, DONE, FAILED, MEMORY, NO_MASK, NO_PLC, NO_PROTECTION, PARAMETERS, PASSWORD, PROGRAM, TIMEOUT,
                      UNREADABLE, UPDATED, UPDATED_CH, content)
from update_page import PLC, choose, open_page, outcome, plug

STILL_S = 2             # that the bar may stand still
STOPPED, RUNNING = 0, 1

SIZES = {"program": 21001, "parameters": 64, "cam": 3003, "extension": 1, "memory": 600}
CONTENT = {name: content(size) for name, size in SIZES.items()}
FIRST = 7               # register of the memory
RIGHT, WRONG, UPLOAD = "kestrel", "sparrow", "heron"     # words that no journal has by chance
PLAIN = "--from program --type 5 --version 3"
SECTIONS = "--parameters parameters --cam cam --extension extension --memory 7=@memory --hide-subprograms"
ALL = f"{PLAIN} {SECTIONS} --upload-password {UPLOAD} --password "
FILES = {"all.bin": ALL + RIGHT, "wrong.bin": ALL + WRONG, "plain.bin": PLAIN,
         "port.bin": f"{PLAIN} --port 1 --mode 485"}


@pytest.fixture
def ready(panel, folder, tmp_path):
    """A panel that shows the PLC page in English; files of the stick go into folder."""
    for name, data in CONTENT.items():
        (tmp_path / name).write_bytes(data)
    open_page(panel, PLC)
    return panel


@pytest.fixture
def plc(ready, tmp_path):
    far_end = plc_page.Plc(ready.hands, tmp_path / "plc")
    yield far_end
    far_end.close()


def stick(panel, folder, files):
    for name, options in files.items():
        plc_page.make(folder / name, options, folder.parent)
    plug(panel, folder, PLC)


@pytest.mark.alone
def test_a_plc_holds_every_byte_and_the_result_speaks_the_panels_language(ready, plc, folder):
    panel = ready
    stick(panel, folder, FILES)
    plc.order(password=RIGHT, busy=1)
    choose(panel, "all.bin", PLC)
    still, values = plc_page.watch_bar(panel)
    assert outcome(panel) == DONE.format(UPDATED)
    assert still < STILL_S and values == sorted(values), values
    for section in ("program", "parameters", "cam", "extension"):
        assert plc.kept(f"{section}.bin") == CONTENT[section], section
    words = [int.from_bytes(CONTENT["memory"][at:at + 2], "little") for at in range(0, SIZES["memory"], 2)]
    assert plc.kept("memory.json") == {str(FIRST + at): word for at, word in enumerate(words)}
    assert plc.kept("state.json") == {"state": RUNNING, "protection": UPLOAD, "hides": True}
    open_page(panel, PLC, "CH")
    panel.wait_text("lab_PlcPro", UPDATED_CH)
    plc.order(busy=4, at="stop", how="refuse")
    choose(panel, "all.bin", PLC)
    open_page(panel, PLC)
    panel.wait_text("lab_PlcPro", UPDATED)          # of the job before; this is intended
    assert outcome(panel) == FAILED.format("Unable to stop PLC！")
    open_page(panel, PLC, "CH")
    panel.wait_text("lab_PlcPro", "无法停止 PLC！")


# File, what the PLC is and does otherwise, the step that fails, what the operator reads.
FAILURES = [
    ("cut.bin", {}, "program file", UNREADABLE),
    ("text.bin", {}, None, UNREADABLE),
    ("port.bin", {}, "Open", "Failed to open COM !!"),
    ("all.bin", {"at": "any"}, "Commu", TIMEOUT),
    ("all.bin", {"mark": 0}, "Commu", NO_PLC),
    ("plain.bin", {"password": RIGHT}, None, PASSWORD),
    ("wrong.bin", {"password": RIGHT}, "CheckPassword", PASSWORD),
    ("all.bin", {"can": []}, "SetUpLoadPasswd", NO_PROTECTION),
    ("all.bin", {"at": "protect", "how": "refuse"}, "SetUpLoadPasswd", "Failed to set disable upload!"),
    ("all.bin", {"type": 4}, "CheckVer", "PLC type does not match!!"),
    ("all.bin", {"version": 4}, "CheckVer", "PLC version does not match!!"),
    ("all.bin", {"at": "stop", "how": "hang up"}, "StopPLC", TIMEOUT),
    ("plain.bin", {"busy": 9}, "StopPLC", "Unable to stop PLC！"),
    ("all.bin", {"at": "identity", "how": "cut", "after": 2}, "ReadPlcVer", NO_PLC),
    ("all.bin", {"capacity": {"program": 2000}}, "DownLoadPro", "Program exceeds capacity range!!"),
    ("all.bin", {"at": "records program", "how": "hang up", "after": 5}, "DownLoadPro", PROGRAM),
    ("all.bin", {"at": "begin parameters", "how": "refuse"}, "DownLoadPara", PARAMETERS),
    ("all.bin", {"can": ["protect"]}, "DownLoadMask", NO_MASK),
    ("all.bin", {"at": "hide", "how": "refuse"}, "DownLoadMask", "Failed to update PLC subprogram!!"),
    ("all.bin", {"at": "check", "how": "refuse"}, "DownLoadMemory", MEMORY),
    ("all.bin", {"at": "records cam", "how": "nonsense"}, "DownLoadCamTable", CAM),
    ("all.bin", {"at": "start", "how": "exception"}, "StartPLC", NO_PLC),
    ("all.bin", {"at": "leave", "how": "refuse"}, "Close", "Failed to update PLC program!"),
]


@pytest.mark.long
def test_each_step_that_fails_has_its_text(ready, plc, folder):
    panel = ready
    for name, data in {"cut.bin": b"\x89PLC\r\n\x1a\n\1", "text.bin": b"A letter."}.items():
        (folder / name).write_bytes(data)
    stick(panel, folder, FILES)
    panel.shell("rm /dev/THAL/tty/com2-485")
    for file, orders, step, text in FAILURES:
        plc.order(**orders)
        choose(panel, file, PLC)
        assert outcome(panel) == FAILED.format(text), (orders, step)
    steps = [step for _, _, step, _ in FAILURES if step is not None]
    assert plc_page.failed_steps(panel) == [step for step, _ in itertools.groupby(steps)]
    plc.order(password=RIGHT, at="end program", how="refuse", times=2)
    choose(panel, "all.bin", PLC)
    assert outcome(panel) == DONE.format(UPDATED)
    assert plc.kept("program.bin") == CONTENT["program"] and plc.kept("state.json")["state"] == RUNNING
    plc.order(at="begin extension", how="refuse")   # told as a success, as the program has it
    choose(panel, "all.bin", PLC)
    assert outcome(panel) == DONE.format(UPDATED)
    assert plc.kept("state.json")["state"] == STOPPED
    told = panel.shell("journalctl -b --no-pager")
    assert not [word for word in (RIGHT, WRONG, UPLOAD) if word in told]


# Options of the file; what the port is set to: bits a second, parity, data bits, stop bits.
FRAMINGS = [
    ("--baud 19200 --parity E", (19200, "E", 8, 1)),
    ("--baud 9600 --parity O --mode 422", (9600, "O", 8, 1)),
    ("--baud 115200 --stop-bits 2 --mode 485", (115200, "N", 8, 2)),
    ("--older --baud 300 --parity E --data-bits 7 --stop-bits 2", (300, "E", 7, 2)),
    ("--older --baud 38400 --parity O --mode 422", (38400, "O", 8, 1)),
    ("--older --baud 4800 --parity S --data-bits 7 --mode 485", (4800, "N", 7, 1)),
]


def test_the_line_is_set_as_the_file_says(ready, plc, folder):
    panel, far_end = ready, plc
    stick(panel, folder, {f"{options}.bin": f"--size {framing[0] // 10} {options}" for options, framing in FRAMINGS})
    plc.order(version=0)
    for options, framing in FRAMINGS:
        if options.startswith("--older") and far_end is plc:
            plc.close()
            far_end = plc_page.OlderPlc(panel.hands)
        with panel.hands.framing() as framings:
            choose(panel, f"{options}.bin", PLC)
            assert outcome(panel) == DONE.format(UPDATED), options
        assert far_end.program == content(framing[0] // 10), options
        assert framings == {framing}, options
    far_end.close()
