"""What takes several calls: sessions, listings, tile names, tile filters."""

import contextlib
import os
import re
import tempfile
from pathlib import Path
from types import TracebackType
from typing import Iterable, Iterator, List, Optional, Type, Union

from quillon import _exports as exports
from quillon._call import StrPath, claimed
from quillon._errors import NothingOpen

Tiles = Union[StrPath, Iterable[Union[int, str]]]


def _forget() -> None:
    """Empties the state that calls share."""
    exports.clearUVtilesOutput()
    exports.clearUVString()
    with contextlib.suppress(NothingOpen):
        exports.CloseFolder()


class Session:
    """Keeps the library for the thread that opens it, for calls that depend on each other.

    The library has one state for the whole process: the open folder, the tile filter and the names
    of the tiles that were written last. One thread calls at a time. While a Session is open, a call
    from another thread raises Busy, and so does a second Session; nothing waits. The state is empty
    when a Session starts and when it ends.

        with quillon.Session():
            quillon.getUVs("model.Vemo", 2, "tiles/model.Vemo")
            names = list(quillon.tile_names())

    A call outside a Session keeps the library for itself alone: another thread may come between two
    of them. Work on many meshes at a time is done by many processes, each with a state of its own.
    """

    def __enter__(self) -> "Session":
        with contextlib.ExitStack() as stack:
            stack.enter_context(claimed(alone=True))
            _forget()
            stack.callback(_forget)
            self._opened = stack.pop_all()
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self._opened.close()


def listing(folder: StrPath) -> Iterator[str]:
    """The names of a folder's entries, in the file system's order, without "." and "..".

    They are read at once, so that the caller may change the folder. A listing that OpenFolder has
    begun is closed. Raises NotOpened.
    """
    names: List[str] = []
    with claimed():
        exports.OpenFolder(folder)
        with contextlib.suppress(NothingOpen):
            while True:
                names.append(exports.GetFile())
        exports.CloseFolder()
    return (name for name in names if name not in (".", ".."))


def tile_names() -> Iterator[str]:
    """The names of the tiles that getUVs or getUVsMask wrote last, in the order of the files."""
    names: List[str] = []
    with claimed(), contextlib.suppress(ValueError):
        while True:
            names.append(exports.getUVString(len(names)))
    return iter(names)


def _filter_text(tiles: Tiles) -> str:
    """The pieces of a filter. Raises ValueError for one that the library would pass over."""
    if isinstance(tiles, (str, os.PathLike)):
        pieces = re.split("[,\n]", Path(tiles).read_bytes().decode(errors="replace"))
    else:
        pieces = [str(tile) for tile in tiles]
    pieces = [piece.replace(" ", "") for piece in pieces]
    pieces = [piece for piece in pieces if piece]
    for piece in pieces:
        numbers = re.fullmatch(r"([0-9]+)(?:-([0-9]+))?", piece)
        if not numbers or int(numbers[2] or numbers[1]) < int(numbers[1]):
            raise ValueError(
                f"{piece!r} is no tile number, such as 1001, and no range, such as 1001-1003"
            )
    if not pieces:
        raise ValueError("no tile is listed, which would let every tile pass")
    return ",".join(pieces)


@contextlib.contextmanager
def tile_filter(tiles: Tiles) -> Iterator[None]:
    """Lets only some tiles pass, in naming mode 2, for the statements of a block.

        with quillon.tile_filter([1001, "1011-1014"]):
            quillon.getUVs("model.Vemo", 2, "tiles/model.Vemo")

    Parameters:
        tiles: numbers and ranges; or the path of a text file that lists them, separated by commas
            or lines.

    Raises ValueError for what is no number and no range, and for an empty filter; Busy if the
    library is in use by another thread. Every tile passes again after the block.
    """
    text = _filter_text(tiles)
    with claimed():
        with tempfile.TemporaryDirectory(prefix="quillon-") as folder:
            file = Path(folder, "filter.txt")
            file.write_text(text)
            exports.setUVtilesOutput(file)
        try:
            yield
        finally:
            exports.clearUVtilesOutput()
