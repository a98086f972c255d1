"""Cases of the mesh operations: tiles, their files, the tile filter, colours, OBJ and merging."""

import struct

from cases import BLOCK, INF, NAN, Case, Layout, nulls, source, target, unreadable

IDS = {"vertices": 10001, "faces": 20001, "uvs": 25001, "mask": 30001, "colours": 35001,
       "groups": 40001}
ODD_UVS = [-0.0, -1.0, -2.0, -1e-9, 0.9999999, 1.0, 2.0, 9.5, 10.0, -10.25, 1e-40, 123456.789]
HUGE_UVS = [NAN, INF, -INF, 2147483520.0, 2147483648.0, -2147483648.0, 1e20, -3e38]
COORDINATES = [0.0, -0.0, 1.0, 0.1, 1e-5, 0.0001, 123456.0, 1234567.0, 999999.5, 1e16, 3.4e38,
               1e-45, 100000.0, 0.30000001, -12.5, NAN, INF, -INF]
LEVELS = [1.0, 1.0, 1.0, 0.0, 0.5, 1.5, 2.0, 3.0, 16.0, 17.0, 1000.0, -5.0, NAN, INF]
MODES = [0.0, 1.0, 2.0, 2.0, 2.0, 2.9, 3.0, -2.0, 7.0, NAN, 1e300, -1e300]
ODD_PIECES = ["", " 1001 ", "1001\r", "\t1001", "\t1001-\t1005", "-5", "5-", "-", "1001-1002-1011",
              "abc", "abc-1005", "x1001-1003", "1001x-1003x", "+1001-+1005", "99999999999-1",
              "1 0 0 1", "1001-99999999999", "\v1001-1004\f", "-1-5", "0x3e9-0x3f5", "01001", "é",
              "1001\0", "1002-1004\r", "1010--1", "1001- 1003", "-99999999999-1002"]


class Mesh:
    """What a mesh is like; its elements are drawn as its chunks are written."""

    def __init__(self, rng):
        self.rng = rng
        self.faces = rng.side()
        self.vertices = rng.randint(1, rng.most + 4)
        self.huge = rng.odd(0.15)
        self.gaps = rng.odd(0.15)  # room that a chunk has and does not use
        self.near = rng.random() < 0.5  # UVs of tile 0 and its neighbours only

    def uv(self):
        if self.rng.odd(0.1):
            return self.rng.choice(HUGE_UVS if self.huge else ODD_UVS)
        return self.rng.uniform(0, 2) if self.near else self.rng.uniform(-3, 12)

    def coordinate(self):
        if self.rng.random() < 0.3:
            return self.rng.choice(COORDINATES)
        return self.rng.uniform(-9, 9) * 10 ** self.rng.randint(-7, 8)

    def face(self):
        corners = [self.rng.randrange(self.vertices) for _ in range(4)]
        if self.rng.random() < 0.3:
            corners[3] = self.rng.choice([-1, -1, -7, -(2**31)])
        return corners

    def elements(self, kind):
        """A chunk's number of elements and its bytes."""
        rng, faces, vertices = self.rng, self.faces, self.vertices
        if kind == "vertices":
            coordinates = (self.coordinate() for _ in range(3 * vertices))
            return vertices, struct.pack(f"<{3 * vertices}f", *coordinates)
        if kind == "faces":
            return faces, b"".join(struct.pack("<4i", *self.face()) for _ in range(faces))
        if kind == "uvs":
            return faces, struct.pack(f"<{8 * faces}f", *(self.uv() for _ in range(8 * faces)))
        if kind == "groups":
            groups = rng.choices([5, 2, -1, 0, 32767, -32768], k=faces)
            return faces, struct.pack(f"<{faces}h", *groups)
        return vertices, rng.randbytes(vertices * (4 if kind == "colours" else 1))

    def layout(self, kinds):
        """The file with these chunks in this order."""
        layout = Layout(self.rng.randbytes(32))
        for kind in kinds:
            count, data = self.elements(kind)
            gap = self.rng.randbytes(self.rng.choice([1, 16, 33])) if self.gaps else b""
            chunk(layout, kind, count, data + gap)
        return layout.raw(b"" if self.rng.odd(0.1) else bytes(16))


def chunk(layout, kind, count, data):
    layout.put(f"{kind} id", 4, IDS.get(kind, 777)).put(f"{kind} length", 4, 16 + len(data))
    return layout.put(f"{kind} count", 4, count).put(f"{kind} reserved", 4, 0).raw(data)


def mesh(rng, kinds):
    """A mesh with chunks in a random order, others among them, sometimes one missing."""
    kinds = [kind for kind in kinds if not rng.odd(0.03)]
    kinds += rng.sample(["mask", "colours", "other"], rng.randrange(2))
    if rng.odd(0.4):
        rng.shuffle(kinds)
    return Mesh(rng).layout(kinds)


def full_mesh(rng, case, name=b"m.Vemo"):
    return source(rng, case, name, mesh(rng, ["vertices", "faces", "uvs", "groups"]))


def filter_piece(rng):
    """What is between two commas of a tile filter: a name, a range or something odd."""
    kind = rng.randrange(3)
    first = rng.choice([1001, 1002, 1003, 1011, 990, 0, rng.randint(980, 1130)])
    if kind == 0:
        return str(first)
    if kind == 1:
        return f"{first}-{first + rng.choice([0, 1, 3, 10, 100, -2, 2**31 - 1, 2**33])}"
    return rng.choice(ODD_PIECES)


def filter_text(rng):
    """A tile filter, as users and editors write it."""
    ends = [",", ", ", "\n", "\r\n", ",,", " ,", ""]
    pieces = [filter_piece(rng) + rng.choice(ends) for _ in range(rng.randrange(1, 6))]
    return "".join(pieces).encode()


def tile_filter(rng, case):
    """Perhaps sets the filter."""
    if rng.random() < 0.6:
        case.call("clearUVtilesOutput", None, 0.0, None)
    if rng.random() < 0.6:
        content = rng.randbytes(40) if rng.odd(0.05) else filter_text(rng)
        case.call("setUVtilesOutput", source(rng, case, b"tiles.txt", content))


def tiles(rng):
    case = Case()
    tile_filter(rng, case)
    path = full_mesh(rng, case)
    for _ in range(rng.choice([1, 1, 2])):
        case.call("getUVTile", path, rng.choice(MODES), BLOCK)
    return case


def filtered(rng):
    """A filter and a mesh with a face in each of many tiles: the count shows what passes."""
    case = Case((b"tiles.txt", filter_text(rng)), (b"m.Vemo", GRID))
    case.call("setUVtilesOutput", b"tiles.txt").call("getUVTile", b"m.Vemo", 2.0, BLOCK)
    return case.call("getUVs", b"m.Vemo", 2.0, b"out") if rng.odd(0.1) else case


def groups(rng):
    case = Case()
    return case.call("getUVGroups", full_mesh(rng, case), 0.0, None)


def out_path(rng, case):
    """Where the tiles' files go; tile 1001's may be taken by a folder or another file."""
    kind = rng.randint(1, 7) if rng.odd(0.4) else 0
    if kind == 1:
        case.folder(b"out1001.Vemo")
    if kind == 2:
        case.file(b"out1001.Vemo", rng.randbytes(5000))
    if kind == 3:
        return case.folder(b"maps.d") + b"/mesh"
    if kind == 4:
        return case.folder(b"maps") + b"/mesh.tif"
    odd = [b"missing/out.tif", b"", b".ext", b"m.x"]
    return rng.choice(odd if kind == 5 else [b"out.tif", b"out"])


def export(rng):
    case = Case()
    tile_filter(rng, case)
    path = full_mesh(rng, case, rng.choice([b"m.Vemo", b"m.Vemo", b"m1001.Vemo"]))
    for _ in range(rng.choice([1, 1, 1, 2])):
        name = rng.choice(["getUVs", "getUVs", "getUVsMask"])
        case.call(name, path, rng.choice(MODES), out_path(rng, case))
    for _ in range(rng.randrange(4)):
        position = rng.choice([0, 1, 2, 7, -1, 2**31 - 1, 0.9, 1.9])
        case.call("getUVString", None, position, BLOCK)
    if rng.odd(0.3):
        case.call("clearUVString", None, 0.0, None).call("getUVString", None, 0.0, BLOCK)
    return case


def masked(rng):
    """A mask export of one mesh, without a filter."""
    case = Case()
    path = source(rng, case, b"m.Vemo", mesh(rng, ["vertices", "faces", "uvs"]))
    return case.call("getUVsMask", path, rng.choice(MODES), b"out.tif")


def colours(rng):
    case = Case()
    drawn = Mesh(rng)
    drawn.vertices = rng.choice([drawn.vertices, 31, 32, 33, 64])
    path = source(rng, case, b"m.Vemo", drawn.layout(["colours", "vertices"]))
    return case.call("ReadVertColorVemo", path, target(rng, case, path, b"out.txt"))


def obj(rng):
    """An OBJ after the faces of a base mesh were counted. The chunks it needs mostly come first."""
    case = Case()
    path = source(rng, case, b"base.Vemo", Mesh(rng).layout(["faces"]))
    for _ in range(rng.choice([0, 1, 1, 1, 1, 2])):
        case.call("GetFaceIDsVemo", path, rng.choice(LEVELS))
    kinds = ["vertices", "colours", "faces"]
    if rng.odd(0.12):
        rng.shuffle(kinds)
    drawn = Mesh(rng)
    drawn.gaps = drawn.gaps and rng.odd(0.2)
    if rng.odd(0.2):
        drawn.vertices = rng.choice([32, 33])
    kinds = [*kinds, "uvs"][: rng.choice([4, 4, 3, 2])]
    path = source(rng, case, b"m.Vemo", drawn.layout(kinds))
    for _ in range(rng.choice([1, 1, 2])):
        case.call("writeOBJfromVemo", path, target(rng, case, path, b"out.obj"))
    return case


def face_counts(rng):
    case = Case()
    path = source(rng, case, b"base.Vemo", Mesh(rng).layout(["faces", "vertices"]))
    return case.call("GetFaceIDsVemo", path, rng.choice([1.0, 2.0, 5.0, 1e9, -1e9]))


def crease(rng):
    case = Case()
    first = source(rng, case, b"a.Vemo", mesh(rng, ["vertices"]))
    size = rng.choice([13, 14, 15, 16, 48, 700]) if rng.odd(0.6) else 100
    second = source(rng, case, b"b.Vemo", Layout(rng.randbytes(size)))
    return case.call("mergeCrease", first, 0.0, first if rng.odd(0.05) else second)


RECIPES = [(tiles, 4), (filtered, 3), (groups, 2), (export, 5), (masked, 2), (colours, 2), (obj, 5),
           (face_counts, 1), (crease, 2)]


def uv_mesh(*faces):
    """A mesh of four vertices and a quad for each list of four UVs."""
    count = len(faces)
    uvs = b"".join(struct.pack("<8f", *(x for corner in face for x in corner)) for face in faces)
    layout = chunk(Layout(bytes(32)), "vertices", 4, struct.pack("<12f", *range(12)))
    chunk(layout, "faces", count, struct.pack("<4i", 0, 1, 2, 3) * count)
    return chunk(layout, "uvs", count, uvs).raw(bytes(16))


GRID = bytes(uv_mesh(*([(u + 0.5, v + 0.5)] * 4 for v in range(-1, 4) for u in range(10))).data)


def edges(rng):
    straddling = [(0.9, 0.5), (1.1, 0.5), (-0.25, 0.5), (-1.0, 1.0)]
    for faces in ([[corner] * 4 for corner in ((0.5, 0.5), (1.5, 0.5), (0.2, 1.7))],
                  [straddling], [], [[(1.0, -1.0)] * 4], [[(10.5, 0)] * 4, [(0, 1)] * 4]):
        for mode in range(4):
            case = Case((b"m.Vemo", uv_mesh(*faces)), (b"tiles.txt", b"1001-1003, 1011"))
            case.call("getUVTile", b"m.Vemo", mode, BLOCK)
            case.call("setUVtilesOutput", b"tiles.txt").call("getUVTile", b"m.Vemo", mode, BLOCK)
            case.call("getUVs", b"m.Vemo", mode, b"out.tif").call("getUVString", None, 0.0, BLOCK)
            case.call("getUVsMask", b"m.Vemo", mode, b"mask.tif")
            case.call("getUVString", None, 1.0, BLOCK).call("setUVtilesOutput", b"missing")
            yield case.call("getUVTile", b"m.Vemo", mode, BLOCK)
    for piece in ODD_PIECES:
        case = Case((b"tiles.txt", piece.encode()), (b"m.Vemo", GRID))
        case.call("setUVtilesOutput", b"tiles.txt")
        yield case.call("getUVTile", b"m.Vemo", 2.0, BLOCK)
    grouped = struct.pack("<4I4h", 40001, 24, 4, 0, 5, 5, 2, -1)
    stalling = struct.pack("<4I", 777, 0, 0, 0)
    for chunks in (grouped, stalling + grouped, struct.pack("<4I", 10001, 16, 0, 0), b""):
        case = Case((b"m.Vemo", bytes(32) + chunks)).call("getUVGroups", b"m.Vemo")
        yield case.call("getUVTile", b"m.Vemo", 0.0, BLOCK)
    for name in ("getUVs", "getUVsMask"):
        yield Case((b"m.Vemo", GRID)).call(name, b"m.Vemo", 2.0, b"n" * 5000)
    for count in (0, 1, 3, 31, 32, 33, 64, 65):
        data = (b"\x10\x20\x30\x40" + rng.randbytes(400))[: 4 * count]
        case = Case((b"m.Vemo", chunk(Layout(bytes(32)), "colours", count, data)))
        yield case.call("ReadVertColorVemo", b"m.Vemo", b"out.txt")
    for first, second in ((100, 100), (13, 100), (100, 13), (14, 14), (0, 0)):
        case = Case((b"a", rng.randbytes(first)), (b"b", rng.randbytes(second)))
        yield case.call("mergeCrease", b"a", 0.0, b"b")
    exports = ("getUVTile", 0.0, BLOCK), ("getUVs", 0.0, b"out"), ("getUVsMask", 0.0, b"out")
    yield from unreadable(*exports, ("getUVGroups",), ("setUVtilesOutput",))
    yield from unreadable(("mergeCrease", 0.0, b"out"), ("ReadVertColorVemo", b"out"),
                          ("writeOBJfromVemo", b"out"), ("GetFaceIDsVemo", 1.0))
    yield from nulls(("getUVs", 0.0), ("getUVsMask", 0.0), ("mergeCrease", 0.0))
    for name in ("getUVTile", "getUVString", "getUVGroups", "setUVtilesOutput"):
        yield Case().call(name, None, 0.0, None)
