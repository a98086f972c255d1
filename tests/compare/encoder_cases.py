"""Cases of the JPEG encoder and of the range of OpenEXR files."""

import struct
import zlib

from bmp_cases import Shape, bmp
from cases import INF, NAN, Case, Layout, nulls, source, target, unreadable
from psd_cases import colours

QUALITIES = [0.0, 1.0, 10.0, 50.0, 99.9, 100.0, 100.5, 101.0, -1.0, -0.5, NAN]  # of the export
FACTORS = [0, 1, 44, 50, 100, 255, 256, 300, 1000, -1, -156]  # of the operation
SAMPLES = [0.0, -0.0, 1.0, 0.25, -1.5, 2.0, 70000.0, -70000.0, 65504.0, 1e-7]
WHOLE, HALF, FLOAT = range(3)


def jpeg(rng):
    case = Case()
    rng.most = min(rng.most, 40)
    shape = Shape(rng)
    shape.bits = rng.choice([32, 8]) if rng.odd(0.03) else 24
    palette = rng.choice([[rng.randbytes(3)], colours(rng), [rng.randbytes(3) for _ in range(50)],
                          [bytes(3), b"\xff" * 3, b"\0\0\xff", b"\xff\0\0"]])
    path = source(rng, case, b"map.bmp", bmp(rng, shape, palette))
    out = target(rng, case, path, b"out.jpg")
    if rng.odd(0.03):  # up to 511 bytes are taken
        out = b"./" * rng.choice([252, 253, 254]) + b"o.jpg"
    if rng.random() < 0.3:
        return case.call("convertToJPEG", path, out, rng.choice(FACTORS))
    return case.call("saveAsJpeg", path, rng.choice([*QUALITIES, rng.uniform(0, 100)]), out)


def runs(data):
    """Bytes packed as runs: a count of repetitions, or a negative count of single bytes."""
    packed = b""
    while data:
        same = min(len(data) - len(data.lstrip(data[:1])), 128)
        taken = data[:same] if same > 2 else data[:7]
        packed += bytes([same - 1]) + data[:1] if same > 2 else bytes([256 - len(taken)]) + taken
        data = data[len(taken) :]
    return packed


def packed_chunk(data, compression):
    """A chunk's data, as it is where packing does not make it smaller."""
    halves = data[0::2] + data[1::2]
    steps = halves[:1] + bytes((b - a + 128) % 256 for a, b in zip(halves, halves[1:]))
    packed = [data, runs(steps), zlib.compress(steps), zlib.compress(steps)][compression]
    return packed if len(packed) < len(data) else data


def exr_file(rng, width, height, kinds, samples, compression):
    """A file of scan lines with a channel of each kind; `samples` holds the packed planes."""
    layout = Layout().put("magic", 4, 20000630).put("version", 1, 2).put("flags", 3, 0)

    def attribute(name, kind, size):
        return layout.raw(name + b"\0" + kind + b"\0").put(f"size of {name.decode()}", 4, size)

    attribute(b"channels", b"chlist", 18 * len(kinds) + 1)
    for index, kind in enumerate(kinds):
        layout.raw(b"BGR"[index : index + 1] + b"\0").put(f"kind {index}", 4, kind)
        for name, value in (("linear", 0), ("x step", 1), ("y step", 1)):
            layout.put(f"{name} {index}", 4, value)
    layout.raw(b"\0")
    attribute(b"compression", b"compression", 1).raw(bytes([compression]))
    left, top = rng.choice([(-3, 5), (100, -7)]) if rng.odd(0.5) else (0, 0)
    attribute(b"dataWindow", b"box2i", 16).put("left", 4, left).put("top", 4, top)
    layout.put("right", 4, left + width - 1).put("bottom", 4, top + height - 1)
    attribute(b"displayWindow", b"box2i", 16).raw(struct.pack("<4i", 0, 0, width - 1, height - 1))
    attribute(b"lineOrder", b"lineOrder", 1).put("line order", 1, 0)
    attribute(b"pixelAspectRatio", b"float", 4).raw(struct.pack("<f", 1))
    attribute(b"screenWindowCenter", b"v2f", 8).raw(bytes(8))
    attribute(b"screenWindowWidth", b"float", 4).raw(struct.pack("<f", 1)).raw(b"\0")

    lines = 16 if compression == 3 else 1
    chunks = []
    for row in range(0, height, lines):
        data = b""
        for line in range(row, min(row + lines, height)):
            for kind, plane in zip(kinds, samples):
                size = width * (2 if kind == HALF else 4)
                data += plane[line * size : (line + 1) * size]
        chunks.append((top + row, packed_chunk(data, compression)))
    at = len(layout.data) + 8 * len(chunks)
    unfinished = rng.odd(0.08)  # the table was never filled in
    for index, (_, data) in enumerate(chunks):
        layout.put(f"offset {index}", 8, 0 if unfinished else at)
        at += 8 + len(data)
    for index, (row, data) in enumerate(chunks):
        layout.put(f"row {index}", 4, row).put(f"bytes {index}", 4, len(data)).raw(data)
    return layout


def plane(rng, kind, count):
    if kind == WHOLE:
        values = [0, 1, 7, 65535, 2**24 + 1, 2**32 - 1]
        return struct.pack(f"<{count}I", *rng.choices(values, k=count))
    values = SAMPLES + [rng.uniform(-3, 3) for _ in range(rng.choice([2, count]))]
    if kind == HALF:
        values = [value for value in values if abs(value) < 65505]
    if rng.odd(0.4):
        values += rng.choice([[NAN], [INF, -INF]])
    return struct.pack(f"<{count}{'e' if kind == HALF else 'f'}", *rng.choices(values, k=count))


def exr(rng):
    case = Case()
    width, height = rng.randint(1, rng.most), rng.randint(1, rng.most)
    kinds = [rng.choice([WHOLE, HALF, HALF, FLOAT, FLOAT]) for _ in range(rng.choice([1, 1, 2, 3]))]
    samples = [plane(rng, kind, width * height) for kind in kinds]
    layout = exr_file(rng, width, height, kinds, samples, rng.randrange(4))
    return case.call("OpenEXR", source(rng, case, b"map.exr", layout), 0.0, None)


RECIPES = [(jpeg, 4), (exr, 4)]


def edges(rng):
    rng.sound = True  # the shapes are those named here
    for values in ([0.25], [-1.5, 2.0], [70000.0] * 4, [-70000.0] * 4, [NAN], [NAN, INF, -INF],
                   [-0.0, 0.0], [65535.0, -65535.0], [-INF], [INF]):
        samples = struct.pack(f"<{len(values)}f", *values)
        for compression in range(4):
            layout = exr_file(rng, len(values), 1, [FLOAT], [samples], compression)
            yield Case((b"a.exr", layout)).call("OpenEXR", b"a.exr")
    for sides in ((1, 1), (13, 9), (8, 8), (16, 16), (24, 8), (1, 17), (0, 1), (1, 0)):
        for value in QUALITIES:
            for palette in ([b"\x80" * 3], [rng.randbytes(3) for _ in range(99)]):
                case = Case((b"a.bmp", bmp(rng, Shape(rng).resized(*sides), palette)))
                yield case.call("saveAsJpeg", b"a.bmp", value, b"out.jpg")
    for sides in ((8, -8), (65536 + 8, 8), (65529, 1), (1, 65529), (65535, 65535)):
        layout = bmp(rng, Shape(rng).resized(8, 8), colours(rng))
        layout.set("width", sides[0]).set("height", sides[1])
        if sides[1] != -8:  # 65,528 rows take a while
            yield Case((b"a.bmp", layout)).call("saveAsJpeg", b"a.bmp", 50.0, b"out.jpg")
    wide = bmp(rng, Shape(rng).resized(21860, 2), colours(rng))  # its rows are only partly flipped
    yield Case((b"a.bmp", wide)).call("saveAsJpeg", b"a.bmp", 50.0, b"out.jpg")
    yield from unreadable(("saveAsJpeg", 50.0, b"out.jpg"), ("OpenEXR", 0.0, None))
    yield from nulls(("saveAsJpeg", 50.0), ("OpenEXR", 0.0))
