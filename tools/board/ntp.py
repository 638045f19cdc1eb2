#!/usr/bin/python3
"""A time server for stories (RFC 5905, its answers alone). The panel's clock is the board's, so that a real
time server in a name space of the board would tell whatever the panel believes. This one goes by the time
since the board's start and by what it is told the time to be. In its folder: "clock", what the time is, in
seconds since 1970, and how many seconds after the board's start it was so; "silent", if it is to answer
nothing."""

import argparse
import pathlib
import socket
import struct
import time

FROM_1900_S = 2208988800
SERVER, VERSION, STRATUM, PRECISION = 4, 4, 1, -20


def stamp(seconds):
    seconds += FROM_1900_S
    return struct.pack(">II", int(seconds) % 2**32, int(seconds % 1 * 2**32))


def answer(request, seconds):
    """The server's words to a client's, or nothing to what is none."""
    if len(request) < 48 or request[0] & 7 != 3:
        return None
    now = stamp(seconds)
    head = struct.pack(">BBbbII4s", VERSION << 3 | SERVER, STRATUM, request[2], PRECISION, 0, 0, b"TEST")
    return head + now + request[40:48] + now + now


def the_time(folder):
    told, uptime = map(float, (folder / "clock").read_text().split())
    return told + time.clock_gettime(time.CLOCK_BOOTTIME) - uptime


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--address", default="127.0.0.1")
    parser.add_argument("--port", type=int, default=123)
    parser.add_argument("folder", type=pathlib.Path)
    options = parser.parse_args()
    server = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    server.bind((options.address, options.port))
    while True:
        request, client = server.recvfrom(512)
        told = answer(request, the_time(options.folder))
        if told and not (options.folder / "silent").exists():
            server.sendto(told, client)


if __name__ == "__main__":
    main()
