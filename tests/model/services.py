"""Folder and file services, and the path helpers that other modules use.

Paths are bytes. Both "/" and "\\" separate folders wherever a path is searched for a separator.
"""

import os

from world import create, load

LONGEST_JOINED_PATH = 255  # the longest path that ClearFolder removes, in bytes


def last_separator(path):
    """The place of the last separator, -1 without one."""
    return max(path.rfind(b"/"), path.rfind(b"\\"))


def IsDirectory(path):
    """1 when the last component has no dot, else 0. The file system is not asked."""
    return int(b"." not in path[last_separator(path) + 1 :])


def FileNameExtract(path, mode):
    """A piece of a path: the folder, the name, the extension, or all of it for any other mode."""
    name = path[last_separator(path) + 1 :]
    if mode == 1:
        return path[: len(path) - len(name)]
    if mode == 2:
        return name.rpartition(b".")[0] if b"." in name else name
    if mode == 3:  # the last dot of the whole path counts, even if it lies in a folder's name
        return path.rpartition(b".")[0] if b"." in path else path
    if mode == 4:
        if b"." not in path:
            raise IndexError("a path without an extension")
        return path[path.rfind(b".") :]
    if mode == 6:
        return name
    return path


def succeeds(service, *paths):
    """Whether a service of the operating system does its work."""
    try:
        service(*paths)
        return True
    except OSError:
        return False


def load_regular(path):
    """A file's bytes; None for a folder, a device or a pipe, as for a file that is not there."""
    return load(path) if os.path.isfile(path) else None


def remove_file(path):
    """Removes a file, or an empty folder, as the C library does."""
    return succeeds(os.unlink, path) or succeeds(os.rmdir, path)


def rename_file(old, new):
    """Renames a file; one that has the new name is replaced."""
    return succeeds(os.rename, old, new)


def copy_file(source, target):
    """Copies a file. The target goes first, so that a failed copy leaves no old file behind."""
    remove_file(target)
    data = load_regular(source)
    return data is not None and create(target, data)


def list_folder(path):
    """The entries of a folder, its own and its parent's first; None where it cannot be opened."""
    try:
        return [b".", b".."] + os.listdir(path)
    except OSError:
        return None


def ClearFolder(path):
    """Deletes the files of a folder: 1, or 0 where it cannot be opened.

    Names without a dot are taken for folders; they stay and are not entered. An empty path is
    refused, since with its separator it would name the root folder.
    """
    if not path:
        return 0
    if not path.endswith(b"/"):
        path += b"/"
    entries = list_folder(path)
    if entries is None:
        return 0
    for name in entries[2:]:
        joined = path + name
        if not IsDirectory(joined) and len(joined) <= LONGEST_JOINED_PATH:
            remove_file(joined)
    return 1


def createFolder(path):
    """Creates one folder; False when it exists or its parent does not."""
    return succeeds(os.mkdir, path)


def getSharedFolder():
    """The folder that holds the users' folders."""
    return b"/home"
