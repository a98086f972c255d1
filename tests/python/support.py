"""Files for the tests of the Python package, to which ctest names the library and the tool."""

import os
import struct
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np
import tifffile

sys.dont_write_bytecode = True
TOOL = os.environ["QUILLON_TOOL"]
REPOSITORY = Path(__file__).resolve().parents[2]


def chunk(number, elements, size):
    return struct.pack("<4I", number, 16 + len(elements), len(elements) // size, 0) + elements


def mesh_of(*tiles):
    """A Vemo file of a quad in the middle of each tile: (column, row), or a column of row 0."""
    places = [tile if isinstance(tile, tuple) else (tile, 0) for tile in tiles]
    vertices = struct.pack("<12f", 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0)
    faces = struct.pack("<4i", 0, 1, 2, 3) * len(places)
    corners = ((0.25, 0.25), (0.75, 0.25), (0.75, 0.75), (0.25, 0.75))
    uvs = b"".join(
        struct.pack("<2f", column + u, row + v) for column, row in places for u, v in corners
    )
    parts = (chunk(10001, vertices, 12), chunk(20001, faces, 16), chunk(25001, uvs, 32))
    return bytes(32) + b"".join(parts) + bytes(16)


def write_tiff(path, pixels):
    """Writes a map with its directory first, tag 254 leading, as the host orders its tags."""
    tifffile.imwrite(
        path,
        pixels,
        photometric="rgb" if pixels.ndim == 3 else "minisblack",
        metadata=None,
        rowsperstrip=len(pixels),
        extratags=[(254, "I", 1, 0, True)],
    )


def write_bmp(path, pixels, height=None):
    """Writes rows of 24 bits, whose bytes are a multiple of 4, the bottom row first."""
    data = np.ascontiguousarray(pixels[::-1], np.uint8).tobytes()
    rows, columns = pixels.shape[:2]
    header = struct.pack("<2sIHHI", b"BM", 54 + len(data), 0, 0, 54)
    header += struct.pack("<IiiHHIIiiII", 40, columns, height or rows, 1, 24, 0, 0, 0, 0, 0, 0)
    Path(path).write_bytes(header + data)


def write_psd(path, planes):
    """Writes 8-bit RGB (three planes) or 16-bit grey (one)."""
    count, rows, columns = planes.shape
    bits, mode = (8, 3) if count == 3 else (16, 1)
    header = struct.pack(">4sH6xHIIHH", b"8BPS", 1, count, rows, columns, bits, mode)
    Path(path).write_bytes(header + bytes(14) + planes.astype(f">u{bits // 8}").tobytes())


def column_of(tile):
    """The column of a tile, from the path of its mesh in naming mode 2."""
    return int(tile.stem[len("tile") :]) - 1001


class FolderTest(unittest.TestCase):
    """A test in a new folder, `self.folder`."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def mesh(self, *tiles):
        path = self.folder / "model.Vemo"
        path.write_bytes(mesh_of(*tiles))
        return path

    def names(self):
        return sorted(path.name for path in self.folder.iterdir())
