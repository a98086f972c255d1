"""Cases of the BMP operations."""

from cases import NAN, Case, Layout, nulls, source, target, unreadable
from psd_cases import colours
from tiff_cases import MODES, NO_SWAPS, SWAPS


class Shape:
    """What the maps of one case have in common."""

    def __init__(self, rng):
        self.width, self.height = rng.side(), rng.side()
        self.offset = rng.choice([55, 56, 70, 122]) if rng.odd(0.3) else 54
        self.bits = rng.choice([32, 8]) if rng.odd(0.1) else 24
        self.extra = rng.choice([1, 2, 3, 40]) if rng.odd(0.4) else 0

    def resized(self, width, height):
        self.width, self.height = width, height
        return self


def bmp(rng, shape, palette):
    """An image painted with a few pixels; what pads its rows is not zero."""
    padding = -3 * shape.width % 4
    size = (3 * shape.width + padding) * shape.height
    layout = Layout(b"BM").put("file size", 4, shape.offset + size).put("reserved", 4, 7)
    layout.put("pixel offset", 4, shape.offset).put("header size", 4, 40)
    layout.put("width", 4, shape.width).put("height", 4, shape.height).put("planes", 2, 1)
    layout.put("bits", 2, shape.bits).put("compression", 4, 0).put("image size", 4, size)
    layout.raw(rng.randbytes(16 + shape.offset - 54))
    for _ in range(shape.height):
        layout.raw(b"".join(rng.pixels(palette, shape.width)) + rng.randbytes(padding))
    return layout.raw(rng.randbytes(shape.extra))


def merge(rng):
    case = Case()
    shape, palette = Shape(rng), colours(rng)
    first = source(rng, case, b"tile.bmp", bmp(rng, shape, palette))
    other = Shape(rng) if rng.odd(0.08) else shape
    second = source(rng, case, b"all.bmp", bmp(rng, other, palette))
    return case.call("mergeMapsBMP", first, 0.0, first if rng.odd(0.03) else second)


def swap(rng):
    case = Case()
    path = source(rng, case, b"map.bmp", bmp(rng, Shape(rng), colours(rng)))
    if rng.odd(0.2):
        return case.call("swapChannelsBMP", path, rng.choice(MODES))
    return case.call("swapRGBBMP", path, rng.choice(SWAPS))


def crop(rng):
    case = Case()
    shape = Shape(rng)
    shape.height += rng.choice([0, 2, 5])
    path = source(rng, case, b"map.bmp", bmp(rng, shape, colours(rng)))
    width, offset = rng.randint(1, rng.most), rng.choice([0, 3, 6])
    if rng.odd(0.3):
        width = rng.choice([0, -1, 1, 2, 3, 4, 5, shape.width, 2**31 - 1, -(2**31)])
    if rng.odd(0.3):
        offsets = [1, -3, -200, 3 * shape.width, rng.randint(-9, 99), 2**31 - 1, -(2**31)]
        offset = rng.choice(offsets)
    return case.call("cropBMP", path, target(rng, case, path, b"out.bmp"), offset, width)


def thumb(rng):
    case = Case()
    shape = Shape(rng)
    path = source(rng, case, b"map.bmp", bmp(rng, shape, colours(rng)))
    sizes = [1, 2, 3, rng.randint(1, rng.most), max(shape.width, shape.height)]
    if rng.odd(0.5):
        sizes = [4.9, 5, 7, 10, 16, 33] * 3 + [0, -1, -1.0, 2**31 - 1, 1e300, NAN]
    return case.call("CreateThumbnailBMP", path, rng.choice(sizes))


RECIPES = [(merge, 4), (swap, 3), (crop, 4), (thumb, 4)]


def edges(rng):
    rng.sound = True  # the shapes are those named here

    def one(sides, name, *rest, palette=None, **changes):
        files = [bmp(rng, Shape(rng).resized(*sides), palette or colours(rng)) for _ in "ab"]
        for layout in files:
            for field, value in changes.items():
                layout.set(field.replace("_", " "), value)
        return Case((b"a.bmp", files[0]), (b"b.bmp", files[1])).call(name, b"a.bmp", *rest)

    operations = [("mergeMapsBMP", 0.0, b"b.bmp"), ("swapRGBBMP", 2.0), ("cropBMP", b"c.bmp", 3, 2),
                  ("cropBMP", b"c.bmp", 0, 1), ("CreateThumbnailBMP", 3.0)]
    for width in (0, 1, 2, 3, 4, 5):
        for operation in operations:
            for changes in ({}, {"height": -2}, {"width": -3}, {"bits": 32}, {"pixel_offset": 56},
                            {"pixel_offset": 9999}):
                yield one((width, 5), *operation, **changes)
    for width in (4, 5, 10, 0, -1, 11):
        for height in (10, 4, 3, 2):
            yield one((10, height), "cropBMP", b"c.bmp", 6, width)
    for sides in ((64, 32), (32, 64), (10, 10), (7, 7), (100, 3), (3, 100), (33, 17)):
        for size in (1, 2, 3, 7, 8, 10, 33, 64, 65, 100, 256):
            yield one(sides, "CreateThumbnailBMP", size)
    for value in NO_SWAPS:
        yield one((2, 2), "swapRGBBMP", value)
    yield from unreadable(*operations, ("CreateThumbnailBMP", 0.0))
    yield from nulls(("mergeMapsBMP", 0.0), ("swapRGBBMP", 1.0), ("CreateThumbnailBMP", 8.0),
                     ("CreateThumbnailBMP", 0.0))
    rng.sheet = True
    for _ in range(100):
        palette, sides = colours(rng), rng.sides()
        yield one(sides, "mergeMapsBMP", 0.0, b"b.bmp", palette=palette)
