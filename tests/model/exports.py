"""The exports: each checks its arguments, brings `value` into range and calls one operation.

Every export takes (text, value, buffer1) and returns the status. None stands for a null pointer.
"""

import os

import bmp
import exr
import jpeg
import mesh
import psd
import services
import targa
import tiff
from world import check, whole

folder = None  # the rest of the open folder listing


def reset():
    """Brings everything that lives between calls back to the state at load."""
    global folder
    folder = None
    mesh.clearUVtilesOut()
    mesh.clearUVTileString()
    mesh.faceID.clear()


# Rules for arguments

NONE, TEXT, BUFFER, BOTH = (), (0,), (2,), (0, 2)


def export(needs, refusal, operation, takes=lambda value: True):
    """An export that returns `refusal` for a null argument or for a value that it does not take."""

    def call(*arguments):
        check(all(arguments[position] is not None for position in needs), refusal)
        check(takes(arguments[1]), refusal)
        return operation(*arguments)

    return call


def succeeded(good):
    """The status of the file services."""
    return 0.0 if good else -1.0


def copied(block, text):
    """Copies a text result."""
    block.copy(text)
    return 0.0


def naming_mode(value):
    """One of the four ways to name tiles; the nearest where there is none."""
    return max(0, min(3, whole(value)))


def up_to(last, value, default):
    """An integer from 0 to `last`; `default` for any other value."""
    return whole(value) if 0 <= value <= last else default


def is_psd(path):
    """Whether a path has a PSD extension in lower or upper case."""
    extension = services.FileNameExtract(path, 4)
    return b"psd" in extension or b"PSD" in extension


# Folder listing


def OpenFolder(text, value, buffer1):
    """Opens a listing, which drops an earlier one even if it fails."""
    global folder
    entries = None if text is None else services.list_folder(text)
    folder = None if entries is None else iter(entries)
    return succeeded(folder is not None)


def CheckFolder(text, value, buffer1):
    """Whether a folder can be opened. It ends a listing that is open."""
    global folder
    status = OpenFolder(text, value, buffer1)
    folder = None
    return status


def GetFile(text, value, buffer1):
    """The next entry's name; -3 when none is left."""
    check(folder is not None and buffer1 is not None, -1.0)
    name = next(folder, None)
    check(name is not None, -3.0)
    return copied(buffer1, name)


def CloseFolder(text, value, buffer1):
    """Ends the listing."""
    global folder
    check(folder is not None, -1.0)
    folder = None
    return 0.0


# Folders and files: needed pointers, refusal, operation

Version = export(NONE, None, lambda t, v, b: 48.0)
CreateFolder = export(TEXT, -1.0, lambda t, v, b: succeeded(services.succeeds(os.mkdir, t)))
GetPublicFolder = export(BUFFER, 0.0, lambda t, v, b: copied(b, b"/home") + 1.0)
EmptyFolder = export(TEXT, -1.0, lambda t, v, b: succeeded(services.ClearFolder(t)))
FileDelete = export(TEXT, -1.0, lambda t, v, b: succeeded(services.remove_file(t)))
FileCopyTo = export(BOTH, -1.0, lambda t, v, b: services.copy_file(t, b))
FileRename = export(BOTH, -1.0, lambda t, v, b: succeeded(services.succeeds(os.rename, t, b)))
GetString = export(BOTH, -1.0, lambda t, v, b: copied(b, t[up_to(10, v, 5) :]))

# Meshes

clearUVtilesOutput = export(NONE, None, lambda t, v, b: mesh.clearUVtilesOut())
setUVtilesOutput = export(TEXT, -9.0, lambda t, v, b: mesh.setUVtilesOut(t))
getUVTile = export(BOTH, -9.0, lambda t, v, b: mesh.GetUVTile(t, b, naming_mode(v)))
getUVGroups = export(TEXT, -9.0, lambda t, v, b: mesh.GetUVGroup(t))
getUVString = export(NONE, None, lambda t, v, b: mesh.getUVTileString(whole(v), b))
clearUVString = export(NONE, None, lambda t, v, b: mesh.clearUVTileString())
getUVs = export(BOTH, -9.0, lambda t, v, b: mesh.GetUVsFromVemo(t, b, naming_mode(v)))
getUVsMask = export(BOTH, -9.0, lambda t, v, b: mesh.GetUVsFromVemoMASK(t, b, naming_mode(v)))
mergeCrease = export(BOTH, -9.0, lambda t, v, b: mesh.mergeFiles(t, b))

# Maps: needed pointers, refusal, operation, values taken


def channel_order(value):
    """Strictly between 0 and 4; the value is truncated only after that."""
    return 0 < value < 4


mergeMapsTIF = export(BOTH, -9.0, lambda t, v, b: tiff.mergeTiff(t, b))
mergeMapsPSD = export(BOTH, -9.0, lambda t, v, b: psd.mergePSD(t, b))
mergeMapsBMP = export(BOTH, -9.0, lambda t, v, b: bmp.mergeBMP(t, b))
swapRGBTIF = export(TEXT, -9.0, lambda t, v, b: tiff.swapChannels(t, whole(v)), channel_order)
swapRGBPSD = export(TEXT, -9.0, lambda t, v, b: psd.swapChannelsPSD(t, whole(v)), channel_order)
swapRGBBMP = export(TEXT, -9.0, lambda t, v, b: bmp.swapChannelsBMP(t, whole(v)), channel_order)
convertTIFF16 = export(  # grey, colour, colour to grey
    BOTH, -9.0, lambda t, v, b: tiff.convertTiff(t, b, v, is_psd(b)), lambda v: v in (1, 3, 4)
)
convertTIFFSingle = export(BOTH, -1.0, lambda t, v, b: tiff.singleChannelTiff(t, b))
getScale = export(TEXT, -9.0, lambda t, v, b: tiff.getScaleTiff(t, whole(v)), lambda v: v in (1, 3))
saveAsTarga = export(BOTH, -9.0, lambda t, v, b: targa.convertToTarga(t, b))
saveAsJpeg = export(BOTH, -9.0, lambda t, v, b: jpeg.convertToJPEG(t, b, up_to(100, v, 50)))
CreateThumbnailBMP = export(NONE, None, lambda t, v, b: bmp.createBMPthumb(t, whole(v)))
OpenEXR = export(TEXT, -3.0, lambda t, v, b: exr.OpenEXR(t))
