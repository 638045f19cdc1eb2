"""Says what is going on, and for how long already, so that nobody waits in front of a silent screen."""

import sys
import threading
import time

SILENCE_S = 2.0     # whatever takes longer than this is heard of again
LINE_EVERY_S = 20.0  # in a log, which shows every line for ever


class Progress:
    """A context that names its work, repeats how long it has taken, and says when it is done."""

    def __init__(self, title):
        self.title = title
        self._done = threading.Event()
        self._ticker = threading.Thread(target=self._tick, daemon=True)

    def __enter__(self):
        self._began = time.monotonic()
        self._show()
        self._ticker.start()
        return self

    def __exit__(self, failed, *_):
        self._done.set()
        self._ticker.join()
        self._show("failed" if failed else "done", end="\n")

    def seconds(self):
        return time.monotonic() - self._began

    def _show(self, state="", end=""):
        if sys.stderr.isatty():
            text = f"\r{self.title} ... {self.seconds():.0f} s {state}{end}"
        elif state or self.seconds() > SILENCE_S:
            text = f"{self.title} ... {self.seconds():.0f} s {state}\n"
        else:
            text = f"{self.title} ...\n"
        sys.stderr.write(text)
        sys.stderr.flush()

    def _tick(self):
        pause = 1.0 if sys.stderr.isatty() else LINE_EVERY_S
        while not self._done.wait(pause):
            self._show()
