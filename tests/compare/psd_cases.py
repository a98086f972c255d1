"""Cases of the PSD operations."""

from cases import INF, NAN, Case, Layout, nulls, source, target, unreadable
from tiff_cases import MODES, NO_SWAPS, SWAPS

# Channels, depth and colour mode of files that some operations refuse.
KINDS = [(4, 8, 3), (1, 8, 1), (3, 16, 3), (1, 24, 1), (3, 32, 3), (6, 4, 4), (2, 12, 2), (3, 8, 1)]
COLOURS = [0.0, 16777215.0, 16777216.0, -1.0, -65536.5, 255.5, 65535.9, 65536.0, 1e10, 3e38, NAN,
           INF]
LEVELS = [0, 1, 2, 100, 128, 200, 253, 254, 255, 256, 300, -1, -100, 2**31 - 1, -(2**31),
          -(2**31) + 255]


class Shape:
    """What the maps of one case have in common."""

    def __init__(self, rng, grey16=False):
        self.width, self.height = rng.side(), rng.side()
        self.resources, self.layers = (rng.choice([0, 4, 61]) if rng.odd(0.5) else 2 for _ in "rl")
        self.channels, self.depth, self.mode = (1, 16, 1) if grey16 else (3, 8, 3)
        if rng.odd(0.15):
            self.channels, self.depth, self.mode = rng.choice(KINDS)
        self.extra = rng.choice([1, 50]) if rng.odd(0.3) else 0

    def resized(self, width, height):
        self.width, self.height = width, height
        return self


def psd(rng, shape, palette):
    """A map whose planes are painted with a few pixels, so that two maps often have the same."""
    layout = Layout(b"8BPS", "big").put("version", 2, 1).raw(rng.randbytes(6))
    layout.put("channels", 2, shape.channels)
    layout.put("height", 4, shape.height).put("width", 4, shape.width)
    layout.put("depth", 2, shape.depth).put("colour mode", 2, shape.mode).put("colour data", 4, 0)
    layout.put("resources", 4, shape.resources).raw(rng.randbytes(shape.resources))
    layout.put("layers", 4, shape.layers).raw(rng.randbytes(shape.layers)).put("compression", 2, 0)
    pixels = rng.pixels(palette, shape.width * shape.height)
    for channel in range(shape.channels):
        layout.raw(b"".join((pixel * 3)[channel:][: shape.depth // 8] for pixel in pixels))
    return layout.raw(rng.randbytes(shape.extra))


def colours(rng):
    """Pixels: a background, others that differ from it in one byte, and any."""
    base = rng.randbytes(3)
    near = [bytes(b ^ 1 if i == k else b for i, b in enumerate(base)) for k in range(3)]
    return [base] * 5 + near + [rng.randbytes(3) for _ in range(3)] + [bytes(3), b"\xff" * 3]


def merge(rng):
    case = Case()
    grey16 = rng.random() < 0.35
    shape, palette = Shape(rng, grey16), colours(rng)
    first = source(rng, case, b"tile.psd", psd(rng, shape, palette))
    if rng.odd(0.05):
        shape.resources, shape.extra = rng.choice([(0, 60), (4, 0), (12, 100)])
    other = Shape(rng, grey16) if rng.odd(0.06) else shape
    second = source(rng, case, b"all.psd", psd(rng, other, palette))
    return case.call("mergeMapsPSD", first, 0.0, first if rng.odd(0.03) else second)


def seamless(rng):
    """Two renders of 100 pixels or a few more a side, now and then less."""
    case = Case()
    sides = (rng.choice([101, 103, 120, 99]) if rng.odd(0.4) else 100 for _ in "wh")
    shape = Shape(rng).resized(*sides)
    palette = [rng.randbytes(3) for _ in range(30)]
    first = source(rng, case, b"shifted.psd", psd(rng, shape, palette))
    if rng.odd(0.05):
        shape.resources = rng.choice([0, 12])
    plain = psd(rng, shape, palette)
    if rng.odd(0.15):
        name = rng.choice(["version", "compression", "colour data", "height", "layers"])
        plain.set(name, rng.choice([0, 1, 2, plain.get(name) + 1]))
    second = source(rng, case, b"plain.psd", plain)
    second = first if rng.odd(0.03) else second
    return case.call("mergeSeamlessPSD", first, second, rng.randrange(2))


def swap(rng):
    case = Case()
    path = source(rng, case, b"map.psd", psd(rng, Shape(rng), colours(rng)))
    if rng.odd(0.2):
        return case.call("swapChannelsPSD", path, rng.choice(MODES))
    return case.call("swapRGBPSD", path, rng.choice(SWAPS))


def grey(rng):
    case = Case()
    palette = [bytes([value] * 3) for value in range(0, 256, rng.choice([1, 5, 17]))] + colours(rng)
    path = source(rng, case, b"map.psd", psd(rng, Shape(rng), palette))
    out = target(rng, case, path, b"out.psd")
    return case.call("GrayscalePSD", path, out, rng.choice([*LEVELS, rng.randint(0, 255)]))


def replace(rng):
    case = Case()
    palette = colours(rng)
    path = source(rng, case, b"map.psd", psd(rng, Shape(rng), palette))
    packed = [float(int.from_bytes(rng.choice(palette), "big")) for _ in "ft"]
    if rng.odd(0.3):
        packed[rng.randrange(2)] = rng.choice(COLOURS)
    return case.call("convertPSD", path, *packed, rng.randrange(2))


def thumb(rng):
    case = Case()
    path = source(rng, case, b"map.psd", psd(rng, Shape(rng), colours(rng)))
    sizes = [0, -1, 30001, 2**31 - 1] if rng.odd(0.08) else [1, 2, 3, 4, 5, 7, 8, 10, 16, 33]
    return case.call("createThumb", path, rng.choice([*sizes, rng.randint(1, rng.most + 3)]))


RECIPES = [(merge, 4), (seamless, 2), (swap, 3), (grey, 3), (replace, 3), (thumb, 4)]


def edges(rng):
    rng.sound = True  # the shapes are those named here
    operations = [("mergeMapsPSD", 0.0, b"b.psd"), ("swapRGBPSD", 1.0), ("swapRGBPSD", 2.0),
                  ("swapRGBPSD", 3.0), ("GrayscalePSD", b"c.psd", 100), ("createThumb", 4),
                  ("convertPSD", 0.0, 16777215.0, 0), ("convertPSD", 0.0, 16777215.0, 1)]
    rgb = (3, 8, 3)
    headers = [(kind, "version", 1) for kind in [rgb, (1, 16, 1), *KINDS]]
    headers += [(rgb, "version", 2), (rgb, "colour data", 768), (rgb, "compression", 1),
                (rgb, "height", 0), (rgb, "width", 0)]
    for name, *rest in operations:
        for kind, field, value in headers:
            shape = Shape(rng).resized(2, 2)
            shape.channels, shape.depth, shape.mode = kind
            files = [psd(rng, shape, colours(rng)).set(field, value) for _ in "ab"]
            yield Case((b"a.psd", files[0]), (b"b.psd", files[1])).call(name, b"a.psd", *rest)
    palette = [rng.randbytes(3) for _ in range(99)]
    for first, second in (((99, 200), (99, 200)), ((100, 100), (100, 101)), ((100, 100),) * 2,
                          ((101, 107),) * 2):
        for horizontal in (0, 1):
            files = [psd(rng, Shape(rng).resized(*sides), palette) for sides in (first, second)]
            case = Case((b"a.psd", files[0]), (b"b.psd", files[1]))
            yield case.call("mergeSeamlessPSD", b"a.psd", b"b.psd", horizontal)
    for sides, size in (((64, 64), 128), ((64, 32), 8), ((32, 64), 8), ((7, 5), 3), ((5, 7), 3),
                        ((9, 9), 9), ((10, 3), 4), ((2, 1), 5), ((1, 4), 3)):
        case = Case((b"a.psd", psd(rng, Shape(rng).resized(*sides), palette)))
        yield case.call("createThumb", b"a.psd", size)
    greys = [bytes([value] * 3) for value in range(256)]
    for level in [*LEVELS, *range(5, 256, 25)]:
        case = Case((b"a.psd", psd(rng, Shape(rng).resized(32, 32), greys)))
        yield case.call("GrayscalePSD", b"a.psd", b"b.psd", level)
    for value in NO_SWAPS:
        case = Case((b"a.psd", psd(rng, Shape(rng).resized(2, 2), colours(rng))))
        yield case.call("swapRGBPSD", b"a.psd", value)
    yield from unreadable(*operations, ("mergeSeamlessPSD", b"empty", 1))
    yield from nulls(("mergeMapsPSD", 0.0), ("swapRGBPSD", 1.0))
    rng.sheet = True
    for number in range(150):
        shape, palette = Shape(rng, number % 3 == 0).resized(*rng.sides()), colours(rng)
        files = [(name, psd(rng, shape, palette)) for name in (b"a.psd", b"b.psd")]
        yield Case(*files).call("mergeMapsPSD", b"a.psd", 0.0, b"b.psd")
