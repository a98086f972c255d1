"""Mesh interchange files: UV tiles, one file per tile, vertex colours, OBJ text, crease merge.

A file is a header of 32 bytes, which is not read, and chunks: id, length with these 16 bytes
included, element count, 0, then the elements. All values are little-endian.
"""

import math
import re
import struct

import numpy as np

from services import FileNameExtract
from world import check, create, le, load, single, whole

VERTEX, FACE, FACE_UV, MASK, COLOUR, GROUP = 10001, 20001, 25001, 30001, 35001, 40001

ELEMENTS = {  # what one element holds: the type of its values and their number
    VERTEX: ("<f4", 3),  # x, y, z
    FACE: ("<i4", 4),  # vertex indices; a negative fourth one marks a triangle
    FACE_UV: ("<f4", 8),  # u, v of the four corners
    COLOUR: ("u1", 4),  # blue, green, red, unused
    GROUP: ("<i2", 1),
}

FIRST_CHUNK = 32
EMPTY_CHUNK = bytes(16)  # closes a file

filterNames = set()  # the tile filter: names as they are in its file,
filterRanges = []  # and pairs of numbers, both included
UVTileStr = []  # the names of the tiles of the last UV export
faceID = []  # how many faces each base face has become


def load_mesh(path, status):
    """A file's bytes and its last byte once more."""
    data = load(path, status)
    return data + (data[-1:] or b"\0")


def find_chunk(data, wanted, start=FIRST_CHUNK, guarded=True, missing=-18.0):
    """The offset of the first chunk with the wanted id at or after `start`.

    A length of 0 would stall the search: the guarded one skips the 16 bytes of the header, the
    other one ends.
    """
    at = start
    while le(data, at, 4) != wanted:
        length = le(data, at + 4, 4)
        check(length != 0 or guarded, missing)
        at += length or 16
        check(at < min(len(data), 2**32), missing)
    return at


def elements(data, at, kind):
    """The elements of the chunk at an offset, a row each. The file must have all of them."""
    value, size = ELEMENTS[kind]
    count = le(data, at + 8, 4)
    end = at + 16 + count * size * np.dtype(value).itemsize
    check(end <= len(data), -18.0)
    return np.frombuffer(data[at + 16 : end], value).reshape(count, size)


# UV tiles


def split_uv(x):
    """The tiles of coordinates, and their places within these tiles.

    Below zero 1 is subtracted before truncation, so that -0.25 is in tile -1, and -1.0 in tile -2.
    NaN is in tile 0 and stays as it is.
    """
    with np.errstate(all="ignore"):
        y = np.where(x < 0, x - np.float32(1), x)
        fraction, integer = np.modf(y)
        local = np.where(fraction < 0, fraction + np.float32(1), fraction)
    integer = np.nan_to_num(integer.astype(np.float64), nan=0.0)
    tile = np.clip(integer, -(2.0**31), 2.0**31 - 1).astype(np.int64)
    return tile, np.where(np.isnan(x), x, local)


def tile_name(u, v, mode):
    """A tile's name in one of the four naming modes; mode 2 has ten tiles a row."""
    if mode == 0:
        return b"_u%d_v%d" % (u, v)
    if mode == 1:
        return b"_u%d_v%d" % (u + 1, v + 1)
    if mode == 2:
        return b"%d" % (u + 10 * v + 1001)
    return b"u%dv%d" % (u, v)


def passes_filter(name):
    """Whether the filter lists a tile number; an empty filter lets every one pass."""
    if not filterNames and not filterRanges:
        return True
    return name in filterNames or any(first <= int(name) <= last for first, last in filterRanges)


def find_tiles(uvs, mode):
    """The tiles in the order of their names, and the name of the last face's tile.

    A face belongs to the tile of its first corner. Of tiles with one name the first is kept.
    """
    tiles = {}
    name = b""
    for u, v in split_uv(uvs[:, :2])[0].tolist():
        name = tile_name(u, v, mode)
        if mode != 2 or passes_filter(name):
            tiles.setdefault(name, (u, v))
    return dict(sorted(tiles.items())), name


def GetUVTile(path, out, mode):
    """The number of tiles. `out` takes the last face's tile, also if the filter rejects it."""
    data = load_mesh(path, -17.0)
    uvs = elements(data, find_chunk(data, FACE_UV, guarded=False), FACE_UV)
    tiles, last = find_tiles(uvs, mode)
    out.copy(last)
    return float(len(tiles))


def GetUVGroup(path):
    """The number of different group ids of the faces."""
    data = load_mesh(path, -17.0)
    return float(len(np.unique(elements(data, find_chunk(data, GROUP), GROUP))))


def clearUVtilesOut():
    """Empties the tile filter."""
    filterNames.clear()
    filterRanges.clear()
    return 0.0


def leading_number(text):
    """The number at the start of a text, after blanks; 0 without one, the nearest of 32 bits."""
    number = re.match(rb"[ \t\n\v\f\r]*([+-]?[0-9]+)", text)
    return whole(float(number[1])) if number else 0


def setUVtilesOut(path):
    """Reads the tile filter: names and ranges, separated by commas or line ends, spaces ignored.

    Ranges are kept as such, since a long one would fill the memory.
    """
    clearUVtilesOut()
    for line in load(path, -1.0).split(b"\n"):
        for piece in line.replace(b" ", b"").split(b","):
            if b"-" in piece:
                first, last = (leading_number(end) for end in piece.split(b"-", 1))
                if first <= last:
                    filterRanges.append((first, last))
            elif piece:
                filterNames.add(piece)
    return 0.0


def getUVTileString(position, out):
    """Copies the name of a tile of the last UV export; nothing where there is no such tile."""
    if out is not None and 0 <= position < len(UVTileStr):
        out.copy(UVTileStr[position])
    return 0.0


def clearUVTileString():
    """Forgets the names of the last export's tiles."""
    UVTileStr.clear()
    return 0.0


# One file per tile


def write_tiles(tiles, outPath, content):
    """Writes a file for each tile, in the order of their names, and keeps the names.

    Returns the number of tiles, or 1501 + k where file k fails; those before it stay.
    """
    for k, (name, tile) in enumerate(tiles.items()):
        create(FileNameExtract(outPath, 3) + name + b".Vemo", content(tile), 1501.0 + k)
        UVTileStr.append(name)
    return float(len(tiles))


def GetUVsFromVemo(path, outPath, mode):
    """Writes the mesh once per tile, with the UVs local to the tile; what follows them is dropped.

    Each corner is tested by itself: of a face across a border only the corners inside keep a UV,
    the others become -1, -1.
    """
    UVTileStr.clear()
    data = load_mesh(path, -1760.0)
    at = find_chunk(data, FACE_UV, guarded=False)
    uvs = elements(data, at, FACE_UV)
    tiles, _ = find_tiles(uvs, mode)
    corner_tiles, local = split_uv(uvs.reshape(-1, 2))

    def content(tile):
        inside = (corner_tiles == tile).all(axis=1, keepdims=True)
        return data[: at + 16] + np.where(inside, local, np.float32(-1)).tobytes() + EMPTY_CHUNK

    return write_tiles(tiles, outPath, content)


def GetUVsFromVemoMASK(path, outPath, mode):
    """Writes the mesh once per tile as it is, and a mask: 0 for the vertices of the tile's faces.

    The mask takes the place of the last 16 bytes, which close the file.
    """
    UVTileStr.clear()
    data = load_mesh(path, -1760.0)
    vertex_at = find_chunk(data, VERTEX)
    face_at = find_chunk(data, FACE, vertex_at, missing=-19.0)
    uv_at = find_chunk(data, FACE_UV, face_at)
    vertices = elements(data, vertex_at, VERTEX)
    faces = elements(data, face_at, FACE)
    uvs = elements(data, uv_at, FACE_UV)
    check(len(faces) == len(uvs), -18.0)
    check((faces < len(vertices)).all() and (faces[:, :3] >= 0).all(), -19.0)
    tiles, _ = find_tiles(uvs, mode)
    face_tiles, _ = split_uv(uvs[:, :2])

    def content(tile):
        used = faces[(face_tiles == tile).all(axis=1)].ravel()
        mask = np.full(len(vertices), 255, np.uint8)
        mask[used[used >= 0]] = 0  # a triangle has no fourth vertex
        header = struct.pack("<4I", MASK, len(mask) + 16, len(mask), 0)
        mesh = data[:-1]  # without the byte that loading repeats
        return mesh[:-16] + header + mask.tobytes() + EMPTY_CHUNK

    return write_tiles(tiles, outPath, content)


# Vertex colours, OBJ, face ids, crease merge


def colour_block(colours):
    """Vertex colours as comments, 32 a line."""
    text = (
        "# The following RGB block contains Morvane Vertex Color (Tintcoat) output as 3"
        " hexadecimal values per vertex. The vertex color format is RRGGBB with up to 32"
        " entries per RGB line.\n"
    )
    for i, (blue, green, red, _) in enumerate(colours.tolist()):
        if i % 32 == 0:
            text += "#RGB "
        text += " %02x%02x%02x" % (red, green, blue)
        if i % 32 == 31:
            text += "\n"
    return text + "\n# End of RGB block\n"


def ReadVertColorVemo(in_path, out_path):
    """Writes the vertex colours as text. They are taken to be the first chunk."""
    colours = elements(load_mesh(in_path, -1760.0), FIRST_CHUNK, COLOUR)
    return create(out_path, colour_block(colours).encode(), -2.0)


def face_lines(faces):
    """The faces in groups, one for each base face, as far as there are faces."""
    text = ""
    f = 0
    for k, count in enumerate(faceID):
        if f >= len(faces):
            break
        text += f"#FaceID {k + 1}\n"
        for face in faces[f : f + count]:
            corners = face[:3] if face[3] < 0 else face
            text += "f " + " ".join(str(index + 1) for index in corners) + "\n"
        f += count
    return text


def writeOBJfromVemo(in_path, out_path):
    """Writes vertices, colours and faces as an OBJ file; success uses the face counts up.

    The three chunks must come first and in this order. The id of another chunk in place of one of
    them is the status, after what precedes it is written.
    """
    data = load_mesh(in_path, -1760.0)
    chunks = []
    status = 0.0
    at = FIRST_CHUNK
    for kind in (VERTEX, COLOUR, FACE):
        check(at + 4 <= len(data), -18.0)
        if le(data, at, 4) != kind:
            status = single(le(data, at, 4))
            break
        chunks.append(elements(data, at, kind))
        at += 16 + chunks[-1].nbytes
    if not chunks:
        return status

    # The face count is found by the chunks' lengths, not by their element counts.
    third = FIRST_CHUNK
    for _ in range(2):
        third += le(data, third + 4, 4)
    text = "# File exported by Morvane plugin\n"
    text += f"#Vertex count {len(chunks[0])}\n#Face count {le(data, third + 8, 4)}\n"
    text += "".join("v %g %g %g\n" % tuple(vertex) for vertex in chunks[0].tolist())
    if len(chunks) >= 2:
        text += colour_block(chunks[1])
    if len(chunks) == 3:
        text += face_lines(chunks[2].tolist())
    create(out_path, text.encode(), -2.0)
    if len(chunks) == 3:
        faceID.clear()
    return status


def GetFaceIDsVemo(in_path, level):
    """Counts what each base face becomes at a subdivision level: 4^(level - 1) for each corner.

    Counts stay at the highest number of 32 bits. The faces are taken to be the first chunk.
    """
    most = 2**32 - 1
    exponent = (level - 1) + (level - 1)
    n = 0 if math.isnan(level) else min(int(2.0 ** min(exponent, 64.0)), most)
    faceID.clear()
    faces = elements(load_mesh(in_path, -1760.0), FIRST_CHUNK, FACE)
    faceID.extend(min((3 if fourth < 0 else 4) * n, most) for fourth in faces[:, 3].tolist())
    return float(len(faceID))


def mergeFiles(first_path, second_path):
    """Appends the first mesh to the second, each without its last 14 bytes.

    So the first two bytes of each closing header stay.
    """
    second = load_mesh(second_path, -2760.0)
    first = load_mesh(first_path, -1760.0)
    check(len(second) >= 15 and len(first) >= 15, -18.0)
    return create(second_path, second[:-15] + first[:-15], -3760.0)
