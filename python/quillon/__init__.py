"""Quillon: UV tiles of meshes, and their maps. Each function of `quillon.__all__` has a docstring.

A function per export of the library has the export's own name; a call that fails raises Status.
`export_maps` makes a whole map export with a renderer of the caller's. The library is loaded at the
first call.
"""

from quillon import _exports
from quillon._call import TileCount
from quillon._errors import (
    Busy,
    LibraryNotFound,
    NoMemory,
    NothingOpen,
    NotOpened,
    NotRead,
    NotWritten,
    Refused,
    Status,
)
from quillon._exports import *  # noqa: F403
from quillon._maps import ExportedMap, export_maps
from quillon._session import Session, listing, tile_filter, tile_names

__version__ = "48.0"

__all__ = [
    "Busy",
    "ExportedMap",
    "LibraryNotFound",
    "NoMemory",
    "NotOpened",
    "NotRead",
    "NotWritten",
    "NothingOpen",
    "Refused",
    "Session",
    "Status",
    "TileCount",
    "export_maps",
    "listing",
    "tile_filter",
    "tile_names",
]
__all__ += _exports.__all__
