"""The laboratory's end of a line to a virtual board: Ethernet frames as datagrams."""

import socket


class Wire:
    """Bound while it is open: frames that nobody takes are lost."""

    def __init__(self, folder, name):
        self._mine = folder / f"{name}.lab"
        self._board = str(folder / f"{name}.board")
        self._mine.unlink(missing_ok=True)
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self._socket.bind(str(self._mine))

    def receive(self):
        """The next frame; OSError or nothing once it is closed."""
        return self._socket.recv(1 << 16)

    def send(self, frame):
        self._socket.sendto(frame, self._board)

    def close(self):
        self._socket.shutdown(socket.SHUT_RDWR)
        self._socket.close()
        self._mine.unlink(missing_ok=True)
