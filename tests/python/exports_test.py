"""A function per export: what it passes, returns and raises."""

import argparse
import contextlib
import json
import math
import os
import pickle
import re
import shlex
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import numpy as np
from support import REPOSITORY, TOOL, FolderTest, write_bmp, write_tiff

import quillon


def reference(form):
    return subprocess.run(
        [TOOL, "reference", form], check=True, capture_output=True, text=True
    ).stdout


def entries():
    groups = json.loads(reference("--json"))["groups"]
    return {entry["name"]: entry for group in groups for entry in group["exports"]}


class Generated(unittest.TestCase):
    def test_the_functions_are_what_quillon_reference_prints(self):
        committed = REPOSITORY / "python" / "quillon" / "_exports.py"
        self.assertTrue(
            committed.read_text(encoding="utf-8") == reference("--python"),
            "run: quillon reference --python >python/quillon/_exports.py",
        )

    def test_the_version_is_that_of_the_tool(self):
        printed = subprocess.run([TOOL, "--version"], check=True, capture_output=True, text=True)
        self.assertEqual(printed.stdout, f"quillon {quillon.__version__}\n")

    def test_every_name_is_there_and_has_a_docstring(self):
        self.assertEqual(len(quillon._exports.__all__), 34)
        self.assertTrue(set(entries()) <= set(quillon.__all__))
        for name in quillon.__all__:
            self.assertTrue(getattr(quillon, name).__doc__, name)


class Examples(unittest.TestCase):
    """The example of each export, as a call in Python."""

    def setUp(self):
        with contextlib.ExitStack() as stack:
            scratch = stack.enter_context(tempfile.TemporaryDirectory())
            stack.callback(os.chdir, os.getcwd())
            self.addCleanup(stack.pop_all().close)
        self.pattern = Path(scratch, "pattern")
        subprocess.run([REPOSITORY / "docs/examples/make", self.pattern, TOOL], check=True)

    @staticmethod
    def calls(example):
        """The calls of an example, each with what it prints: a status, and a text or None."""
        command, prints = example["command"], example["prints"]
        script = re.fullmatch(r"printf '(.*)' \| quillon script -", command)
        if not script:
            printed = re.fullmatch(r"status +(\S+)\nmeaning .*\n(?:text +(.*)\n)?", prints)
            yield command.split(" ", 2)[2], float(printed[1]), printed[2]
            return
        for line, printed in zip(script[1].split("\\n"), prints.splitlines()):
            gives = re.fullmatch(r"\w+ +(\S+)(?:  .*?(?:gives (.*))?)?", printed)
            yield line, float(gives[1]), gives[2]

    @staticmethod
    def result_of(entry, line):
        parser = argparse.ArgumentParser()
        parser.add_argument("words", nargs="*")
        parser.add_argument("--value")
        parser.add_argument("--buffer")
        asked = parser.parse_args(shlex.split(line)[1:])
        given = dict(zip(("text", "value", "buffer1"), asked.words))
        given.update({k: v for k, v in (("value", asked.value), ("buffer1", asked.buffer)) if v})
        positions = [each["position"] for each in entry["arguments"] if each["role"] != "output"]
        values = [float(given[p]) if p == "value" else given[p] for p in positions]
        return getattr(quillon, entry["name"])(*values)

    def test_each_gives_what_the_reference_says(self):
        table, made = entries(), set()
        for number, entry in enumerate(table.values()):
            folder = self.pattern.with_name(str(number))
            shutil.copytree(self.pattern, folder)
            os.chdir(folder)
            with quillon.Session():  # each example starts with nothing from those before
                for line, status, text in self.calls(entry["example"]):
                    name = line.split()[0]
                    made.add(name)
                    have = self.result_of(table[name], line)
                    if isinstance(have, tuple):
                        self.assertEqual(have, (status, text), line)
                    elif isinstance(have, str):
                        self.assertEqual(have, text, line)
                    else:
                        self.assertEqual(have or 0, np.float32(status), line)
        self.assertEqual(made, set(table))


class Arguments(unittest.TestCase):
    """What cannot be passed is refused before the library is called."""

    def setUp(self):
        patch = mock.patch("quillon._call._made", side_effect=AssertionError("called"))
        patch.start()
        self.addCleanup(patch.stop)

    def test_a_path_is_no_other_type(self):
        for path in (3, None, b"model.Vemo", ["model.Vemo"]):
            with self.assertRaisesRegex(TypeError, "getUVs: mesh must be a path, not"):
                quillon.getUVs(path, 2, "out.Vemo")
            with self.assertRaisesRegex(TypeError, "getUVs: output_path must be a path, not"):
                quillon.getUVs("model.Vemo", 2, path)

    def test_a_number_is_no_other_type(self):
        for number in ("2", None, 2j):
            with self.assertRaisesRegex(TypeError, "getScale: channels must be a number, not"):
                quillon.getScale("map.tif", number)

    def test_a_number_is_none_that_no_float_can_be(self):
        with self.assertRaisesRegex(ValueError, "channels is too large"):
            quillon.getScale("map.tif", 10**400)

    def test_a_text_is_a_str(self):
        with self.assertRaisesRegex(TypeError, "GetString: any_text must be a str, not bytes"):
            quillon.GetString(b"abc", 1)

    def test_a_nul_byte_ends_no_path(self):
        with self.assertRaisesRegex(ValueError, "FileDelete: file has a NUL byte"):
            quillon.FileDelete("map\0.tif")
        with self.assertRaisesRegex(ValueError, "FileCopyTo: target has a NUL byte"):
            quillon.FileCopyTo("map.tif", Path("copy\0.tif"))
        with self.assertRaisesRegex(ValueError, "any_text has a NUL byte"):
            quillon.GetString("a\0b", 1)

    def test_a_converted_map_has_an_extension(self):
        with self.assertRaisesRegex(ValueError, "convertTIFF16: target must have a dot"):
            quillon.convertTIFF16("map.tif", 1, "converted")


class Results(FolderTest):
    def test_tiles_are_counted_with_the_last_ones_name(self):
        counted = quillon.getUVTile(self.mesh(0, 4), 2)
        self.assertEqual(counted, (2, "1005"))
        self.assertEqual((counted.count, counted.last), (2, "1005"))

    def test_a_text_that_is_no_utf8_comes_back_as_it_was(self):
        self.assertEqual(quillon.GetString("a\udcffb", 1), "\udcffb")
        name = os.fsdecode(b"\xff.tif")
        (self.folder / name).touch()
        self.assertEqual(list(quillon.listing(self.folder)), [name])

    def test_a_long_text_fits(self):
        self.assertEqual(len(quillon.GetString("x" * 100_000, 0)), 100_000)

    def test_a_tile_that_does_not_exist_has_no_name(self):
        quillon.getUVs(self.mesh(0, 1), 2, self.folder / "out.Vemo")
        self.assertEqual(quillon.getUVString(1), "1002")
        for position in (2, -1):
            with self.assertRaisesRegex(ValueError, f"there is no position {position}"):
                quillon.getUVString(position)

    def test_as_many_tiles_as_the_status_of_one_not_written(self):
        made = quillon.getUVs(self.mesh(*range(1501)), 0, self.folder / "out.Vemo")
        self.assertEqual(made, 1501)


class Failures(FolderTest):
    def failure(self, kind, function, *arguments):
        with self.assertRaises(kind, msg=(function.__name__, arguments)) as raised:
            function(*arguments)
        self.assertIs(type(raised.exception), kind)
        return raised.exception

    def test_a_failure_says_what_failed_and_why(self):
        missing = self.folder / "missing.Vemo"
        error = self.failure(quillon.NotOpened, quillon.getUVTile, missing, 2)
        self.assertEqual(
            (error.export, error.status, error.cause), ("getUVTile", -17.0, "sourceNotOpened")
        )
        self.assertEqual(error.files, (str(missing),))
        self.assertRegex(error.check, "quillon inspect shows which chunks")
        self.assertEqual(
            str(error),
            f"getUVTile of {missing} returned -17: the mesh file cannot be opened or read, or "
            f"there is too little memory ({missing}: No such file or directory)",
        )

    def test_it_passes_between_processes(self):
        error = self.failure(quillon.NotOpened, quillon.CheckFolder, self.folder / "no")
        copy = pickle.loads(pickle.dumps(error))
        self.assertEqual(
            (type(copy), str(copy), vars(copy)), (type(error), str(error), vars(error))
        )

    def test_the_class_is_that_of_the_likeliest_cause(self):
        file = self.folder / "file.tif"
        file.write_bytes(b"text")
        full = self.folder / "full"
        full.mkdir()
        (full / "file").touch()
        colours, image = self.folder / "colours.tif", self.folder / "image.bmp"
        write_tiff(colours, np.zeros((8, 8, 3), np.float32))
        write_bmp(image, np.zeros((8, 8, 3)))
        away = self.folder / "away" / "file"
        mesh = self.mesh(0)
        for kind, cause, function, arguments in (
            (quillon.Refused, "valueRefused", quillon.swapRGBTIF, (file, 4)),
            (quillon.Refused, "valueRefused", quillon.getScale, (file, math.nan)),
            (quillon.Refused, "fileRefused", quillon.swapRGBPSD, (file, 1)),
            (quillon.Refused, "fileRefused", quillon.OpenEXR, (file,)),
            (quillon.Refused, "pathRefused", quillon.convertTIFFSingle, (colours, colours)),
            (quillon.NotOpened, "sourceNotOpened", quillon.OpenEXR, (full,)),
            (quillon.NotOpened, "sourceNotOpened", quillon.swapRGBPSD, (away, 1)),
            (quillon.NotOpened, "sourceNotOpened", quillon.CheckFolder, (file,)),
            (quillon.NotOpened, "sourceNotOpened", quillon.FileCopyTo, (away, file)),
            (quillon.NotOpened, "sourceNotOpened", quillon.FileDelete, (away,)),
            (quillon.NotOpened, "targetNotOpened", quillon.mergeCrease, (mesh, away)),
            (quillon.NotWritten, "targetNotWritten", quillon.FileCopyTo, (mesh, away)),
            (quillon.NotWritten, "targetNotWritten", quillon.FileCopyTo, (mesh, full)),
            (quillon.NotWritten, "targetNotWritten", quillon.saveAsJpeg, (image, 50, away)),
            (quillon.NotWritten, "targetNotWritten", quillon.FileRename, (mesh, away)),
            (quillon.NotWritten, "targetNotWritten", quillon.CreateFolder, (full,)),
            (
                quillon.NotWritten,
                "targetNotWritten",
                quillon.getUVs,
                (mesh, 2, away.with_suffix(".x")),
            ),
            (quillon.NotWritten, "sourceNotWritable", quillon.FileDelete, (full,)),
            (quillon.NothingOpen, "nothingOpen", quillon.CloseFolder, ()),
        ):
            error = self.failure(kind, function, *arguments)
            self.assertEqual(error.cause, cause, str(error))

    def test_a_path_that_is_too_long(self):
        image = self.folder / "image.bmp"
        write_bmp(image, np.zeros((8, 8, 3)))
        target = os.path.join(self.folder, *["."] * 256, "image.jpg")
        error = self.failure(quillon.Refused, quillon.saveAsJpeg, image, 50, target)
        self.assertEqual((error.status, error.cause), (-1.0, "pathRefused"))
        self.assertRegex(error.reason, "a path has 512 bytes or more")

    def test_a_tile_that_cannot_be_written(self):
        (self.folder / "out1002.Vemo").mkdir()
        error = self.failure(
            quillon.NotWritten, quillon.getUVs, self.mesh(0, 1, 2), 2, self.folder / "out.Vemo"
        )
        self.assertEqual(error.status, 1502.0)

    def test_a_status_that_is_not_known_is_a_failure(self):
        with mock.patch("quillon._call._made", return_value=(-4321.0, b"")):
            error = self.failure(quillon.Status, quillon.CloseFolder)
        self.assertEqual((error.status, error.cause), (-4321.0, "unknown"))

    def test_too_little_memory(self):
        with mock.patch("quillon._call._made", return_value=(-9.0, b"")):
            error = self.failure(quillon.NoMemory, quillon.getUVTile, self.mesh(0), 2)
        self.assertEqual(error.cause, "noMemory")


if __name__ == "__main__":
    unittest.main()
