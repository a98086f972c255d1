"""scripts/check-macos against copies of a sound Quillon.dylib that are each damaged in one place.

check_macos_test.py LIBRARY
"""

import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "scripts/check-macos"
LIBRARY = pathlib.Path(sys.argv.pop())

X86_64, ARM64 = 0x01000007, 0x0100000C
LC_CODE_SIGNATURE, LC_BUILD_VERSION = 0x1D, 0x32
MH_TWOLEVEL, MH_WEAK_DEFINES = 0x80, 0x8000


class Copy:
    """The library's bytes. x86-64 is not signed: damage there breaks no page hash."""

    def __init__(self):
        self.bytes = bytearray(LIBRARY.read_bytes())

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


class CheckMacos(unittest.TestCase):
    def setUp(self):
        self.copy = Copy()

    def assert_differs(self, *facts, have=""):
        """The check fails and names these facts, none else."""
        ended = check(self.copy.bytes)
        self.assertEqual(ended.returncode, 1)
        lines = ended.stderr.splitlines()
        self.assertEqual([line for line in lines if not line.startswith("  ")], list(facts))
        self.assertIn(have, ended.stderr)

    def test_accepts_the_library(self):
        ended = check(self.copy.bytes)
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))
        self.assertIn("signature: ad hoc, every page as signed", ended.stdout)

    def test_finds_a_changed_byte_in_a_signed_page(self):
        self.copy.bytes[self.copy.slice(ARM64)[0] + 0x10000] ^= 1
        self.assert_differs("arm64: signature", have="have page 16 is not as signed")

    def test_misses_the_signature_of_arm64(self):
        command = self.copy.command(ARM64, LC_CODE_SIGNATURE)
        self.copy.change_word(command, lambda _: 0x1E)
        self.assert_differs("arm64: load commands", "arm64: signature", have="have none")

    def test_finds_a_newer_minimum_system(self):
        command = self.copy.command(X86_64, LC_BUILD_VERSION)
        self.copy.change_word(command + 12, lambda _: 0x000C0000)
        self.assert_differs("x86_64: minimum system", have="have macOS 12.0")

    def test_finds_another_name(self):
        for old, new, *facts in (
            (b"ersion\0", b"ersiom\0", "exports", "symbol table"),
            (b"@rpath/Quillon.dylib", b"@xpath/Quillon.dylib", "install name"),
            (b"/usr/lib/libz.1.dylib", b"/usr/lib/liby.1.dylib", "libraries"),
            (b"NSOpenPanel", b"NSSavePanel", "classes"),
            (b"\0runModalForTypes:", b"\0runModalForKinds:", "selectors"),
        ):
            with self.subTest(old=old):
                self.copy = Copy()
                self.copy.replace(old, new)
                self.assert_differs(*("x86_64: " + fact for fact in facts))

    def test_finds_weak_symbols_and_a_flat_namespace(self):
        for flag in (MH_WEAK_DEFINES, MH_TWOLEVEL):
            with self.subTest(flag=flag):
                self.copy = Copy()
                flags = self.copy.slice(X86_64)[0] + 24
                self.copy.change_word(flags, lambda word, flag=flag: word ^ flag)
                self.assert_differs("x86_64: flags")

    def test_finds_a_load_command_too_many(self):
        header = self.copy.slice(X86_64)[0] + 16
        commands, size = struct.unpack_from("<2I", self.copy.bytes, header)
        struct.pack_into("<2I", self.copy.bytes, header, commands + 1, size + 8)
        struct.pack_into("<2I", self.copy.bytes, header + 16 + size, 0x80000028, 8)
        self.assert_differs("x86_64: load commands")

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
