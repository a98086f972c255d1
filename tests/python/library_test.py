"""Where the library is looked for, and what happens when it is not there; python -m quillon."""

import os
import shutil
import subprocess
import sys
import unittest

from support import REPOSITORY, FolderTest

LIBRARY = os.environ["QUILLON_LIBRARY"]
CALL = "import quillon\nprint(quillon.Version())"


class Places(FolderTest):
    def python(self, *words, package=REPOSITORY / "python", **environment):
        """Runs Python with that package and QUILLON_LIBRARY only where it is given."""
        inherited = {k: v for k, v in os.environ.items() if k != "QUILLON_LIBRARY"}
        return subprocess.run(
            [sys.executable, "-B", "-W", "error", *words],
            env={**inherited, "PYTHONPATH": str(package), **environment},
            cwd=self.folder,
            capture_output=True,
            text=True,
        )

    def package_elsewhere(self):
        """A copy of the package that is in no source tree."""
        source = REPOSITORY / "python" / "quillon"
        hidden = shutil.ignore_patterns("*.so*", "*.dylib", "__pycache__")
        shutil.copytree(source, self.folder / "site" / "quillon", ignore=hidden)
        return self.folder / "site"

    def test_the_environment_names_a_file(self):
        shutil.copy(LIBRARY, self.folder / "here.so")
        self.assertEqual(self.python("-c", CALL, QUILLON_LIBRARY="here.so").stdout, "48\n")

    def test_a_file_that_is_no_library_is_an_error(self):
        (self.folder / "text.so").write_text("text")
        for name, reason in (("text.so", "file too short"), ("no.so", "No such file")):
            ended = self.python("-c", CALL, QUILLON_LIBRARY=name)
            self.assertRegex(
                ended.stderr,
                f"LibraryNotFound: QUILLON_LIBRARY: {self.folder}/{name} cannot be loaded: .*{reason}",
            )

    def test_another_library_is_an_error(self):
        ended = self.python("-c", CALL, QUILLON_LIBRARY=self.other(None))
        self.assertRegex(ended.stderr, "LibraryNotFound: .* cannot be loaded: .*Version")
        ended = self.python("-c", CALL, QUILLON_LIBRARY=self.other(47))
        self.assertRegex(ended.stderr, "has version 47 of the interface; this package needs 48")

    def other(self, version):
        """A library of that version; without the export for None."""
        code = "int none;" if version is None else f"float Version() {{ return {version}; }}"
        library = self.folder / f"other{version}.so"
        subprocess.run(
            ["cc", "-shared", "-fPIC", "-x", "c", "-", "-o", library],
            input=code.encode(),
            check=True,
        )
        return str(library)

    def test_a_wheel_has_it_in_the_package(self):
        site = self.package_elsewhere()
        shutil.copy(LIBRARY, site / "quillon" / "libQuillon.so")
        self.assertEqual(self.python("-c", CALL, package=site).stdout, "48\n")

    def test_the_source_tree_has_it_in_its_build_folder(self):
        package = self.package_elsewhere() / "quillon"
        tree = self.folder / "tree"
        for folder in ("python", "src/export", "build/release"):
            (tree / folder).mkdir(parents=True)
        package.rename(tree / "python" / "quillon")
        (tree / "src" / "export" / "Quillon.h").touch()
        shutil.copy(LIBRARY, tree / "build" / "release" / "libQuillon.so")
        self.assertEqual(self.python("-c", CALL, package=tree / "python").stdout, "48\n")

    def test_the_system_has_it_where_its_loader_looks(self):
        shutil.copy(LIBRARY, self.folder / "libQuillon.so.48")
        ended = self.python(
            "-c", CALL, package=self.package_elsewhere(), LD_LIBRARY_PATH=str(self.folder)
        )
        self.assertEqual(ended.stdout, "48\n")

    def test_where_it_is_nowhere_all_places_are_listed(self):
        site = self.package_elsewhere()
        ended = self.python("-c", CALL, package=site)
        for line in (
            "LibraryNotFound: the Quillon library is in none of these places:",
            "  QUILLON_LIBRARY: not set",
            f"  {site}/quillon/libQuillon.so.48: not there",
            "  libQuillon.so, by the system's loader: ",
            "  cmake --preset release\n  cmake --build --preset release\n",
        ):
            self.assertIn(line, ended.stderr)

    def test_it_is_loaded_at_the_first_call(self):
        ended = self.python("-c", "import quillon", package=self.package_elsewhere())
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))

    def test_the_package_is_no_command(self):
        ended = self.python("-m", "quillon")
        self.assertEqual((ended.returncode, ended.stdout), (2, ""))
        self.assertRegex(ended.stderr, "the command-line tool is not in the Python package")


if __name__ == "__main__":
    unittest.main()
