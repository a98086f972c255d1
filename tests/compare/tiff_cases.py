"""Cases of the TIFF operations and of the Targa conversion, which reads TIFF too."""

import struct

from cases import INF, NAN, Case, Layout, nulls, source, target, unreadable

KEYS = [bytes(4), b"\0\0\0\x80", b"\xff" * 4, b"\0\0\xc0\x7f", b"\1\0\xc0\x7f", b"\7" * 4]
FLOATS = [0.0, -0.0, 1.0, 0.5, -0.2, 1.5, 1e-45, -1e-45, 3e38, 65535.0, NAN, INF, -INF]
NAMES = {256: "width", 257: "length", 258: "bits", 259: "compression", 262: "photometric",
         273: "strip offset", 278: "rows per strip", 279: "strip bytes", 339: "sample format"}
TAGS = [254, 256, 257, 258, 259, 262, 273, 277, 278, 279, 339]  # in the order of the host's maps
SWAPS = [1.0, 2.0, 3.0, 3.9, 0.5, 2.5]  # what the exports take
NO_SWAPS = [0.0, 4.0, -1.0, NAN, INF]
MODES = [-1, 0, 1, 2, 3, 4, 2**31 - 1]  # what the operations may be given
OUTPUTS = [b"out.tif", b"out.psd", b"out.PSD", b"out.Psd", b"o.xpsdx", b"a.psd.b", b".psd", b"o.ps"]


class Shape:
    """What the maps of one case have in common: sizes, depth and the order in the file."""

    def __init__(self, rng, depth=None, channels=None):
        self.width, self.length = rng.side(), rng.side()
        self.channels = channels or rng.choice([1, 3])
        self.depth = depth or rng.choice([8, 16, 32])
        self.pixels_first = rng.random() < 0.4
        self.gap = rng.choice([1, 30]) if rng.odd(0.4) else 0
        self.photometric = rng.choice([0, 1, 2])
        self.tags = list(TAGS)
        if rng.odd(0.1):
            rng.shuffle(self.tags)
        if rng.odd(0.05):
            self.tags.remove(rng.choice(TAGS))
        if rng.odd(0.05):
            self.tags.insert(rng.randrange(10), rng.choice(TAGS))
        if rng.odd(0.05):  # unknown tags, so many that some entries are beyond byte 1000
            at = rng.randrange(10)
            self.tags[at:at] = [60000] * rng.choice([1, 40, 80])


def tiff(shape, pixels):
    """A map: header, directory, arrays, and the pixels after them or before the directory."""
    colour, gap = shape.channels == 3, bytes(shape.gap)
    directory = 8 + len(pixels + gap) * shape.pixels_first
    arrays = directory + 2 + 12 * len(shape.tags) + 4
    offset = 8 if shape.pixels_first else arrays + 12 * colour + shape.gap
    values = {254: (1, 0), 256: (1, shape.width), 257: (1, shape.length),
              258: (shape.channels, arrays if colour else shape.depth), 259: (1, 1),
              262: (1, shape.photometric), 273: (1, offset), 277: (1, shape.channels),
              278: (1, shape.length), 279: (1, len(pixels)),
              339: (shape.channels, arrays + 6 if colour else 3), 60000: (1, 5)}
    layout = Layout(b"II").put("magic", 2, 42).put("directory", 4, directory)
    if shape.pixels_first:
        layout.raw(pixels + gap)
    layout.put("entries", 2, len(shape.tags))
    for position, tag in enumerate(shape.tags):
        name = f"entry {position} {NAMES.get(tag, tag)}"
        count, value = values[tag]
        layout.put(name + " tag", 2, tag).put(name + " type", 2, 4 if tag in (254, 273, 279) else 3)
        layout.put(name + " count", 4, count).put(name + " value", 4, value)
    layout.raw(bytes(4))
    if colour:
        for channel in range(3):
            layout.put(f"bits {channel}", 2, shape.depth)
        layout.raw(b"\3\0" * 3)
    return layout if shape.pixels_first else layout.raw(gap + pixels)


def painted(rng, shape, key=None):
    """Pixels of a tile: one value as background, the same with one byte changed, and others."""
    size = shape.channels * shape.depth // 8
    key = ((key or rng.choice(KEYS)) * 3)[:size]
    near = bytearray(key)
    near[rng.randrange(size)] ^= rng.choice([1, 128])
    palette = [key] * 5 + [bytes(near)] + [rng.randbytes(size) for _ in range(4)]
    pixels = rng.pixels(palette, shape.width * shape.length)
    if pixels and not rng.odd(0.1):
        pixels[0] = key
    return b"".join(pixels)


def sample(rng):
    """An exact level, a half between two, any number or a special one."""
    kind = rng.randrange(8)
    if kind < 3:
        return (rng.randrange(65536) + rng.choice([0, 0.5])) / 65535
    return rng.choice(FLOATS) if kind == 3 else rng.uniform(-0.1, 1.1)


def floats(rng, count):
    return struct.pack(f"<{count}f", *(sample(rng) for _ in range(count)))


def float_map(rng, channels):
    shape = Shape(rng, 16 if rng.odd(0.04) else 32, channels)
    count = shape.width * shape.length * channels
    return tiff(shape, floats(rng, count) if shape.depth == 32 else rng.randbytes(2 * count))


def merge(rng):
    case = Case()
    shape, key = Shape(rng), rng.choice(KEYS)
    other = Shape(rng) if rng.odd(0.08) else shape
    layout = tiff(shape, painted(rng, shape, key))
    if rng.odd(0.1):  # a strip said to be longer or shorter than it is
        for name in layout.fields:
            if name.endswith("strip bytes value"):
                layout.set(name, rng.choice([0, 9, 200, 1000, 5000]))
    first = source(rng, case, b"tile.tif", layout)
    second = source(rng, case, b"all.tif", tiff(other, painted(rng, other, key)))
    return case.call("mergeMapsTIF", first, 0.0, first if rng.odd(0.03) else second)


def swap(rng):
    case = Case()
    shape = Shape(rng, rng.choice([16, 32]) if rng.odd(0.3) else 8, 1 if rng.odd(0.2) else 3)
    path = source(rng, case, b"map.tif", tiff(shape, painted(rng, shape)))
    if rng.odd(0.2):
        return case.call("swapChannels", path, rng.choice(MODES))
    return case.call("swapRGBTIF", path, rng.choice(SWAPS))


def single(rng):
    case = Case()
    path = source(rng, case, b"map.tif", float_map(rng, 1 if rng.odd(0.2) else 3))
    return case.call("convertTIFFSingle", path, 0.0, target(rng, case, path, b"out.tif"))


def convert(rng):
    case = Case()
    value = rng.choice([1.0, 3.0, 4.0])
    channels = rng.choice([1, 3]) if rng.odd(0.1) else 1 if value == 1.0 else 3
    path = source(rng, case, b"map.tif", float_map(rng, channels))
    return case.call("convertTIFF16", path, value, target(rng, case, path, rng.choice(OUTPUTS)))


def scale(rng):
    case = Case()
    channels = rng.choice([1, 3])
    path = source(rng, case, b"map.tif", float_map(rng, channels))
    return case.call("getScale", path, float(4 - channels if rng.odd(0.1) else channels))


def targa(rng):
    case = Case()
    shape = Shape(rng, 8)
    path = source(rng, case, b"map.tif", tiff(shape, painted(rng, shape)))
    return case.call("saveAsTarga", path, 0.0, target(rng, case, path, b"out.tga"))


RECIPES = [(merge, 4), (swap, 3), (single, 3), (convert, 4), (scale, 3), (targa, 3)]


def one(rng, name, rest, channels, data, **changes):
    """A case of one map of 2 x 2 pixels, its fields changed, and one call."""
    shape = Shape(rng, len(data) // channels * 2, channels)
    shape.width = shape.length = 2
    shape.tags, shape.pixels_first, shape.gap = list(TAGS), changes.pop("pixels_first", False), 0
    layout = tiff(shape, data)
    for key, value in changes.items():
        end = key.replace("_", " ")
        layout.set(next(name for name in layout.fields if name.endswith(end)), value)
    return Case((b"map.tif", layout)).call(name, b"map.tif", *rest)


def edges(rng):
    levels = struct.pack("<4f", 1.5, -0.2, 0.5, NAN)
    halves = struct.pack("<4f", 2.5 / 65535, 2.49 / 65535, 3.5 / 65535, 65534.5 / 65535)
    for data in (levels, halves, bytes(16)):
        for value in (1.0, 2.0, 1.5, NAN):
            yield one(rng, "getScale", (value,), 1, data)
    for value in (1.0, 2.0, 3.0, 4.0, NAN):
        for out in [*OUTPUTS, b"psd.d/out", b"none"]:
            yield one(rng, "convertTIFF16", (value, out), 3, levels + halves * 2)
            yield one(rng, "convertTIFF16", (value, out), 1, halves)
    for value in SWAPS + NO_SWAPS:
        yield one(rng, "swapRGBTIF", (value,), 3, bytes(range(12)))
    for name, *rest in (("swapRGBTIF", 1.0), ("getScale", 3.0), ("convertTIFFSingle", 0.0, b"out"),
                        ("convertTIFF16", 3.0, b"out.tif"), ("saveAsTarga", 0.0, b"out")):
        data = floats(rng, 12) if rest[0] == 3.0 or "Single" in name else rng.randbytes(12)
        for changes in ({"bits_count": 4}, {"strip_offset_count": 2}, {"photometric_value": 3},
                        {"compression_value": 5}, {"sample_format_count": 2}, {"bits_0": 16},
                        {"entries": 0}, {"directory": 990}, {"directory": 1000},
                        {"width_value": 70000}, {"length_value": 0}, {"width_value": -1},
                        {"strip_offset_value": 2**31}, {"strip_offset_value": 0},
                        {"strip_offset_value": 7}, {"strip_offset_value": 8},
                        {"pixels_first": True}):
            yield one(rng, name, rest, 3, data, **changes)
        yield from unreadable((name, *rest))
        yield from nulls((name, rest[0]))
    yield from unreadable(("mergeMapsTIF", 0.0, b"empty"), ("mergeMapsTIF", 0.0, b"missing"))
    yield from nulls(("mergeMapsTIF", 0.0))
    shape = Shape(rng, 8, 1)
    case = Case((b"a", tiff(shape, painted(rng, shape))))
    yield case.call("mergeMapsTIF", b"a", 0.0, b"missing")
    rng.sheet = rng.sound = True
    for _ in range(150):
        shape, key = Shape(rng), rng.choice(KEYS)
        shape.width, shape.length = rng.sides()
        files = [(name, tiff(shape, painted(rng, shape, key))) for name in (b"a", b"b")]
        yield Case(*files).call("mergeMapsTIF", b"a", 0.0, b"b")
