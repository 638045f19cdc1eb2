"""The far end of the board: commands run in it as root, through the guest agent."""

import base64
import time

from .jsonlines import JsonLines, synchronise


class CommandFailed(Exception):
    """A command on the board ended with an error."""


class Agent:
    """A connection to the guest agent, made when it is first needed."""

    def __init__(self, path):
        self._path = path
        self._line = None

    def connect(self, timeout=90):
        """Waits until the agent answers."""
        if self._line is None:
            line = JsonLines(self._path)
            try:
                synchronise(line, timeout)
            except BaseException:
                line.close()
                raise
            self._line = line
        return self._line

    def close(self):
        """To be called when the board starts anew: the agent behind the line is another then."""
        if self._line is not None:
            self._line.close()
            self._line = None

    def start(self, command, stdin=None):
        """Starts a command line of the shell; finish() wants the number that is returned."""
        arguments = {"path": "/bin/sh", "arg": ["-c", command], "capture_output": True}
        if stdin is not None:
            arguments["input_data"] = base64.b64encode(stdin).decode()
        return self.connect().call("guest-exec", **arguments)["pid"]

    def finish(self, number, timeout=60):
        """Waits for a command's end: (status, output, errors), both as bytes."""
        end = time.monotonic() + timeout
        pause = 0.005
        while True:
            state = self.connect().call("guest-exec-status", pid=number)
            if state["exited"]:
                break
            if time.monotonic() > end:
                raise TimeoutError(f"the command did not end within {timeout} s")
            time.sleep(pause)
            pause = min(pause * 1.5, 0.1)
        status = state.get("exitcode", -state.get("signal", 0))
        return (status, base64.b64decode(state.get("out-data", "")),
                base64.b64decode(state.get("err-data", "")))

    def try_run(self, command, timeout=60, stdin=None):
        """Status and output, errors behind it, of a command that may fail."""
        status, output, errors = self.finish(self.start(command, stdin), timeout)
        return status, (output + errors).decode(errors="surrogateescape").rstrip("\n")

    def run(self, command, timeout=60, stdin=None):
        """Output of a command; CommandFailed if it ends with an error."""
        status, output, errors = self.finish(self.start(command, stdin), timeout)
        if status:
            said = (output + errors).decode(errors="replace")
            raise CommandFailed(f"{command!r} ended with {status}: {said}")
        return output.decode(errors="surrogateescape").rstrip("\n")
