"""The host's TIFF maps: one strip, uncompressed, little-endian, one or three samples a pixel.

Merging tile maps, swapping colour channels, taking the first channel of a float map, turning a
float map into 16 bits, and measuring the scale of a displacement map.
"""

import math
import os
import struct
from dataclasses import dataclass, field

import numpy as np

from world import can_rewrite, create, le, load, say, single

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
    status: float = 0.0  # other than 0: the map is refused

    def hasPixels(self):
        return self.width >= 1 and self.length >= 1


# Files


def read(path):
    """A regular file's bytes, None for anything else."""
    return load(path) if os.path.isfile(path) else None


def createOther(source, target, data):
    """Creates the target, which must be a regular file and must not be the source itself."""
    if os.path.exists(target):
        if not os.path.isfile(target) or os.path.samefile(source, target):
            return False
    return create(target, data)


# The directory


def headOf(data):
    """The first 1000 bytes. A shorter file repeats its last byte, an empty one gives zeros."""
    return data[:1000].ljust(1000, data[-1:] or b"\0")


def entriesOf(head):
    """The first directory's entries: tag, count, value and the value's place in the file.

    Byte order mark and field types are not looked at. What lies past the end reads as 0.
    """
    directory = le(head, 4, 4)
    places = [directory + 2 + 12 * i for i in range(le(head, directory, 2, signed=True))]
    return [(le(head, at, 2), le(head, at + 4, 4), le(head, at + 8, 4), at + 8) for at in places]


def readHeader(path, notOpened, floatOnly=False, wholeFile=False):
    """Reads a map's directory, in file order, up to the first entry that is refused."""
    data = read(path)
    if data is None:
        return TiffInfo(status=notOpened)
    head = data if wholeFile else headOf(data)
    info = TiffInfo(entries=entriesOf(head))
    for tag, count, value, place in info.entries:
        number = le(head, place, 4, signed=True)
        if tag == 256:
            info.width = number
        elif tag == 257:
            info.length = number
        elif tag == 258:
            if count not in (1, 3):
                info.status = -258.0 if floatOnly else 258.0
                break
            info.channels = count
            info.bitsPerSample = number if count == 1 else le(head, value, 2)
            if floatOnly and info.bitsPerSample != 32:
                info.status = -32.0
                break
        elif tag == 259 and value != 1:
            info.status = -259.0
            break
        elif tag == 262 and value > 2:
            info.status = -262.0
            break
        elif tag == 273:
            if count != 1:
                info.status = -273.0
                break
            info.stripOffset = number
        elif tag == 279:
            info.stripByteCount = number
        elif tag == 339 and count not in (1, 3):
            info.status = -339.0
            break
    return info


# Maps of any depth, changed in place


def mergeTiff(source, target):
    """Fills the target's background with the source's pixels.

    The background is the source's first pixel, compared as raw bytes. Where both maps have a pixel
    the target's stays. Both strips are taken to lie where the source has its own.
    """
    info = readHeader(source, -10.0)
    if info.status:
        return info.status
    other = readHeader(target, -20.0)
    if other.status == -20.0:
        say("-20")
    if other.status:
        return other.status
    if not other.entries or (info.width, info.length) != (other.width, other.length):
        return -30.0
    if (info.channels, info.bitsPerSample) != (other.channels, other.bitsPerSample):
        return -40.0
    old = read(source)
    if old is None:
        return -101.0
    if not can_rewrite(target):
        return -201.0
    new = bytearray(read(target))
    if not info.hasPixels() or info.stripOffset < 0 or info.bitsPerSample not in (8, 16, 32):
        return 0.0
    pixel = info.channels * info.bitsPerSample // 8
    row = info.width * pixel
    key = old[info.stripOffset : info.stripOffset + pixel]
    # The running offset is held against the byte count itself, not against the strip's end.
    # Only rows that both files wholly have are merged.
    offset = info.stripOffset
    more = True
    while more and offset < info.stripByteCount:
        for _ in range(info.length):
            more = offset + row <= min(len(old), len(new))
            if not more:
                break
            for at in range(offset, offset + row, pixel):
                if new[at : at + pixel] == key:
                    new[at : at + pixel] = old[at : at + pixel]
            offset += row
    return 0.0 if create(target, new) else -201.0


def swapChannels(path, mode):
    """Exchanges two channels of an 8-bit colour map: 1 green, blue; 2 red, blue; 3 red, green.

    Any other map or mode stays as it is, and so do rows that the file does not wholly have.
    """
    info = readHeader(path, -10.0)
    if info.status == -10.0:
        say("-10")
    if info.status:
        return info.status
    if not can_rewrite(path):
        say("-101")
        return -101.0
    pairs = {1: (1, 2), 2: (0, 2), 3: (0, 1)}
    if (info.channels, info.bitsPerSample) != (3, 8) or mode not in pairs:
        return 0.0
    if not info.hasPixels() or info.stripOffset < 0:
        return 0.0
    data = bytearray(read(path))
    start, row = info.stripOffset, info.width * 3
    end = start + row * max(0, min(info.length, (len(data) - start) // row))
    one, two = (slice(start + channel, end, 3) for channel in pairs[mode])
    data[one], data[two] = data[two], data[one]
    return 0.0 if create(path, data) else -101.0


# Float maps: the caller says how many channels a pixel has


def stripStatus(info, data, channels):
    """Refuses a strip that the file does not wholly have. A map without pixels needs none."""
    if not info.hasPixels():
        return 0.0
    if info.stripOffset < 0:
        return -274.0
    end = info.stripOffset + info.width * info.length * channels * 4
    return -279.0 if end > len(data) else 0.0


def samplesOf(info, data, channels):
    """The strip's 32-bit floats, one pixel a line."""
    count = info.width * info.length * channels if info.hasPixels() else 0
    strip = data[info.stripOffset : info.stripOffset + 4 * count]
    return np.frombuffer(strip, "<f4").reshape(-1, channels)


def levelsOf(samples):
    """Samples of 0 to 1 as levels of 0 to 65535 in 32-bit floats, rounded half up. NaN is 0."""
    with np.errstate(all="ignore"):
        q = samples * np.float32(65535.0)
        q = np.where(q >= 0, q, np.float32(0.0))
        q = np.minimum(q, np.float32(65535.0))
        return (q + np.float32(0.5)).astype(np.uint32)


def tiffHeader(entries, tail):
    """A TIFF with its directory at byte 8, one (tag, type, count, value) an entry, and a tail."""
    packed = b"".join(struct.pack("<HHII", *entry) for entry in entries)
    return b"II*\0" + struct.pack("<IH", 8, len(entries)) + packed + bytes(4) + tail


RESOLUTION = struct.pack("<II", 720000, 10000) * 2  # the same for x and y


def singleHeader(width, length, byteCount):
    """The 222-byte header of a one-channel float map. A size of more than 16 bits is a LONG."""

    def size(tag, value):
        return (tag, SHORT if value < 65536 else LONG, 1, value)

    entries = [
        (254, LONG, 1, 0),
        size(256, width),
        size(257, length),
        (258, SHORT, 1, 32),
        (259, SHORT, 1, 1),
        (262, SHORT, 1, 1),
        (273, LONG, 1, 222),
        (277, SHORT, 1, 1),
        size(278, length),
        (279, LONG, 1, byteCount),
        (282, RATIONAL, 1, 194),
        (283, RATIONAL, 1, 202),
        (284, SHORT, 1, 1),
        (296, SHORT, 1, 1),
        (339, SHORT, 1, 3),
    ]
    return tiffHeader(entries, RESOLUTION + struct.pack("<3f", 0.5, 0.5, 0.5))


def singleChannelTiff(source, target):
    """Writes the first channel of a three-channel float map as a one-channel float map."""
    info = readHeader(source, -10.0, floatOnly=True)
    if info.status:
        return info.status
    if not can_rewrite(source):
        return -101.0
    data = read(source)
    if status := stripStatus(info, data, 3):
        return status
    first = samplesOf(info, data, 3)[:, 0].tobytes()
    header = singleHeader(info.width % 2**32, info.length % 2**32, len(first) % 2**32)
    return 0.0 if createOther(source, target, header + first) else -201.0


PSD_HEADER = b"8BPS" + struct.pack(">H6xHIIHH", 1, 1, 128, 128, 16, 1) + bytes(12) + bytes(2)

GREY_HEADER = tiffHeader(
    [
        (254, LONG, 1, 0),
        (256, SHORT, 1, 256),
        (257, SHORT, 1, 256),
        (258, SHORT, 1, 16),
        (259, SHORT, 1, 1),
        (262, SHORT, 1, 1),
        (273, LONG, 1, 198),
        (277, SHORT, 1, 1),
        (278, SHORT, 1, 256),
        (279, LONG, 1, 131072),
        (282, RATIONAL, 1, 182),
        (283, RATIONAL, 1, 190),
        (284, SHORT, 1, 1),
        (296, SHORT, 1, 2),
    ],
    RESOLUTION,
)

COLOUR_HEADER = tiffHeader(
    [
        (254, LONG, 1, 0),
        (256, SHORT, 1, 1024),
        (257, SHORT, 1, 1024),
        (258, SHORT, 3, 222),
        (259, SHORT, 1, 1),
        (262, SHORT, 1, 2),
        (273, LONG, 1, 234),
        (277, SHORT, 1, 3),
        (278, SHORT, 1, 1024),
        (279, LONG, 1, 6291456),
        (282, RATIONAL, 1, 206),
        (283, RATIONAL, 1, 214),
        (284, SHORT, 1, 1),
        (296, SHORT, 1, 1),
        (339, SHORT, 3, 228),
        (18, FLOAT, 1, 1),  # odd on purpose
    ],
    RESOLUTION + struct.pack("<6H", 16, 16, 16, 1, 1, 1),
)


def psdHeader(entries):
    """The PSD header. The width goes where a PSD has its height, and the other way round."""
    header = bytearray(PSD_HEADER)
    for tag, _, value, _ in entries:
        if tag in (256, 257):
            struct.pack_into(">I", header, 14 if tag == 256 else 18, value)
    return header


def placedHeader(template, entries, byteCount):
    """The template with the map's sizes at the places where the map itself has them.

    None where a place is not inside the header.
    """
    header = bytearray(template)
    sizes = [(place, value, 2) for tag, _, value, place in entries if tag in (256, 257, 278)]
    counts = [(place, byteCount, 4) for tag, _, _, place in entries if tag == 279]
    for place, value, size in sizes + counts[-1:]:
        if place + size > len(header):
            return None
        header[place : place + size] = value.to_bytes(4, "little")[:size]
    return header


def convertTiff(source, target, mode, isPsd):
    """Turns a float map into a 16-bit TIFF or PSD.

    Mode 1: grey to grey, 3: colour to colour, always a TIFF, 4: colour to grey, the first channel.
    """
    channels, written = (1 if mode == 1 else 3), (3 if mode == 3 else 1)
    isPsd = isPsd and mode != 3
    info = readHeader(source, -10.0, floatOnly=True)
    if info.status:
        return info.status
    data = read(source)
    if data is None:
        return -101.0
    if status := stripStatus(info, data, channels):
        return status
    levels = levelsOf(samplesOf(info, data, channels)[:, :written])
    pixels = levels.astype(">u2" if isPsd else "<u2").tobytes()
    if isPsd:
        header = psdHeader(info.entries)
    else:
        template = COLOUR_HEADER if mode == 3 else GREY_HEADER
        header = placedHeader(template, info.entries, len(pixels) % 2**32)
    if header is None:
        return -257.0
    return 0.0 if createOther(source, target, header + pixels) else -201.0


def getScaleTiff(path, channels):
    """The scale of a displacement map, from how many different 16-bit levels it holds.

    The formula is an empirical fit. A flat map overflows to infinity.
    """
    info = readHeader(path, -10.0, floatOnly=True, wholeFile=True)
    if info.status:
        return info.status
    if not can_rewrite(path):
        return -101.0
    data = read(path)
    if not info.hasPixels():
        return -1.0
    if status := stripStatus(info, data, channels):
        return status
    n = len(np.unique(levelsOf(samplesOf(info, data, channels))))
    a = single(1049.0 / n)
    b = single(n * single(-7.071e-05))
    s = single(b + a)
    power = single(math.exp(min(s, 700.0)))  # from e^89 on infinite anyway
    return single(power * single(18.49))
