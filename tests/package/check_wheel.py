"""Wheels as scripts/package makes them: RECORD names every file with its digest, the tag is the one in
WHEEL, the notices are there, and the library is one that the tag promises to systems.

check_wheel.py WHEEL...
"""

import base64
import csv
import hashlib
import pathlib
import re
import subprocess
import sys
import tempfile
import zipfile

EXPORTS = pathlib.Path(__file__).resolve().parents[2] / "src/export/exports.txt"
# What every Linux system of a manylinux tag has, as far as the library needs it.
SYSTEM = {"ld-linux-x86-64.so.2", "libc.so.6", "libgcc_s.so.1", "libm.so.6"}
NOTICES = {"manylinux": ["libdeflate", "tinyexr", "zlib"], "macosx": ["tinyexr"]}


def digest(content):
    encoded = base64.urlsafe_b64encode(hashlib.sha256(content).digest())
    return "sha256=" + encoded.rstrip(b"=").decode()


def mistakes_in_record(files):
    """Each file but RECORD itself has its digest and size there, and nothing else is named."""
    name = next(name for name in files if name.endswith(".dist-info/RECORD"))
    want = {n: [digest(c), str(len(c))] for n, c in files.items() if n != name}
    want[name] = ["", ""]
    rows = {row[0]: row[1:] for row in csv.reader(files[name].decode().splitlines())}
    return [f"RECORD: {n}" for n in {*want, *rows} if want.get(n) != rows.get(n)]


def versions_of(library):
    """The highest version that a library for Linux needs of each family of symbols."""
    text = subprocess.check_output(["readelf", "--version-info", library], text=True)
    needed = text[text.index("Version needs section") :]
    families = {}
    for family, version in re.findall(r"Name: ([A-Z_]+)_([0-9.]+) ", needed):
        number = tuple(map(int, version.split(".")))
        families[family] = max(number, families.get(family, (0,)))
    return families


def mistakes_on_linux(content, platform):
    with tempfile.NamedTemporaryFile() as library:
        library.write(content)
        library.flush()
        dynamic = subprocess.check_output(["readelf", "-d", library.name], text=True)
        versions = versions_of(library.name)
        symbols = subprocess.check_output(["nm", "-D", "--defined-only", library.name], text=True)
    needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic))
    mistakes = [f"needs {name}" for name in sorted(needed - SYSTEM)]
    major, minor = map(int, re.match(r"manylinux_(\d+)_(\d+)_x86_64$", platform).groups())
    if versions["GLIBC"][:2] != (major, minor):
        mistakes.append(f"needs glibc {versions['GLIBC']}, tagged {platform}")
    if sorted(line.split()[-1] for line in symbols.splitlines()) != sorted(
        EXPORTS.read_text().split()
    ):
        mistakes.append("shows other symbols than the exports")
    if not {"GLIBC", "GCC"} >= set(versions):
        mistakes.append(f"needs versions of {sorted(versions)}")
    return mistakes


def mistakes_on_macos(content, _):
    """A universal file of both processors; scripts/check-macos reads the rest of it."""
    processors = {content[8 + 20 * i : 12 + 20 * i].hex() for i in range(content[7])}
    whole = content[:4].hex() == "cafebabe" and processors == {"01000007", "0100000c"}
    return [] if whole else ["no universal library"]


def mistakes_in(path):
    with zipfile.ZipFile(path) as archive:
        files = {name: archive.read(name) for name in archive.namelist()}
        modes = {entry.external_attr >> 16 & 0o777 for entry in archive.infolist()}
    name, version, *tag = path.stem.split("-")
    info = f"{name}-{version}.dist-info"
    system = re.match("[a-z]+", tag[2])[0]
    mistakes = mistakes_in_record(files)
    facts = files[f"{info}/WHEEL"].decode()
    if f"Tag: {'-'.join(tag)}\n" not in facts or "Root-Is-Purelib: false\n" not in facts:
        mistakes.append(f"WHEEL: {facts}")
    if not modes <= {0o644, 0o664, 0o755}:
        mistakes.append(f"modes: {[oct(mode) for mode in modes]}")
    have = sorted(
        pathlib.Path(n).stem
        for n, content in files.items()
        if n.startswith(info) and n.endswith(".txt") and b"opyright" in content
    )
    if have != NOTICES[system]:
        mistakes.append(f"notices: {have}")
    library, check = {
        "manylinux": ("quillon/libQuillon.so", mistakes_on_linux),
        "macosx": ("quillon/Quillon.dylib", mistakes_on_macos),
    }[system]
    return mistakes + check(files[library], tag[2])


def main(wheels):
    failed = False
    for wheel in map(pathlib.Path, wheels):
        mistakes = mistakes_in(wheel)
        print(f"{wheel.name}: {'as its tag says' if not mistakes else 'wrong'}")
        print("".join(f"{wheel.name}: {m}\n" for m in mistakes), file=sys.stderr, end="")
        failed |= bool(mistakes)
    return 1 if failed or not wheels else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
