"""The picture that a render leaves: a file, an array, and what a notebook shows."""

from __future__ import annotations

import struct
import zlib
from pathlib import Path
from typing import Any

from .arrays import numpy
from .run import VarloError


class Picture:
    """A picture file, `path`."""

    def __init__(self, path: Path) -> None:
        self.path = path

    def __repr__(self) -> str:
        return f"Picture({str(self.path)!r})"

    def __fspath__(self) -> str:
        return str(self.path)

    def _repr_png_(self) -> bytes | None:
        return self._bytes(".png")

    def _repr_jpeg_(self) -> bytes | None:
        return self._bytes(".jpg")

    def _bytes(self, ending: str) -> bytes | None:
        return self.path.read_bytes() if self.path.suffix == ending else None

    def array(self) -> Any:
        """The colours as a NumPy array of bytes: height, width, and red, green and blue; row 0 is the top.

        Reads PNG and PPM pictures; raises `VarloError` for others and without NumPy.
        """
        np = numpy()
        if np is None:
            raise VarloError("Picture.array needs NumPy: apt-get install python3-numpy, or pip install numpy")
        data = self.path.read_bytes()
        if data.startswith(b"P6"):
            _, across, down, _, rest = data.split(None, 4)
            return np.frombuffer(rest, np.uint8).reshape(int(down), int(across), 3)
        if not data.startswith(b"\x89PNG"):
            raise VarloError(f"{self.path}: Picture.array reads PNG and PPM pictures")
        width, height = struct.unpack(">II", data[16:24])
        rows = np.frombuffer(zlib.decompress(_chunks(data)), np.uint8).reshape(height, 1 + 3 * width)
        return _unfiltered(rows[:, 1:].reshape(height, width, 3), rows[:, 0])


def _chunks(data: bytes) -> bytes:
    """What the data chunks of a PNG file hold, joined."""
    found, at = [], 8
    while at < len(data):
        (length,) = struct.unpack(">I", data[at:at + 4])
        if data[at + 4:at + 8] == b"IDAT":
            found.append(data[at + 8:at + 8 + length])
        at += length + 12
    return b"".join(found)


def _unfiltered(coded: Any, filters: Any) -> Any:
    """Undoes the filters of PNG rows (ISO/IEC 15948, 9.2).

    A byte needs those to the left and above, so all pixels with the same row + column are done at once.
    """
    np = numpy()
    height, width, _ = coded.shape
    pixels = np.zeros((height + 1, width + 1, 3), np.int32)
    for diagonal in range(height + width - 1):
        row = np.arange(max(0, diagonal - width + 1), min(height, diagonal + 1))
        column = diagonal - row
        left, above, corner = pixels[row + 1, column], pixels[row, column + 1], pixels[row, column]
        guess = left + above - corner
        near = [abs(guess - other) for other in (left, above, corner)]
        paeth = np.where((near[0] <= near[1]) & (near[0] <= near[2]), left,
                         np.where(near[1] <= near[2], above, corner))
        kinds = [np.zeros_like(left), left, above, (left + above) // 2, paeth]
        pixels[row + 1, column + 1] = (coded[row, column] + np.choose(filters[row, None], kinds)) & 255
    return pixels[1:, 1:].astype(np.uint8)
