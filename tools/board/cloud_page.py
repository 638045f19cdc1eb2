"""The way to the cloud as an operator sees it, and as its service tells a technician."""

import time

from lab import NotSeen, wait_for

CONNECTED, NO_TIME, NO_CERTIFICATE, NO_SERVER, NO_TOPIC = 1, -2, -3, -4, -5
ICON_S = 8              # behind the service: the program looks every two seconds, and the board is slow
STATUS = "runuser -u panel -- busctl call org.sysset.Cloud1 /org/sysset/Cloud1 org.sysset.Cloud1 GetStatus"


def is_blue(panel):
    """The icon above all pages."""
    return "cloudok" in panel.widget("lab_cloud").style


def status(panel):
    """Number and reason; nothing while the service is away."""
    failed, told = panel.try_shell(STATUS)
    words = told.split(" ", 2)
    return None if failed else (int(words[1]), words[2].strip('"'))


def said_at(panel, words):
    """When the service has said so first, in seconds."""
    told = panel.shell("journalctl -b -o short-unix --no-pager -u sysset-cloud").splitlines()
    return next(float(line.split()[0]) for line in told if words in line)


def wait_stopped(panel, number, reason="", seconds=30):
    """Until the service has stopped there, and the icon is no longer blue; how long it took."""
    began = time.monotonic()

    def stopped():
        told = status(panel)
        if told is None or told[0] != number or reason not in told[1]:
            raise NotSeen(f"the service says {told} instead of {number}, {reason}")
        return told[1]
    said = wait_for(lambda: (stopped(),), f"{number}, {reason}", seconds)[0]
    took = time.monotonic() - began
    wait_for(lambda: not is_blue(panel), "an icon that is not blue", ICON_S)
    print(f"{took:5.1f} s: {number}, {said}")
    return took


def wait_connected(panel, seconds=30):
    """Until the icon is blue; how long it took."""
    began = time.monotonic()
    try:
        wait_for(lambda: is_blue(panel), "a blue icon", seconds)
    except NotSeen as unseen:
        raise NotSeen(f"{unseen}; {status(panel)}") from unseen
    print(f"{time.monotonic() - began:5.1f} s: connected")
    return time.monotonic() - began
