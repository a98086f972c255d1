"""What the exports do not check in a map: they would leave it as it is or damage it, with status 0."""

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

    @property
    def is_mergeable(self) -> bool:
        """Whether the pixels start below their own length."""
        return self.values.get(273, 0) < self.values.get(279, 0)

    @property
    def is_convertible(self) -> bool:
        """Whether convertTIFF16 makes a valid TIFF of it."""
        return self.offset == 8 and self.tags[: len(_CONVERTED_TAGS)] == _CONVERTED_TAGS

    @property
    def is_square(self) -> bool:
        return self.values.get(256) == self.values.get(257)


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
            f"{path} is no little-endian TIFF with its directory in the first {_HEAD_BYTES} bytes"
        ) from None
    channels = next((entry[2] for entry in entries if entry[0] == 258), 1)
    return Tiff(offset, tuple(entry[0] for entry in entries), values, channels)


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
    elif _head(path)[:4] != b"8BPS":
        raise ValueError(f"{path} is no PSD")


def _require_tiff(path: Path, swaps: bool) -> None:
    directory = tiff(path)
    if not directory.is_mergeable:
        raise ValueError(
            f"{path} is too small to be merged: its pixels start behind their own length"
        )
    if swaps and (directory.bits, directory.channels) != (8, 3):
        raise ValueError(f"{path} has not three channels of 8 bits, which alone can be reordered")


def _require_bmp(path: Path, swaps: bool) -> None:
    head = _head(path)
    if head[:2] != b"BM" or len(head) < 54:
        raise ValueError(f"{path} is no BMP")
    (height,) = struct.unpack_from("<i", head, 22)
    (bits,) = struct.unpack_from("<H", head, 28)
    if height < 0:
        raise ValueError(
            f"{path} has its top row first; a BMP that is merged has its bottom row first"
        )
    if swaps and bits != 24:
        raise ValueError(f"{path} has not 24 bits per pixel, which alone can be reordered")
