"""Uncompressed 24-bit Targa files from the host's 8-bit TIFF maps."""

import struct

from tiff import createOther, entriesOf, headOf, read
from world import can_rewrite


def targaRow(row, samples):
    """One row as blue, green, red. A grey sample is taken three times."""
    if samples == 3:
        red, green, blue = row[0::3], row[1::3], row[2::3]
    else:
        red = green = blue = row
    out = bytearray(3 * len(red))
    out[0::3], out[1::3], out[2::3] = blue, green, red
    return bytes(out)


def convertToTarga(inPath, outPath):
    """Writes a map as Targa. Its pixels are taken to be the last bytes of the file.

    The depth and the strip's own offset are not looked at.
    """
    data = read(inPath)
    if data is None:
        return -10.0
    width, height, samples = -1, None, None
    for tag, count, value, _ in entriesOf(headOf(data)):
        number = value - 2**32 if value >= 2**31 else value
        if tag == 256:
            width = number
        elif tag == 257:
            height = number
        elif tag == 258:
            if count not in (1, 3):
                return 258.0
            samples = count
        elif tag == 259 and value != 1:
            return -259.0
        elif tag == 262 and value > 2:
            return -262.0
        elif tag == 273 and count != 1:
            return -273.0
        elif tag == 339 and count not in (1, 3):
            return -339.0
    if height is None or samples is None:
        return -257.0
    header = struct.pack("<BBB5xHHHHBB", 0, 0, 2, 0, 0, width & 65535, height & 65535, 24, 0)
    width, height = max(width, 0), max(height, 0)
    size = width * samples
    # A few missing rows are made up, but a small file must not ask for a huge one.
    missing = size * height > len(data)
    if missing and len(header) + 3 * width * height > 64 * 2**20 + 16 * len(data):
        return -279.0
    if not createOther(inPath, outPath, header):
        return -5.0
    if not can_rewrite(inPath):
        return -101.0
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
    return 0.0 if createOther(inPath, outPath, header + pixels) else -101.0
