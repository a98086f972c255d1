"""scripts/check-macos against copies of a sound Quillon.dylib that are each damaged in one place.

check_macos_test.py LIBRARY
"""

import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "scripts/check-macos"
LIBRARY = pathlib.Path(sys.argv.pop())

X86_64, ARM64 = 0x01000007, 0x0100000C
LC_UUID, LC_CODE_SIGNATURE, LC_BUILD_VERSION = 0x1B, 0x1D, 0x32
MH_TWOLEVEL, MH_WEAK_DEFINES = 0x80, 0x8000


class Copy:
    """The bytes of the library, or of its symbols."""

    def __init__(self, path=LIBRARY):
        self.bytes = bytearray(path.read_bytes())

    def slice(self, cpu):
        for i in range(2):
            found, _, offset, size, _ = struct.unpack_from(">5I", self.bytes, 8 + 20 * i)
            if found == cpu:
                return offset, size
        raise AssertionError("no such slice")

    def command(self, cpu, wanted):
        """The offset of the first load command of a kind."""
        offset = self.slice(cpu)[0] + 32
        while True:
            command, size = struct.unpack_from("<2I", self.bytes, offset)
            if command == wanted:
                return offset
            offset += size

    def replace(self, old, new):
        """Replaces a text of the x86-64 slice wherever it occurs."""
        assert len(old) == len(new)
        offset, size = self.slice(X86_64)
        part = self.bytes[offset : offset + size]
        assert old in part
        self.bytes[offset : offset + size] = part.replace(old, new)

    def change_word(self, offset, change):
        (word,) = struct.unpack_from("<I", self.bytes, offset)
        struct.pack_into("<I", self.bytes, offset, change(word))


def check(data):
    with tempfile.NamedTemporaryFile(suffix=".dylib") as file:
        file.write(data)
        file.flush()
        return subprocess.run([CHECK, file.name], capture_output=True, text=True, check=False)


def tool(*words):
    return subprocess.run(words, capture_output=True, text=True, check=True).stdout


class CheckMacos(unittest.TestCase):
    def setUp(self):
        self.copy = Copy()

    def assert_differs(self, *facts, have=""):
        """The check fails and names these facts, none else."""
        ended = check(self.copy.bytes)
        self.assertEqual(ended.returncode, 1)
        lines = ended.stderr.splitlines()
        self.assertEqual(sorted(line for line in lines if line[0] != " "), sorted(facts))
        self.assertIn(have, ended.stderr)

    def assert_x86_64_differs(self, *facts, have=""):
        """The same for x86-64, where the damage also breaks the hash of a page."""
        self.assert_differs(*(f"x86_64: {fact}" for fact in (*facts, "signature")), have=have)

    def test_accepts_the_library(self):
        ended = check(self.copy.bytes)
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))
        self.assertEqual(ended.stdout.count("signature: ad hoc, every page as signed"), 2)

    def test_finds_a_changed_byte_in_a_signed_page(self):
        for processor, cpu in (("arm64", ARM64), ("x86_64", X86_64)):
            with self.subTest(processor=processor):
                self.copy = Copy()
                self.copy.bytes[self.copy.slice(cpu)[0] + 0x10000] ^= 1
                self.assert_differs(
                    f"{processor}: signature", have="have page 16 is not as signed"
                )

    def test_misses_a_signature(self):
        for processor, cpu in (("arm64", ARM64), ("x86_64", X86_64)):
            with self.subTest(processor=processor):
                self.copy = Copy()
                command = self.copy.command(cpu, LC_CODE_SIGNATURE)
                self.copy.change_word(command, lambda _: 0x1E)
                self.assert_differs(
                    f"{processor}: load commands", f"{processor}: signature", have="have none"
                )

    def test_asks_for_an_identity(self):
        ended = subprocess.run(
            [CHECK, "--signed", LIBRARY], capture_output=True, text=True, check=False
        )
        self.assertEqual(ended.returncode, 1)
        self.assertIn("want with an identity and the hardened runtime", ended.stderr)

    def test_finds_a_newer_minimum_system(self):
        command = self.copy.command(X86_64, LC_BUILD_VERSION)
        self.copy.change_word(command + 12, lambda _: 0x000C0000)
        self.assert_x86_64_differs("minimum system", have="have macOS 12.0")

    def test_finds_another_name(self):
        system = "from /usr/lib/libSystem.B.dylib"
        for old, new, *facts in (
            (b"ersion\0", b"ersiom\0", "exports", "symbol table"),
            (b"@rpath/Quillon.dylib", b"@xpath/Quillon.dylib", "install name"),
            (b"/libz.1.dylib", b"/liby.1.dylib", "libraries", "from /usr/lib/libz.1.dylib"),
            (b"NSOpenPanel", b"NSSavePanel", "classes"),
            (b"\0runModalForTypes:", b"\0runModalForKinds:", "selectors"),
            (b"\0_strnlen\0", b"\0_strnlem\0", system),
            (b"\0___stack_chk_fail\0", b"\0___stack_chk_fall\0", "must import", system),
        ):
            with self.subTest(old=old):
                self.copy = Copy()
                self.copy.replace(old, new)
                self.assert_x86_64_differs(*facts)

    def test_finds_weak_symbols_and_a_flat_namespace(self):
        for flag in (MH_WEAK_DEFINES, MH_TWOLEVEL):
            with self.subTest(flag=flag):
                self.copy = Copy()
                flags = self.copy.slice(X86_64)[0] + 24
                self.copy.change_word(flags, lambda word, flag=flag: word ^ flag)
                self.assert_x86_64_differs("flags")

    # Xcode's linker writes one more command, and what it imports depends on Xcode's headers.
    def test_lets_xcode_import_other_functions_but_not_miss_the_guard(self):
        build = self.copy.command(X86_64, LC_BUILD_VERSION)
        self.copy.change_word(build + 24, lambda _: 3)
        self.copy.replace(b"\0_strnlen\0", b"\0_strnlem\0")
        self.assert_x86_64_differs("load commands", have=" SOURCE_VERSION ")
        self.copy.replace(b"\0___stack_chk_fail\0", b"\0___stack_chk_fall\0")
        self.assert_x86_64_differs("load commands", "must import")

    def test_finds_a_load_command_too_many(self):
        header = self.copy.slice(X86_64)[0] + 16
        commands, size = struct.unpack_from("<2I", self.copy.bytes, header)
        struct.pack_into("<2I", self.copy.bytes, header, commands + 1, size + 8)
        struct.pack_into("<2I", self.copy.bytes, header + 16 + size, 0x80000028, 8)
        self.assert_x86_64_differs("load commands")

    def test_finds_symbols_of_another_build(self):
        symbols = pathlib.Path(f"{LIBRARY}.dSYM/Contents/Resources/DWARF") / LIBRARY.name
        with tempfile.TemporaryDirectory() as folder:
            library = pathlib.Path(shutil.copy(LIBRARY, folder))
            self.copy = Copy(symbols)
            self.copy.bytes[self.copy.command(ARM64, LC_UUID) + 8] ^= 1
            other = folder / symbols.relative_to(LIBRARY.parent)
            other.parent.mkdir(parents=True)
            other.write_bytes(self.copy.bytes)
            ended = subprocess.run([CHECK, library], capture_output=True, text=True, check=False)
        self.assertEqual(ended.returncode, 1)
        self.assertRegex(ended.stderr, r"^arm64: UUID\n  have \w{32}\n  want \w{32}\n$")

    # As a crash report is read: the address of an export in the shipped library, which has no lines.
    def test_symbols_name_the_line_of_an_address(self):
        for processor in ("arm64", "x86_64"):
            with self.subTest(processor=processor):
                names = tool("llvm-nm-19", f"--arch={processor}", LIBRARY)
                address = re.search(r"^(\w+) T _getScale$", names, re.M)[1]
                said = tool(
                    "llvm-symbolizer-19",
                    f"--default-arch={processor}",
                    f"--obj={LIBRARY}",
                    f"0x{address}",
                )
                self.assertRegex(said, r"^getScale\n\S*src/export/Quillon\.cpp:\d+:")

    def test_misses_a_slice(self):
        struct.pack_into(">I", self.copy.bytes, 4, 1)
        self.assert_differs("slices: x86_64")

    def test_refuses_a_truncated_file(self):
        for length in (0, 3, 8, 20, 48, 4096, 20000, len(self.copy.bytes) // 2, -1):
            with self.subTest(length=length):
                ended = check(self.copy.bytes[:length])
                self.assertEqual(ended.returncode, 1)
                self.assertIn("cannot be read", ended.stderr)


if __name__ == "__main__":
    unittest.main()
