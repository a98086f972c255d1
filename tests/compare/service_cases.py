"""Cases of the folder and file services and of the path helpers."""

from cases import BLOCK, INF, NAN, Case, nulls

NAMES = [b"a.tif", b"b.psd", b"noext", b".hidden", b"x.1001.tif", b"tile.", b"..dots", b"sp ace.x",
         b"back\\slash.tif", "ä.tif".encode(), b"l" * 200 + b".tif", b"two", b"c.bmp"]
PATHS = [b".", b"..", b"/", b"a.tif", b"sub", b"sub/", b"sub/a.tif", b"sub//a.tif", b"./a.tif",
         b"missing", b"missing/a.tif", b"a.tif/", b"a.tif/b", b"full.d", b"n" * 255, b"n" * 256,
         b"n" * 5000, b"new.tif", b"sub/new", b"empty.d"]
TEXTS = [b"", b"abcdefgh", b"abc", b"C:\\maps\\tile.1001.tif", b"a/b.c", b"a.b/c", b"/", b"\\",
         b".", b"a.", b"a\\b.c/d", b"a/b\\c.d", b"a.b\\c", b"..", b"a/.", b"/.x", b"a//b.c.d",
         b"\xff\x80.\xfe", b"x" * 300 + b".y"]
NUMBERS = [0.0, 2.0, 2.9, 5.0, 10.0, 10.5, 11.0, -1.0, -0.5, NAN, 1e300, INF]


def furnished(rng):
    """A case with folders and files to work on."""
    case = Case((b"a.tif", rng.randbytes(rng.choice([0, 1, 100, 3999, 4000, 4001, 10000]))))
    case.folder(b"sub")
    case.folder(b"empty.d")
    case.file(case.folder(b"full.d") + b"/in.tif", b"x")
    for name in rng.sample(NAMES[1:], rng.randrange(1, 8)):
        case.file(name, name)
    for name in rng.sample(NAMES, rng.randrange(6)):
        if rng.odd(0.2):
            case.folder(b"sub/" + name)
        else:
            case.file(b"sub/" + name, b"in sub")
    if rng.odd(0.1):
        case.file(b"sub/link.tif", b"a.tif", rng.choice(["link", "symlink"]))
    return case


def files(rng):
    case = furnished(rng)
    for _ in range(rng.randint(1, 3)):
        existing = rng.choice(PATHS) if rng.odd(0.2) else b"a.tif"
        name = rng.choice(["FileDelete", "FileCopyTo", "FileCopyTo", "FileRename", "FileRename"])
        new = rng.choice([b"new.tif", b"copy", b"b.psd", b"sub/new.tif", rng.choice(PATHS)])
        case.call(name, existing, 0.0, None if name == "FileDelete" else new)
    return case


def folders(rng):
    case = furnished(rng)
    for _ in range(rng.randint(1, 3)):
        kind = rng.randrange(4)
        if kind == 0:
            new = rng.choice([b"new", b"sub/new.d", b"a.b/c", b"fresh/", rng.choice(PATHS)])
            case.call("CreateFolder", new, 0.0, None)
        elif kind == 1:
            name = rng.choice([b"sub", b"sub/", b".", b"full.d", b"missing", b"a.tif",
                               b"./" * 115 + b"sub", b"./" * 124 + b"."])
            case.call(rng.choice(["EmptyFolder", "ClearFolder"]), name)
        else:
            case.call("CheckFolder", rng.choice([b"sub", b".", rng.choice(PATHS)]), 0.0, None)
    return case


def listing(rng):
    case = furnished(rng)
    for _ in range(rng.randint(1, 14)):
        kind = rng.randrange(12)
        if kind < 3 or not case.calls:
            path = rng.choice([b"sub", b".", b".", b"full.d", b"missing", b"a.tif"])
            case.call("OpenFolder", path)
        elif kind < 10:
            case.call("GetFile", None, 0.0, BLOCK)
        elif kind == 10:
            case.call("CheckFolder", rng.choice([b"sub", b"missing"]))
        else:
            case.call("CloseFolder", None, 0.0, None)
    for _ in range(rng.choice([0, 0, 0, 0, 9])):
        case.call("GetFile", None, 0.0, BLOCK)
    return case


def texts(rng):
    case = Case()
    for _ in range(3):
        text = rng.choice([*TEXTS, *(bytes(rng.choices(b"ab./\\.", k=9)) for _ in range(12))])
        case.call("GetString", text, rng.choice(NUMBERS), BLOCK)
        case.call("FileNameExtract", text, rng.randint(-1, 8)).call("IsDirectory", text)
    case.call("Version", None, rng.choice(NUMBERS), None)
    return case.call("GetPublicFolder", None, 0.0, BLOCK)


RECIPES = [(files, 3), (folders, 3), (listing, 3), (texts, 1)]


def edges(rng):
    for text in TEXTS:
        case = Case()
        for mode in range(-1, 9):
            case.call("FileNameExtract", text, mode)
        for number in NUMBERS:
            case.call("GetString", text, number, BLOCK)
        yield case.call("IsDirectory", text)
    for name in ("Version", "CreateFolder", "CheckFolder", "OpenFolder", "CloseFolder",
                 "FileDelete", "EmptyFolder", "GetFile", "GetPublicFolder"):
        for text in (None, b"", b"a", b"n" * 5000):
            yield Case().call(name, text, 0.0, None)
            case = furnished(rng).call("OpenFolder", b"sub").call(name, text, 0.0, None)
            yield case.call("GetFile", None, 0.0, BLOCK)
    yield from nulls(("FileCopyTo", 0.0), ("FileRename", 0.0))
    yield Case().call("GetString", None, 0.0, BLOCK).call("GetString", b"abc", 0.0, None)
    for path in PATHS:
        for name in ("FileCopyTo", "FileRename"):
            for first, second in ((b"a.tif", path), (path, b"new.tif"), (b"sub", path)):
                yield furnished(rng).call(name, first, 0.0, second)
        if path not in (b"..", b"/"):
            case = furnished(rng).call("FileDelete", path).call("CreateFolder", path)
            yield case.call("CheckFolder", path).call("EmptyFolder", path)
