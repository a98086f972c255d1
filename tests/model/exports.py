"""The exports: each checks its arguments, brings `value` into range and calls one operation.

Every export takes (text, value, buffer1) and returns the status. None stands for a null pointer.
"""

import bmp
import exr
import jpeg
import mesh
import psd
import services
import targa
import tiff
from world import whole

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
    """An export that answers `refusal` to a null argument, or to a value that it does not take."""

    def call(text, value, buffer1):
        if any((text, value, buffer1)[position] is None for position in needs) or not takes(value):
            return refusal
        return operation(text, value, buffer1)

    return call


def status(succeeded):
    """The answer of the file services."""
    return 0.0 if succeeded else -1.0


def copied(block, text):
    """Copies a text result."""
    block.copy(text)
    return 0.0


def done(_):
    """The answer of operations that cannot fail."""
    return 0.0


def naming_mode(value):
    """One of the four ways to name tiles; the nearest where there is none."""
    return max(0, min(3, whole(value)))


def start_of_text(value):
    """Where a copied text starts: 0 to 10, or 5."""
    return whole(value) if 0 <= value <= 10 else 5


def quality(value):
    """The JPEG quality: 0 to 100, or 50."""
    return whole(value) if 0 <= value <= 100 else 50


def channel_order(value):
    """Whether a value lies strictly between 0 and 4; it is cut down only after that."""
    return 0 < value < 4


def layout(value):
    """Whether a value is exactly grey, colour or colour to grey."""
    return value in (1.0, 3.0, 4.0)


def channels(value):
    """Whether a value is exactly one channel or three."""
    return value in (1.0, 3.0)


def is_psd(path):
    """1 for a PSD extension in lower or upper case. A path without a dot raises IndexError."""
    extension = services.FileNameExtract(path, 4)
    return int(b"psd" in extension or b"PSD" in extension)


# Folder listing


def CheckFolder(text, value, buffer1):
    """Whether a folder can be opened. It ends a listing that is open."""
    global folder
    folder = None
    return status(text is not None and services.list_folder(text) is not None)


def OpenFolder(text, value, buffer1):
    """Opens a listing, which drops an earlier one even if it fails."""
    global folder
    entries = None if text is None else services.list_folder(text)
    folder = None if entries is None else iter(entries)
    return status(folder is not None)


def GetFile(text, value, buffer1):
    """The next entry's name; -3 when none is left."""
    if folder is None or buffer1 is None:
        return -1.0
    name = next(folder, None)
    return -3.0 if name is None else copied(buffer1, name)


def CloseFolder(text, value, buffer1):
    """Ends the listing."""
    global folder
    if folder is None:
        return -1.0
    folder = None
    return 0.0


# Folders and files: needed pointers, refusal, operation

Version = export(NONE, None, lambda t, v, b: 48.0)
CreateFolder = export(TEXT, -1.0, lambda t, v, b: status(services.createFolder(t)))
GetPublicFolder = export(BUFFER, 0.0, lambda t, v, b: copied(b, services.getSharedFolder()) + 1.0)
EmptyFolder = export(TEXT, -1.0, lambda t, v, b: status(services.ClearFolder(t)))
FileDelete = export(TEXT, -1.0, lambda t, v, b: status(services.remove_file(t)))
FileCopyTo = export(BOTH, -1.0, lambda t, v, b: status(services.copy_file(t, b)))
FileRename = export(BOTH, -1.0, lambda t, v, b: status(services.rename_file(t, b)))
GetString = export(BOTH, -1.0, lambda t, v, b: copied(b, t[start_of_text(v) :]))

# Meshes

clearUVtilesOutput = export(NONE, None, lambda t, v, b: done(mesh.clearUVtilesOut()))
setUVtilesOutput = export(TEXT, -9.0, lambda t, v, b: mesh.setUVtilesOut(t))
getUVTile = export(BOTH, -9.0, lambda t, v, b: mesh.GetUVTile(t, b, naming_mode(v)))
getUVGroups = export(TEXT, -9.0, lambda t, v, b: mesh.GetUVGroup(t))
getUVString = export(NONE, None, lambda t, v, b: done(mesh.getUVTileString(whole(v), b)))
clearUVString = export(NONE, None, lambda t, v, b: done(mesh.clearUVTileString()))
getUVs = export(BOTH, -9.0, lambda t, v, b: mesh.GetUVsFromVemo(t, b, naming_mode(v)))
getUVsMask = export(BOTH, -9.0, lambda t, v, b: mesh.GetUVsFromVemoMASK(t, b, naming_mode(v)))
mergeCrease = export(BOTH, -9.0, lambda t, v, b: mesh.mergeFiles(t, b))

# Maps: needed pointers, refusal, operation, values taken

mergeMapsTIF = export(BOTH, -9.0, lambda t, v, b: tiff.mergeTiff(t, b))
mergeMapsPSD = export(BOTH, -9.0, lambda t, v, b: psd.mergePSD(t, b))
mergeMapsBMP = export(BOTH, -9.0, lambda t, v, b: bmp.mergeBMP(t, b))
swapRGBTIF = export(TEXT, -9.0, lambda t, v, b: tiff.swapChannels(t, whole(v)), channel_order)
swapRGBPSD = export(TEXT, -9.0, lambda t, v, b: psd.swapChannelsPSD(t, whole(v)), channel_order)
swapRGBBMP = export(TEXT, -9.0, lambda t, v, b: bmp.swapChannelsBMP(t, whole(v)), channel_order)
convertTIFF16 = export(
    BOTH, -9.0, lambda t, v, b: tiff.convertTiff(t, b, whole(v), is_psd(b)), layout
)
convertTIFFSingle = export(BOTH, -1.0, lambda t, v, b: tiff.singleChannelTiff(t, b))
getScale = export(TEXT, -9.0, lambda t, v, b: tiff.getScaleTiff(t, whole(v)), channels)
saveAsTarga = export(BOTH, -9.0, lambda t, v, b: targa.convertToTarga(t, b))
saveAsJpeg = export(BOTH, -9.0, lambda t, v, b: jpeg.convertToJPEG(t, b, quality(v)))
CreateThumbnailBMP = export(NONE, None, lambda t, v, b: bmp.createBMPthumb(t, whole(v)))
OpenEXR = export(TEXT, -3.0, lambda t, v, b: exr.OpenEXR(t))
