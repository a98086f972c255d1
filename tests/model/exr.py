"""The spread of values in an OpenEXR file, by which the host scales a displacement map.

The reader takes files of one part, scan lines or tiles of a single level, uncompressed or packed
with RLE, ZIPS or ZIP, with any channels that are not subsampled.
"""

import math
import zlib

import numpy as np

from world import Refused, check, le, load, single

REFUSED = -99999.0  # damaged, or unknown to this reader: any negative status
ANYTHING = -88888.0  # in place of any status or range: what the loader does is not known here

TILED, DEEP, MULTIPART = 0x200, 0x800, 0x1000  # flags; others do not matter
SAMPLE_TYPES = ["<u4", "<f2", "<f4"]  # UINT, HALF, FLOAT
NONE, RLE, ZIPS, ZIP = range(4)
LINES_PER_CHUNK = {NONE: 1, RLE: 1, ZIPS: 1, ZIP: 16}
REQUIRED = [
    (b"channels", None),
    (b"compression", 1),
    (b"dataWindow", 16),
    (b"displayWindow", 16),
    (b"lineOrder", 1),
    (b"pixelAspectRatio", 4),
    (b"screenWindowCenter", 8),
    (b"screenWindowWidth", 4),
]


def demand(good):
    """Refuses the file unless all is well."""
    check(good, REFUSED)


class Reader:
    """Bytes read one after another; there must be as many as are asked for."""

    def __init__(self, data, at=0):
        self.data = data
        self.at = at

    def take(self, count):
        demand(0 <= count <= len(self.data) - self.at)
        self.at += count
        return self.data[self.at - count : self.at]

    def number(self, size, signed=False):
        return le(self.take(size), 0, size, signed)

    def name(self):
        """A text up to its zero byte."""
        end = self.data.find(b"\0", self.at)
        demand(end >= 0)
        return self.take(end + 1 - self.at)[:-1]


def read_header(reader):
    """The attributes by name; an empty name ends them."""
    attributes = {}
    while name := reader.name():
        reader.name()  # its type, which the name implies
        attributes[name] = reader.take(reader.number(4, signed=True))
    for name, size in REQUIRED:
        demand(name in attributes and size in (None, len(attributes[name])))
    return attributes


def read_channels(data):
    """The sample type of each channel, in the order of the file."""
    types = []
    reader = Reader(data)
    while reader.name():
        kind = reader.number(4)
        demand(kind < len(SAMPLE_TYPES))
        reader.take(4)  # a hint for lossy compressions, and reserved bytes
        demand(reader.number(4) == 1 and reader.number(4) == 1)  # one sample for each pixel
        types.append(np.dtype(SAMPLE_TYPES[kind]))
    demand(types)
    return types


def unpack_runs(data):
    """A negative count: so many single bytes. Another: a byte that is repeated count + 1 times."""
    reader = Reader(data)
    out = bytearray()
    while reader.at < len(data):
        count = reader.number(1, signed=True)
        out += reader.take(-count) if count < 0 else reader.take(1) * (count + 1)
    return bytes(out)


def unpack(data, compression, size):
    """The pixels of a chunk. One that packing would not make smaller is stored as it is."""
    if len(data) == size or (compression == NONE and len(data) > size):
        return data[:size]
    demand(compression != NONE)
    try:
        data = unpack_runs(data) if compression == RLE else zlib.decompress(data)
    except zlib.error:
        raise Refused(REFUSED) from None
    check(len(data) == size, ANYTHING)
    # Each byte is the difference to the one before, plus 128. The bytes at even places come first,
    # then those at odd places.
    steps = np.frombuffer(data, np.uint8).copy()
    steps[1:] ^= 128
    values = np.cumsum(steps, dtype=np.uint8)
    out = np.empty_like(values)
    out[0::2] = values[: (size + 1) // 2]
    out[1::2] = values[(size + 1) // 2 :]
    return out.tobytes()


def read_offsets(reader, count, place_size):
    """Where the chunks are. A zero means that the writer was interrupted before it filled in the
    table: then they follow one another.
    """
    offsets = np.frombuffer(reader.take(8 * count), "<u8").tolist()
    if 0 in offsets:
        for i in range(count):
            offsets[i] = reader.at
            reader.take(place_size)
            reader.take(reader.number(4, signed=True))
    return offsets


def chunk_size(attributes, tiled, width):
    """The columns and lines of a chunk, which is a tile or some whole lines."""
    if not tiled:
        return width, LINES_PER_CHUNK[attributes[b"compression"][0]]
    tiles = attributes.get(b"tiles", b"")
    demand(len(tiles) == 9 and tiles[8] & 15 == 0)  # the full size only
    columns, lines = le(tiles, 0, 4), le(tiles, 4, 4)
    demand(columns >= 1 and lines >= 1)
    return columns, lines


def load_samples(data):
    """The first channel's samples."""
    flags = le(data, 4, 4)
    demand(flags & (DEEP | MULTIPART) == 0)
    reader = Reader(data, 8)
    attributes = read_header(reader)
    types = read_channels(attributes[b"channels"])
    compression = attributes[b"compression"][0]
    demand(compression in LINES_PER_CHUNK)
    left, top, right, bottom = np.frombuffer(attributes[b"dataWindow"], "<i4").tolist()
    width = right - left + 1
    height = bottom - top + 1
    demand(width >= 1 and height >= 1)

    tiled = flags & TILED != 0
    chunk_width, chunk_height = chunk_size(attributes, tiled, width)
    across = -(-width // chunk_width)
    down = -(-height // chunk_height)

    seen, samples = set(), []
    for offset in read_offsets(reader, across * down, 16 if tiled else 4):
        chunk = Reader(data, offset)
        if tiled:
            column, row = chunk.number(4), chunk.number(4)
            demand(chunk.number(4) == 0 and chunk.number(4) == 0)  # its level
        else:
            line = chunk.number(4, signed=True) - top
            demand(line % chunk_height == 0)
            column, row = 0, line // chunk_height
        demand(0 <= column < across and 0 <= row < down and (column, row) not in seen)
        seen.add((column, row))

        # A line holds the samples of one channel after those of another.
        columns = min(chunk_width, width - column * chunk_width)
        lines = min(chunk_height, height - row * chunk_height)
        line_size = columns * sum(kind.itemsize for kind in types)
        packed = chunk.take(chunk.number(4, signed=True))
        pixels = np.frombuffer(unpack(packed, compression, lines * line_size), np.uint8)
        first = pixels.reshape(lines, line_size)[:, : columns * types[0].itemsize]
        samples += np.frombuffer(first.tobytes(), types[0]).astype(np.float32).tolist()
    return samples


def OpenEXR(path):
    """The largest minus the smallest sample of the first channel.

    Both start at fixed values, so a file beyond one of them is measured from there. NaN changes
    neither.
    """
    data = load(path, -7.0)
    check(len(data) >= 8, -4.0)
    check(data[:4] == b"\x76\x2f\x31\x01", -1.0)
    check(data[4] == 2, -2.0)
    numbers = [sample for sample in load_samples(data) if not math.isnan(sample)]
    return single(max([-65535.0, *numbers]) - min([65535.0, *numbers]))
