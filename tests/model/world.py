"""What the modules of the model share: refusals, the host's memory block, numbers, files."""

import math
import os
import struct

stdout = bytearray()  # what the library would have printed


class Refused(Exception):
    """Ends an operation with a status."""

    def __init__(self, status):
        super().__init__(status)
        self.status = status


def check(good, status, printed=False):
    """Ends the operation with a status, which may be printed, too, unless all is well."""
    if not good:
        if printed:
            stdout.extend(b"%d\n" % status)
        raise Refused(status)


class Block:
    """The host's memory block for a text; `text` is None while nothing was copied into it."""

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
    """A float truncated to a signed 32-bit integer: saturated, NaN is 0."""
    if math.isnan(x):
        return 0
    return max(-(2**31), min(2**31 - 1, int(max(-1e18, min(1e18, x)))))


def le(data, at, size, signed=False):
    """A little-endian integer at an offset of `data`; bytes past the end are 0."""
    return int.from_bytes(bytes(data[at : at + size]).ljust(size, b"\0"), "little", signed=signed)


def be(data, at, size, signed=False):
    """A big-endian integer at an offset of `data`; bytes past the end are 0."""
    return int.from_bytes(bytes(data[at : at + size]).ljust(size, b"\0"), "big", signed=signed)


def load(path, status, printed=False):
    """A regular file's bytes; anything else is refused."""
    check(os.path.isfile(path), status, printed)
    try:
        with open(path, "rb") as file:
            return file.read()
    except OSError:
        raise Refused(status) from None


def check_writable(path, status, printed=False):
    """Refuses a file that cannot be opened for reading and writing."""
    check(os.access(path, os.R_OK | os.W_OK), status, printed)


def create(path, data, status):
    """Creates or replaces a file: 0. One that cannot be opened is refused."""
    try:
        with open(path, "wb") as file:
            file.write(data)
        return 0.0
    except OSError:
        raise Refused(status) from None
