"""export_maps: what it calls, leaves and refuses."""

import os
import signal
import sys
import unittest
from unittest import mock

import numpy as np
import tifffile
from support import FolderTest, column_of, write_bmp, write_psd, write_tiff

import quillon
from quillon import _maps

SIDE = 32  # pixels of a tile; a map shows two of them side by side


def place(tile):
    return slice(8, 24), slice(column_of(tile) * SIDE + 8, column_of(tile) * SIDE + 24)


def pixels_of(tile, kind, *channels):
    """The tile's quad, with a value of its own: 1 for tile 1001, 2 for 1002."""
    pixels = np.zeros((SIDE, 2 * SIDE, *channels), kind)
    pixels[place(tile)] = column_of(tile) + 1
    return pixels


def render_floats(tile, out):
    write_tiff(out, pixels_of(tile, np.float32) / 4)


def render_rgb(tile, out):
    pixels = pixels_of(tile, np.uint8, 3)
    pixels[..., 1] *= 10
    pixels[..., 2] *= 100
    if out.suffix == ".tif":
        write_tiff(out, pixels)
    elif out.suffix == ".bmp":
        write_bmp(out, pixels[..., ::-1])
    else:
        write_psd(out, np.moveaxis(pixels, 2, 0))


def both(of):
    """The two tiles on one map."""
    want = np.zeros((SIDE, 2 * SIDE), np.float64)
    want[8:24, 8:24], want[8:24, 40:56] = of
    return want


class Maps(FolderTest):
    def setUp(self):
        super().setUp()
        self.model = self.mesh(0, 1)

    def export(self, name="out.tif", render=render_floats, **options):
        return quillon.export_maps(self.model, render, self.folder / name, **options)

    def rgb(self, name):
        """The colours of the two tiles' middles."""
        path = self.folder / name
        if path.suffix.lower().startswith(".tif"):
            pixels = tifffile.imread(path)
        elif path.suffix == ".bmp":
            rows = np.frombuffer(path.read_bytes(), np.uint8, offset=54)
            pixels = rows.reshape(SIDE, -1, 3)[::-1, :, ::-1]
        else:
            planes = np.frombuffer(path.read_bytes(), np.uint8, offset=40)
            pixels = np.moveaxis(planes.reshape(3, SIDE, -1), 0, 2)
        return pixels[16, [16, 48]].tolist()

    def assert_nothing_left(self, *also):
        self.assertEqual(self.names(), sorted(["model.Vemo", *also]))


class Export(Maps):
    def test_a_map_of_floats_has_all_tiles_and_a_scale(self):
        made = self.export()
        self.assertEqual(made[:2], (self.folder / "out.tif", ("1001", "1002")))
        self.assertEqual(made.scale, quillon.getScale(self.folder / "out.tif", 1))
        np.testing.assert_array_equal(tifffile.imread(made.path), both((0.25, 0.5)))
        self.assert_nothing_left("out.tif")

    def test_each_format_has_its_colours(self):
        for name in ("out.tif", "out.TIFF", "out.psd", "out.bmp"):
            self.export(name, render_rgb)
            self.assertEqual(self.rgb(name), [[1, 10, 100], [2, 20, 200]], name)

    def test_the_channels_are_in_the_order_that_is_asked_for(self):
        for order, colour in (("bgr", [100, 10, 1]), ("rbg", [1, 100, 10]), ("grb", [10, 1, 100])):
            for name in ("out.tif", "out.psd", "out.bmp"):
                self.export(name, render_rgb, order=order)
                self.assertEqual(self.rgb(name)[0], colour, (order, name))

    def test_16_bits_as_tiff(self):
        made = self.export(bits=16)
        np.testing.assert_array_equal(tifffile.imread(made.path), both((16384, 32768)))
        self.assertIsNotNone(made.scale)

    def test_16_bits_as_psd(self):
        def render_square(tile, out):
            write_tiff(out, np.full((SIDE, SIDE), 0.5, np.float32))

        self.export("out.psd", render_square, bits=16, tiles=[1001])
        head = (self.folder / "out.psd").read_bytes()
        self.assertEqual((head[:4], head[23], head[40:42]), (b"8BPS", 16, b"\x80\x00"))

    def test_some_tiles(self):
        made = self.export(tiles=["1002-1009"])
        self.assertEqual(made.tiles, ("1002",))
        np.testing.assert_array_equal(tifffile.imread(made.path), both((0, 0.5)))

    def test_other_names(self):
        seen = []

        def render(tile, out):
            seen.append((tile.name, out.name))
            write_tiff(out, np.zeros((SIDE, SIDE), np.float32))

        self.assertEqual(self.export(render=render, naming=3).tiles, ("u0v0", "u1v0"))
        self.assertEqual(seen[1], ("tileu1v0.Vemo", "tileu1v0.tif"))

    def test_meshes_with_a_mask(self):
        def render(tile, out):
            self.assertIn((30001).to_bytes(4, "little"), tile.read_bytes())  # the mask's chunk
            render_floats(tile, out)

        self.export(render=render, mask=True)

    def test_the_renderers_files_and_the_mesh_stay_as_they_are(self):
        """Even where the maps are links to files of its own."""
        made, before = [], self.model.read_bytes()

        def render(tile, out):
            own = self.folder / f"own{tile.stem}.tif"
            render_rgb(tile, own)
            os.link(own, out)
            made.append((own, own.read_bytes()))

        self.export(render=render, order="bgr")
        for own, content in made:
            self.assertEqual(own.read_bytes(), content)
        self.assertEqual(self.model.read_bytes(), before)

    def test_the_renderer_may_change_the_current_folder(self):
        def render(tile, out):
            os.chdir("/")
            render_floats(tile, out)

        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        made = quillon.export_maps("model.Vemo", render, "out.tif")
        self.assertEqual(str(made.path), "out.tif")
        self.assert_nothing_left("out.tif")

    def test_the_renderer_may_call_the_library(self):
        def render(tile, out):
            render_floats(tile, out.with_name("made.tif"))
            quillon.FileRename(out.with_name("made.tif"), out)

        self.assertEqual(self.export(render=render).tiles, ("1001", "1002"))


class Progress(Maps):
    def test_each_step_is_reported(self):
        seen = []
        self.export(progress=lambda *step: seen.append(step))
        steps = ["render 1001", "render 1002", "merge 1001", "merge 1002", "done"]
        self.assertEqual(seen, [(done, 4, step) for done, step in enumerate(steps)])

    def test_a_bar_if_tqdm_is_installed(self):
        bar = mock.MagicMock()
        bar.return_value.__enter__.return_value = shown = mock.Mock(n=0)
        with mock.patch.dict(sys.modules, tqdm=mock.Mock(tqdm=bar)):
            self.export(progress=True)
        self.assertEqual(shown.total, 4)
        shown.set_description_str.assert_called_with("done", refresh=False)
        shown.update.assert_called_with(4)  # of a bar that stays at 0

    def test_none_if_it_is_not(self):
        with mock.patch.dict(sys.modules, tqdm=None):
            self.export(progress=True)


class Failures(Maps):
    """`out` stays as it was, and nothing else is left."""

    def setUp(self):
        super().setUp()
        (self.folder / "out.tif").write_bytes(b"earlier")

    def assert_fails(self, kind, words, name="out.tif", render=render_floats, **options):
        with self.assertRaisesRegex(kind, words):
            self.export(name, render, **options)
        self.assertEqual((self.folder / "out.tif").read_bytes(), b"earlier")
        self.assert_nothing_left("out.tif")
        self.assertEqual(quillon.getUVTile(self.model, 2).count, 2)  # free, and without a filter

    def second(self, action):
        """A renderer that does this in place of the second tile."""

        def render(tile, out):
            render_floats(tile, out) if column_of(tile) == 0 else action(tile, out)

        return render

    def test_a_renderer_that_fails(self):
        self.assert_fails(ZeroDivisionError, "", render=self.second(lambda *paths: 1 // 0))

    def test_an_interrupt(self):
        def interrupt(*paths):
            os.kill(os.getpid(), signal.SIGINT)

        self.assert_fails(KeyboardInterrupt, "", render=self.second(interrupt))

    def test_a_progress_that_fails(self):
        self.assert_fails(ZeroDivisionError, "", progress=lambda done, total, step: 1 // (2 - done))

    def test_a_renderer_that_writes_nothing(self):
        self.assert_fails(FileNotFoundError, "tile1002", render=self.second(lambda *paths: None))

    def test_a_map_of_another_size(self):
        def smaller(tile, out):
            write_tiff(out, np.zeros((SIDE, SIDE), np.float32))

        self.assert_fails(
            quillon.Refused, "returned -30: the maps differ in size", render=self.second(smaller)
        )

    def test_a_disk_that_takes_only_a_part(self):
        cut = mock.Mock(fold=lambda source, whole: os.truncate(whole, 99))
        with mock.patch.dict(_maps._FORMATS, {".tif": cut}):
            self.assert_fails(OSError, "took only a part of the map")

    def test_maps_that_would_be_passed_over(self):
        def big_endian(tile, out):
            tifffile.imwrite(out, pixels_of(tile, np.float32), byteorder=">")

        def tiny(tile, out):
            write_tiff(out, np.zeros((2, 2), np.float32))

        def top_down(tile, out):
            write_bmp(out, pixels_of(tile, np.uint8, 3), -SIDE)

        def doubles(tile, out):
            write_tiff(out, pixels_of(tile, np.float64))

        def text(tile, out):
            out.write_text("text")

        self.assert_fails(ValueError, "no little-endian TIFF", render=big_endian)
        self.assert_fails(ValueError, "has not 8, 16 or 32 bits per sample", render=doubles)
        self.assert_fails(ValueError, "too small to be merged", render=tiny)
        self.assert_fails(
            ValueError, "tile1001.bmp, as rendered, has its top row first", "out.bmp", top_down
        )
        for name in ("out.tif", "out.psd", "out.bmp"):
            self.assert_fails(ValueError, "is no", name, text)

    def test_channels_that_cannot_be_reordered(self):
        self.assert_fails(ValueError, "has not 3 channels of 8 bits", order="bgr")

    def test_maps_that_would_be_converted_to_damaged_ones(self):
        def other_tags(tile, out):
            tifffile.imwrite(out, pixels_of(tile, np.float32), metadata=None, rowsperstrip=SIDE)

        def colours(tile, out):
            write_tiff(out, np.zeros((SIDE, SIDE, 3), np.float32))

        self.assert_fails(ValueError, "directory must be at byte 8", render=other_tags, bits=16)
        self.assert_fails(ValueError, "has no 32-bit floats", render=render_rgb, bits=16)
        self.assert_fails(ValueError, "is not square", "out.psd", bits=16)
        self.assert_fails(ValueError, "a PSD of 16 bits is grey", "out.psd", colours, bits=16)

    def test_options_that_contradict_each_other(self):
        for words, options in (
            ("naming is 0, 1, 2 or 3", {"naming": 4}),
            ("in naming mode 2 only", {"naming": 0, "tiles": [1001]}),
            ("order is rbg", {"order": "xyz"}),
            ("bits is 16 or None", {"bits": 8}),
            ("cannot be reordered", {"bits": 16, "order": "bgr"}),
            ("must end with .tif", {"name": "out.png"}),
            ("cannot have 16 bits", {"name": "out.bmp", "bits": 16}),
            ("no tile of those chosen", {"tiles": [1005]}),
            ("no tile number", {"tiles": ["red"]}),
        ):
            self.assert_fails(ValueError, words, **options)

    def test_arguments_that_cannot_be_passed(self):
        self.assert_fails(TypeError, "render must be a function, not str", render="render.sh")
        self.assert_fails(ValueError, "out has a NUL byte", "out\0.tif")
        self.model = 3
        with self.assertRaises(TypeError):
            self.export()

    def test_a_place_where_no_map_can_be(self):
        self.assert_fails(FileNotFoundError, "no such folder", "no/out.tif")
        (self.folder / "model.tif").mkdir()
        with self.assertRaisesRegex(IsADirectoryError, "would replace a folder"):
            self.export("model.tif")

    def test_the_mesh_is_not_replaced(self):
        self.model = self.model.rename(self.folder / "model.tif")
        with self.assertRaisesRegex(ValueError, "is the mesh itself"):
            self.export("model.tif")

    def test_a_mesh_that_is_not_there(self):
        self.model.rename(self.folder / "else.Vemo")
        with self.assertRaisesRegex(quillon.NotOpened, "getUVTile of .*model.Vemo returned -17"):
            self.export()

    def test_tiles_that_share_a_name(self):
        self.mesh((10, 0), (0, 1))
        with self.assertRaisesRegex(ValueError, "share a name"):
            self.export()

    def test_a_mesh_without_tiles(self):
        self.mesh()
        with self.assertRaisesRegex(ValueError, "has no tile"):
            self.export()


if __name__ == "__main__":
    unittest.main()
