"""What goes wrong: a class for each kind of cause, and a look at the files to find which it was."""

import os
import stat
from typing import Dict, Iterable, List, Optional, Tuple, Type


class Busy(RuntimeError):
    """The library is in use: by another thread, or by a Session that is open."""


class LibraryNotFound(OSError):
    """The library is in none of the places where it is looked for, or cannot be loaded."""


class Status(Exception):
    """A call that failed.

    Attributes:
        export: name of the export.
        status: what it returned.
        cause: stable name of the likeliest cause, as in `quillon reference --json`; "unknown" for a
            status that this package does not know.
        meaning: all that can lead to this status, as a sentence.
        check: what to check, in sentences.
        files: the paths of the call.
        reason: what the system says of one of them; empty if nothing is wrong there.
    """

    def __init__(
        self,
        export: str,
        status: float,
        cause: str,
        meaning: str,
        check: str,
        files: Iterable[str] = (),
        reason: str = "",
    ) -> None:
        self.export = export
        self.status = status
        self.cause = cause
        self.meaning = meaning
        self.check = check
        self.files = tuple(files)
        self.reason = reason
        # All of them, so that the exception passes from one process to another.
        super().__init__(export, status, cause, meaning, check, self.files, reason)

    def __str__(self) -> str:
        files = "".join(f" {word} {file}" for word, file in zip(("of", "to"), self.files))
        reason = f" ({self.reason})" if self.reason else ""
        return f"{self.export}{files} returned {self.status:.9g}: {self.meaning}{reason}"


class Refused(Status):
    """A number, a path or the contents of a file are not what the export takes."""


class NotOpened(Status):
    """A file or folder cannot be opened, or does not exist."""


class NotRead(Status):
    """A file or folder can be opened, but not read to its end."""


class NotWritten(Status):
    """A file or folder cannot be created, changed or deleted, or the disk is full."""


class NothingOpen(Status):
    """No folder is open, or all of its entries were given."""


class NoMemory(Status):
    """There is too little memory."""


# Where no look at the files decides, the likelier cause is the earlier one.
CLASSES: Dict[str, Type[Status]] = {
    "fileRefused": Refused,
    "nothingOpen": NothingOpen,
    "diskFull": NotWritten,
    "readFailed": NotRead,
    "targetNotWritten": NotWritten,
    "sourceNotWritable": NotWritten,
    "sourceNotOpened": NotOpened,
    "targetNotOpened": NotOpened,
    "pathRefused": Refused,
    "valueRefused": Refused,
    "noMemory": NoMemory,
}


def _unreadable(path: str, role: str) -> str:
    try:
        mode = os.stat(path).st_mode
    except OSError as error:
        return error.strerror or "it cannot be found"
    if role == "file" and stat.S_ISDIR(mode):
        return "it is a folder"
    if role == "folder" and not stat.S_ISDIR(mode):
        return "it is no folder"
    return "" if role == "path" or os.access(path, os.R_OK) else "it may not be read"


def _unwritable(path: str, role: str) -> str:
    if not os.path.lexists(path):
        folder = os.path.dirname(path) or "."
        return _unreadable(folder, "folder") or _unwritable(folder, "path")
    if role == "folder":
        return "it exists"
    if role == "file" and os.path.isdir(path):
        return "it is a folder"
    return "" if os.access(path, os.W_OK) else "it may not be written to"


def _same(source: str, target: str) -> str:
    if max(len(os.fsencode(source)), len(os.fsencode(target))) >= 512:
        return "a path has 512 bytes or more"
    both = os.path.exists(source) and os.path.exists(target)
    return "it is the source itself" if both and os.path.samefile(source, target) else ""


def _looked_at(cause: str, role: str, source: str, target: str) -> Optional[Tuple[str, str]]:
    """A path and what is wrong with it, if anything; None where no file shows the cause."""
    if cause == "sourceNotOpened" and source:
        return source, _unreadable(source, role)
    if cause == "sourceNotWritable" and source:
        return source, _unwritable(source, "path")
    if cause == "targetNotOpened":
        return target, _unreadable(target, "file")
    if cause == "targetNotWritten":
        return target or source, _unwritable(target or source, "file" if target else role)
    return (target, _same(source, target)) if cause == "pathRefused" else None


def likeliest(
    causes: Iterable[str], role: str, source: str = "", target: str = ""
) -> Tuple[str, str]:
    """The likeliest cause, and what is wrong with a file or folder where that decides.

    Parameters:
        causes: stable names.
        role: of the source: "file", "folder", "path" or "text".
        source, target: paths; empty if the call has none.
    """
    possible: List[str] = []
    excluded: List[str] = []
    for cause in causes:
        seen = _looked_at(cause, role, source, target)
        if seen and seen[1]:
            return cause, ": ".join(seen)
        (excluded if seen else possible).append(cause)
    return min(possible or excluded, key=list(CLASSES).index), ""
