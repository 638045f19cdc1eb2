"""A DHCP server that is slow or gets it wrong (RFC 2131, RFC 2132), on the bare wire of eth0."""

import contextlib
import os
import socket
import struct
import threading

DISCOVER, OFFER, REQUEST, ACK, NAK = 1, 2, 3, 5, 6
MASK, ROUTER, DNS, LEASE_TIME, KIND, SERVER = 1, 3, 6, 51, 53, 54

COOKIE = b"\x63\x82\x53\x63"
FRAME_HEAD = 14
SERVER_MAC = b"\x02\0\0\0\xf1\0"
SERVER_ADDRESS = "192.168.10.9"


def _bytes(address):
    return socket.inet_aton(address)


RIGHT = {"address": _bytes("192.168.10.77"), MASK: _bytes("255.255.255.0"), ROUTER: _bytes("192.168.10.1"),
         DNS: _bytes("10.99.0.53"), LEASE_TIME: struct.pack(">I", 3600), SERVER: _bytes(SERVER_ADDRESS)}

SLOW_S = 8

# What it does otherwise than a server should; None leaves an option out.
NONSENSE = {
    "slow": {"delay": SLOW_S},
    "address 0.0.0.0": {"address": _bytes("0.0.0.0")},
    "address 127.0.0.2": {"address": _bytes("127.0.0.2")},
    "address 224.0.0.1": {"address": _bytes("224.0.0.1")},
    "address 255.255.255.255": {"address": _bytes("255.255.255.255")},
    "address of the network": {"address": _bytes("192.168.10.0")},
    "address of the gateway": {"address": _bytes("192.168.10.1")},
    "mask 255.255.255.255": {MASK: _bytes("255.255.255.255")},
    "mask 0.0.0.0": {MASK: _bytes("0.0.0.0")},
    "mask with holes": {MASK: _bytes("255.0.255.0")},
    "mask of two bytes": {MASK: b"\xff\xff"},
    "no mask": {MASK: None},
    "gateway outside": {ROUTER: _bytes("172.31.0.1")},
    "gateway 0.0.0.0": {ROUTER: _bytes("0.0.0.0")},
    "no gateway": {ROUTER: None},
    "name server 0.0.0.0": {DNS: _bytes("0.0.0.0")},
    "no name server": {DNS: None},
    "lease of 0 s": {LEASE_TIME: b"\0\0\0\0"},
    "no lease time": {LEASE_TIME: None},
    "no server": {SERVER: None},
    "refuses": {"kind": NAK},
    "option cut short": {"tail": b"\x0c\xff"},
    "no end": {"tail": b""},
    "noise": {"noise": True},
}


def _checksum(data):
    total = sum(struct.unpack(f">{len(data) // 2}H", data))
    total = (total & 0xffff) + (total >> 16)
    return ~(total + (total >> 16)) & 0xffff


def _option(frame, wanted):
    """Content of an option of a request, or None."""
    at = frame.find(COOKIE) + 4
    while at + 1 < len(frame) and frame[at] != 255:
        if frame[at] == wanted:
            return frame[at + 2:at + 2 + frame[at + 1]]
        at += 1 if frame[at] == 0 else 2 + frame[at + 1]
    return None


def request_in(frame):
    """Kind of the request that is in an Ethernet frame, or None."""
    is_udp = len(frame) > 282 and frame[12:14] == b"\x08\0" and frame[23] == 17
    is_request = is_udp and frame[36:38] == b"\0\x43"
    kind = _option(frame, KIND) if is_request else None
    return kind[0] if kind else None


def _message(request, kind, answer):
    asked = request[FRAME_HEAD + 28:]
    head = b"\2\1\6\0" + asked[4:8] + b"\0\0" + asked[10:12] + asked[12:16] + answer["address"]
    head += _bytes(SERVER_ADDRESS) + asked[24:44] + bytes(192)
    options = bytes([KIND, 1, kind])
    for option in (MASK, ROUTER, DNS, LEASE_TIME, SERVER):
        if answer[option] is not None:
            options += bytes([option, len(answer[option])]) + answer[option]
    body = COOKIE + options + answer.get("tail", b"\xff")
    return head + (os.urandom(len(body)) if answer.get("noise") else body.ljust(64, b"\0"))


def reply(request, wrong):
    """The frame that answers a request, or None."""
    kinds = {DISCOVER: OFFER, REQUEST: wrong.get("kind", ACK)}
    asked = request_in(request)
    if asked not in kinds:
        return None
    message = _message(request, kinds[asked], {**RIGHT, **wrong})
    udp = struct.pack(">HHHH", 67, 68, 8 + len(message), 0) + message
    head = struct.pack(">BBHHHBBH", 0x45, 0, 20 + len(udp), 1, 0, 64, 17, 0)
    head += _bytes(SERVER_ADDRESS) + b"\xff" * 4
    head = head[:10] + struct.pack(">H", _checksum(head)) + head[12:]
    return b"\xff" * 6 + SERVER_MAC + b"\x08\0" + head + udp


class WrongServer:
    """Answers every request on a wire until it is closed."""

    def __init__(self, wire, wrong):
        self._wire = wire
        self._wrong = wrong
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        with contextlib.suppress(OSError):
            while frame := self._wire.receive():
                answer = reply(frame, self._wrong)
                if answer is not None:
                    threading.Timer(self._wrong.get("delay", 0), self._send, [answer]).start()

    def _send(self, answer):
        with contextlib.suppress(OSError):
            self._wire.send(answer)

    def close(self):
        self._wire.close()
