"""Maps as BMP files: 24 bits a pixel, uncompressed, bottom row first.

All numbers are little-endian. A pixel is three bytes, blue, green and red, whatever the header says
about its bits. A row is followed by padding up to a multiple of four bytes.
"""

import math
from typing import NamedTuple

from world import check, check_writable, create, le, load, single, whole


class Header(NamedTuple):
    """What the operations need of a header, and the length of a row with its padding."""

    offset: int  # of the pixels
    width: int
    height: int
    bits: int  # per pixel
    stride: int


def getPadding(width):
    """Bytes after a row, worked out in single precision. A negative width has none."""
    r = int(math.fmod(single(3 * width), 4))
    return 4 - r if r in (1, 2, 3) else 0


def readBMPHeader(data):
    """The header of a BMP. The file must start with "BM" and be as long as its headers."""
    check(data[:2] == b"BM" and len(data) >= 54, -7)
    width = le(data, 18, 4, signed=True)
    height = le(data, 22, 4, signed=True)
    stride = 3 * width + getPadding(width)
    return Header(le(data, 10, 4), width, height, le(data, 28, 2), stride)


def pixels(bmp, end):
    """The offsets of all whole pixels before `end`, row by row. Without columns there are none."""
    if bmp.width < 1:
        return
    for row in range(bmp.height):
        p = bmp.offset + row * bmp.stride
        if p >= end:
            return
        yield from range(p, min(p + 3 * bmp.width, end - 2), 3)


def mergeBMP(source, target):
    """Fills the target's background with the source's pixels; other target pixels stay.

    The background is the source's first stored pixel, bottom left.
    """
    painted = load(target, -1760)
    bmp = readBMPHeader(painted)
    data = load(source, -1770)
    other = readBMPHeader(data)
    check((other.width, other.height) == (bmp.width, bmp.height), -30)
    check((other.offset, other.bits) == (bmp.offset, bmp.bits), -40)
    check_writable(source, -101)
    check_writable(target, -201)
    background = data[bmp.offset : bmp.offset + 3]
    merged = bytearray(painted)
    for p in pixels(bmp, min(len(data), len(painted))):
        if painted[p : p + 3] == background:
            merged[p : p + 3] = data[p : p + 3]
    return create(target, merged, -201)


def swapChannelsBMP(path, mode):
    """Exchanges two channels of every pixel. A mode that does not exist changes nothing."""
    data = load(path, -1760)
    bmp = readBMPHeader(data)
    check_writable(path, -101)
    a, b = {1: (0, 1), 2: (0, 2), 3: (1, 2)}.get(mode, (0, 0))
    swapped = bytearray(data)
    for p in pixels(bmp, len(data)):
        swapped[p + a], swapped[p + b] = data[p + b], data[p + a]
    return create(path, swapped, -101)


def run(data, at, size):
    """Bytes of a file; those before its start or past its end are 0."""
    before = bytes(min(size, max(0, -at)))
    return (before + data[max(0, at) : max(0, at + size)]).ljust(size, b"\0")


def pixelBytes(width, height):
    """The length of all rows. A side of 0 or below has no pixels."""
    return max(0, height) * max(0, 3 * width + getPadding(width))


def patched(data, bmp, width, height):
    """All bytes before the pixels, with the sizes of a new image in the headers."""
    size = pixelBytes(width, height)
    head = bytearray(data)
    for at, value in ((2, bmp.offset + size), (18, width), (22, height), (34, size)):
        head[at : at + 4] = (value % 2**32).to_bytes(4, "little")
    return head[: bmp.offset]


def cropBMP(input, output, xOffset, newWidth):
    """Writes a band of columns, without the bottom row and the top two. xOffset counts bytes."""
    data = load(input, -1760)
    bmp = readBMPHeader(data)
    check(bmp.offset <= len(data), -7)
    height = bmp.height - 3
    check(bmp.offset + pixelBytes(newWidth, height) < 2**32, -9)
    rows = bytearray()
    q = bmp.offset + bmp.stride + xOffset
    for _ in range(height if newWidth > 0 else 0):
        # An image without columns has no pixels: its band is black.
        band = run(data, q, 3 * newWidth) if bmp.width > 0 else bytes(3 * newWidth)
        rows += band + bytes(getPadding(newWidth))
        q += bmp.stride
    return create(output, patched(data, bmp, newWidth, height) + rows, -5)


def createBMPthumb(path, size):
    """Replaces an image by a small copy, its longer side `size`, without any filtering.

    All ratios and sums are single precision. A file that cannot be written is not reported. A top-down
    image, of negative height, is refused.
    """
    check(size >= 1, -9)
    check(path is not None, -1)
    data = load(path, -1)
    check(data[:2] == b"BM", -2)
    bmp = readBMPHeader(data)
    W, H = bmp.width, bmp.height
    if H < size and W < size:
        return 0
    check(bmp.offset <= len(data), -7)
    check(H >= 0, -9)
    ratio = single(single(min(W, H)) / single(max(W, H)))
    shorter = whole(single(ratio * single(size)))
    width, height = (size, shorter) if H <= W else (shorter, size)
    step = single(single(max(W, H)) / single(size))
    check(bmp.offset + pixelBytes(width, height) < 2**32, -9)
    rows = bytearray()
    rowSum, rowStart = 0.0, bmp.offset
    for _ in range(height if width > 0 else 0):
        columnSum, p = 0.0, rowStart
        for _ in range(width):
            rows += data[p : p + 3] if 0 <= p < len(data) - 3 else b"\0\0\0"
            old, columnSum = columnSum, single(columnSum + step)
            p += 3 * (int(columnSum) - int(old))
        rows += bytes(getPadding(width))
        old, rowSum = rowSum, single(rowSum + step)
        rowStart += bmp.stride * (int(rowSum) - int(old))
    return create(path, patched(data, bmp, width, height) + rows, 0)
