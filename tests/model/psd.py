"""Maps as PSD files: one flat, uncompressed image without a colour table.

All numbers are big-endian. The image data is one plane after the other, each with its rows from the
top one down and without padding. What precedes the image data is kept as it is, apart from the
fields that an operation changes.
"""

import contextlib
from types import SimpleNamespace

from world import Refused, be, check, create, load, single, whole

# Of the last header. Fields that a broken header does not reach keep their old values.
fHeader = SimpleNamespace(channels=0, height=0, width=0, depth=0, mode=0)
offst = 0  # where the image data starts, or how far the reading of the header got


def readPSDHeader(img):
    """Reads the header into fHeader and offst, up to the first fault."""
    global offst
    offst = 0
    check(img[:4] == b"8BPS" and len(img) >= 6, -1)
    check(be(img, 4, 2) == 1, -2)
    check(len(img) >= 30, -1)
    fHeader.channels = be(img, 12, 2)
    fHeader.height = be(img, 14, 4)
    fHeader.width = be(img, 18, 4)
    fHeader.depth = be(img, 22, 2, signed=True)
    fHeader.mode = be(img, 24, 2, signed=True)
    check(be(img, 26, 4) == 0, -3)
    at = 30
    for _block in ("image resources", "layers and masks"):
        at += 4 + be(img, at, 4)
        check(at <= min(len(img), 2**31 - 3), -1)
        offst = at
    check(len(img) >= at + 2, -1)
    check(be(img, at, 2) == 0, -4)
    offst = at + 2


def loadPSD(path):
    """A file's bytes; its header is read, too."""
    img = bytearray(load(path, -1))
    readPSDHeader(img)
    return img


def checkHolds(img, at, size):
    """Refuses a file that lacks one of the `size` bytes at an offset."""
    check(len(img[at : at + size]) == size, -1)


def colourPlanes(img):
    """Red, green and blue, taken as 8-bit planes."""
    n = fHeader.width * fHeader.height
    checkHolds(img, offst, 3 * n)
    return [img[offst + k * n : offst + (k + 1) * n] for k in range(3)]


def mergePSD(source, target):
    """Copies each source pixel that is not background over the target's.

    The target's first pixel is the background. A pixel that differs from it in one byte is copied
    with all its bytes. Both files are addressed with one offset: the target's for 8-bit RGB, the
    source's for 16-bit grey.
    """
    merged = loadPSD(target)
    o, height, width = offst, fHeader.height, fHeader.width
    img = loadPSD(source)
    check((fHeader.height, fHeader.width) == (height, width), -6)
    n = width * height
    k = fHeader.depth * fHeader.mode
    check(k in (24, 16), 36)
    if k == 24:
        starts, step = (o, o + n, o + 2 * n), 1  # the first pixel's bytes; from pixel to pixel
    else:
        o = offst
        starts, step = (o, o + 1), 2
    checkHolds(merged, o, n * len(starts))
    checkHolds(img, o, n * len(starts))
    background = [merged[start] for start in starts if n > 0]
    for i in range(n):
        places = [start + i * step for start in starts]
        if [img[p] for p in places] != background:
            for p in places:
                merged[p] = img[p]
    return create(target, merged, -5)


def mergeSeamlessPSD(shifted, plain, horizontal):
    """Repairs the borders of `plain` with pixels of a render displaced by 50; rewrites `shifted`.

    Faults in the header of `plain` do not matter, only its size does. Both files are addressed with
    the offset of `plain`.
    """
    S = loadPSD(shifted)
    H, W = fHeader.height, fHeader.width
    check(H >= 100 and W >= 100, -9)
    img = bytearray(load(plain, -1))
    with contextlib.suppress(Refused):
        readPSDHeader(img)
    check((fHeader.height, fHeader.width) == (H, W), -6)
    n = W * H
    checkHolds(img, offst, 3 * n)
    moves = []  # offsets in a plane: to, from
    if horizontal:
        for row in range(2 * W, n - W, W):  # without the top two rows and the bottom row
            moves += [(row + c, row + c + 50) for c in (0, 1)]
            moves += [(row + c, row + c + 50 - W) for c in (W - 2, W - 1)]
    else:
        moves += [(p, p + 50 * W) for p in range(10 * W)]
        moves += [(n - 10 * W + p, 40 * W + p) for p in range(10 * W)]
    check(offst + 2 * n + max(p for _, p in moves) < len(S), -1)
    for plane in (offst, offst + n, offst + 2 * n):
        for to, origin in moves:
            img[plane + to] = S[plane + origin]
    return create(shifted, img, -5)


def swapChannelsPSD(path, mode):
    """Reorders the three planes. A mode that does not exist writes none of them."""
    img = loadPSD(path)
    check(fHeader.depth * fHeader.channels == 24, -56)
    red, green, blue = colourPlanes(img)
    orders = {1: (red, blue, green), 2: (blue, red, green), 3: (green, blue, red)}
    written = b"".join(orders.get(mode, ()))
    return create(path, img[:offst] + written, -5)


def wrap(x):
    """The low 32 bits of an integer, signed."""
    return (x + 2**31) % 2**32 - 2**31


def darkened(v, level):
    """A grey value above the black point: 255 stays, a lower one is pulled down the more."""
    if v == 255:
        return 255
    if v <= level:
        return 0
    q = int(wrap((255 - v) * wrap(level - 1)) / wrap(255 - level))
    return max(0, v - q) & 255


def GrayscalePSD(input, output, level):
    """Writes an RGB map as a grey one of one plane, with `level` as its black point.

    The three weights are the same and the sum is rounded half up.
    """
    img = loadPSD(input)
    check(fHeader.mode == 3, -3)
    planes = colourPlanes(img)
    img[12:14] = b"\0\1"  # channels
    img[24:26] = b"\0\1"  # colour mode
    buffer = img[:offst]
    for r, g, b in zip(*planes):
        v = int((r * 0.333 + g * 0.333) + b * 0.333 + 0.5)
        buffer.append(darkened(max(0, min(255, v)), level))
    return create(output, buffer, -5)


def unpacked(colour):
    """Red, green and blue of a colour packed into a 32-bit float, the low eight bits of each."""
    c = single(colour)
    green = whole(c / 256)
    return tuple(part & 255 for part in (whole(c / 65536), green, whole(c - green * 256)))


def convertPSD(path, fromColour, toColour, invert):
    """Replaces one colour, or with `invert` every other colour. Planes are taken as 8-bit."""
    img = loadPSD(path)
    planes = colourPlanes(img)
    old, new = unpacked(fromColour), unpacked(toColour)
    n = fHeader.width * fHeader.height
    for i, pixel in enumerate(zip(*planes)):
        if (pixel == old) != bool(invert):
            for k in range(3):
                img[offst + k * n + i] = new[k]
    return create(path, img, -5)


def shown(length, size, step, margin):
    """For each pixel of a thumbnail's side, the map's column or row there; None is black.

    What the step leaves over is spread: after every `period` pixels one more sample is skipped.
    """
    rest = length - step * size
    period = size // rest if rest > 0 else 0
    samples = []
    for j in range(-margin, size - margin):
        sample = step * j + (j // period if period > 0 else 0)
        samples.append(sample if j >= 0 and sample < length else None)
    return samples


def createThumb(path, size):
    """Shrinks a map to a square of `size`, the image centred in black along one axis."""
    check(1 <= size <= 30000, -9)
    img = loadPSD(path)
    planes = colourPlanes(img)
    W, H = fHeader.width, fHeader.height
    step = max(1, max(W, H) // size)
    left = top = 0
    if H > W:
        left = max(0, (size - W // step) // 2)
    else:
        top = max(0, (size - H // step) // 2)
    columns = shown(W, size, step, left)
    rows = shown(H, size, step, top)
    img[14:18] = img[18:22] = size.to_bytes(4, "big")
    thumb = img[:offst]
    for plane in planes:
        for row in rows:
            for column in columns:
                black = row is None or column is None
                thumb.append(0 if black else plane[row * W + column])
    return create(path, thumb, -5)
