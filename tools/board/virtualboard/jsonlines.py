"""Requests and answers as JSON lines on a UNIX socket: QEMU's monitor (QMP) and the guest agent."""

import collections
import json
import random
import select
import socket
import time


class Refused(Exception):
    """The other end answered with an error."""


class JsonLines:
    """One connection. Not for several threads at once."""

    def __init__(self, path, wait_s=20):
        end = time.monotonic() + wait_s
        while True:
            self._socket = socket.socket(socket.AF_UNIX)
            try:
                self._socket.connect(str(path))
                break
            except OSError:
                self._socket.close()
                if time.monotonic() > end:
                    raise
                time.sleep(0.01)
        self._buffer = b""
        self.events = collections.deque()

    def close(self):
        self._socket.close()

    def send(self, message, before=b""):
        self._socket.sendall(before + json.dumps(message).encode() + b"\n")

    def receive(self, timeout):
        """The next message. TimeoutError, or EOFError when the other end has gone."""
        end = time.monotonic() + timeout
        while b"\n" not in self._buffer:
            left = end - time.monotonic()
            if left <= 0 or not select.select([self._socket], [], [], left)[0]:
                raise TimeoutError("no answer")
            got = self._socket.recv(1 << 16)
            if not got:
                raise EOFError("connection closed")
            self._buffer += got
        line, self._buffer = self._buffer.split(b"\n", 1)
        return json.loads(line.lstrip(b"\xff") or b"{}")

    def call(self, command, timeout=30, **arguments):
        """The answer to one command; events that come in between are kept."""
        message = {"execute": command}
        if arguments:
            message["arguments"] = {k.replace("_", "-"): v for k, v in arguments.items()}
        self.send(message)
        while True:
            answer = self.receive(timeout)
            if "event" in answer:
                self.events.append(answer)
            elif "error" in answer:
                raise Refused(f"{command}: {answer['error']['desc']}")
            elif "return" in answer:
                return answer["return"]

    def event(self, name, timeout=10, **data):
        """Waits for an event of that name whose data has these values, and returns it."""
        end = time.monotonic() + timeout
        while True:
            for event in list(self.events):
                if event["event"] == name and data.items() <= event.get("data", {}).items():
                    self.events.remove(event)
                    return event
            message = self.receive(max(0.01, end - time.monotonic()))
            if "event" in message:
                self.events.append(message)


def synchronise(line, timeout):
    """Brings a guest agent to the beginning of a request, whatever it was sent before. The byte
    0xFF, which is in no JSON, empties its parser; it answers that with an error, which is skipped."""
    end = time.monotonic() + timeout
    while time.monotonic() < end:
        number = random.getrandbits(30)
        line.send({"execute": "guest-sync", "arguments": {"id": number}}, before=b"\xff")
        try:
            while line.receive(0.5).get("return") != number:
                pass
            return
        except (TimeoutError, json.JSONDecodeError):
            pass
    raise TimeoutError("the guest agent does not answer")
