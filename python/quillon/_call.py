"""Calls of the library: who may call, what is passed, what comes back."""

import contextlib
import ctypes
import numbers
import os
import threading
from typing import Iterator, NamedTuple, Optional, Tuple, Union

from quillon._errors import CLASSES, Busy, Status, likeliest
from quillon._load import load

StrPath = Union[str, "os.PathLike[str]"]

# The library writes a text to a block without asking for its size, at most a path.
_BLOCK_BYTES = 64 * 1024
_UNTOUCHED = b"\x1a untouched \x1a"  # so that an empty text and none differ


class TileCount(NamedTuple):
    """The UV tiles of a mesh: how many they are, and the name of the last face's tile."""

    count: int  # type: ignore[assignment]  # it hides the method of tuple
    last: str


class Numbers(NamedTuple):
    """The numbers that an export takes."""

    choices: Tuple[int, ...] = ()
    least: int = 0
    most: Optional[int] = None

    def contain(self, number: float) -> bool:
        if self.choices:
            return number in self.choices
        return self.least <= number and (self.most is None or number <= self.most)


class Row(NamedTuple):
    """A status of a failure, all that can cause it, and the same in a sentence."""

    status: float
    causes: Tuple[str, ...]
    meaning: str


class Export(NamedTuple):
    """What a call must know of an export: which arguments it reads, and its statuses."""

    name: str
    check: str
    text: str = ""
    role: str = "file"  # of the text: "file", "folder", "path" (of either) or "text"
    value: str = ""
    numbers: Numbers = Numbers()
    buffer1: str = ""  # a second path
    needs_dot: bool = False  # in that path
    gives_text: bool = False
    counts: bool = False  # or measures: each status from 0 on that is no failure is a result
    writes_tiles: bool = False  # the status of the last failure is that of the first tile
    done: float = 0  # the status of success otherwise
    failures: Tuple[Row, ...] = ()


class Result(NamedTuple):
    status: float
    text: str


_lock = threading.RLock()  # held by the thread that may call
_claims = 0  # how often that thread holds it
_library: Optional[ctypes.CDLL] = None


def _renew_lock() -> None:
    """In a new process the thread that held the lock may not exist."""
    global _lock, _claims
    _lock, _claims = threading.RLock(), 0


os.register_at_fork(after_in_child=_renew_lock)


@contextlib.contextmanager
def claimed(alone: bool = False) -> Iterator[None]:
    """Keeps the library for this thread. Raises Busy if another thread has it.

    Parameters:
        alone: also raise Busy if this thread has it already.
    """
    global _claims
    lock = _lock
    if not lock.acquire(blocking=False):
        raise Busy("another thread is using the library, which has one state for all of them")
    try:
        if alone and _claims > 0:
            raise Busy("a Session, a tile filter or a map export is open already")
        _claims += 1
        try:
            yield
        finally:
            _claims -= 1
    finally:
        lock.release()


def _bytes(export: Export, name: str, role: str, given: object) -> Optional[bytes]:
    """An argument as the library takes it; None for one that the export does not read."""
    if not name:
        return None
    if isinstance(given, str) and role == "text":
        encoded = given.encode("utf-8", "surrogateescape")
    elif isinstance(given, (str, os.PathLike)) and role != "text":
        encoded = os.fsencode(given)
    else:
        wanted = "str" if role == "text" else "path"
        raise TypeError(f"{export.name}: {name} must be a {wanted}, not {type(given).__name__}")
    if b"\0" in encoded:
        raise ValueError(f"{export.name}: {name} has a NUL byte")
    return encoded


def _number(export: Export, value: object) -> float:
    if not isinstance(value, numbers.Real):
        name, kind = export.value, type(value).__name__
        raise TypeError(f"{export.name}: {name} must be a number, not {kind}")
    try:
        return float(value)
    except OverflowError as error:
        raise ValueError(f"{export.name}: {export.value} is too large") from error


def _made(
    export: Export, text: Optional[bytes], value: float, target: Optional[bytes]
) -> Tuple[float, bytes]:
    """Calls the export. Returns the status, and the text of a block."""
    global _library
    if _library is None:
        _library = load()
    function = getattr(_library, export.name)
    function.restype = ctypes.c_float
    size = max(_BLOCK_BYTES, len(text or b"") + 1)
    block = ctypes.create_string_buffer(_UNTOUCHED, size) if export.gives_text else target
    status = function(text, ctypes.c_double(value), block, size, None, 0, None)
    return status, block.value if isinstance(block, ctypes.Array) else b""


_NAME = Export("getUVString", "", value="position", gives_text=True)


def _count_names() -> int:
    count = 0
    while _made(_NAME, None, count, None)[1] != _UNTOUCHED:
        count += 1
    return count


def _failure(export: Export, status: float) -> Optional[Row]:
    """The row of a status; None for a success."""
    for row in export.failures:
        if status == row.status:
            return row
    if export.writes_tiles and status >= export.failures[-1].status:
        return export.failures[-1]
    if status >= 0 if export.counts else status == export.done:
        return None
    return Row(status, (), "a status that this package does not know")


def _raise(export: Export, status: float, row: Row, value: float, *paths: Optional[bytes]) -> None:
    source, target = (os.fsdecode(path or b"") for path in paths)
    cause, reason = "unknown", ""
    if "valueRefused" in row.causes and not export.numbers.contain(value):
        cause, reason = "valueRefused", f"{export.value} is {value:g}"
    elif row.causes:
        causes = [cause for cause in row.causes if cause != "valueRefused"]
        cause, reason = likeliest(causes, export.role, source, target)
    files = [path for path in (source, target) if path]
    error = CLASSES.get(cause, Status)
    raise error(export.name, status, cause, row.meaning, export.check, files, reason)


def call(export: Export, text: object = None, value: object = 0, buffer1: object = None) -> Result:
    """Calls an export with those arguments that it reads.

    Raises TypeError and ValueError for arguments that cannot be passed, before the call; Status for
    a call that fails; Busy if the library is in use; LibraryNotFound.
    """
    source = _bytes(export, export.text, export.role, text)
    number = _number(export, value)
    target = _bytes(export, export.buffer1, "file", buffer1)
    if export.needs_dot and b"." not in (target or b""):
        raise ValueError(f"{export.name}: {export.buffer1} must have a dot before its extension")
    with claimed():
        status, given = _made(export, source, number, target)
        row = _failure(export, status)
        # So many tiles have the status of one that was not written.
        if export.writes_tiles and status >= 0 and row and status == _count_names():
            row = None
    if row is not None:
        _raise(export, status, row, number, source, target)
    if given == _UNTOUCHED:
        raise ValueError(f"{export.name}: there is no {export.value} {number:g}")
    is_name = export.role != "text"  # of a file, a folder or a tile
    return Result(
        status, os.fsdecode(given) if is_name else given.decode("utf-8", "surrogateescape")
    )
