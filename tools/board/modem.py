"""A mobile modem at the other end of the panel's serial lines (3GPP TS 27.007, ITU-T V.250), and the
network behind it."""

import contextlib
import re
import socket
import struct
import threading
import time

import ppp

AT, DATA = "modem-at", "modem-data"
HOME, SEARCHING, DENIED, ROAMING = 1, 2, 3, 5

ADDRESS, GATEWAY = "10.64.0.15", "10.64.0.1"
LINE_MAC, FAR_MAC = b"\x02\0\0\0\xf1\x04", b"\x02\0\0\0\xf0\x04"

NO_SIM, WRONG_PIN = 10, 16              # +CME ERROR

CONTEXTS = "\r\n".join(f'+CGDCONT: (1-16),"{kind}",,,(0-2),(0-4)' for kind in ("IP", "IPV6", "IPV4V6"))

# What the modem is and can, and never changes.
FIXED = {
    "": "", "I": "Testwell TW-LTE1", "+GCAP": "+GCAP: +CGSM,+DS,+ES", "+WS46=?": "+WS46: (12,22,25,28)",
    "+CGMI": "Testwell", "+CGMM": "TW-LTE1", "+CGMR": "TW-LTE1-1.0.3", "+CGDCONT=?": CONTEXTS,
    "+CFUN=?": "+CFUN: (0,1,4)", "+CREG=?": "+CREG: (0-2)", "+CGREG=?": "+CGREG: (0-2)",
    "+CEREG=?": "+CEREG: (0-2)", "+CSCS=?": '+CSCS: ("GSM","IRA","UCS2")', "+CSCS?": '+CSCS: "IRA"',
    "+WS46?": "+WS46: 28", "+CPIN=?": "", "%IPSYS?": "",
}

# Settings that make no difference here.
TAKEN = re.compile(r"[VXQZH]\d?$|&[CDF]\d?$|S0=|\+CGATT|"
                   r"\+(CREG|CGREG|CEREG|CSCS|IFC|CGACT|CMER|CTZU|CTZR|WS46)=")


# Whatever stands before a command's prefix is skipped (V.250, 5.2.1). After a call that is where pppd's last
# frame is, which comes when the network has hung up already.
COMMAND = re.compile(rb"AT([^~]*)$", re.I)

# A command within a call, perhaps behind a frame that its program has not lived to end: DTR fell, which a
# socket does not tell.
WITHIN_CALL = re.compile(rb"(?:^|[^A-Z])(AT[ -}]*\r)$", re.I)


class Failed(Exception):
    """A command ends with an error; the number is that of +CME ERROR, None for a plain ERROR."""


class Modem:
    """A modem that is plugged in while the board runs. is_settled: ModemManager knows it already and has
    dialled, as on a board that was kept with it."""

    IMEI, IMSI, ICCID = "866758041234567", "460001234567890", "89860012345678901234"

    def __init__(self, hands, is_settled=False):
        self._hands = hands
        self._terms = ppp.Terms(ADDRESS, GATEWAY, ("10.99.0.53", "10.99.0.54"))
        self.apn = None                 # the only one that the network knows; None for any
        self.pin = None                 # that the SIM wants; None if it wants none
        self.has_sim = True
        self.registration = HOME
        self.csq = 20
        self.said = []
        self.listeners = []             # each is called with every packet of the panel
        self._wire = hands.wire("mobile")
        self._link = None
        self._call_port = DATA          # on which the last call was dialled
        self._is_closed = False
        self._began = time.monotonic()
        self._sockets = {}
        self._switch_on()
        if is_settled:
            self._has_echo, self._has_numbers, self._link = False, True, self._call()
        for port in (AT, DATA):
            threading.Thread(target=self._serve, args=(port,), daemon=True).start()
        threading.Thread(target=self._receive, daemon=True).start()

    def _switch_on(self):
        self._has_echo, self._has_numbers, self._is_on = True, False, True
        self._operator_format, self._is_unlocked = 0, False
        self._apns = {1: ("IP", "")}

    def close(self):
        self._is_closed = True
        for line in self._sockets.values():
            with contextlib.suppress(OSError):
                line.shutdown(socket.SHUT_RDWR)
        self._wire.close()

    # What a technician does to it.

    def pull_sim(self):
        """The SIM is gone: so is the network. What asks for the SIM gets an error."""
        self.has_sim = False
        self.register(0)

    def insert_sim(self):
        self.has_sim = True
        self.register(HOME)

    def register(self, state):
        """HOME, SEARCHING, DENIED or ROAMING; 0 for not even searching. Without a network a call ends."""
        self.registration = state
        for kind in ("+CREG", "+CGREG", "+CEREG"):
            self._write(AT, f"\r\n{kind}: {self._registration()}\r\n")
        if state not in (HOME, ROAMING):
            self.drop_call()

    def signal(self, csq):
        """Strength as AT+CSQ tells it: 0 to 31, 99 for none."""
        self.csq = csq

    def login(self, authentication, user="", password=""):
        """The network asks for this login by "pap" or "chap", or by "none" for none."""
        self._terms.authentication, self._terms.user, self._terms.password = authentication, user, password

    def drop_call(self):
        """The network ends the call."""
        if self._link is not None:
            self._link.hang_up()

    def pull(self):
        """The modem itself is pulled out of the panel."""
        self._hands.pull_modem()
        self._lose_power()

    def plug(self):
        """ModemManager has let go of the one before: what comes while it does so it may not see."""
        self._hands.shell("for i in $(seq 50); do mmcli -L 2>&1 | grep -q /Modem/ || break; sleep 0.2; done")
        self._hands.plug_modem()

    def _lose_power(self):
        self._link = None
        self._switch_on()

    # Lines.

    def _tell(self, *what):
        self.said.append(f"{time.monotonic() - self._began:7.2f} " + " ".join(map(str, what)))

    def _write(self, port, data):
        with contextlib.suppress(OSError, KeyError):
            self._sockets[port].sendall(data if isinstance(data, bytes) else data.encode())

    def _write_frame(self, frame):
        self._write(self._call_port, frame)

    def _connect(self, port):
        """Waits for the board's end of a line."""
        while not self._is_closed:
            with contextlib.suppress(OSError):
                self._sockets[port] = self._hands.serial_line(port)
                return self._sockets[port]
            time.sleep(0.02)
        return None

    def _serve(self, port):
        while (line := self._connect(port)) is not None:
            rest = b""
            with contextlib.suppress(OSError):
                while data := line.recv(1 << 14):
                    rest = self._take(port, rest, data)
            self._lose_power()      # the board's power was cut, and the modem's with it

    def _receive(self):
        """Packets of the network for the panel."""
        with contextlib.suppress(OSError):
            while frame := self._wire.receive():
                if frame[12:14] == b"\x08\0" and self._link is not None:
                    length = struct.unpack(">H", frame[16:18])[0]
                    self._link.packet(frame[14:14 + length])

    def _carry(self, packet):
        for listener in self.listeners:
            listener(packet)
        with contextlib.suppress(OSError):
            self._wire.send(FAR_MAC + LINE_MAC + b"\x08\0" + packet)

    def _take(self, port, rest, data):
        """Takes what came over a line; returns what is left of a command that has not ended yet."""
        if self._is_calling(port):
            rest = self._take_call(data)
        else:
            rest += data
        while b"\r" in rest and not self._is_calling(port):
            line, rest = rest.split(b"\r", 1)
            if command := COMMAND.search(line):
                self._answer(port, command[1].strip().decode(errors="replace"))
        return rest

    def _is_calling(self, port):
        return self._link is not None and port == self._call_port

    def _take_call(self, data):
        rest = self._link.feed(data)
        if self._link.is_over:
            self._end_call()
        elif found := WITHIN_CALL.search(self._link.between_frames()):
            rest = found[1]
            self._end_call()
        return rest

    def _end_call(self):
        self._link = None
        self._tell("call ended")
        self._write(self._call_port, "\r\nNO CARRIER\r\n")

    def _answer(self, port, command):
        said = self._run(command)
        self._tell(port, command, "->", said.replace("\r\n", "|"))
        self._write(port, (f"AT{command}\r" if self._has_echo else "") + f"\r\n{said}\r\n")
        if said.startswith("CONNECT"):
            self._call_port, self._link = port, self._call()

    def _call(self):
        return ppp.Link(self._terms, self._write_frame, self._carry, self._tell)

    # Commands.

    def _run(self, line):
        """Answer to a command line."""
        answers = []
        for command in re.split(r";(?=\+)", line):
            try:
                answer = self._one(command)
            except Failed as failed:
                return f"+CME ERROR: {failed}" if self._has_numbers and failed.args else "ERROR"
            if answer.startswith(("CONNECT", "NO CARRIER")):
                return answer
            answers += [answer] if answer else []
        return "\r\n\r\n".join([*answers, "OK"])

    def _one(self, command):
        upper = command.upper()
        if upper in FIXED:
            return FIXED[upper]
        for pattern, handler in COMMANDS:
            if found := pattern.match(command):
                return handler(self, *found.groups())
        if TAKEN.match(upper):
            return ""
        raise Failed

    def _need_sim(self):
        if not self.has_sim:
            raise Failed(NO_SIM)

    def _registration(self):
        state = self.registration if self.has_sim and self._is_on else 0
        return f'{state},"1A2B","01020304",7' if state in (HOME, ROAMING) else f"{state}"

    def _set_echo(self, value):
        self._has_echo = value == "1"
        return ""

    def _set_numbers(self, value):
        self._has_numbers = value != "0"
        return ""

    def _set_power(self, value):
        self._is_on = value == "1"
        return ""

    def _tell_registration(self, kind):
        return f"{kind}: 2,{self._registration()}"

    def _tell_operator(self):
        if self._registration()[0] not in "15":
            return "+COPS: 0"
        name = "46000" if self._operator_format == 2 else "Test Mobile"
        return f'+COPS: 0,{self._operator_format},"{name}",7'

    def _set_operator(self, value):
        if value.startswith("3,"):
            self._operator_format = int(value[2:])
        return ""

    def _tell_pin(self):
        self._need_sim()
        return "+CPIN: READY" if self.pin is None or self._is_unlocked else "+CPIN: SIM PIN"

    def _enter_pin(self, pin):
        self._need_sim()
        if pin != self.pin:
            raise Failed(WRONG_PIN)
        self._is_unlocked = True
        return ""

    def _tell_lock(self):
        self._need_sim()
        return f"+CLCK: {int(self.pin is not None)}"

    def _tell_imsi(self):
        self._need_sim()
        return self.IMSI

    def _tell_iccid(self):
        """EF-ICCID (3GPP TS 31.102): each byte's digits the other way round."""
        self._need_sim()
        return '+CRSM: 144,0,"' + "".join(b + a for a, b in zip(self.ICCID[::2], self.ICCID[1::2])) + '"'

    def _set_context(self, number, kind, apn):
        self._apns[int(number)] = (kind or "IP", apn or "")
        return ""

    def _deactivate(self):
        """A call that pppd has not taken over yet ends with its context."""
        if self._link is not None:
            self._end_call()
        return ""

    def _tell_contexts(self):
        return "\r\n".join(f'+CGDCONT: {number},"{kind}","{apn}","0.0.0.0",0,0'
                           for number, (kind, apn) in self._apns.items())

    def _dial(self, number):
        _, apn = self._apns.get(int(number or 1), ("", ""))
        is_reachable = self._registration()[0] in "15" and self.apn in (None, apn)
        return "CONNECT 150000000" if is_reachable else "NO CARRIER"


COMMANDS = [(re.compile(pattern + "$", re.I), handler) for pattern, handler in (
    (r"E(\d?)(?: ?V1)?", Modem._set_echo),
    (r"\+CMEE=(\d)", Modem._set_numbers),
    (r"\+CFUN=(\d)(?:,\d)?", Modem._set_power),
    (r"\+CFUN\?", lambda modem: f"+CFUN: {1 if modem._is_on else 4}"),
    (r"(?:\+CGSN|\+GSN)", lambda modem: modem.IMEI),
    (r"\+CSQ", lambda modem: f"+CSQ: {modem.csq if modem._is_on else 99},99"),
    (r"(\+C(?:|G|E)REG)\?", Modem._tell_registration),
    (r"\+COPS\?", Modem._tell_operator),
    (r"\+COPS=(.*)", Modem._set_operator),
    (r"\+CPIN\?", Modem._tell_pin),
    (r'\+CPIN="?([^",]*)"?', Modem._enter_pin),
    (r'\+CLCK="SC",2.*', Modem._tell_lock),
    (r"\+CLCK=\?", lambda modem: '+CLCK: ("SC")'),
    (r"\+CIMI", Modem._tell_imsi),
    (r"\+CRSM=176,12258,.*", Modem._tell_iccid),
    (r"\+CRSM=176,28589,.*", lambda modem: '+CRSM: 144,0,"00000002"'),
    (r'\+CGDCONT=(\d+)(?:,"([^"]*)"(?:,"([^"]*)")?)?.*', Modem._set_context),
    (r"\+CGDCONT\?", Modem._tell_contexts),
    (r"\+CGACT=0(?:,\d+)?", Modem._deactivate),
    (r"\+CGACT\?", lambda modem: f"+CGACT: 1,{int(modem._link is not None)}"),
    (r"D\*99(?:\*\*\*(\d+))?#", Modem._dial),
)]
