"""Uses of the package for mypy: a comment marks each line that it must refuse."""

from pathlib import Path
from typing import Optional, Tuple

import quillon


def good(mesh: Path) -> Tuple[int, str, float, int]:
    counted = quillon.getUVTile(mesh, 2)
    count: int = counted.count
    last: str = counted.last
    scale: float = quillon.getScale("map.tif", 1)
    written: int = quillon.getUVs(mesh, 2, mesh.with_name("out.Vemo"))
    with quillon.Session(), quillon.tile_filter([1001, "1003-1005"]):
        for name in quillon.tile_names():
            last = name
    try:
        quillon.CreateFolder("maps")
    except quillon.NotWritten as error:
        scale = error.status
    return count, last, scale, written


def maps(mesh: str) -> Optional[float]:
    def render(tile: Path, out: Path) -> None:
        out.write_bytes(tile.read_bytes())

    made = quillon.export_maps(mesh, render, "out.tif", tiles="wanted.txt", progress=True)
    return made.scale


def bad(mesh: Path) -> None:
    quillon.getUVs(3, 2, "out.Vemo")  # type: ignore[arg-type]
    quillon.getScale("map.tif", "1")  # type: ignore[arg-type]
    quillon.getUVTile(mesh)  # type: ignore[call-arg]
    name: int = quillon.GetFile()  # type: ignore[assignment]
    quillon.export_maps(mesh, print, "out.tif", bits="16")  # type: ignore[arg-type]
    print(name)
