"""Uncompressed 24-bit Targa files from the host's 8-bit TIFF maps."""

import struct

from tiff import createOther, headOf, readHeader
from world import check, check_writable, load


def targaRow(row, samples):
    """One row as blue, green, red. A grey sample is taken three times."""
    red, green, blue = (row[0::3], row[1::3], row[2::3]) if samples == 3 else (row, row, row)
    out = bytearray(3 * len(red))
    out[0::3], out[1::3], out[2::3] = blue, green, red
    return bytes(out)


def convertToTarga(inPath, outPath):
    """Writes a map as Targa. Its pixels are taken to be the last bytes of the file.

    The depth and the strip's own offset are not looked at.
    """
    data = load(inPath, -10.0)
    info = readHeader(headOf(data))
    tags = [tag for tag, *_ in info.entries]
    check(257 in tags and 258 in tags, -257.0)
    width, height, samples = info.width if 256 in tags else -1, info.length, info.channels
    header = struct.pack("<BBB5xHHHHBB", 0, 0, 2, 0, 0, width & 65535, height & 65535, 24, 0)
    width, height = max(width, 0), max(height, 0)
    size = width * samples
    # A few missing rows are made up, but a small file must not ask for a huge one.
    complete = size * height <= len(data)
    check(complete or len(header) + 3 * width * height <= 64 * 2**20 + 16 * len(data), -279.0)
    createOther(inPath, outPath, header, -5.0)
    check_writable(inPath, -101.0)
    # Backwards from the end of the file: the bottom row comes first. Rows that would begin before
    # the file does repeat the last one that was there, black if there was none.
    rows = []
    last = bytes(3 * width)
    there = min(height, len(data) // size) if size else 0
    for r in range(there):
        at = len(data) - (r + 1) * size
        last = targaRow(data[at : at + size], samples)
        rows.append(last)
    pixels = b"".join(rows) + last * (height - there)
    return createOther(inPath, outPath, header + pixels, -101.0)
