"""Finds and loads the library."""

import ctypes
import os
import sys
from pathlib import Path
from typing import Iterator, List

from quillon._errors import LibraryNotFound

INTERFACE = 48  # the version that this package calls

_NAMES = (
    ["Quillon.dylib"]
    if sys.platform == "darwin"
    else [f"libQuillon.so.{INTERFACE}", "libQuillon.so"]
)
_BUILD = "macos-universal" if sys.platform == "darwin" else "release"
_HOW_TO_BUILD = f"""\
Name its file in the environment variable QUILLON_LIBRARY, or build it in the source tree:
  cmake --preset {_BUILD}
  cmake --build --preset {_BUILD}"""


def _folders() -> Iterator[Path]:
    package = Path(__file__).resolve().parent
    yield package  # of an installed wheel
    tree = package.parents[1]
    if (tree / "src" / "export" / "Quillon.h").exists():
        yield tree / "build" / _BUILD


def _opened(file: str, named_by: str = "") -> ctypes.CDLL:
    """The library in a file. Raises LibraryNotFound if that is another library, or none."""
    try:
        library = ctypes.CDLL(file)
        library.Version.restype = ctypes.c_float
    except (OSError, AttributeError) as error:
        raise LibraryNotFound(f"{named_by}{file} cannot be loaded: {error}") from error
    version = library.Version(None, ctypes.c_double(0), None, 0, None, 0, None)
    if version != INTERFACE:
        raise LibraryNotFound(
            f"{named_by}{file} has version {version:g} of the interface; "
            f"this package needs {INTERFACE}"
        )
    return library


def load() -> ctypes.CDLL:
    """Loads the library.

    It is the file that the environment variable QUILLON_LIBRARY names, or else the first that is
    there: in the package's own folder, in the build folder of the source tree, where the system's
    loader looks. Raises LibraryNotFound, with all these places.
    """
    chosen = os.environ.get("QUILLON_LIBRARY")
    if chosen:
        return _opened(os.path.abspath(chosen), "QUILLON_LIBRARY: ")
    missed: List[str] = []
    for file in (folder / name for folder in _folders() for name in _NAMES):
        if file.exists():
            return _opened(str(file))
        missed.append(f"{file}: not there")
    for name in _NAMES:
        try:
            ctypes.CDLL(name)
        except OSError as error:
            missed.append(f"{name}, by the system's loader: {error}")
        else:
            return _opened(name)
    places = "\n  ".join(["QUILLON_LIBRARY: not set", *missed])
    raise LibraryNotFound(
        f"the Quillon library is in none of these places:\n  {places}\n{_HOW_TO_BUILD}"
    )
