"""The spread of values in an OpenEXR file, by which the host scales a displacement map.

The reader takes files of one part, scan lines or tiles of a single level, uncompressed or packed
with RLE, ZIPS or ZIP, with any channels that are not subsampled.
"""

import zlib

import numpy as np

from world import le, load, single

# What the loader answers when there is no image.
BAD_MAGIC = -1.0
BAD_VERSION = -2.0
NO_PATH = -3.0
TOO_SHORT = -4.0
NOT_OPENED = -7.0
REFUSED = -99999.0  # damaged or unsupported: any negative status
ANYTHING = -88888.0  # in place of any status or range

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


class Damaged(Exception):
    """The file is damaged, or it uses what this reader does not know."""


class LeftToTheLoader(Exception):
    """A chunk that unpacks to another size: what the loader makes of it is not known here."""


def check(good):
    if not good:
        raise Damaged


class Reader:
    """Bytes read one after another; there must be as many as are asked for."""

    def __init__(self, data, at=0):
        self.data = data
        self.at = at

    def take(self, count):
        check(0 <= count <= len(self.data) - self.at)
        self.at += count
        return self.data[self.at - count : self.at]

    def number(self, size, signed=False):
        return le(self.take(size), 0, size, signed)

    def name(self):
        """A text up to its zero byte."""
        end = self.data.find(b"\0", self.at)
        check(end >= 0)
        return self.take(end + 1 - self.at)[:-1]


def read_header(reader):
    """The attributes by name; an empty name ends them."""
    attributes = {}
    while name := reader.name():
        reader.name()  # the type goes with the name
        attributes[name] = reader.take(reader.number(4, signed=True))
    for name, size in REQUIRED:
        check(name in attributes and size in (None, len(attributes[name])))
    return attributes


def read_channels(data):
    """The sample type of each channel, in the order of the file."""
    types = []
    reader = Reader(data)
    while reader.name():
        kind = reader.number(4)
        check(kind < len(SAMPLE_TYPES))
        reader.take(4)  # a hint for lossy compressions, and reserved bytes
        check(reader.number(4) == 1 and reader.number(4) == 1)  # one sample for each pixel
        types.append(np.dtype(SAMPLE_TYPES[kind]))
    check(types)
    return types


def unpack_runs(data):
    """A negative count: so many single bytes. Another: a byte that comes count + 1 times."""
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
    check(compression != NONE)
    data = unpack_runs(data) if compression == RLE else zlib.decompress(data)
    if len(data) != size:
        raise LeftToTheLoader
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
    """Where the chunks are. A zero tells that the writer was interrupted before it filled in the
    table: then they are found one behind the other.
    """
    offsets = np.frombuffer(reader.take(8 * count), "<u8").tolist()
    if 0 in offsets:
        for i in range(count):
            offsets[i] = reader.at
            reader.take(place_size)
            reader.take(reader.number(4, signed=True))
    return offsets


def load_image(data):
    """The width, the height and the first channel's samples as 32-bit floats."""
    flags = le(data, 4, 4)
    check(flags & (DEEP | MULTIPART) == 0)
    reader = Reader(data, 8)
    attributes = read_header(reader)
    types = read_channels(attributes[b"channels"])
    compression = attributes[b"compression"][0]
    check(compression in LINES_PER_CHUNK)
    left, top, right, bottom = np.frombuffer(attributes[b"dataWindow"], "<i4").tolist()
    width = right - left + 1
    height = bottom - top + 1
    check(width >= 1 and height >= 1)

    chunk_width, chunk_height = width, LINES_PER_CHUNK[compression]
    if flags & TILED:
        tiles = attributes.get(b"tiles", b"")
        check(len(tiles) == 9 and tiles[8] & 15 == 0)  # the full size only
        chunk_width, chunk_height = le(tiles, 0, 4), le(tiles, 4, 4)
        check(chunk_width >= 1 and chunk_height >= 1)
    across = -(-width // chunk_width)
    down = -(-height // chunk_height)

    pieces = {}
    for offset in read_offsets(reader, across * down, 16 if flags & TILED else 4):
        chunk = Reader(data, offset)
        if flags & TILED:
            column, row = chunk.number(4), chunk.number(4)
            check(chunk.number(4) == 0 and chunk.number(4) == 0)  # its level
        else:
            line = chunk.number(4, signed=True) - top
            check(line % chunk_height == 0)
            column, row = 0, line // chunk_height
        x, y = column * chunk_width, row * chunk_height
        check(0 <= column < across and 0 <= row < down and (x, y) not in pieces)
        columns, lines = min(chunk_width, width - x), min(chunk_height, height - y)

        # A line holds the samples of one channel after those of another.
        line_size = columns * sum(kind.itemsize for kind in types)
        packed = chunk.take(chunk.number(4, signed=True))
        pixels = np.frombuffer(unpack(packed, compression, lines * line_size), np.uint8)
        first = pixels.reshape(lines, line_size)[:, : columns * types[0].itemsize]
        pieces[x, y] = np.ascontiguousarray(first).view(types[0])

    samples = np.empty((height, width), np.float32)
    for (x, y), piece in pieces.items():
        lines, columns = piece.shape
        samples[y : y + lines, x : x + columns] = piece
    return width, height, samples


def LoadMultiChannelEXRFromFile(path):
    """A status, 0 or negative, and the loaded image."""
    if path is None:
        return NO_PATH, None
    data = load(path)
    if data is None:
        return NOT_OPENED, None
    if len(data) < 8:
        return TOO_SHORT, None
    if data[:4] != b"\x76\x2f\x31\x01":
        return BAD_MAGIC, None
    if data[4] != 2:
        return BAD_VERSION, None
    try:
        return 0.0, load_image(data)
    except (Damaged, zlib.error):
        return REFUSED, None
    except LeftToTheLoader:
        return ANYTHING, None


def OpenEXR(path):
    """The largest minus the smallest sample of the first channel, or the loader's status.

    Both start at seeds, so a file beyond one of them is measured from there. A sample that is not a
    number changes neither.
    """
    status, image = LoadMultiChannelEXRFromFile(path)
    if status != 0.0:
        return status
    width, height, samples = image
    if height < 1 or width < 1:
        return -131070.0
    largest = -65535.0
    smallest = 65535.0
    for sample in samples.ravel().tolist():
        if sample > largest:
            largest = sample
        if sample < smallest:
            smallest = sample
    return single(largest - smallest)
