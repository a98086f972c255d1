"""What the modules of the model share: the host's memory block, standard output, numbers."""

import math
import struct

stdout = bytearray()  # what the library would have printed


def say(line):
    """Prints a line on standard output."""
    stdout.extend(line.encode() + b"\n")


class Block:
    """The host's memory block for a text result; `text` is None while nothing was copied into it."""

    def __init__(self):
        self.text = None

    def copy(self, text):
        self.text = bytes(text).split(b"\0")[0]


def single(x):
    """A float rounded to 32 bits, out of range to an infinity."""
    try:
        return struct.unpack("<f", struct.pack("<f", x))[0]
    except OverflowError:
        return math.copysign(math.inf, x)


def whole(x):
    """A float cut down to a signed 32-bit integer: saturated, NaN is 0."""
    if math.isnan(x):
        return 0
    return max(-(2**31), min(2**31 - 1, int(max(-1e18, min(1e18, x)))))


def le(data, at, size, signed=False):
    """A little-endian integer at a place in `data`; bytes past the end are 0."""
    return int.from_bytes(bytes(data[at : at + size]).ljust(size, b"\0"), "little", signed=signed)


def be(data, at, size, signed=False):
    """A big-endian integer at a place in `data`; bytes past the end are 0."""
    return int.from_bytes(bytes(data[at : at + size]).ljust(size, b"\0"), "big", signed=signed)


def load(path):
    """A file's bytes; None where it cannot be opened, or where there is no path."""
    if path is None:
        return None
    try:
        with open(path, "rb") as file:
            return file.read()
    except OSError:
        return None


def can_rewrite(path):
    """Whether an existing regular file can be opened for reading and writing."""
    try:
        open(path, "r+b").close()
        return True
    except OSError:
        return False


def create(path, data):
    """Creates a file, or replaces the one that is there. False where it cannot be opened."""
    try:
        with open(path, "wb") as file:
            file.write(data)
        return True
    except OSError:
        return False
