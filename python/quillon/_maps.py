"""The calls of one map export, around the caller's own renderer."""

import contextlib
import errno
import importlib
import os
import tempfile
from pathlib import Path
from typing import (
    Callable,
    ContextManager,
    Iterator,
    List,
    Mapping,
    NamedTuple,
    Optional,
    Tuple,
    Union,
)

from quillon import _exports as exports
from quillon._call import StrPath, claimed
from quillon._headers import require_convertible, require_map, tiff
from quillon._session import Tiles, _forget, tile_filter, tile_names

Render = Callable[[Path, Path], object]
Progress = Callable[[int, int, str], object]
_Fold = Callable[[StrPath, StrPath], None]
_Swap = Callable[[StrPath, float], None]


class ExportedMap(NamedTuple):
    """A map that was exported.

    Attributes:
        path: the file.
        tiles: names of the tiles that are on it, in the order in which they were rendered.
        scale: of displacement, measured by getScale before a conversion to 16 bits; None for a map
            that is no TIFF of 32-bit floats.
    """

    path: Path
    tiles: Tuple[str, ...]
    scale: Optional[float]


class _Format(NamedTuple):
    fold: _Fold
    swap: _Swap
    orders: Mapping[
        str, Tuple[int, ...]
    ]  # of the channels, and the modes of `swap` that lead there


_EXCHANGES = {"rbg": (1,), "bgr": (2,), "grb": (3,)}
_ROTATIONS = {"rbg": (1,), "bgr": (1, 3), "grb": (1, 2)}
_FORMATS = {
    ".tif": _Format(exports.mergeMapsTIF, exports.swapRGBTIF, _EXCHANGES),
    ".psd": _Format(exports.mergeMapsPSD, exports.swapRGBPSD, _ROTATIONS),
    ".bmp": _Format(exports.mergeMapsBMP, exports.swapRGBBMP, _EXCHANGES),
}


class _Options(NamedTuple):
    out: Path
    kind: str  # of the tiles' maps: a key of _FORMATS
    naming: int
    tiles: Optional[Tiles]
    mask: bool
    order: Optional[str]
    sixteen_bits: bool


def _require(rule: bool, sentence: str) -> None:
    if not rule:
        raise ValueError(sentence)


def _kind_of(out: Path) -> str:
    kind = ".tif" if out.suffix.lower() == ".tiff" else out.suffix.lower()
    _require(kind in _FORMATS, f"{out} must end with .tif, .psd or .bmp, which is its format")
    return kind


def _require_consistent(mesh: Path, options: _Options) -> None:
    out, folder = options.out, options.out.parent
    _require("\0" not in str(out), "out has a NUL byte")
    if not folder.is_dir():
        raise FileNotFoundError(errno.ENOENT, "there is no such folder", str(folder))
    if out.is_dir():
        raise IsADirectoryError(errno.EISDIR, "the map would replace a folder", str(out))
    _require(
        not (out.exists() and mesh.exists() and out.samefile(mesh)), f"{out} is the mesh itself"
    )
    _require(options.naming in (0, 1, 2, 3), f"naming is 0, 1, 2 or 3, not {options.naming!r}")
    _require(
        options.tiles is None or options.naming == 2, "tiles can be chosen in naming mode 2 only"
    )
    orders = (None, *_EXCHANGES)
    _require(options.order in orders, f"order is rbg, bgr or grb, not {options.order!r}")
    if options.sixteen_bits:
        _require(_kind_of(out) != ".bmp", "a BMP cannot have 16 bits")
        _require(options.order is None, "the channels of a map of floats cannot be reordered")


def _write_tiles(mesh: Path, folder: Path, options: _Options) -> Tuple[str, ...]:
    """Writes a mesh per tile, tile<name>.Vemo. Returns the names."""
    _forget()
    _require(
        exports.getUVTile(mesh, options.naming).count == exports.getUVTile(mesh, 0).count,
        f"tiles of {mesh} share a name, and only one of them would be exported; choose naming mode "
        "0, 1 or 3",
    )
    chosen: ContextManager[None] = contextlib.nullcontext()
    if options.tiles is not None:
        chosen = tile_filter(options.tiles)
    write = exports.getUVsMask if options.mask else exports.getUVs
    with chosen:
        write(mesh, options.naming, folder / "tile.Vemo")
    names = tuple(tile_names())
    exports.clearUVString()
    _require(len(names) > 0, f"{mesh} has no tile" + (" of those chosen" if options.tiles else ""))
    return names


@contextlib.contextmanager
def _reports(progress: Union[Progress, bool, None]) -> Iterator[Progress]:
    """What is called with each step: the caller's function, a bar by tqdm, or nothing."""
    if callable(progress):
        yield progress
        return
    try:
        tqdm = importlib.import_module("tqdm").tqdm if progress else None
    except ImportError:
        tqdm = None
    if tqdm is None:
        yield lambda done, total, step: None
        return
    with tqdm() as bar:

        def show(done: int, total: int, step: str) -> None:
            bar.total = total
            bar.set_description_str(step, refresh=False)
            bar.update(done - bar.n)

        yield show


def _render_tiles(
    render: Render, folder: Path, names: Tuple[str, ...], options: _Options, report: Progress
) -> List[Path]:
    """Has each tile rendered. Returns the maps."""
    maps = []
    for done, name in enumerate(names):
        report(done, 2 * len(names), f"render {name}")
        made = folder / f"tile{name}{options.kind}"
        render(folder / f"tile{name}.Vemo", made)
        if not made.is_file():
            raise FileNotFoundError(errno.ENOENT, "render wrote no map", str(made))
        require_map(made, options.kind, options.order is not None)
        if options.sixteen_bits:
            require_convertible(made, _kind_of(options.out) == ".psd")
        maps.append(made)
    return maps


def _fold(
    maps: List[Path], names: Tuple[str, ...], whole: Path, options: _Options, report: Progress
) -> None:
    """Makes a map of all tiles. The maps that were rendered stay as they are."""
    size = maps[0].stat().st_size
    for done, (source, name) in enumerate(zip(maps, names)):
        report(len(maps) + done, 2 * len(maps), f"merge {name}")
        (exports.FileCopyTo if done == 0 else _FORMATS[options.kind].fold)(source, whole)
        if whole.stat().st_size != size:  # the library does not report every full disk
            raise OSError(errno.ENOSPC, "the disk took only a part of the map", str(options.out))


def _finish(whole: Path, options: _Options) -> Tuple[Path, Optional[float]]:
    """Reorders, measures and converts the map. Returns where it is, and its scale."""
    if options.order is not None:
        for mode in _FORMATS[options.kind].orders[options.order]:
            _FORMATS[options.kind].swap(whole, mode)
    if options.kind != ".tif":
        return whole, None
    directory = tiff(whole)
    scale = exports.getScale(whole, directory.channels) if directory.bits == 32 else None
    if not options.sixteen_bits:
        return whole, scale
    converted = whole.with_name("converted" + options.out.suffix)
    exports.convertTIFF16(whole, directory.channels, converted)
    return converted, scale


def export_maps(
    mesh: StrPath,
    render: Render,
    out: StrPath,
    *,
    naming: int = 2,
    tiles: Optional[Tiles] = None,
    mask: bool = False,
    order: Optional[str] = None,
    bits: Optional[int] = None,
    progress: Union[Progress, bool, None] = None,
) -> ExportedMap:
    """Exports one map of all UV tiles of a mesh, with the caller's own renderer.

    The library writes a mesh per tile, `render` makes a map of each, and the library folds these
    maps into one: where that still has the colour of a tile's first pixel, it takes the tile's.

    All this happens in a new folder beside `out`, which is deleted at the end, also after an error
    or Ctrl-C. `out` is replaced only by a whole map. `mesh` and what `render` reads stay as they
    are.

    Parameters:
        mesh: path of the mesh, a Vemo file.
        render: is called for each tile, with the path of the tile's mesh, tile<name>.Vemo, and with
            the path where it has to write the tile's map, tile<name>.tif, .psd or .bmp; both are
            absolute. All maps have the same size in pixels, and each shows its tile where that is
            on the whole map. With 16 bits they are TIFF maps of 32-bit floats. What it raises ends
            the export.
        out: path of the map; its extension, .tif, .psd or .bmp, is the format.
        naming: how tiles are named: 0 `_u0_v0`, 1 `_u1_v1`, 2 `1001`, 3 `u0v0`.
        tiles: the tiles to export, as for tile_filter; None: all. In naming mode 2 only.
        mask: the tiles' meshes have a mask of the tile's vertices, in place of the tile's own UVs.
        order: the order of the map's colour channels: "rbg", "bgr" or "grb"; None: as rendered.
        bits: 16 converts a map of floats, 0 to 1, to 16 bits; None: as rendered.
        progress: is called before each step, with how many are done (int), how many there are in
            all (int) and what is next (str), and once at the end. True: a bar by tqdm, if that is
            installed.

    Raises Status for a call that fails; ValueError for options that contradict each other, for a
    mesh without tiles, and for maps that cannot be merged or converted; OSError for files; Busy if
    the library is in use, also by a Session of the same thread.
    """
    mesh, out = Path(mesh), Path(out)
    if not callable(render):
        raise TypeError(f"render must be a function, not {type(render).__name__}")
    _require(bits in (None, 16), f"bits is 16 or None, not {bits!r}")
    kind = ".tif" if bits else _kind_of(out)
    absolute = Path(os.path.abspath(out))  # `render` may change the current folder
    options = _Options(absolute, kind, naming, tiles, mask, order, bits is not None)
    _require_consistent(mesh, options)
    with claimed(alone=True), tempfile.TemporaryDirectory(
        prefix=".quillon-", dir=absolute.parent
    ) as working, _reports(progress) as report:
        folder = Path(working)
        names = _write_tiles(mesh, folder, options)
        maps = _render_tiles(render, folder, names, options, report)
        whole = folder / f"all{kind}"
        _fold(maps, names, whole, options, report)
        result, scale = _finish(whole, options)
        os.replace(result, absolute)
        report(2 * len(names), 2 * len(names), "done")
    return ExportedMap(out, names, scale)
