"""What the beeper has sounded, out of the WAV file that QEMU writes.

The recording stands still while the beeper is silent: two beeps of one pitch are one tone in it. Who
wants them apart notes the length of the recording in between."""

import array
import dataclasses
import os
import sys

HEADER = 44             # bytes; the sizes in it are only right once QEMU has ended
RATE = 44100            # frames a second, two samples of 16 bits each
FRAME = 4
SAME_PITCH = 0.25       # periods of one tone differ by no more; a period of 5 kHz is nine samples
PERIODS = 4             # fewer are the seam between two tones


@dataclasses.dataclass(frozen=True)
class Tone:
    """One pitch: how long, and its frequency."""

    seconds: float
    hertz: float


def length(path):
    """Bytes recorded until now; 0 before the first tone."""
    try:
        return max(0, os.path.getsize(path) - HEADER)
    except FileNotFoundError:
        return 0


def _samples(path, since):
    with open(path, "rb") as recording:
        recording.seek(HEADER + since)
        data = recording.read()
    samples = array.array("h", data[:len(data) // FRAME * FRAME])
    if sys.byteorder == "big":
        samples.byteswap()
    return samples[0::2]


def _periods(samples):
    """Samples between places where the wave goes from its lower to its upper half."""
    rises = [i for i in range(1, len(samples)) if samples[i - 1] <= 0 < samples[i]]
    return [after - before for before, after in zip(rises, rises[1:])]


def _groups(periods):
    group = []
    for period in periods:
        if group and abs(period - sum(group) / len(group)) > SAME_PITCH * period:
            yield group
            group = []
        group.append(period)
    yield group


def tones(path, since=0):
    """The tones in a recording, which may still be growing, behind a length noted before."""
    if length(path) <= since:
        return []
    groups = (g for g in _groups(_periods(_samples(path, since))) if len(g) >= PERIODS)
    return [Tone(sum(g) / RATE, RATE * len(g) / sum(g)) for g in groups]
