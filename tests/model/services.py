"""Folder and file services, and the path helpers that other modules use.

Paths are bytes. Both "/" and "\\" separate folders wherever a path is searched for a separator.
"""

import os

from world import check, create, load

LONGEST_JOINED_PATH = 255  # the longest path that ClearFolder removes, in bytes


def last_component(path):
    """What follows the last separator."""
    return path[max(path.rfind(b"/"), path.rfind(b"\\")) + 1 :]


def IsDirectory(path):
    """1 when the last component has no dot, else 0. The file system is not asked."""
    return int(b"." not in last_component(path))


def FileNameExtract(path, mode):
    """A piece of a path: the folder, the name, the extension, or all of it for any other mode."""
    name = last_component(path)
    if mode == 1:
        return path[: len(path) - len(name)]
    if mode == 2:
        return name.rpartition(b".")[0] if b"." in name else name
    if mode == 3:  # the last dot of the whole path counts, even if it is in a folder's name
        return path.rpartition(b".")[0] if b"." in path else path
    if mode == 4:
        check(b"." in path, "out_of_range")  # an exception, which reaches the caller
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


def remove_file(path):
    """Removes a file, or an empty folder, as the C library does."""
    return succeeds(os.unlink, path) or succeeds(os.rmdir, path)


def copy_file(source, target):
    """Copies a file. The target goes first, so that a failed copy leaves no old file behind."""
    remove_file(target)
    return create(target, load(source, -1.0), -1.0)


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
        if not IsDirectory(path + name) and len(path + name) <= LONGEST_JOINED_PATH:
            remove_file(path + name)
    return 1
