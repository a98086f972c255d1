"""The example of the package, python/examples/height_map.py, on a model of nineteen tiles."""

import subprocess
import sys
import unittest

import numpy as np
import tifffile
from support import REPOSITORY, TOOL, FolderTest

MODEL = "/usr/share/assimp/models/OBJ/spider.obj"


class HeightMap(FolderTest):
    def run_here(self, *words):
        ended = subprocess.run(words, cwd=self.folder, check=True, capture_output=True, text=True)
        return ended.stdout

    def test_it_makes_the_map_that_the_tool_makes(self):
        self.run_here(TOOL, "import", MODEL, "spider.Vemo", "--tile-per-group", "--quiet")
        example = REPOSITORY / "python" / "examples" / "height_map.py"
        printed = self.run_here(
            sys.executable, "-B", "-W", "error", example, "spider.Vemo", "height.tif", "128"
        )
        self.assertEqual(
            printed,
            "height.tif: 1280 x 256 pixels, 19 tiles\n"
            "painted 64.5%, 0.102 to 0.913\n"
            "displacement scale 1.11587\n",
        )
        self.assertEqual(self.names(), ["height.tif", "spider.Vemo"])
        self.run_here(
            *(TOOL, "export", "spider.Vemo", "--map", "height", "--size", "1280"),
            *("--out", "tool", "--quiet"),
        )
        want = tifffile.imread(self.folder / "tool" / "spider_height.tif")
        have = tifffile.imread(self.folder / "height.tif")
        np.testing.assert_array_equal(have > 0, want > 0)
        np.testing.assert_allclose(have, np.where(want > 0, 0.1 + 0.9 * want, 0), atol=1e-6)


if __name__ == "__main__":
    unittest.main()
