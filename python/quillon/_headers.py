"""What the exports do not check in a map, but leave as it is or damage with the status 0."""

import struct
from pathlib import Path
from typing import Dict, NamedTuple, Tuple

_HEAD_BYTES = 1000  # where the library looks for the directory of a TIFF
_CONVERTED_TAGS = (254, 256, 257, 258, 259, 262, 273, 277, 278, 279)


class Tiff(NamedTuple):
    """The directory of a TIFF map."""

    offset: int
    tags: Tuple[int, ...]
    values: Dict[int, int]  # of the tags; the first one where there are several
    channels: int

    @property
    def bits(self) -> int:
        return self.values.get(258, 0)


def _head(path: Path) -> bytes:
    with open(path, "rb") as file:
        return file.read(_HEAD_BYTES)


def _first_value(head: bytes, kind: int, count: int, value: int) -> int:
    if kind != 3:  # SHORT
        return value
    return int(struct.unpack_from("<H", head, value)[0]) if count > 2 else value & 0xFFFF


def tiff(path: Path) -> Tiff:
    """Raises ValueError if the library would find no directory."""
    head = _head(path)
    try:
        if head[:4] != b"II*\0":
            raise struct.error
        (offset,) = struct.unpack_from("<I", head, 4)
        (count,) = struct.unpack_from("<H", head, offset)
        entries = [struct.unpack_from("<HHII", head, offset + 2 + 12 * i) for i in range(count)]
        values = {tag: _first_value(head, *rest) for tag, *rest in entries}
    except struct.error:
        raise ValueError(
            f"{path.name}, as rendered, is no little-endian TIFF with its directory in the first "
            f"{_HEAD_BYTES} bytes"
        ) from None
    channels = next((entry[2] for entry in entries if entry[0] == 258), 1)
    return Tiff(offset, tuple(entry[0] for entry in entries), values, channels)


def _require(rule: bool, path: Path, sentence: str) -> None:
    if not rule:
        raise ValueError(f"{path.name}, as rendered, {sentence}")


def require_map(path: Path, kind: str, swaps: bool) -> None:
    """Raises ValueError for a map that cannot be merged or have its channels reordered.

    Parameters:
        kind: ".tif", ".psd" or ".bmp".
        swaps: whether the channels are to be reordered, too.
    """
    if kind == ".tif":
        _require_tiff(path, swaps)
    elif kind == ".bmp":
        _require_bmp(path, swaps)
    else:
        _require(_head(path)[:4] == b"8BPS", path, "is no PSD")


def _require_tiff(path: Path, swaps: bool) -> None:
    directory = tiff(path)
    starts, length = (directory.values.get(tag, 0) for tag in (273, 279))
    _require(
        starts < length, path, "is too small to be merged: its pixels start behind their own length"
    )
    _require(directory.bits in (8, 16, 32), path, "has not 8, 16 or 32 bits per sample")
    is_rgb = (directory.bits, directory.channels) == (8, 3)
    _require(is_rgb or not swaps, path, "has not 3 channels of 8 bits; no others can be reordered")


def _require_bmp(path: Path, swaps: bool) -> None:
    head = _head(path)
    _require(head[:2] == b"BM" and len(head) >= 54, path, "is no BMP")
    (height,) = struct.unpack_from("<i", head, 22)
    (bits,) = struct.unpack_from("<H", head, 28)
    _require(
        height >= 0, path, "has its top row first; only a BMP with the bottom row first is merged"
    )
    _require(bits == 24 or not swaps, path, "has not 24 bits per pixel; no others can be reordered")


def require_convertible(path: Path, to_psd: bool) -> None:
    """Raises ValueError for a TIFF map of which convertTIFF16 would make a damaged map."""
    directory = tiff(path)
    _require(directory.bits == 32, path, "has no 32-bit floats, which become 16 bits")
    if to_psd:
        square = directory.values.get(256) == directory.values.get(257)
        _require(square, path, "is not square, as a map must be that becomes a PSD of 16 bits")
        _require(directory.channels == 1, path, "has colours; a PSD of 16 bits is grey")
    else:
        tags = directory.tags[: len(_CONVERTED_TAGS)]
        _require(
            (directory.offset, tags) == (8, _CONVERTED_TAGS),
            path,
            f"cannot become a TIFF of 16 bits: its directory must be at byte 8 and start with the "
            f"tags {', '.join(map(str, _CONVERTED_TAGS))}",
        )
