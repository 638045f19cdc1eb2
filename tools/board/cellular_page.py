"""The 4G page as an operator sees and touches it."""

from lab import wait_for

CELLULAR = 2    # tab
DIALLED_S = 60  # a modem that is probed anew, found and dialled, on a busy board


def open_page(panel):
    """Until the modem has been found."""
    panel.touch("btn_Net")
    panel.touch("tab_Net", CELLULAR)
    wait_for(lambda: panel.widget("btn_4G").enabled, "the modem", DIALLED_S)


def address(panel):
    """The one that the page shows, or None."""
    if not panel.is_seen("wdg_4gIP"):
        return None
    return ".".join(panel.text(f"lab_4gIP_{place}") for place in range(1, 5))


def bars(panel):
    """Of the signal's icon, 0 to 4."""
    return int(panel.widget("lab_4gSignal").style.split("4G_")[1][0])


def enter(panel, field, text):
    """Types it with the letters of the keyboard."""
    panel.touch(field)
    panel.type(text, "c")
    wait_for(lambda: panel.text(field) == text, f"{field} says {text}")
