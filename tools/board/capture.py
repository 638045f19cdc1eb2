"""Whom the panel speaks with: what it sends over its cables and its modem, seen at their other end."""

import contextlib
import socket
import struct
import threading
import time

from ethernet import LINKS

PANEL_MACS = {"eth0": b"\x52\x54\0\0\0\x01", "eth1": b"\x52\x54\0\0\0\x02"}
IPV4, IPV6 = b"\x08\0", b"\x86\xdd"
ICMP, IGMP, TCP, UDP = 1, 2, 6, 17
KINDS = {ICMP: "icmp", IGMP: "igmp", TCP: "tcp", UDP: "udp"}
DNS, SYN, ACK = 53, 0x02, 0x10


def _names(question):
    """Of the first name in a DNS message (RFC 1035, 4.1.2)."""
    labels, place = [], 12
    while place < len(question) and question[place]:
        labels.append(question[place + 1:place + 1 + question[place]].decode(errors="replace"))
        place += 1 + question[place]
    return ".".join(labels).lower()


class Capture:
    """From its making to close(). contacts: kind, address and port of all that has been sent to, port 0 for
    what has none; names: what name servers were asked for; calls: moments in which a TCP connection was
    begun, by port."""

    def __init__(self, panel):
        self.contacts, self.names, self.calls = set(), set(), {}
        self._panel = panel
        self._wires = {port: panel.hands.wire(port) for port in LINKS}
        for port, wire in self._wires.items():
            threading.Thread(target=self._receive, args=(port, wire), daemon=True).start()
        panel.modem.listeners.append(self._take)

    def close(self):
        self._panel.modem.listeners.remove(self._take)
        for wire in self._wires.values():
            wire.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def _receive(self, port, wire):
        with contextlib.suppress(OSError):
            while frame := wire.receive():
                if frame[6:12] != PANEL_MACS[port]:
                    continue
                if frame[12:14] == IPV4:
                    self._take(frame[14:])
                elif frame[12:14] == IPV6:
                    self.contacts.add(("ipv6", socket.inet_ntop(socket.AF_INET6, frame[38:54]), 0))

    def _take(self, packet):
        kind, address = packet[9], socket.inet_ntoa(packet[16:20])
        rest = packet[(packet[0] & 15) * 4:]
        port = struct.unpack(">H", rest[2:4])[0] if kind in (TCP, UDP) else 0
        self.contacts.add((KINDS.get(kind, str(kind)), address, port))
        if kind == UDP and port == DNS:
            self.names.add(_names(rest[8:]))
        if kind == TCP and rest[13] & (SYN | ACK) == SYN:
            self.calls.setdefault(port, []).append(time.monotonic())
