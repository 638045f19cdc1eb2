"""The network's end of a PPP link: LCP (RFC 1661), framing (RFC 1662), PAP (RFC 1334), CHAP with MD5
(RFC 1994), IPCP with name servers (RFC 1332, RFC 1877)."""

import dataclasses
import hashlib
import os
import socket
import struct

LCP, PAP, CHAP, IPCP, IP = 0xc021, 0xc023, 0xc223, 0x8021, 0x0021
CONFIGURE, ACK, NAK, REJECT, TERMINATE, TERMINATED, ECHO, ECHOED = 1, 2, 3, 4, 5, 6, 9, 10
PROTOCOL_REJECT = 8
FLAG, ESCAPE = 0x7e, 0x7d

LCP_KNOWN = {1, 2, 5, 7, 8}                   # options that are taken as they come
LCP_AUTHENTICATION = {"pap": b"\x03\x04\xc0\x23", "chap": b"\x03\x05\xc2\x23\x05"}
ADDRESS, FIRST_SERVER, SECOND_SERVER = 3, 129, 131


def _check_table():
    for byte in range(256):
        for _ in range(8):
            byte = (byte >> 1) ^ 0x8408 if byte & 1 else byte >> 1
        yield byte


CHECKS = list(_check_table())


def check(data):
    """The frame check sequence."""
    value = 0xffff
    for byte in data:
        value = (value >> 8) ^ CHECKS[(value ^ byte) & 255]
    return value ^ 0xffff


def framed(protocol, data):
    packet = b"\xff\x03" + struct.pack(">H", protocol) + data
    packet += struct.pack("<H", check(packet))
    escaped = (bytes([ESCAPE, c ^ 0x20]) if c < 0x20 or c in (FLAG, ESCAPE) else bytes([c]) for c in packet)
    return b"\x7e" + b"".join(escaped) + b"\x7e"


def unframed(frame):
    """Protocol and data of what was between two flags; None if it is damaged."""
    data, is_escaped = bytearray(), False
    for byte in frame:
        if byte == ESCAPE:
            is_escaped = True
        else:
            data.append(byte ^ 0x20 if is_escaped else byte)
            is_escaped = False
    if len(data) < 5 or check(data[:-2]) != struct.unpack("<H", data[-2:])[0]:
        return None
    packet = bytes(data[:-2]).removeprefix(b"\xff\x03")
    if packet[0] & 1:
        return packet[0], packet[1:]
    return struct.unpack(">H", packet[:2])[0], packet[2:]


def _options(data):
    """(kind, whole option) of each."""
    at = 0
    while at + 1 < len(data) and data[at + 1] >= 2:
        yield data[at], data[at:at + data[at + 1]]
        at += data[at + 1]


@dataclasses.dataclass
class Terms:
    """What the network gives, and to whom: authentication is none, pap or chap."""

    address: str
    gateway: str
    name_servers: tuple
    authentication: str = "none"
    user: str = ""
    password: str = ""


class Link:
    """One call. write takes bytes for the line, carry packets for the network; tell hears what happens."""

    def __init__(self, terms, write, carry, tell):
        self._terms = terms
        self._write = write
        self._carry = carry
        self._tell = tell
        self._rest = b""
        self._challenge = os.urandom(16)
        self._is_agreed = {LCP: [False, False], IPCP: [False, False]}
        self.is_over = False

    def feed(self, data):
        """Takes what came over the line; returns what came behind the link's end."""
        self._rest += data
        while b"\x7e" in self._rest and not self.is_over:
            frame, self._rest = self._rest.split(b"\x7e", 1)
            found = unframed(frame)
            if found is not None:
                self._take(*found)
        return self._rest if self.is_over else b""

    def between_frames(self):
        """What has come since the last flag."""
        return self._rest

    def packet(self, data):
        """A packet of the network's for the other end."""
        self._write(framed(IP, data))

    def hang_up(self):
        self._control(LCP, TERMINATE, 9)

    def _control(self, protocol, code, number, data=b""):
        self._write(framed(protocol, struct.pack(">BBH", code, number, 4 + len(data)) + data))

    def _take(self, protocol, data):
        if protocol == IP:
            return self._carry(data)
        handlers = {LCP: self._take_lcp, PAP: self._take_pap, CHAP: self._take_chap, IPCP: self._take_ipcp}
        if protocol not in handlers or len(data) < 4:
            return self._control(LCP, PROTOCOL_REJECT, 9, struct.pack(">H", protocol) + data)
        code, number, length = struct.unpack(">BBH", data[:4])
        return handlers[protocol](code, number, data[4:length])

    # LCP.

    def _take_lcp(self, code, number, data):
        if code == CONFIGURE:
            self._answer_lcp(number, data)
        elif code == ACK:
            self._agree(LCP, 1, self._authenticate)
        elif code in (NAK, REJECT):
            self._tell("the panel refuses to authenticate itself")
            self.hang_up()
        elif code == TERMINATE:
            self._control(LCP, TERMINATED, number)
            self.is_over = True
        elif code == TERMINATED:
            self.is_over = True
        elif code == ECHO:
            self._control(LCP, ECHOED, number, bytes(4))

    def _answer_lcp(self, number, data):
        unknown = b"".join(whole for kind, whole in _options(data) if kind not in LCP_KNOWN)
        if not self._is_agreed[LCP][1]:     # a request sent before pppd had the line would be lost
            wanted = LCP_AUTHENTICATION.get(self._terms.authentication, b"")
            self._control(LCP, CONFIGURE, 1, wanted + b"\x05\x06" + os.urandom(4))
        if unknown:
            return self._control(LCP, REJECT, number, unknown)
        self._control(LCP, ACK, number, data)
        return self._agree(LCP, 0, self._authenticate)

    def _agree(self, protocol, side, then):
        """Notes that a side has agreed; goes on when it was the last."""
        was_agreed = all(self._is_agreed[protocol])
        self._is_agreed[protocol][side] = True
        if all(self._is_agreed[protocol]) and not was_agreed:
            then()

    # Authentication.

    def _authenticate(self):
        if self._terms.authentication == "chap":
            self._control(CHAP, 1, 5, bytes([len(self._challenge)]) + self._challenge + b"network")
        elif self._terms.authentication == "none":
            self._offer_address()

    def _take_pap(self, code, number, data):
        if code == 1:
            user, rest = data[1:1 + data[0]], data[1 + data[0]:]
            is_right = rest[1:1 + rest[0]] == self._terms.password.encode()
            self._judge(PAP, number, user, is_right, (2, 3))

    def _take_chap(self, code, number, data):
        if code == 2:
            secret = bytes([number]) + self._terms.password.encode() + self._challenge
            is_right = hashlib.md5(secret).digest() == data[1:1 + data[0]]
            self._judge(CHAP, number, data[1 + data[0]:], is_right, (3, 4))

    def _judge(self, protocol, number, user, is_right, codes):
        is_right = is_right and user == self._terms.user.encode()
        self._tell("login " + ("right" if is_right else "wrong"))
        self._control(protocol, codes[not is_right], number, b"\0" if protocol == PAP else b"")
        if is_right:
            self._offer_address()
        else:
            self.hang_up()

    # IPCP.

    def _offer_address(self):
        self._control(IPCP, CONFIGURE, 3, bytes([ADDRESS, 6]) + socket.inet_aton(self._terms.gateway))

    def _take_ipcp(self, code, number, data):
        if code == ACK:
            self._agree(IPCP, 1, self._up)
        elif code == CONFIGURE:
            self._answer_ipcp(number, data)

    def _answer_ipcp(self, number, data):
        mine = (self._terms.address, *self._terms.name_servers)
        given = {kind: bytes([kind, 6]) + socket.inet_aton(address)
                 for kind, address in zip((ADDRESS, FIRST_SERVER, SECOND_SERVER), mine)}
        asked = list(_options(data))
        unknown = b"".join(whole for kind, whole in asked if kind not in given)
        wrong = b"".join(given[kind] for kind, whole in asked if kind in given and whole != given[kind])
        if unknown:
            self._control(IPCP, REJECT, number, unknown)
        elif wrong:
            self._control(IPCP, NAK, number, wrong)
        else:
            self._control(IPCP, ACK, number, data)
            self._agree(IPCP, 0, self._up)

    def _up(self):
        self._tell("link up")
