"""Maps that tifffile writes, converted by the built library, opened by Pillow, tifffile and
ImageMagick, and compared pixel by pixel with values that numpy works out.

Usage: tiff_peers.py LIBRARY
"""

import ctypes
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np
import tifffile
from PIL import Image

LIBRARY = None


def call(name, text, value=0.0, buffer1=None):
    """Calls an export as a host does and returns its status."""
    export = getattr(LIBRARY, name)
    export.restype = ctypes.c_float
    block = ctypes.create_string_buffer(str(buffer1).encode(), 4096) if buffer1 else None
    return export(ctypes.c_char_p(str(text).encode()), ctypes.c_double(value), block, 0, None, 0,
                  None)


def write_map(path, pixels):
    """Writes a map with its directory first, tag 254 leading, as the host orders its tags."""
    colour = pixels.ndim == 3
    tifffile.imwrite(path, pixels, photometric="rgb" if colour else "minisblack", metadata=None,
                     subfiletype=0, contiguous=True)


def levels(samples):
    """The 16-bit levels of float samples, in single precision, a half rounded up."""
    scaled = np.nan_to_num(samples * np.float32(65535), nan=0.0)
    return np.floor(np.clip(scaled, 0, 65535) + np.float32(0.5)).astype(np.uint16)


def magick_pixels(path, shape):
    """What ImageMagick reads, as 16-bit samples."""
    kind = "rgb" if len(shape) == 3 else "gray"
    raw = subprocess.run(["convert", str(path), "-auto-orient", "-depth", "16", "-endian", "LSB",
                          f"{kind}:-"],
                         check=True, capture_output=True).stdout
    return np.frombuffer(raw, "<u2").reshape(shape)


class TiffPeers(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.random = np.random.default_rng(1)

    def path(self, name):
        return Path(self.folder.name) / name

    def floats(self, *shape):
        """Samples from below 0 to above 1."""
        return (self.random.random(shape, dtype=np.float32) * np.float32(1.4) - np.float32(0.2))

    def bytes(self, *shape):
        return self.random.integers(0, 256, shape, dtype=np.uint8)

    def assert_levels(self, path, expected):
        """Every program that opens the map reads these 16-bit levels. Pillow opens no 16-bit RGB."""
        seen = {"tifffile": tifffile.imread(path), "ImageMagick": magick_pixels(path, expected.shape)}
        if expected.ndim == 2:
            with Image.open(path) as image:
                seen["Pillow"] = np.asarray(image)
        for program, pixels in seen.items():
            self.assertTrue(np.array_equal(pixels, expected), program)

    def test_grey_map_to_16_bit_tiff(self):
        pixels = self.floats(37, 53)
        write_map(self.path("in.tif"), pixels)
        self.assertEqual(call("convertTIFF16", self.path("in.tif"), 1, self.path("out.tif")), 0.0)
        self.assert_levels(self.path("out.tif"), levels(pixels))

    def test_colour_map_to_16_bit_tiff(self):
        pixels = self.floats(29, 41, 3)
        write_map(self.path("in.tif"), pixels)
        self.assertEqual(call("convertTIFF16", self.path("in.tif"), 3, self.path("out.tif")), 0.0)
        self.assert_levels(self.path("out.tif"), levels(pixels))

    def test_colour_map_to_one_channel_psd(self):
        pixels = self.floats(31, 31, 3)
        write_map(self.path("in.tif"), pixels)
        self.assertEqual(call("convertTIFF16", self.path("in.tif"), 4, self.path("out.psd")), 0.0)
        seen = magick_pixels(self.path("out.psd"), (31, 31))
        self.assertTrue(np.array_equal(seen, levels(pixels[:, :, 0])))

    def test_first_channel_of_a_colour_map(self):
        pixels = self.floats(19, 23, 3)
        write_map(self.path("in.tif"), pixels)
        self.assertEqual(call("convertTIFFSingle", self.path("in.tif"), 0, self.path("out.tif")), 0)
        self.assertTrue(np.array_equal(tifffile.imread(self.path("out.tif")), pixels[:, :, 0]))
        with Image.open(self.path("out.tif")) as image:
            self.assertTrue(np.array_equal(np.asarray(image), pixels[:, :, 0]))

    def test_channel_swaps(self):
        for mode, order in ((1, [0, 2, 1]), (2, [2, 1, 0]), (3, [1, 0, 2])):
            pixels = self.bytes(17, 29, 3)
            write_map(self.path("map.tif"), pixels)
            self.assertEqual(call("swapRGBTIF", self.path("map.tif"), mode), 0.0)
            with Image.open(self.path("map.tif")) as image:
                self.assertTrue(np.array_equal(np.asarray(image), pixels[:, :, order]), mode)

    def test_targa(self):
        for pixels in (self.bytes(13, 27, 3), self.bytes(13, 27)):
            write_map(self.path("in.tif"), pixels)
            self.assertEqual(call("saveAsTarga", self.path("in.tif"), 0, self.path("out.tga")), 0.0)
            colour = pixels if pixels.ndim == 3 else np.repeat(pixels[:, :, None], 3, axis=2)
            with Image.open(self.path("out.tga")) as image:
                self.assertTrue(np.array_equal(np.asarray(image), colour))
            seen = magick_pixels(self.path("out.tga"), colour.shape)
            self.assertTrue(np.array_equal(seen, colour.astype(np.uint16) * 257))

    def test_merging(self):
        for kind in (np.uint8, np.uint16, np.float32):
            for shape in ((24, 40), (24, 40, 3)):
                background = np.zeros(shape, kind)
                tile, collected = background.copy(), background.copy()
                tile[2:12, 3:18] = 7
                collected[8:20, 10:30] = 9
                write_map(self.path("tile.tif"), tile)
                write_map(self.path("all.tif"), collected)
                self.assertEqual(call("mergeMapsTIF", self.path("tile.tif"), 0,
                                      self.path("all.tif")), 0.0)
                expected = np.where(collected == 0, tile, collected)
                self.assertTrue(np.array_equal(tifffile.imread(self.path("all.tif")), expected))


if __name__ == "__main__":
    LIBRARY = ctypes.CDLL(sys.argv.pop(1))
    unittest.main()
