"""The library's exports, a function each; their names are the library's own.

This module is what `quillon reference --python` prints; a test compares the two.
"""
# Formatted by quillon, not by black:
# fmt: off

from __future__ import annotations

from quillon._call import Export, Numbers, Row, StrPath, TileCount, call

__all__ = [
    "Version",
    "CreateFolder",
    "GetPublicFolder",
    "CheckFolder",
    "OpenFolder",
    "GetFile",
    "CloseFolder",
    "EmptyFolder",
    "FileDelete",
    "FileCopyTo",
    "FileRename",
    "GetString",
    "clearUVtilesOutput",
    "setUVtilesOutput",
    "getUVTile",
    "getUVGroups",
    "getUVString",
    "clearUVString",
    "getUVs",
    "getUVsMask",
    "mergeCrease",
    "mergeMapsTIF",
    "swapRGBTIF",
    "convertTIFF16",
    "convertTIFFSingle",
    "getScale",
    "mergeMapsPSD",
    "swapRGBPSD",
    "mergeMapsBMP",
    "swapRGBBMP",
    "CreateThumbnailBMP",
    "saveAsTarga",
    "saveAsJpeg",
    "OpenEXR",
]

_Version = Export(
    name="Version",
    done=48,
    check=(
        "It cannot fail. Another number comes from another library: check which one is loaded."
    ),
)


def Version() -> int:
    """Returns the version of the interface.

    Returns:
        int: the version of the interface.

    Writes: Nothing.

    When it fails: It cannot fail. Another number comes from another library: check which one is
    loaded.
    """
    return int(call(_Version).status)


_CreateFolder = Export(
    name="CreateFolder",
    text="folder",
    role="folder",
    failures=(
        Row(-1, ("targetNotWritten", "diskFull"),
            "the folder was not created: it exists, its parent folder does not, writing is not "
            "allowed, or the disk is full"),
    ),
    check=(
        "CheckFolder shows whether the folder is there already; create missing parents first, "
        "one call each."
    ),
)


def CreateFolder(folder: StrPath) -> None:
    """Creates a folder.

    Parameters:
        folder: path of the folder.

    Writes: The folder, empty. Its parent must be there already.

    Interrupted: The call is done or not. Where it is done, a second call fails.

    Raises Status:
        -1: the folder was not created: it exists, its parent folder does not, writing is not
            allowed, or the disk is full.

    When it fails: CheckFolder shows whether the folder is there already; create missing parents
    first, one call each.
    """
    call(_CreateFolder, text=folder)


_GetPublicFolder = Export(
    name="GetPublicFolder",
    gives_text=True,
    done=1,
    failures=(
        Row(0, ("sourceNotOpened", "noMemory"),
            "this machine has no such folder, or there is too little memory"),
    ),
    check=(
        "Success is 1 here and failure 0; in every other export 0 is no failure."
    ),
)


def GetPublicFolder() -> str:
    """Copies the path of the folder that contains the users' folders.

    Returns:
        str: the users' folder.

    Writes: The path goes to the result; it has no separator at its end.

    Raises Status:
        0: this machine has no such folder, or there is too little memory.

    When it fails: Success is 1 here and failure 0; in every other export 0 is no failure.
    """
    return call(_GetPublicFolder).text


_CheckFolder = Export(
    name="CheckFolder",
    text="folder",
    role="folder",
    failures=(
        Row(-1, ("sourceNotOpened", "noMemory"),
            "the folder cannot be opened, or there is too little memory"),
    ),
    check=(
        "See whether the path is a folder and not a file, and who may read it. A listing begun "
        "before must be opened again."
    ),
)


def CheckFolder(folder: StrPath) -> None:
    """Returns whether a folder can be opened.

    Parameters:
        folder: path of the folder.

    Writes: Nothing. A listing that is open is closed.

    Raises Status:
        -1: the folder cannot be opened, or there is too little memory.

    When it fails: See whether the path is a folder and not a file, and who may read it. A listing
    begun before must be opened again.

    In Python: Returns nothing if it can; raises NotOpened if not.
    """
    call(_CheckFolder, text=folder)


_OpenFolder = Export(
    name="OpenFolder",
    text="folder",
    role="folder",
    failures=(
        Row(-1, ("sourceNotOpened", "noMemory"),
            "the folder cannot be opened, or there is too little memory"),
    ),
    check=(
        "See whether the path is a folder and not a file, and who may read it."
    ),
)


def OpenFolder(folder: StrPath) -> None:
    """Opens a folder for listing.

    Parameters:
        folder: path of the folder.

    Writes: Nothing. A listing that is open is closed first.

    Raises Status:
        -1: the folder cannot be opened, or there is too little memory.

    When it fails: See whether the path is a folder and not a file, and who may read it.
    """
    call(_OpenFolder, text=folder)


_GetFile = Export(
    name="GetFile",
    gives_text=True,
    failures=(
        Row(-3, ("readFailed", "nothingOpen"),
            "no entry is left, or the folder cannot be read any further"),
        Row(-1, ("nothingOpen",),
            "no folder is open (OpenFolder and GetFile need one process)"),
    ),
    check=(
        "-3 is the end of every listing and not an error. -1 before it: OpenFolder failed, or "
        "CheckFolder or CloseFolder was called in between."
    ),
)


def GetFile() -> str:
    """Copies the name of the next entry of the open folder.

    Returns:
        str: an entry's name.

    Writes: The entry's name without its folder goes to the result. Entries come in the file
    system's own order, "." and ".." among them.

    Raises Status:
        -3: no entry is left, or the folder cannot be read any further.
        -1: no folder is open (OpenFolder and GetFile need one process).

    When it fails: -3 is the end of every listing and not an error. -1 before it: OpenFolder failed,
    or CheckFolder or CloseFolder was called in between.

    In Python: NothingOpen is also how each listing ends. listing() gives all names.
    """
    return call(_GetFile).text


_CloseFolder = Export(
    name="CloseFolder",
    failures=(
        Row(-1, ("nothingOpen",),
            "no folder is open"),
    ),
    check=(
        "No listing was open: OpenFolder failed, or the listing was closed before. There is "
        "nothing to do."
    ),
)


def CloseFolder() -> None:
    """Ends a listing.

    Writes: Nothing.

    Raises Status:
        -1: no folder is open.

    When it fails: No listing was open: OpenFolder failed, or the listing was closed before. There
    is nothing to do.
    """
    call(_CloseFolder)


_EmptyFolder = Export(
    name="EmptyFolder",
    text="folder",
    role="folder",
    failures=(
        Row(-1, ("sourceNotOpened", "noMemory"),
            "the folder cannot be opened, or there is too little memory"),
    ),
    check=(
        "CheckFolder shows whether the folder can be opened. 0 does not say that every file is "
        "gone: list the folder to be sure."
    ),
)


def EmptyFolder(folder: StrPath) -> None:
    """Deletes the files of a folder.

    Parameters:
        folder: path of the folder.

    Writes: Deletes every entry with a dot in its name behind the last `/` or `\\`, an empty
    sub-folder among them. An entry without one stays, and so does a path of more than 255 bytes and
    what may not be deleted. Sub-folders are not entered. A folder that cannot be read to its end is
    emptied as far as it was read.

    Interrupted: Some of the entries are deleted, others not yet. A second call deletes the rest.

    Raises Status:
        -1: the folder cannot be opened, or there is too little memory.

    When it fails: CheckFolder shows whether the folder can be opened. 0 does not say that every
    file is gone: list the folder to be sure.
    """
    call(_EmptyFolder, text=folder)


_FileDelete = Export(
    name="FileDelete",
    text="file",
    role="path",
    failures=(
        Row(-1, ("sourceNotOpened", "sourceNotWritable"),
            "the file was not deleted: there is none, it is a folder with entries, or deleting "
            "is not allowed"),
    ),
    check=(
        "See whether the file is there, and whether its folder may be written to. A folder must "
        "be empty."
    ),
)


def FileDelete(file: StrPath) -> None:
    """Deletes a file or an empty folder.

    Parameters:
        file: path of the file.

    Writes: Deletes what `file` names.

    Interrupted: The call is done or not. Where it is done, a second call fails.

    Raises Status:
        -1: the file was not deleted: there is none, it is a folder with entries, or deleting is not
            allowed.

    When it fails: See whether the file is there, and whether its folder may be written to. A folder
    must be empty.
    """
    call(_FileDelete, text=file)


_FileCopyTo = Export(
    name="FileCopyTo",
    text="source",
    buffer1="target",
    failures=(
        Row(-1, ("sourceNotOpened", "targetNotWritten", "diskFull"),
            "the file was not copied: the source cannot be opened, the target cannot be written, "
            "or the disk is full"),
    ),
    check=(
        "See whether the source is a file that may be read, whether the target's folder is "
        "there, and whether the disk is full. After 0 compare the sizes."
    ),
)


def FileCopyTo(source: StrPath, target: StrPath) -> None:
    """Copies a file.

    Parameters:
        source: path of the source.
        target: path of the target.

    Writes: The target. What had its path, a file or an empty folder, is deleted first, even when
    the source is not there; a file copied onto itself is gone. A source that cannot be read to its
    end is copied as far as it was read, with the status 0. A full disk leaves a part of the target.

    Interrupted: An older file is gone, and the new one, or its end, may be missing. A second call
    completes it.

    Raises Status:
        -1: the file was not copied: the source cannot be opened, the target cannot be written, or
            the disk is full.

    When it fails: See whether the source is a file that may be read, whether the target's folder is
    there, and whether the disk is full. After 0 compare the sizes.
    """
    call(_FileCopyTo, text=source, buffer1=target)


_FileRename = Export(
    name="FileRename",
    text="old_path",
    buffer1="new_path",
    role="path",
    failures=(
        Row(-1, ("sourceNotOpened", "targetNotWritten"),
            "the file was not renamed: there is none, or the new path is on another disk, in a "
            "folder that is not there, or not allowed"),
    ),
    check=(
        "See whether both folders are there and on one disk; between disks use FileCopyTo and "
        "FileDelete."
    ),
)


def FileRename(old_path: StrPath, new_path: StrPath) -> None:
    """Renames or moves a file.

    Parameters:
        old_path: a path.
        new_path: a path.

    Writes: The file under its new path, in place of a file that had it. Two links to one file both
    stay, with the status 0.

    Interrupted: The call is done or not. Where it is done, a second call fails.

    Raises Status:
        -1: the file was not renamed: there is none, or the new path is on another disk, in a folder
            that is not there, or not allowed.

    When it fails: See whether both folders are there and on one disk; between disks use FileCopyTo
    and FileDelete.
    """
    call(_FileRename, text=old_path, buffer1=new_path)


_GetString = Export(
    name="GetString",
    text="any_text",
    value="start",
    role="text",
    numbers=Numbers(least=0, most=10),
    gives_text=True,
    check=(
        "Bytes are counted, not letters: in UTF-8 a letter may take several."
    ),
)


def GetString(any_text: str, start: float) -> str:
    """Copies the rest of a text.

    Parameters:
        any_text: any text.
        start: first byte, 0 to 10, else 5.

    Returns:
        str: the rest of the text.

    Writes: The bytes from that one on go to the result; past the end of the text, none.

    When it fails: Bytes are counted, not letters: in UTF-8 a letter may take several.
    """
    return call(_GetString, text=any_text, value=start).text


_clearUVtilesOutput = Export(
    name="clearUVtilesOutput",
    check=(
        "It cannot fail."
    ),
)


def clearUVtilesOutput() -> None:
    """Clears the tile filter, so that every tile passes again.

    Writes: Nothing.

    When it fails: It cannot fail.
    """
    call(_clearUVtilesOutput)


_setUVtilesOutput = Export(
    name="setUVtilesOutput",
    text="tile_filter",
    failures=(
        Row(-1, ("sourceNotOpened", "readFailed", "noMemory"),
            "the tile filter cannot be opened or read, or there is too little memory"),
        Row(-9, ("noMemory",),
            "there is too little memory"),
    ),
    check=(
        "See whether the file is there. After -1, and after -9 for lack of memory, the filter is "
        "empty, which lets every tile pass; after -9 for a missing text it is as it was."
    ),
)


def setUVtilesOutput(tile_filter: StrPath) -> None:
    """Reads the tile filter, a text file that lists the tiles to write.

    Parameters:
        tile_filter: path of the tile filter.

    Writes: Nothing. The filter applies to naming mode 2 until clearUVtilesOutput or the next
    setUVtilesOutput. The file has tile names and ranges, separated by commas or lines: `1001-1003,
    1011`. Only blanks are left out: a tab, or the carriage return of a Windows line end, is a part
    of the name, which then is no tile's. A range whose end is below its start is left out; a filter
    in which nothing is left lets every tile pass.

    Raises Status:
        -1: the tile filter cannot be opened or read, or there is too little memory.
        -9: there is too little memory.

    When it fails: See whether the file is there. After -1, and after -9 for lack of memory, the
    filter is empty, which lets every tile pass; after -9 for a missing text it is as it was.

    In Python: tile_filter() sets a filter for the statements of a block.
    """
    call(_setUVtilesOutput, text=tile_filter)


_getUVTile = Export(
    name="getUVTile",
    text="mesh",
    value="naming",
    numbers=Numbers(least=0, most=3),
    gives_text=True,
    counts=True,
    failures=(
        Row(-17, ("sourceNotOpened", "readFailed", "noMemory"),
            "the mesh file cannot be opened or read, or there is too little memory"),
        Row(-18, ("fileRefused",),
            "the mesh file has no face UVs, or they are cut short"),
        Row(-9, ("noMemory",),
            "there is too little memory"),
    ),
    check=(
        "quillon inspect shows which chunks the mesh has and where they end. A chunk of length 0 "
        "ends the search for face UVs. A missing last byte counts as a repetition of the byte "
        "before it."
    ),
)


def getUVTile(mesh: StrPath, naming: float) -> TileCount:
    """Counts the UV tiles that a mesh uses.

    Parameters:
        mesh: path of the mesh.
        naming: naming mode 0 to 3. The first tile is named `_u0_v0` in mode 0, `_u1_v1` in mode 1,
            `1001` in mode 2 and `u0v0` in mode 3. In mode 2 the tile right of 1010 has the name of
            the one above 1001, 1011. Only mode 2 applies the tile filter. A number below 0 counts
            as 0, one above 3 as 3, a fraction is cut off.

    Returns:
        count: how many UV tiles.
        last: the last face's tile.

    Writes: The name of the last face's tile goes to the result, whether the filter lets it pass or
    not.

    Raises Status:
        -17: the mesh file cannot be opened or read, or there is too little memory.
        -18: the mesh file has no face UVs, or they are cut short.
        -9: there is too little memory.

    When it fails: quillon inspect shows which chunks the mesh has and where they end. A chunk of
    length 0 ends the search for face UVs. A missing last byte counts as a repetition of the byte
    before it.
    """
    status, text = call(_getUVTile, text=mesh, value=naming)
    return TileCount(int(status), text)


_getUVGroups = Export(
    name="getUVGroups",
    text="mesh",
    counts=True,
    failures=(
        Row(-17, ("sourceNotOpened", "readFailed", "noMemory"),
            "the mesh file cannot be opened or read, or there is too little memory"),
        Row(-18, ("fileRefused",),
            "the mesh file has no face groups, or they are cut short"),
    ),
    check=(
        "quillon inspect shows which chunks the mesh has and where they end. A missing last byte "
        "counts as a repetition of the byte before it."
    ),
)


def getUVGroups(mesh: StrPath) -> int:
    """Counts the face groups of a mesh.

    Parameters:
        mesh: path of the mesh.

    Returns:
        int: how many face groups.

    Writes: Nothing.

    Raises Status:
        -17: the mesh file cannot be opened or read, or there is too little memory.
        -18: the mesh file has no face groups, or they are cut short.

    When it fails: quillon inspect shows which chunks the mesh has and where they end. A missing
    last byte counts as a repetition of the byte before it.
    """
    return int(call(_getUVGroups, text=mesh).status)


_getUVString = Export(
    name="getUVString",
    value="position",
    numbers=Numbers(least=0),
    gives_text=True,
    check=(
        "Count on no more positions than getUVs returned."
    ),
)


def getUVString(position: float) -> str:
    """Copies the name of a tile that getUVs or getUVsMask wrote last.

    Parameters:
        position: tile position from 0.

    Returns:
        str: the tile's name.

    Writes: The name goes to the result, which stays as it is where there is no such tile. Each
    getUVs and getUVsMask clears the names of the call before, even if it fails.

    When it fails: Count on no more positions than getUVs returned.

    In Python: ValueError if there is no such tile. tile_names() gives all names.
    """
    return call(_getUVString, value=position).text


_clearUVString = Export(
    name="clearUVString",
    check=(
        "It cannot fail."
    ),
)


def clearUVString() -> None:
    """Clears the names of the tiles that were written.

    Writes: Nothing.

    When it fails: It cannot fail.
    """
    call(_clearUVString)


_getUVs = Export(
    name="getUVs",
    text="mesh",
    value="naming",
    buffer1="output_path",
    numbers=Numbers(least=0, most=3),
    counts=True,
    writes_tiles=True,
    failures=(
        Row(-1760, ("sourceNotOpened", "readFailed", "noMemory"),
            "the mesh file cannot be opened or read, or there is too little memory"),
        Row(-18, ("fileRefused",),
            "the mesh file has no face UVs, or they are cut short"),
        Row(-9, ("noMemory",),
            "there is too little memory"),
        Row(1501, ("targetNotWritten", "diskFull"),
            "the file of the tile at position *k*, from 0 in the order of the names, cannot be "
            "created, or the disk is full"),
    ),
    check=(
        "From 1501 on, where tiles count in the order of their names, see whether the folder of "
        "`output_path` is there and may be written to, and whether the disk is full; files of "
        "tiles before that one are whole. Below 0: as for getUVTile."
    ),
)


def getUVs(mesh: StrPath, naming: float, output_path: StrPath) -> int:
    """Writes a mesh once per tile, with that tile's UVs moved to 0 to 1.

    Parameters:
        mesh: path of the mesh.
        naming: naming mode 0 to 3. The first tile is named `_u0_v0` in mode 0, `_u1_v1` in mode 1,
            `1001` in mode 2 and `u0v0` in mode 3. In mode 2 the tile right of 1010 has the name of
            the one above 1001, 1011. Only mode 2 applies the tile filter. A number below 0 counts
            as 0, one above 3 as 3, a fraction is cut off.
        output_path: a path.

    Returns:
        int: how many tiles were written.

    Writes: A mesh file per tile, named after `output_path`: the path up to its last dot, which may
    be in a folder's name, then the tile's name, then `.Vemo`. Corners outside the tile have the UV
    -1, -1. Chunks behind the face UVs are left out. The names are kept for getUVString.

    Interrupted: An older file is gone, and the new one, or its end, may be missing. A second call
    completes it.

    Raises Status:
        -1760: the mesh file cannot be opened or read, or there is too little memory.
        -18: the mesh file has no face UVs, or they are cut short.
        -9: there is too little memory.
        1501 + *k*: the file of the tile at position *k*, from 0 in the order of the names, cannot
            be created, or the disk is full.

    When it fails: From 1501 on, where tiles count in the order of their names, see whether the
    folder of `output_path` is there and may be written to, and whether the disk is full; files of
    tiles before that one are whole. Below 0: as for getUVTile.
    """
    return int(call(_getUVs, text=mesh, value=naming, buffer1=output_path).status)


_getUVsMask = Export(
    name="getUVsMask",
    text="mesh",
    value="naming",
    buffer1="output_path",
    numbers=Numbers(least=0, most=3),
    counts=True,
    writes_tiles=True,
    failures=(
        Row(-1760, ("sourceNotOpened", "readFailed", "noMemory"),
            "the mesh file cannot be opened or read, or there is too little memory"),
        Row(-18, ("fileRefused",),
            "the mesh file has no vertices or no face UVs, they are cut short, or faces and face "
            "UVs differ in number"),
        Row(-19, ("fileRefused",),
            "the mesh file has no faces, or one of them names a vertex that does not exist"),
        Row(-9, ("noMemory",),
            "there is too little memory"),
        Row(1501, ("targetNotWritten", "diskFull"),
            "the file of the tile at position *k*, from 0 in the order of the names, cannot be "
            "created, or the disk is full"),
    ),
    check=(
        "As for getUVs, except that a chunk of length 0 is stepped over. Vertices, faces and "
        "face UVs are searched for in this order, each behind the one before."
    ),
)


def getUVsMask(mesh: StrPath, naming: float, output_path: StrPath) -> int:
    """Writes a mesh once per tile, with a mask of that tile's vertices.

    Parameters:
        mesh: path of the mesh.
        naming: naming mode 0 to 3. The first tile is named `_u0_v0` in mode 0, `_u1_v1` in mode 1,
            `1001` in mode 2 and `u0v0` in mode 3. In mode 2 the tile right of 1010 has the name of
            the one above 1001, 1011. Only mode 2 applies the tile filter. A number below 0 counts
            as 0, one above 3 as 3, a fraction is cut off.
        output_path: a path.

    Returns:
        int: how many tiles were written.

    Writes: A mesh file per tile, named as by getUVs: the mesh without its last 16 bytes, which are
    taken for the empty chunk that ends a mesh, then a byte per vertex, 0 in the tile and 255
    outside. The names are kept for getUVString.

    Interrupted: An older file is gone, and the new one, or its end, may be missing. A second call
    completes it.

    Raises Status:
        -1760: the mesh file cannot be opened or read, or there is too little memory.
        -18: the mesh file has no vertices or no face UVs, they are cut short, or faces and face UVs
            differ in number.
        -19: the mesh file has no faces, or one of them names a vertex that does not exist.
        -9: there is too little memory.
        1501 + *k*: the file of the tile at position *k*, from 0 in the order of the names, cannot
            be created, or the disk is full.

    When it fails: As for getUVs, except that a chunk of length 0 is stepped over. Vertices, faces
    and face UVs are searched for in this order, each behind the one before.
    """
    return int(call(_getUVsMask, text=mesh, value=naming, buffer1=output_path).status)


_mergeCrease = Export(
    name="mergeCrease",
    text="mesh_to_append",
    buffer1="mesh_to_append_to",
    failures=(
        Row(-1760, ("sourceNotOpened", "readFailed", "noMemory"),
            "the mesh file cannot be opened or read, or there is too little memory"),
        Row(-2760, ("targetNotOpened", "readFailed", "noMemory"),
            "the mesh file to append to cannot be opened or read, or there is too little memory"),
        Row(-3760, ("targetNotWritten",),
            "the target cannot be written"),
        Row(-18, ("fileRefused",),
            "one of the files has less than 14 bytes"),
    ),
    check=(
        "-1760 is about `mesh_to_append`, -2760 and -3760 are about `mesh_to_append_to`. After 0 "
        "compare the size: it is that of both files less 28 bytes."
    ),
)


def mergeCrease(mesh_to_append: StrPath, mesh_to_append_to: StrPath) -> None:
    """Appends a mesh file to another.

    Parameters:
        mesh_to_append: path of the mesh to append.
        mesh_to_append_to: path of the mesh to append to.

    Writes: The file `mesh_to_append_to` anew: its own bytes, then those of `mesh_to_append`, each
    without its last 14. What closes a mesh is shortened to two zero bytes, behind which exports
    find no chunk of the part appended. Whether the files are meshes is not checked. If the disk is
    full the file ends there, with the status 0.

    Interrupted: The end of the file may be missing, bytes of its own among it, and a second call
    appends the mesh once more: keep a copy.

    Raises Status:
        -1760: the mesh file cannot be opened or read, or there is too little memory.
        -2760: the mesh file to append to cannot be opened or read, or there is too little memory.
        -3760: the target cannot be written.
        -18: one of the files has less than 14 bytes.

    When it fails: -1760 is about `mesh_to_append`, -2760 and -3760 are about `mesh_to_append_to`.
    After 0 compare the size: it is that of both files less 28 bytes.
    """
    call(_mergeCrease, text=mesh_to_append, buffer1=mesh_to_append_to)


_mergeMapsTIF = Export(
    name="mergeMapsTIF",
    text="source",
    buffer1="target",
    failures=(
        Row(-10, ("sourceNotOpened", "readFailed"),
            "the source cannot be opened or read"),
        Row(-20, ("targetNotOpened", "readFailed"),
            "the target cannot be opened or read"),
        Row(-30, ("fileRefused",),
            "the maps differ in size, or no directory is found in one of them"),
        Row(-40, ("fileRefused",),
            "the maps differ in channels or depth"),
        Row(-101, ("sourceNotOpened",),
            "the source cannot be opened again"),
        Row(-201, ("targetNotWritten", "diskFull", "readFailed"),
            "the target cannot be written, the disk is full, or a map cannot be read to its end"),
        Row(258, ("fileRefused",),
            "a map has neither 1 nor 3 channels"),
        Row(-259, ("fileRefused",),
            "a map is compressed"),
        Row(-262, ("fileRefused",),
            "a map is neither grey nor RGB"),
        Row(-273, ("fileRefused",),
            "a map has more than one strip"),
        Row(-339, ("fileRefused",),
            "a map names sample formats for neither 1 nor 3 channels"),
        Row(-9, ("noMemory",),
            "there is too little memory"),
    ),
    check=(
        "quillon inspect on both files: width, height, channels and depth must be equal, and so "
        "must the place of the pixels. 0 with nothing merged: the pixels do not start below "
        "their own length, as in a tiny map; the samples have 64 bits; or both files are no "
        "TIFF."
    ),
)


def mergeMapsTIF(source: StrPath, target: StrPath) -> None:
    """Folds one tile's TIFF map into the map that collects all tiles.

    Parameters:
        source: path of the source.
        target: path of the target.

    Writes: The target, in place: its pixels that equal the source's first pixel take the source's;
    any other stays. Rows that a file does not have are left out. Pixels merged before a disk fails
    stay merged. The source is only read. `-20` is also printed.

    Interrupted: The target has the old length, the new one or one between them; at each place it
    has the byte from before, the one from after or, behind its old end, 0. A second call completes
    it.

    Raises Status:
        -10: the source cannot be opened or read.
        -20: the target cannot be opened or read.
        -30: the maps differ in size, or no directory is found in one of them.
        -40: the maps differ in channels or depth.
        -101: the source cannot be opened again.
        -201: the target cannot be written, the disk is full, or a map cannot be read to its end.
        258: a map has neither 1 nor 3 channels.
        -259: a map is compressed.
        -262: a map is neither grey nor RGB.
        -273: a map has more than one strip.
        -339: a map names sample formats for neither 1 nor 3 channels.
        -9: there is too little memory.

    When it fails: quillon inspect on both files: width, height, channels and depth must be equal,
    and so must the place of the pixels. 0 with nothing merged: the pixels do not start below their
    own length, as in a tiny map; the samples have 64 bits; or both files are no TIFF.
    """
    call(_mergeMapsTIF, text=source, buffer1=target)


_swapRGBTIF = Export(
    name="swapRGBTIF",
    text="map",
    value="mode",
    numbers=Numbers(least=1, most=3),
    failures=(
        Row(-10, ("sourceNotOpened", "readFailed"),
            "the map cannot be opened or read"),
        Row(-101, ("sourceNotWritable", "diskFull", "readFailed"),
            "the map may not be written to, the disk is full, or the map cannot be read to its "
            "end"),
        Row(258, ("fileRefused",),
            "a map has neither 1 nor 3 channels"),
        Row(-259, ("fileRefused",),
            "a map is compressed"),
        Row(-262, ("fileRefused",),
            "a map is neither grey nor RGB"),
        Row(-273, ("fileRefused",),
            "the map has more than one strip, or its pixels would start in the first 8 bytes of "
            "the file, as in a tiled map, which has no tag 273"),
        Row(-339, ("fileRefused",),
            "a map names sample formats for neither 1 nor 3 channels"),
        Row(-9, ("valueRefused", "noMemory"),
            "`mode` is not the exchange, 1 to 3; or there is too little memory"),
    ),
    check=(
        "quillon inspect shows which tag is refused: the status is its number, negated except "
        "for 258. 0 with nothing exchanged: the directory is behind byte 1000, where many "
        "programs write it, or the file is a big-endian TIFF, a BigTIFF or no TIFF. The same "
        "call again undoes an exchange."
    ),
)


def swapRGBTIF(map: StrPath, mode: float) -> None:
    """Exchanges two colour channels of an 8-bit TIFF map.

    Parameters:
        map: path of the map.
        mode: the exchange, 1 to 3. 1 exchanges green and blue, 2 red and blue, 3 red and green. A
            fraction is cut off; between 0 and 1 nothing is exchanged.

    Writes: The map, in place. A grey map, one of 16 bits or more, and a file in which no directory
    is found stay as they are, with the same status 0; rows that the file does not have are left
    out. When the disk fails, the pixels before that point stay exchanged. `-10` is also printed,
    and `-101` for a map that may not be written to.

    Interrupted: A part of the file is changed. A second call would change that part once more: keep
    a copy.

    Raises Status:
        -10: the map cannot be opened or read.
        -101: the map may not be written to, the disk is full, or the map cannot be read to its end.
        258: a map has neither 1 nor 3 channels.
        -259: a map is compressed.
        -262: a map is neither grey nor RGB.
        -273: the map has more than one strip, or its pixels would start in the first 8 bytes of the
            file, as in a tiled map, which has no tag 273.
        -339: a map names sample formats for neither 1 nor 3 channels.
        -9: `mode` is not the exchange, 1 to 3; or there is too little memory.

    When it fails: quillon inspect shows which tag is refused: the status is its number, negated
    except for 258. 0 with nothing exchanged: the directory is behind byte 1000, where many programs
    write it, or the file is a big-endian TIFF, a BigTIFF or no TIFF. The same call again undoes an
    exchange.
    """
    call(_swapRGBTIF, text=map, value=mode)


_convertTIFF16 = Export(
    name="convertTIFF16",
    text="map",
    value="layout",
    buffer1="target",
    numbers=Numbers(choices=(1, 3, 4)),
    needs_dot=True,
    failures=(
        Row(-10, ("sourceNotOpened", "readFailed"),
            "the map cannot be opened or read"),
        Row(-101, ("sourceNotOpened",),
            "the map cannot be opened again"),
        Row(-201, ("pathRefused", "targetNotWritten", "diskFull", "readFailed"),
            "the target cannot be written or is the map itself, the disk is full, or the map "
            "cannot be read to its end"),
        Row(-274, ("fileRefused",),
            "the map's pixels start 2 GiB or more into the file"),
        Row(-279, ("fileRefused",),
            "the map ends before its last row, or has fewer channels than asked for"),
        Row(-32, ("fileRefused",),
            "the map's samples are not 32-bit floats"),
        Row(-258, ("fileRefused",),
            "the map has neither 1 nor 3 channels"),
        Row(-259, ("fileRefused",),
            "a map is compressed"),
        Row(-262, ("fileRefused",),
            "a map is neither grey nor RGB"),
        Row(-273, ("fileRefused",),
            "a map has more than one strip"),
        Row(-339, ("fileRefused",),
            "a map names sample formats for neither 1 nor 3 channels"),
        Row(-257, ("fileRefused",),
            "a size in the map's directory is behind the new header, which ends at byte 198 "
            "(grey) or 234 (colour)"),
        Row(-9, ("valueRefused", "noMemory"),
            "`layout` is not target layout 1, 3 or 4; or there is too little memory"),
    ),
    check=(
        "quillon inspect shows depth, channels and where the directory is. A TIFF is valid only "
        "if the map's directory is at byte 8 and starts with the tags 254, 256, 257, 258, 259, "
        "262, 273, 277, 278, 279: each size is written at the byte where it was found. Any other "
        "directory gives a damaged TIFF with the status 0, or -257 where that byte is behind the "
        "new header. Convert such a map to a PSD, or rewrite it first, as docs/formats.md shows. "
        "-279: the layout asks for three channels and the map has one."
    ),
)


def convertTIFF16(map: StrPath, layout: float, target: StrPath) -> None:
    """Converts a map of 32-bit floats to 16 bits, a TIFF or a PSD.

    Parameters:
        map: path of the map.
        layout: target layout 1, 3 or 4. 1 grey to grey, 3 colour to colour, 4 colour to grey, from
            the first channel. With layout 1 a colour map gives its samples in turn, red, green,
            blue, with the status 0.
        target: path of the target.

    Writes: The target: a PSD if the layout is not 3 and `psd` or `PSD` follows the last dot of the
    path, which may be in a folder's name; else a TIFF. An older file is written over and then cut
    to the new length; if the disk fails, the older file is lost and a part of the new one is left.
    0 to 1 becomes 0 to 65535. In a PSD width and height have changed places, which square maps do
    not show. In a TIFF a side above 65535 loses all but its low 16 bits. A map without pixels, or
    in which no directory is found, gives a header alone.

    Interrupted: The target has the old length, the new one or one between them; at each place it
    has the byte from before, the one from after or, behind its old end, 0. A second call completes
    it.

    Raises Status:
        -10: the map cannot be opened or read.
        -101: the map cannot be opened again.
        -201: the target cannot be written or is the map itself, the disk is full, or the map cannot
            be read to its end.
        -274: the map's pixels start 2 GiB or more into the file.
        -279: the map ends before its last row, or has fewer channels than asked for.
        -32: the map's samples are not 32-bit floats.
        -258: the map has neither 1 nor 3 channels.
        -259: a map is compressed.
        -262: a map is neither grey nor RGB.
        -273: a map has more than one strip.
        -339: a map names sample formats for neither 1 nor 3 channels.
        -257: a size in the map's directory is behind the new header, which ends at byte 198 (grey)
            or 234 (colour).
        -9: `layout` is not target layout 1, 3 or 4; or there is too little memory.

    When it fails: quillon inspect shows depth, channels and where the directory is. A TIFF is valid
    only if the map's directory is at byte 8 and starts with the tags 254, 256, 257, 258, 259, 262,
    273, 277, 278, 279: each size is written at the byte where it was found. Any other directory
    gives a damaged TIFF with the status 0, or -257 where that byte is behind the new header.
    Convert such a map to a PSD, or rewrite it first, as docs/formats.md shows. -279: the layout
    asks for three channels and the map has one.

    In Python: ValueError, before the call, if `target` has no dot.
    """
    call(_convertTIFF16, text=map, value=layout, buffer1=target)


_convertTIFFSingle = Export(
    name="convertTIFFSingle",
    text="map",
    buffer1="target",
    failures=(
        Row(-1, ("noMemory",),
            "there is too little memory"),
        Row(-10, ("sourceNotOpened", "readFailed"),
            "the map cannot be opened or read"),
        Row(-101, ("sourceNotWritable",),
            "the map may not be written to"),
        Row(-201, ("pathRefused", "targetNotWritten", "diskFull", "readFailed"),
            "the target cannot be written or is the map itself, the disk is full, or the map "
            "cannot be read to its end"),
        Row(-274, ("fileRefused",),
            "the map's pixels start 2 GiB or more into the file"),
        Row(-279, ("fileRefused",),
            "the map ends before its last row, or has fewer than 3 channels"),
        Row(-32, ("fileRefused",),
            "the map's samples are not 32-bit floats"),
        Row(-258, ("fileRefused",),
            "the map has neither 1 nor 3 channels"),
        Row(-259, ("fileRefused",),
            "a map is compressed"),
        Row(-262, ("fileRefused",),
            "a map is neither grey nor RGB"),
        Row(-273, ("fileRefused",),
            "a map has more than one strip"),
        Row(-339, ("fileRefused",),
            "a map names sample formats for neither 1 nor 3 channels"),
    ),
    check=(
        "quillon inspect shows depth and channels. A missing argument is -1 here, where other "
        "exports return -9."
    ),
)


def convertTIFFSingle(map: StrPath, target: StrPath) -> None:
    """Writes the first channel of a three-channel float map.

    Parameters:
        map: path of the map.
        target: path of the target.

    Writes: The target: a TIFF of one channel of 32-bit floats. An older file is written over and
    then cut to the new length; if the disk fails, the older file is lost and a part of the new one
    is left. The map is only read, yet it must be writable. A map without pixels, or in which no
    directory is found, gives a header alone.

    Interrupted: The target has the old length, the new one or one between them; at each place it
    has the byte from before, the one from after or, behind its old end, 0. A second call completes
    it.

    Raises Status:
        -1: there is too little memory.
        -10: the map cannot be opened or read.
        -101: the map may not be written to.
        -201: the target cannot be written or is the map itself, the disk is full, or the map cannot
            be read to its end.
        -274: the map's pixels start 2 GiB or more into the file.
        -279: the map ends before its last row, or has fewer than 3 channels.
        -32: the map's samples are not 32-bit floats.
        -258: the map has neither 1 nor 3 channels.
        -259: a map is compressed.
        -262: a map is neither grey nor RGB.
        -273: a map has more than one strip.
        -339: a map names sample formats for neither 1 nor 3 channels.

    When it fails: quillon inspect shows depth and channels. A missing argument is -1 here, where
    other exports return -9.
    """
    call(_convertTIFFSingle, text=map, buffer1=target)


_getScale = Export(
    name="getScale",
    text="map",
    value="channels",
    numbers=Numbers(choices=(1, 3)),
    counts=True,
    failures=(
        Row(-10, ("sourceNotOpened", "readFailed"),
            "the map cannot be opened or read"),
        Row(-101, ("sourceNotWritable", "readFailed"),
            "the map may not be written to, or cannot be read to its end"),
        Row(-1, ("fileRefused",),
            "the map has no pixels, or no directory is found in it"),
        Row(-274, ("fileRefused",),
            "the map's pixels start 2 GiB or more into the file"),
        Row(-279, ("fileRefused",),
            "the map ends before its last row, or has fewer channels than asked for"),
        Row(-32, ("fileRefused",),
            "the map's samples are not 32-bit floats"),
        Row(-258, ("fileRefused",),
            "the map has neither 1 nor 3 channels"),
        Row(-259, ("fileRefused",),
            "a map is compressed"),
        Row(-262, ("fileRefused",),
            "a map is neither grey nor RGB"),
        Row(-273, ("fileRefused",),
            "a map has more than one strip"),
        Row(-339, ("fileRefused",),
            "a map names sample formats for neither 1 nor 3 channels"),
        Row(-9, ("valueRefused", "noMemory"),
            "`channels` is not channels 1 or 3; or there is too little memory"),
    ),
    check=(
        "quillon inspect shows depth and channels. A scale that is infinite comes from a map of "
        "12 levels or fewer, such as a flat one. Here alone the directory may be anywhere; a "
        "big-endian TIFF and a BigTIFF are -1."
    ),
)


def getScale(map: StrPath, channels: float) -> float:
    """Measures the scale of a displacement map by how many levels it has.

    Parameters:
        map: path of the map.
        channels: channels 1 or 3. As many channels as the map has.

    Returns:
        float: the scale.

    Writes: Nothing, yet the map must be writable.

    Raises Status:
        -10: the map cannot be opened or read.
        -101: the map may not be written to, or cannot be read to its end.
        -1: the map has no pixels, or no directory is found in it.
        -274: the map's pixels start 2 GiB or more into the file.
        -279: the map ends before its last row, or has fewer channels than asked for.
        -32: the map's samples are not 32-bit floats.
        -258: the map has neither 1 nor 3 channels.
        -259: a map is compressed.
        -262: a map is neither grey nor RGB.
        -273: a map has more than one strip.
        -339: a map names sample formats for neither 1 nor 3 channels.
        -9: `channels` is not channels 1 or 3; or there is too little memory.

    When it fails: quillon inspect shows depth and channels. A scale that is infinite comes from a
    map of 12 levels or fewer, such as a flat one. Here alone the directory may be anywhere; a
    big-endian TIFF and a BigTIFF are -1.
    """
    return call(_getScale, text=map, value=channels).status


_mergeMapsPSD = Export(
    name="mergeMapsPSD",
    text="source",
    buffer1="target",
    failures=(
        Row(-1, ("sourceNotOpened", "targetNotOpened", "readFailed", "fileRefused"),
            "a map cannot be opened or read, is no PSD, or is cut short"),
        Row(-2, ("fileRefused",),
            "a map is a PSD of another version than 1"),
        Row(-3, ("fileRefused",),
            "a map has a colour table"),
        Row(-4, ("fileRefused",),
            "a map is compressed"),
        Row(-5, ("targetNotWritten",),
            "the target cannot be written"),
        Row(-6, ("fileRefused",),
            "the maps differ in size"),
        Row(36, ("fileRefused",),
            "the source is neither 8-bit RGB nor 16-bit grey"),
        Row(-9, ("noMemory",),
            "there is too little memory"),
    ),
    check=(
        "quillon inspect on both files; the target is judged first. Both must have their image "
        "data at one place, 8-bit RGB or 16-bit grey, uncompressed. Only the source's kind is "
        "checked: a target of another kind, or with its image data elsewhere, is damaged with "
        "the status 0. After 0 compare the target's size with that before."
    ),
)


def mergeMapsPSD(source: StrPath, target: StrPath) -> None:
    """Lays one tile's PSD map over the map that collects all tiles.

    Parameters:
        source: path of the source.
        target: path of the target.

    Writes: The target's planes, in place: each pixel of the source that differs from the target's
    first pixel replaces the target's. Alpha stays the target's. If the disk is full the target ends
    where it could not be written, with the status 0. Pixels merged before a map cannot be read any
    further stay merged.

    Interrupted: At each place the target has the byte from before or the one from after. A second
    call completes it, unless the source paints the first pixel and that has been written, which
    comes last: then the map has another background.

    Raises Status:
        -1: a map cannot be opened or read, is no PSD, or is cut short.
        -2: a map is a PSD of another version than 1.
        -3: a map has a colour table.
        -4: a map is compressed.
        -5: the target cannot be written.
        -6: the maps differ in size.
        36: the source is neither 8-bit RGB nor 16-bit grey.
        -9: there is too little memory.

    When it fails: quillon inspect on both files; the target is judged first. Both must have their
    image data at one place, 8-bit RGB or 16-bit grey, uncompressed. Only the source's kind is
    checked: a target of another kind, or with its image data elsewhere, is damaged with the status
    0. After 0 compare the target's size with that before.
    """
    call(_mergeMapsPSD, text=source, buffer1=target)


_swapRGBPSD = Export(
    name="swapRGBPSD",
    text="map",
    value="mode",
    numbers=Numbers(least=1, most=3),
    failures=(
        Row(-1, ("sourceNotOpened", "readFailed", "fileRefused"),
            "the map cannot be opened or read, is no PSD, or is cut short"),
        Row(-2, ("fileRefused",),
            "a map is a PSD of another version than 1"),
        Row(-3, ("fileRefused",),
            "a map has a colour table"),
        Row(-4, ("fileRefused",),
            "a map is compressed"),
        Row(-5, ("sourceNotWritable",),
            "the map cannot be written"),
        Row(-56, ("fileRefused",),
            "the map does not have three channels of 8 bits"),
        Row(-9, ("valueRefused", "noMemory"),
            "`mode` is not the order of the planes, 1 to 3; or there is too little memory"),
    ),
    check=(
        "quillon inspect shows channels and depth: an alpha channel or 16 bits are -56. After 0 "
        "compare the map's size with that before."
    ),
)


def swapRGBPSD(map: StrPath, mode: float) -> None:
    """Changes the order of the colour planes of an 8-bit RGB PSD map.

    Parameters:
        map: path of the map.
        mode: the order of the planes, 1 to 3. 1 leaves red, blue, green; 2 blue, red, green; 3
            green, blue, red. 2 and 3 rotate, so each undoes the other. Between 0 and 1 no plane is
            written: the picture is lost.

    Writes: The map's planes, in place. The colour mode is not checked: Lab and multichannel maps
    are taken, too. Of a map with layers only the merged image is changed. Bytes behind the planes
    are cut off. If the disk is full the map ends where it could not be written, with the status 0.

    Interrupted: A part of the file is changed. A second call would change that part once more: keep
    a copy.

    Raises Status:
        -1: the map cannot be opened or read, is no PSD, or is cut short.
        -2: a map is a PSD of another version than 1.
        -3: a map has a colour table.
        -4: a map is compressed.
        -5: the map cannot be written.
        -56: the map does not have three channels of 8 bits.
        -9: `mode` is not the order of the planes, 1 to 3; or there is too little memory.

    When it fails: quillon inspect shows channels and depth: an alpha channel or 16 bits are -56.
    After 0 compare the map's size with that before.
    """
    call(_swapRGBPSD, text=map, value=mode)


_mergeMapsBMP = Export(
    name="mergeMapsBMP",
    text="source",
    buffer1="target",
    failures=(
        Row(-1760, ("targetNotOpened", "readFailed"),
            "the target cannot be opened or read"),
        Row(-1770, ("sourceNotOpened", "readFailed"),
            "the source cannot be opened or read"),
        Row(-7, ("fileRefused",),
            "a file is no BMP, or shorter than its own headers"),
        Row(-30, ("fileRefused",),
            "the maps differ in size"),
        Row(-40, ("fileRefused",),
            "the maps differ in bits per pixel, or in where their pixels start"),
        Row(-101, ("sourceNotWritable", "readFailed"),
            "the source may not be written to, or its first pixel cannot be read"),
        Row(-201, ("targetNotWritten",),
            "the target may not be written to"),
        Row(-9, ("noMemory",),
            "there is too little memory"),
    ),
    check=(
        "quillon inspect on both files; the target is judged first. Width, height, bits per "
        "pixel and the offset of the pixels must be equal. -101 and -201: see who may write to "
        "the source and the target."
    ),
)


def mergeMapsBMP(source: StrPath, target: StrPath) -> None:
    """Folds one tile's BMP map into the map that collects all tiles.

    Parameters:
        source: path of the source.
        target: path of the target.

    Writes: The target, in place: its pixels that equal the source's pixel at the bottom left take
    the source's; any other stays. A top-down image (of negative height) stays as it is, with the
    same status 0, and so do pixels that one of the files does not have. If the disk is full or a
    map cannot be read to its end, the merge ends there, with the same status 0. The source is only
    read, yet it must be writable.

    Interrupted: The target has the old length, the new one or one between them; at each place it
    has the byte from before, the one from after or, behind its old end, 0. A second call completes
    it.

    Raises Status:
        -1760: the target cannot be opened or read.
        -1770: the source cannot be opened or read.
        -7: a file is no BMP, or shorter than its own headers.
        -30: the maps differ in size.
        -40: the maps differ in bits per pixel, or in where their pixels start.
        -101: the source may not be written to, or its first pixel cannot be read.
        -201: the target may not be written to.
        -9: there is too little memory.

    When it fails: quillon inspect on both files; the target is judged first. Width, height, bits
    per pixel and the offset of the pixels must be equal. -101 and -201: see who may write to the
    source and the target.
    """
    call(_mergeMapsBMP, text=source, buffer1=target)


_swapRGBBMP = Export(
    name="swapRGBBMP",
    text="map",
    value="mode",
    numbers=Numbers(least=1, most=3),
    failures=(
        Row(-1760, ("sourceNotOpened", "readFailed"),
            "the map cannot be opened or read"),
        Row(-7, ("fileRefused",),
            "the file is no BMP, or shorter than its own headers"),
        Row(-101, ("sourceNotWritable",),
            "the map may not be written to"),
        Row(-9, ("valueRefused", "noMemory"),
            "`mode` is not the exchange, 1 to 3; or there is too little memory"),
    ),
    check=(
        "quillon inspect shows whether it is a BMP of 24 bits with its bottom row first. The "
        "same call again undoes an exchange."
    ),
)


def swapRGBBMP(map: StrPath, mode: float) -> None:
    """Exchanges two colour channels of a BMP map.

    Parameters:
        map: path of the map.
        mode: the exchange, 1 to 3. 1 exchanges blue and green, 2 blue and red, 3 green and red. A
            fraction is cut off; between 0 and 1 nothing is exchanged.

    Writes: The map, in place. Pixels are taken to have 24 bits and the header to have 40 bytes or
    more, so an image of 8 or 32 bits, or with the 12 bytes of an older header, is damaged with the
    same status 0. A top-down image (of negative height) stays as it is, with the same status 0, and
    pixels that the file does not have are left out. If the disk is full or the map cannot be read
    to its end, the exchange ends there, with the same status 0.

    Interrupted: A part of the file is changed. A second call would change that part once more: keep
    a copy.

    Raises Status:
        -1760: the map cannot be opened or read.
        -7: the file is no BMP, or shorter than its own headers.
        -101: the map may not be written to.
        -9: `mode` is not the exchange, 1 to 3; or there is too little memory.

    When it fails: quillon inspect shows whether it is a BMP of 24 bits with its bottom row first.
    The same call again undoes an exchange.
    """
    call(_swapRGBBMP, text=map, value=mode)


_CreateThumbnailBMP = Export(
    name="CreateThumbnailBMP",
    text="image",
    value="size",
    numbers=Numbers(least=1),
    failures=(
        Row(-1, ("sourceNotOpened", "readFailed"),
            "the image cannot be opened or read"),
        Row(-2, ("fileRefused",),
            "the file is no BMP"),
        Row(-7, ("readFailed", "fileRefused"),
            "the file is shorter than its own headers, ends before its pixels start, or cannot "
            "be read up to there"),
        Row(-9, ("valueRefused", "fileRefused", "noMemory"),
            "`size` is not the longer side in pixels, at least 1; or the image is top-down (of "
            "negative height), the copy would be larger than a BMP can be, or there is too "
            "little memory"),
    ),
    check=(
        "0 also when the file may not be written to or the disk is full: quillon inspect shows "
        "the size that it has now. A missing path is -1 here, where other exports return -9."
    ),
)


def CreateThumbnailBMP(image: StrPath, size: float) -> None:
    """Replaces a BMP image by a small copy of it.

    Parameters:
        image: path of the image.
        size: the longer side in pixels, at least 1. The shorter side keeps the proportions, rounded
            down; where that is 0, only the headers are left.

    Writes: The image, in place, cut off behind the copy, unless both its sides are below that size
    already: then it stays, and so does a top-down image whose width is below it. An image whose
    longer side has that size already is written again. Pixels are taken to have 24 bits. Those that
    the file does not have are black, and so is one that ends the file. If the disk is full the
    image ends there, with the status 0. If it cannot be read to its end, some of its pixels have
    been written over and its first two bytes are 0.

    Interrupted: A part of the file is changed. A second call would change that part once more: keep
    a copy.

    Raises Status:
        -1: the image cannot be opened or read.
        -2: the file is no BMP.
        -7: the file is shorter than its own headers, ends before its pixels start, or cannot be
            read up to there.
        -9: `size` is not the longer side in pixels, at least 1; or the image is top-down (of
            negative height), the copy would be larger than a BMP can be, or there is too little
            memory.

    When it fails: 0 also when the file may not be written to or the disk is full: quillon inspect
    shows the size that it has now. A missing path is -1 here, where other exports return -9.
    """
    call(_CreateThumbnailBMP, text=image, value=size)


_saveAsTarga = Export(
    name="saveAsTarga",
    text="map",
    buffer1="target",
    failures=(
        Row(-10, ("sourceNotOpened", "readFailed"),
            "the map cannot be opened or read"),
        Row(-101, ("sourceNotWritable", "readFailed"),
            "the map may not be written to, or cannot be read to its end; the target is not "
            "whole"),
        Row(-5, ("pathRefused", "targetNotWritten", "diskFull"),
            "the target cannot be written or is the map itself, or the disk is full"),
        Row(-257, ("fileRefused",),
            "the map names no height or no channels, or no directory is found in it"),
        Row(-279, ("fileRefused",),
            "the map claims far more rows than the file holds"),
        Row(258, ("fileRefused",),
            "the map has neither 1 nor 3 channels"),
        Row(-259, ("fileRefused",),
            "the map is compressed"),
        Row(-262, ("fileRefused",),
            "the map is neither grey nor RGB"),
        Row(-273, ("fileRefused",),
            "the map has more than one strip"),
        Row(-339, ("fileRefused",),
            "the map names sample formats for neither 1 nor 3 channels"),
        Row(-9, ("noMemory",),
            "there is too little memory"),
    ),
    check=(
        "quillon inspect shows depth and channels. Depth and place of the pixels are not "
        "checked: the last bytes of the file are taken as 8-bit samples. A map of 16, 32 or 64 "
        "bits, one with anything behind its pixels, such as a second page, and one that is cut "
        "short give 0 and a wrong image; a width or height of 0 gives 0 and a header alone."
    ),
)


def saveAsTarga(map: StrPath, target: StrPath) -> None:
    """Writes an 8-bit TIFF map as an uncompressed Targa file.

    Parameters:
        map: path of the map.
        target: path of the target.

    Writes: The target: 24 bits a pixel, bottom row first; grey becomes grey pixels. The header has
    the low 16 bits of a side. An older file is written over and then cut to the new length; if a
    disk fails, the older file is lost and a part of the new one is left. The map is only read, yet
    it must be writable.

    Interrupted: The target has the old length, the new one or one between them; at each place it
    has the byte from before, the one from after or, behind its old end, 0. A second call completes
    it.

    Raises Status:
        -10: the map cannot be opened or read.
        -101: the map may not be written to, or cannot be read to its end; the target is not whole.
        -5: the target cannot be written or is the map itself, or the disk is full.
        -257: the map names no height or no channels, or no directory is found in it.
        -279: the map claims far more rows than the file holds.
        258: the map has neither 1 nor 3 channels.
        -259: the map is compressed.
        -262: the map is neither grey nor RGB.
        -273: the map has more than one strip.
        -339: the map names sample formats for neither 1 nor 3 channels.
        -9: there is too little memory.

    When it fails: quillon inspect shows depth and channels. Depth and place of the pixels are not
    checked: the last bytes of the file are taken as 8-bit samples. A map of 16, 32 or 64 bits, one
    with anything behind its pixels, such as a second page, and one that is cut short give 0 and a
    wrong image; a width or height of 0 gives 0 and a header alone.
    """
    call(_saveAsTarga, text=map, buffer1=target)


_saveAsJpeg = Export(
    name="saveAsJpeg",
    text="image",
    value="quality",
    buffer1="target",
    numbers=Numbers(least=0, most=100),
    failures=(
        Row(3, ("sourceNotOpened",),
            "the image cannot be opened"),
        Row(4, ("readFailed", "fileRefused"),
            "the image is shorter than its headers, or they cannot be read"),
        Row(5, ("fileRefused",),
            "the image is not a BMP of 24 bits per pixel"),
        Row(6, ("noMemory",),
            "there is too little memory for the image"),
        Row(-1, ("pathRefused", "targetNotWritten", "diskFull"),
            "the target cannot be created, the disk is full, or a path has 512 bytes and more"),
        Row(-9, ("fileRefused", "noMemory"),
            "a side of the image is 0 or longer than 65528 pixels (its low 16 bits count), or "
            "there is too little memory"),
    ),
    check=(
        "quillon inspect shows whether it is a BMP of 24 bits whose pixels start at byte 54: "
        "they are read from there whatever its header says, so an image with longer headers gets "
        "wrong colours with the status 0. 3 to 6 are failures although they are above 0."
    ),
)


def saveAsJpeg(image: StrPath, quality: float, target: StrPath) -> None:
    """Writes a BMP image as a JPEG file.

    Parameters:
        image: path of the image.
        quality: 0 (best) to 100, else 50. How much detail is left out: 0 gives the best image and
            the largest file, 100 the smallest file. A fraction is cut off.
        target: path of the target.

    Writes: The target, created anew. The image is only read; rows that it does not have or that
    cannot be read are black, with the same status 0. Of a side only the low 16 bits count: 65544
    pixels become 8, and a top-down image (of negative height) becomes a very tall one. Above 21845
    pixels wide only the left end of the rows is the right way up. If the disk is full a part of the
    target is left.

    Interrupted: An older file is gone, and the new one, or its end, may be missing. A second call
    completes it.

    Raises Status:
        3: the image cannot be opened.
        4: the image is shorter than its headers, or they cannot be read.
        5: the image is not a BMP of 24 bits per pixel.
        6: there is too little memory for the image.
        -1: the target cannot be created, the disk is full, or a path has 512 bytes and more.
        -9: a side of the image is 0 or longer than 65528 pixels (its low 16 bits count), or there
            is too little memory.

    When it fails: quillon inspect shows whether it is a BMP of 24 bits whose pixels start at byte
    54: they are read from there whatever its header says, so an image with longer headers gets
    wrong colours with the status 0. 3 to 6 are failures although they are above 0.
    """
    call(_saveAsJpeg, text=image, value=quality, buffer1=target)


_OpenEXR = Export(
    name="OpenEXR",
    text="image",
    counts=True,
    failures=(
        Row(-1, ("fileRefused",),
            "the file is no OpenEXR file"),
        Row(-2, ("fileRefused",),
            "the file is of a version of OpenEXR that is not known"),
        Row(-4, ("fileRefused", "noMemory"),
            "the file is damaged, deep, of several parts, has less than 8 bytes or claims more "
            "than it can hold, or there is too little memory"),
        Row(-7, ("sourceNotOpened", "readFailed", "noMemory"),
            "the file cannot be opened or read, or there is too little memory"),
        Row(-8, ("fileRefused",),
            "the file's compression is not known"),
        Row(-9, ("fileRefused",),
            "the file's header lacks what every OpenEXR file has"),
        Row(-10, ("fileRefused",),
            "the file's channels are subsampled"),
        Row(-131070, ("fileRefused",),
            "none of the image's samples is a number"),
    ),
    check=(
        "quillon inspect shows the attributes, among them compression and channels. The largest "
        "sample counts as -65535 at least, the smallest as 65535 at most: 70000 to 70010 gives "
        "4475. Samples of 32-bit whole numbers are measured, too. Save the image as one part of "
        "scan lines or tiles, its channels not subsampled."
    ),
)


def OpenEXR(image: StrPath) -> float:
    """Measures the range of values in an OpenEXR file's first channel.

    Parameters:
        image: path of the image.

    Returns:
        float: the range of values.

    Writes: Nothing.

    Raises Status:
        -1: the file is no OpenEXR file.
        -2: the file is of a version of OpenEXR that is not known.
        -4: the file is damaged, deep, of several parts, has less than 8 bytes or claims more than
            it can hold, or there is too little memory.
        -7: the file cannot be opened or read, or there is too little memory.
        -8: the file's compression is not known.
        -9: the file's header lacks what every OpenEXR file has.
        -10: the file's channels are subsampled.
        -131070: none of the image's samples is a number.

    When it fails: quillon inspect shows the attributes, among them compression and channels. The
    largest sample counts as -65535 at least, the smallest as 65535 at most: 70000 to 70010 gives
    4475. Samples of 32-bit whole numbers are measured, too. Save the image as one part of scan
    lines or tiles, its channels not subsampled.
    """
    return call(_OpenEXR, text=image).status
