"""Maps that tifffile writes, converted by the built library, opened by Pillow, tifffile and
ImageMagick, and compared pixel by pixel with what numpy computes.

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
    samples = "rgb" if len(shape) == 3 else "gray"
    raw = subprocess.run(["convert", str(path), "-auto-orient", "-depth", "16", "-endian", "LSB",
                          f"{samples}:-"],
                         check=True, capture_output=True).stdout
    return np.frombuffer(raw, "<u2").reshape(shape)


class TiffPeers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.random = np.random.default_rng(1)

    def converted(self, name, pixels, value, target):
        """Writes a map and calls an export that makes another file of it, whose path it returns."""
        write_map(self.folder / "in.tif", pixels)
        self.assertEqual(call(name, self.folder / "in.tif", value, self.folder / target), 0.0)
        return self.folder / target

    def floats(self, *shape):
        """Samples from below 0 to above 1."""
        return self.random.random(shape, dtype=np.float32) * np.float32(1.4) - np.float32(0.2)

    def bytes(self, *shape):
        return self.random.integers(0, 256, shape, dtype=np.uint8)

    def assert_equal(self, seen, expected, message=None):
        self.assertTrue(np.array_equal(seen, expected), message)

    def test_maps_to_16_bit_tiff(self):
        for channels, pixels in ((1, self.floats(37, 53)), (3, self.floats(29, 41, 3))):
            out = self.converted("convertTIFF16", pixels, channels, "out.tif")
            expected = levels(pixels)
            self.assert_equal(tifffile.imread(out), expected, "tifffile")
            self.assert_equal(magick_pixels(out, expected.shape), expected, "ImageMagick")
            if channels == 1:  # Pillow opens no 16-bit RGB
                with Image.open(out) as image:
                    self.assert_equal(np.asarray(image), expected, "Pillow")

    def test_colour_map_to_one_channel_psd(self):
        pixels = self.floats(31, 31, 3)
        out = self.converted("convertTIFF16", pixels, 4, "out.psd")
        self.assert_equal(magick_pixels(out, (31, 31)), levels(pixels[:, :, 0]))

    def test_first_channel_of_a_colour_map(self):
        pixels = self.floats(19, 23, 3)
        out = self.converted("convertTIFFSingle", pixels, 0, "out.tif")
        self.assert_equal(tifffile.imread(out), pixels[:, :, 0])
        with Image.open(out) as image:
            self.assert_equal(np.asarray(image), pixels[:, :, 0])

    def test_channel_swaps(self):
        path = self.folder / "map.tif"
        for mode, order in ((1, [0, 2, 1]), (2, [2, 1, 0]), (3, [1, 0, 2])):
            pixels = self.bytes(17, 29, 3)
            write_map(path, pixels)
            self.assertEqual(call("swapRGBTIF", path, mode), 0.0)
            with Image.open(path) as image:
                self.assert_equal(np.asarray(image), pixels[:, :, order], mode)

    def test_targa(self):
        for pixels in (self.bytes(13, 27, 3), self.bytes(13, 27)):
            out = self.converted("saveAsTarga", pixels, 0, "out.tga")
            colour = pixels if pixels.ndim == 3 else np.repeat(pixels[:, :, None], 3, axis=2)
            with Image.open(out) as image:
                self.assert_equal(np.asarray(image), colour)
            self.assert_equal(magick_pixels(out, colour.shape), colour.astype(np.uint16) * 257)

    def test_merging(self):
        for kind in (np.uint8, np.uint16, np.float32):
            for shape in ((24, 40), (24, 40, 3)):
                tile, collected = np.zeros(shape, kind), np.zeros(shape, kind)
                tile[2:12, 3:18] = 7
                collected[8:20, 10:30] = 9
                write_map(self.folder / "all.tif", collected)
                merged = self.converted("mergeMapsTIF", tile, 0, "all.tif")
                expected = np.where(collected == 0, tile, collected)
                self.assert_equal(tifffile.imread(merged), expected)


if __name__ == "__main__":
    LIBRARY = ctypes.CDLL(sys.argv.pop(1))
    unittest.main()
