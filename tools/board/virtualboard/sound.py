"""What the beeper has sounded, out of the WAV file that QEMU writes."""

import array
import dataclasses
import sys

HEADER = 44             # bytes; the sizes in it are only right once QEMU has ended
RATE = 44100            # frames a second, two samples of 16 bits each
FRAME = 4
BETWEEN_S = 0.02        # a silence longer than this ends a beep


@dataclasses.dataclass(frozen=True)
class Beep:
    """One tone: when it began in the recording, how long it was, and its frequency."""

    at: float
    seconds: float
    hertz: float


def _crossings(samples):
    """Places where the wave goes from its lower to its upper half."""
    return [i for i in range(1, len(samples)) if samples[i - 1] <= 0 < samples[i]]


def _tone(places):
    seconds = (places[-1] - places[0]) / RATE
    return Beep(places[0] / RATE, seconds, (len(places) - 1) / seconds if seconds else 0.0)


def beeps(path):
    """All tones in a recording; it may still be growing."""
    with open(path, "rb") as recording:
        data = recording.read()[HEADER:]
    samples = array.array("h", data[:len(data) // FRAME * FRAME])
    if sys.byteorder == "big":
        samples.byteswap()
    found, places = [], []
    for place in _crossings(samples[0::2]):
        if places and place - places[-1] > BETWEEN_S * RATE:
            found.append(_tone(places))
            places = []
        places.append(place)
    if len(places) > 1:
        found.append(_tone(places))
    return found
