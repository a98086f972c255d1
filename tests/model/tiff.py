"""The host's TIFF maps: one strip, uncompressed, little-endian, one or three samples a pixel.

Merging tile maps, swapping colour channels, taking the first channel of a float map, turning a
float map into 16 bits, and measuring the scale of a displacement map.
"""

import math
import os
import struct
from dataclasses import dataclass, field

import numpy as np

from world import check, check_writable, create, le, load, single

SHORT, LONG, RATIONAL, FLOAT = 3, 4, 5, 11


@dataclass
class TiffInfo:
    """What the directory of a map says. All zero until a tag sets it."""

    width: int = 0
    length: int = 0
    channels: int = 0
    bitsPerSample: int = 0
    stripOffset: int = 0
    stripByteCount: int = 0
    entries: list = field(default_factory=list)

    def hasPixels(self):
        return self.width >= 1 and self.length >= 1


def createOther(source, target, data, status):
    """Creates the target, which must be a regular file and must not be the source itself."""
    if os.path.exists(target):
        check(os.path.isfile(target) and not os.path.samefile(source, target), status)
    return create(target, data, status)


# The directory


def headOf(data):
    """The first 1000 bytes. A shorter file repeats its last byte, an empty one gives zeros."""
    return data[:1000].ljust(1000, data[-1:] or b"\0")


def entriesOf(head):
    """The first directory's entries: tag, count, value and the value's offset in the file.

    Byte order mark and field types are not looked at. What is past the end reads as 0.
    """
    directory = le(head, 4, 4)
    places = [directory + 2 + 12 * i for i in range(le(head, directory, 2, signed=True))]
    return [(le(head, at, 2), le(head, at + 4, 4), le(head, at + 8, 4), at + 8) for at in places]


def readHeader(head, floatOnly=False):
    """Reads a map's directory, in file order, up to the first entry that is refused."""
    info = TiffInfo(entries=entriesOf(head))
    for tag, count, value, place in info.entries:
        number = le(head, place, 4, signed=True)
        if tag == 256:
            info.width = number
        elif tag == 257:
            info.length = number
        elif tag == 258:
            check(count in (1, 3), -258.0 if floatOnly else 258.0)
            info.channels = count
            info.bitsPerSample = number if count == 1 else le(head, value, 2)
            check(info.bitsPerSample == 32 or not floatOnly, -32.0)
        elif tag == 259:
            check(value == 1, -259.0)
        elif tag == 262:
            check(value <= 2, -262.0)
        elif tag == 273:
            check(count == 1, -273.0)
            info.stripOffset = number
        elif tag == 279:
            info.stripByteCount = number
        elif tag == 339:
            check(count in (1, 3), -339.0)
    return info


# Maps of any depth, changed in place


def mergeTiff(source, target):
    """Fills the target's background with the source's pixels.

    The background is the source's first pixel, compared as raw bytes. Where both maps have a pixel
    the target's stays. Both strips are taken to start where the source has its own.
    """
    old = load(source, -10.0)
    info = readHeader(headOf(old))
    new = bytearray(load(target, -20.0, printed=True))
    other = readHeader(headOf(new))
    check(other.entries and (info.width, info.length) == (other.width, other.length), -30.0)
    check((info.channels, info.bitsPerSample) == (other.channels, other.bitsPerSample), -40.0)
    check_writable(target, -201.0)
    if not info.hasPixels() or info.stripOffset < 0 or info.bitsPerSample not in (8, 16, 32):
        return 0.0
    pixel = info.channels * info.bitsPerSample // 8
    row = info.width * pixel
    key = old[info.stripOffset : info.stripOffset + pixel]
    # All rows once more as long as the running offset is below the byte count itself, not below the
    # strip's end. Only rows that both files wholly have are merged.
    offset, rows = info.stripOffset, 0
    while offset < info.stripByteCount or rows % info.length != 0:
        if offset + row > min(len(old), len(new)):
            break
        for at in range(offset, offset + row, pixel):
            if new[at : at + pixel] == key:
                new[at : at + pixel] = old[at : at + pixel]
        offset += row
        rows += 1
    return create(target, new, -201.0)


def swapChannels(path, mode):
    """Exchanges two channels of an 8-bit colour map: 1 green, blue; 2 red, blue; 3 red, green.

    Any other map or mode stays as it is, and so do rows that the file does not wholly have. Pixels
    that would start within the 8 bytes of the file header are refused.
    """
    data = bytearray(load(path, -10.0, printed=True))
    info = readHeader(headOf(data))
    check_writable(path, -101.0, printed=True)
    pairs = {1: (1, 2), 2: (0, 2), 3: (0, 1)}
    if (info.channels, info.bitsPerSample) != (3, 8) or mode not in pairs:
        return 0.0
    if not info.hasPixels() or info.stripOffset < 0:
        return 0.0
    check(info.stripOffset >= 8, -273.0)
    start, row = info.stripOffset, info.width * 3
    end = start + row * max(0, min(info.length, (len(data) - start) // row))
    one, two = (slice(start + channel, end, 3) for channel in pairs[mode])
    data[one], data[two] = data[two], data[one]
    return create(path, data, -101.0)


# Float maps: the caller says how many channels a pixel has


def samplesOf(info, data, channels):
    """The strip's 32-bit floats, one pixel a line. A map without pixels needs no strip."""
    if not info.hasPixels():
        return np.empty((0, channels), "<f4")
    count = info.width * info.length * channels
    check(info.stripOffset >= 0, -274.0)
    check(info.stripOffset + 4 * count <= len(data), -279.0)
    return np.frombuffer(data, "<f4", count, info.stripOffset).reshape(-1, channels)


def levelsOf(samples):
    """Samples of 0 to 1 as levels of 0 to 65535 in 32-bit floats, rounded half up. NaN is 0."""
    with np.errstate(all="ignore"):
        q = samples * np.float32(65535.0)
        q = np.where(q >= 0, q, np.float32(0.0))
        q = np.minimum(q, np.float32(65535.0))
        return (q + np.float32(0.5)).astype(np.uint32)


def mapHeader(width, length, channels, bits, byteCount, unit, more, tail):
    """The header of a map, its directory at byte 8; the strip follows it.

    `more` are the last entries, `tail` is what follows the resolution, which is the same for x and
    y. A size of more than 16 bits is a LONG.
    """
    resolution = 8 + 2 + 12 * (14 + len(more)) + 4

    def size(tag, value):
        return (tag, SHORT if value < 65536 else LONG, 1, value)

    entries = [
        (254, LONG, 1, 0),
        size(256, width),
        size(257, length),
        (258, SHORT, channels, bits),
        (259, SHORT, 1, 1),
        (262, SHORT, 1, 1 if channels == 1 else 2),
        (273, LONG, 1, resolution + 16 + len(tail)),
        (277, SHORT, 1, channels),
        size(278, length),
        (279, LONG, 1, byteCount),
        (282, RATIONAL, 1, resolution),
        (283, RATIONAL, 1, resolution + 8),
        (284, SHORT, 1, 1),
        (296, SHORT, 1, unit),
        *more,
    ]
    start = b"II*\0" + struct.pack("<IH", 8, len(entries))
    packed = b"".join(struct.pack("<HHII", *entry) for entry in entries)
    return start + packed + bytes(4) + struct.pack("<II", 720000, 10000) * 2 + tail


def singleChannelTiff(source, target):
    """Writes the first channel of a three-channel float map as a one-channel float map."""
    data = load(source, -10.0)
    info = readHeader(headOf(data), floatOnly=True)
    check_writable(source, -101.0)
    first = samplesOf(info, data, 3)[:, 0].tobytes()
    sizes = [size % 2**32 for size in (info.width, info.length)]
    tail = struct.pack("<3f", 0.5, 0.5, 0.5)
    header = mapHeader(*sizes, 1, 32, len(first) % 2**32, 1, [(339, SHORT, 1, 3)], tail)
    return createOther(source, target, header + first, -201.0)


PSD_HEADER = b"8BPS" + struct.pack(">H6xHIIHH", 1, 1, 128, 128, 16, 1) + bytes(12) + bytes(2)
GREY_HEADER = mapHeader(256, 256, 1, 16, 131072, 2, [], b"")
COLOUR_HEADER = mapHeader(
    *(1024, 1024, 3, 222, 6291456, 1),
    [(339, SHORT, 3, 228), (18, FLOAT, 1, 1)],  # 18 is odd on purpose
    struct.pack("<6H", 16, 16, 16, 1, 1, 1),
)


def psdHeader(entries):
    """The PSD header. The width goes where a PSD has its height, and the other way round."""
    header = bytearray(PSD_HEADER)
    for tag, _, value, _ in entries:
        if tag in (256, 257):
            struct.pack_into(">I", header, 14 if tag == 256 else 18, value)
    return header


def placedHeader(template, entries, byteCount):
    """The template with the map's sizes at the offsets where the map itself has them."""
    header = bytearray(template)
    sizes = [(place, value, 2) for tag, _, value, place in entries if tag in (256, 257, 278)]
    counts = [(place, byteCount, 4) for tag, _, _, place in entries if tag == 279]
    for place, value, size in sizes + counts[-1:]:
        check(place + size <= len(header), -257.0)
        header[place : place + size] = value.to_bytes(4, "little")[:size]
    return header


def convertTiff(source, target, mode, isPsd):
    """Turns a float map into a 16-bit TIFF or PSD.

    Mode 1: grey to grey, 3: colour to colour, always a TIFF, 4: colour to grey, the first channel.
    """
    data = load(source, -10.0)
    info = readHeader(headOf(data), floatOnly=True)
    channels, written = (1 if mode == 1 else 3), (3 if mode == 3 else 1)
    levels = levelsOf(samplesOf(info, data, channels)[:, :written])
    toPsd = isPsd and mode != 3
    pixels = levels.astype(">u2" if toPsd else "<u2").tobytes()
    if toPsd:
        header = psdHeader(info.entries)
    else:
        template = COLOUR_HEADER if mode == 3 else GREY_HEADER
        header = placedHeader(template, info.entries, len(pixels) % 2**32)
    return createOther(source, target, header + pixels, -201.0)


def getScaleTiff(path, channels):
    """The scale of a displacement map, from how many different 16-bit levels it holds.

    The formula is an empirical fit. A flat map overflows to infinity.
    """
    data = load(path, -10.0)
    info = readHeader(data, floatOnly=True)
    check_writable(path, -101.0)
    check(info.hasPixels(), -1.0)
    n = len(np.unique(levelsOf(samplesOf(info, data, channels))))
    a = single(1049.0 / n)
    b = single(n * single(-7.071e-05))
    s = single(b + a)
    power = single(math.exp(min(s, 700.0)))  # from e^89 on infinite anyway
    return single(power * single(18.49))
