"""Maps of Pillow, tifffile, ImageMagick and OpenImageIO, rewritten by quillon fix: the new map has
the pixels that another program reads from the old one, and the exports take it.

Usage: fix_peers.py QUILLON
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np
import tifffile
from PIL import Image

QUILLON = None


def run(*words):
    return subprocess.run([str(word) for word in words], check=True, capture_output=True).stdout


def magick(path, bits):
    """What ImageMagick reads, as RGB; of a PSD the merged image."""
    width, height = map(int, run("identify", "-format", "%w %h\n", f"{path}[0]").split()[:2])
    raw = run("convert", f"{path}[0]", "-auto-orient", "-alpha", "off", "-depth", bits, "-endian",
              "LSB", "rgb:-")
    return np.frombuffer(raw, f"<u{bits // 8}").reshape(height, width, 3)


class FixPeers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        random = np.random.default_rng(1)
        self.rgb = random.integers(0, 256, (37, 53, 3), dtype=np.uint8)
        self.grey16 = random.integers(0, 65536, (37, 53), dtype=np.uint16)
        self.floats = random.random((37, 53, 3), dtype=np.float32)

    def fixed(self, path, *options):
        out = self.folder / f"out{path.suffix}"
        run(QUILLON, "fix", path, out, "--force", *options)
        return out

    def call(self, export, text, *options):
        """Calls an export, which must succeed, with a status of 0 or above."""
        run(QUILLON, "call", export, text, *options)

    def assert_tiff(self, path, expected, *options):
        """The map is rewritten with these pixels; a merge takes them, and so do the others."""
        out = self.fixed(path, *options)
        seen = tifffile.imread(out)
        self.assertEqual(seen.dtype, expected.dtype)
        self.assertTrue(np.array_equal(seen, expected), path)
        empty = self.folder / "empty.tif"
        tifffile.imwrite(empty, np.broadcast_to(expected[:1, :1], expected.shape), subfiletype=0,
                         photometric="rgb" if expected.ndim == 3 else "minisblack", metadata=None,
                         contiguous=True)
        empty = self.fixed(empty).rename(empty)
        out = self.fixed(path, *options)
        self.call("mergeMapsTIF", out, "--buffer", empty)
        self.assertTrue(np.array_equal(tifffile.imread(empty), expected), path)
        if expected.dtype == np.uint8:
            self.call("saveAsTarga", out, "--buffer", self.folder / "map.tga")
            self.assertTrue(np.array_equal(magick(self.folder / "map.tga", 8)[..., 0],
                                           expected.reshape(*expected.shape[:2], -1)[..., 0]))
        if expected.dtype == np.uint8 and expected.ndim == 3:
            self.call("swapRGBTIF", out, "--value", 2)
            self.assertTrue(np.array_equal(tifffile.imread(out), expected[..., ::-1]))

    def test_layouts_of_tifffile(self):
        for name, options in {
                "plain": {}, "big-endian": {"byteorder": ">"}, "BigTIFF": {"bigtiff": True},
                "tiles": {"tile": (16, 32)}, "strips": {"rowsperstrip": 5},
                "planes": {"planarconfig": "separate"},
                "all": {"byteorder": ">", "bigtiff": True, "tile": (16, 16),
                        "planarconfig": "separate"}}.items():
            planes = options.get("planarconfig") == "separate"
            for pixels in (self.rgb, self.floats, self.rgb.astype(np.uint16) * 200):
                path = self.folder / f"{name}.tif"
                tifffile.imwrite(path, np.moveaxis(pixels, 2, 0) if planes else pixels,
                                 photometric="rgb", **options)
                self.assert_tiff(path, pixels)

    def test_samples_of_tifffile(self):
        path = self.folder / "in.tif"
        half = self.floats.astype(np.float16)
        for stored, expected, options in (
                (half, half.astype(np.float32), ()),
                (self.floats.astype(np.float64) / 3,
                 (self.floats.astype(np.float64) / 3).astype(np.float32), ()),
                (self.grey16, self.grey16, ()), (self.rgb[..., 0], self.rgb[..., 0], ()),
                (self.grey16, self.grey16.astype(np.float32) / np.float32(65535),
                 ("--bits", "32"))):
            tifffile.imwrite(path, stored,
                             photometric="rgb" if stored.ndim == 3 else "minisblack")
            self.assert_tiff(path, expected, *options)

    def test_compressions_of_pillow(self):
        image = Image.fromarray(self.rgb)
        for compression in ("tiff_lzw", "tiff_adobe_deflate", "packbits", "zstd"):
            image.save(self.folder / "in.tif", compression=compression)
            self.assert_tiff(self.folder / "in.tif", self.rgb)
        bits = Image.fromarray(self.rgb[..., 0]).convert("1")
        for compression in ("group3", "group4"):
            bits.save(self.folder / "in.tif", compression=compression)
            self.assert_tiff(self.folder / "in.tif", np.asarray(bits).astype(np.uint8) * 255)
        image.save(self.folder / "in.tif", compression="jpeg", quality=90)
        with Image.open(self.folder / "in.tif") as seen:
            self.assert_tiff(self.folder / "in.tif", np.asarray(seen.convert("RGB")))
        image.quantize(16).save(self.folder / "in.tif")
        with Image.open(self.folder / "in.tif") as seen:
            self.assert_tiff(self.folder / "in.tif", np.asarray(seen.convert("RGB")))

    def test_openimageios_half_floats_in_zip_tiles(self):
        path = self.folder / "in.tif"
        run("oiiotool", "--pattern", "fill:left=-1.5:right=2", "53x37", 3, "-d", "half",
            "--compression", "zip", "--tile", 16, 16, "-o", path)
        run("oiiotool", path, "-d", "float", "--compression", "none", "--scanline", "-o",
            self.folder / "plain.tif")
        self.assert_tiff(path, tifffile.imread(self.folder / "plain.tif").astype(np.float32))

    def test_every_16_bit_level_survives_as_float(self):
        levels = np.arange(65536, dtype=np.uint16).reshape(256, 256)
        tifffile.imwrite(self.folder / "in.tif", levels)
        out = self.fixed(self.folder / "in.tif", "--bits", "32")
        self.call("convertTIFF16", out, "--value", 1, "--buffer", self.folder / "levels.tif")
        self.assertTrue(np.array_equal(tifffile.imread(self.folder / "levels.tif"), levels))
        self.call("getScale", out, "--value", 1)

    def test_psds_of_imagemagick(self):
        png = self.folder / "in.png"
        Image.fromarray(self.rgb).save(png)
        psd = self.folder / "in.psd"
        for words in ((png, "-compress", "RLE"), (png, "-compress", "none"),
                      (png, "(", png, "-negate", ")", "(", png, "-flip", ")", "-compress", "RLE")):
            run("convert", *words, "-type", "TrueColor", "-depth", 8, psd)
            out = self.fixed(psd)
            self.assertTrue(np.array_equal(magick(out, 8), self.rgb), words)
            empty = self.folder / "empty.psd"
            empty.write_bytes(out.read_bytes()[:40] + bytes(self.rgb.size))
            self.call("mergeMapsPSD", out, "--buffer", empty)
            self.assertTrue(np.array_equal(magick(empty, 8), self.rgb))
            self.call("swapRGBPSD", empty, "--value", 1)
            self.assertTrue(np.array_equal(magick(empty, 8), self.rgb[..., [0, 2, 1]]))

    def test_grey_psds_of_imagemagick(self):
        Image.fromarray(self.grey16).save(self.folder / "in.png")
        for depth in (8, 16):
            psd = self.folder / "in.psd"
            run("convert", self.folder / "in.png", "-depth", depth, "-compress", "RLE", psd)
            expected = magick(psd, 16)[..., 0]
            out = self.fixed(psd)
            self.assertTrue(np.array_equal(magick(out, 16)[..., 0], expected), depth)
            self.call("mergeMapsPSD", out, "--buffer", out)

    def test_bmps(self):
        png = self.folder / "in.png"
        Image.fromarray(self.rgb).save(png)
        Image.fromarray(self.rgb).quantize(200).save(self.folder / "palette.png")
        Image.fromarray(self.rgb).quantize(12).save(self.folder / "few.png")
        bmp = self.folder / "in.bmp"
        for words in ((png, "BMP2:"), (png, "BMP3:"), (png, "BMP:"),
                      (png, "-alpha", "on", "BMP3:"), (png, "-alpha", "on", "BMP:"),
                      (self.folder / "palette.png", "-compress", "RLE", "BMP3:"),
                      (self.folder / "palette.png", "-compress", "none", "BMP2:"),
                      (self.folder / "few.png", "BMP3:"),
                      (png, "-monochrome", "BMP3:"),
                      (png, "-define", "bmp:subtype=RGB565", "BMP:"),
                      (png, "-define", "bmp:subtype=RGB555", "BMP:")):
            run("convert", *words[:-1], f"{words[-1]}{bmp}")
            expected = magick(bmp, 8)
            out = self.fixed(bmp, "--drop-alpha")
            seen = magick(out, 8)
            if "-define" in words:  # of 5 bits ImageMagick repeats the high ones
                self.assertLessEqual(np.max(np.abs(seen.astype(int) - expected)), 1, words)
            else:
                self.assertTrue(np.array_equal(seen, expected), words)
            empty = self.folder / "empty.bmp"
            head = out.read_bytes()[:57]  # and the first pixel, the background
            empty.write_bytes(head[:54] + (head[54:] * 53 + b"\0") * 37)
            self.call("mergeMapsBMP", out, "--buffer", empty)
            self.assertTrue(np.array_equal(magick(empty, 8), seen), words)
            self.call("swapRGBBMP", out, "--value", 2)
            self.assertTrue(np.array_equal(magick(out, 8), seen[..., ::-1]), words)
            self.call("saveAsJpeg", out, "--value", 1, "--buffer", self.folder / "map.jpg")


if __name__ == "__main__":
    QUILLON = Path(sys.argv.pop())
    unittest.main()
