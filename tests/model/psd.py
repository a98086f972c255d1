"""Maps as PSD files: one flat, uncompressed picture without a colour table.

All numbers are big-endian. The image data is one plane after the other, each with its rows from the
top one down and without padding. What stands before the image data is kept as it is, apart from the
fields that an operation changes.
"""

from types import SimpleNamespace

from world import be, create, load, single, whole

# What the last header told. Fields that a broken header does not reach keep their old values.
fHeader = SimpleNamespace(channels=0, height=0, width=0, depth=0, mode=0)
offst = 0  # where the image data starts, or how far the reading of the header got


def readPSDHeader(img):
    """Reads the header into fHeader and offst, up to the first fault. A cut file gives -1."""
    global offst
    offst = 0
    if img[:4] != b"8BPS":
        return -1
    if len(img) < 6:
        return -1
    if be(img, 4, 2) != 1:
        return -2
    if len(img) < 30:
        return -1
    fHeader.channels = be(img, 12, 2)
    fHeader.height = be(img, 14, 4)
    fHeader.width = be(img, 18, 4)
    fHeader.depth = be(img, 22, 2, signed=True)
    fHeader.mode = be(img, 24, 2, signed=True)
    if be(img, 26, 4) != 0:
        return -3
    at = 30
    for _block in ("image resources", "layers and masks"):
        at += 4 + be(img, at, 4)
        if at > min(len(img), 2**31 - 3):
            return -1
        offst = at
    if len(img) < at + 2:
        return -1
    if be(img, at, 2) != 0:
        return -4
    offst = at + 2
    return 0


def loadPSD(path):
    """A file's bytes, None where it cannot be opened, and the status of loading and header."""
    img = load(path)
    if img is None:
        return None, -1
    return bytearray(img), readPSDHeader(img)


def holds(img, at, size):
    """Whether all of `size` bytes are there. No bytes are there at any place."""
    return len(img[at : at + size]) == size


def colourPlanes(img):
    """Red, green and blue, taken as 8-bit planes; None where the file ends before their end."""
    n = fHeader.width * fHeader.height
    if not holds(img, offst, 3 * n):
        return None
    return [img[offst + k * n : offst + (k + 1) * n] for k in range(3)]


def mergePSD(source, target):
    """Copies each source pixel that is not background over the target's.

    The target's first pixel tells the background. A pixel that differs from it in one byte is
    copied with all its bytes. Both files are addressed with one offset: the target's for 8-bit RGB,
    the source's for 16-bit grey.
    """
    merged, status = loadPSD(target)
    if status != 0:
        return status
    o, height, width = offst, fHeader.height, fHeader.width
    img, status = loadPSD(source)
    if status != 0:
        return status
    if fHeader.height != height or fHeader.width != width:
        return -6
    n = width * height
    k = fHeader.depth * fHeader.mode
    if k == 24:
        starts, step = (o, o + n, o + 2 * n), 1  # the first pixel's bytes; from pixel to pixel
    elif k == 16:
        o = offst
        starts, step = (o, o + 1), 2
    else:
        return 36
    size = n * len(starts)
    if not holds(merged, o, size) or not holds(img, o, size):
        return -1
    background = [merged[start] for start in starts if n > 0]
    for i in range(n):
        places = [start + i * step for start in starts]
        if [img[p] for p in places] != background:
            for p in places:
                merged[p] = img[p]
    return 0 if create(target, merged) else -5


def mergeSeamlessPSD(shifted, plain, horizontal):
    """Repairs the borders of `plain` with pixels of a render displaced by 50; rewrites `shifted`.

    Faults in the header of `plain` do not matter, only its size does. Both files are addressed with
    the offset of `plain`.
    """
    S, status = loadPSD(shifted)
    if status != 0:
        return status
    H, W = fHeader.height, fHeader.width
    if H < 100 or W < 100:
        return -9
    img, _ = loadPSD(plain)
    if img is None:
        return -1
    if fHeader.height != H or fHeader.width != W:
        return -6
    n = W * H
    if not holds(img, offst, 3 * n):
        return -1
    moves = []  # places in a plane: to, from
    if horizontal:
        for row in range(2 * W, n - W, W):  # without the top two rows and the bottom row
            moves += [(row + c, row + c + 50) for c in (0, 1)]
            moves += [(row + c, row + c + 50 - W) for c in (W - 2, W - 1)]
    else:
        moves += [(p, p + 50 * W) for p in range(10 * W)]
        moves += [(n - 10 * W + p, 40 * W + p) for p in range(10 * W)]
    if offst + 2 * n + max(p for _, p in moves) >= len(S):
        return -1
    for plane in (offst, offst + n, offst + 2 * n):
        for to, origin in moves:
            img[plane + to] = S[plane + origin]
    return 0 if create(shifted, img) else -5


def swapChannelsPSD(path, mode):
    """Reorders the three planes. A mode that does not exist writes none of them."""
    img, status = loadPSD(path)
    if status != 0:
        return status
    if fHeader.depth * fHeader.channels != 24:
        return -56
    planes = colourPlanes(img)
    if planes is None:
        return -1
    red, green, blue = planes
    orders = {1: (red, blue, green), 2: (blue, red, green), 3: (green, blue, red)}
    written = b"".join(orders.get(mode, ()))
    return 0 if create(path, img[:offst] + written) else -5


def wrap(x):
    """An integer cut to 32 bits, signed."""
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
    img, status = loadPSD(input)
    if status != 0:
        return status
    if fHeader.mode != 3:
        return -3
    planes = colourPlanes(img)
    if planes is None:
        return -1
    img[12:14] = b"\0\1"  # channels
    img[24:26] = b"\0\1"  # colour mode
    buffer = img[:offst]
    for r, g, b in zip(*planes):
        v = int((r * 0.333 + g * 0.333) + b * 0.333 + 0.5)
        buffer.append(darkened(max(0, min(255, v)), level))
    return 0 if create(output, buffer) else -5


def unpacked(colour):
    """Red, green and blue of a colour packed into a 32-bit float, the low eight bits of each."""
    c = single(colour)
    green = whole(c / 256)
    return tuple(part & 255 for part in (whole(c / 65536), green, whole(c - green * 256)))


def convertPSD(path, fromColour, toColour, invert):
    """Replaces one colour, or with `invert` every other colour. Planes are taken as 8-bit."""
    img, status = loadPSD(path)
    if status != 0:
        return status
    planes = colourPlanes(img)
    if planes is None:
        return -1
    old, new = unpacked(fromColour), unpacked(toColour)
    n = fHeader.width * fHeader.height
    for i, pixel in enumerate(zip(*planes)):
        if (pixel == old) != bool(invert):
            for k in range(3):
                img[offst + k * n + i] = new[k]
    return 0 if create(path, img) else -5


def shown(length, size, step, margin):
    """For each place of a thumbnail's side, the picture's column or row there; None is black.

    What the step leaves over is spread: after every `period` places one more sample is skipped.
    """
    rest = length - step * size
    period = size // rest if rest > 0 else 0
    samples = []
    for j in range(-margin, size - margin):
        sample = step * j + (j // period if period > 0 else 0)
        samples.append(sample if j >= 0 and sample < length else None)
    return samples


def createThumb(path, size):
    """Shrinks a map to a square of `size`, the picture centred in black along one axis."""
    if size < 1 or size > 30000:
        return -9
    img, status = loadPSD(path)
    if status != 0:
        return status
    planes = colourPlanes(img)
    if planes is None:
        return -1
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
    return 0 if create(path, thumb) else -5
