"""Points and directions with arithmetic."""

from __future__ import annotations

import math
from collections.abc import Iterable
from typing import NamedTuple, SupportsFloat

#: Whatever gives three numbers: a `Vec`, a tuple, a list, a row of a NumPy array.
Point = Iterable[SupportsFloat]


class Vec(NamedTuple):
    """Three numbers x, y and z: a point in lengths of the world, or a direction of any length.

    It adds, subtracts, scales and compares as a vector and is a tuple otherwise, so it goes wherever a point goes.
    """

    x: float
    y: float
    z: float

    @classmethod
    def of(cls, point: Point) -> Vec:
        """Makes a vector of three numbers; raises ValueError or TypeError for anything else."""
        x, y, z = point
        return cls(float(x), float(y), float(z))

    def __add__(self, other: Point) -> Vec:  # type: ignore[override]
        x, y, z = other
        return Vec(self.x + float(x), self.y + float(y), self.z + float(z))

    def __radd__(self, other: Point) -> Vec:
        return self + other

    def __sub__(self, other: Point) -> Vec:
        x, y, z = other
        return Vec(self.x - float(x), self.y - float(y), self.z - float(z))

    def __rsub__(self, other: Point) -> Vec:
        return Vec.of(other) - self

    def __mul__(self, factor: float) -> Vec:  # type: ignore[override]
        return Vec(self.x * factor, self.y * factor, self.z * factor)

    def __rmul__(self, factor: float) -> Vec:  # type: ignore[override]
        return self * factor

    def __truediv__(self, divisor: float) -> Vec:
        return Vec(self.x / divisor, self.y / divisor, self.z / divisor)

    def __neg__(self) -> Vec:
        return Vec(-self.x, -self.y, -self.z)

    def __abs__(self) -> float:
        return math.hypot(self.x, self.y, self.z)

    def dot(self, other: Point) -> float:
        """The scalar product."""
        x, y, z = other
        return self.x * float(x) + self.y * float(y) + self.z * float(z)

    def cross(self, other: Point) -> Vec:
        """The vector product: square to both, by the right hand."""
        x, y, z = Vec.of(other)
        return Vec(self.y * z - self.z * y, self.z * x - self.x * z, self.x * y - self.y * x)

    def unit(self) -> Vec:
        """The same direction with a length of 1; raises ValueError for a length of 0."""
        # The largest part goes first: squares of what is very long or very short would leave the range.
        largest = max(abs(self.x), abs(self.y), abs(self.z))
        if largest == 0.0:
            raise ValueError("a vector of length 0 has no direction")
        part = self / largest
        return part / abs(part)

    def across(self) -> tuple[Vec, Vec]:
        """Two unit vectors square to this one and to each other: self, first, second turn by the right hand."""
        axis = self.unit()
        # The axis of the world that is farthest from this one.
        other = min((Vec(1, 0, 0), Vec(0, 1, 0), Vec(0, 0, 1)), key=lambda candidate: abs(axis.dot(candidate)))
        first = other.cross(axis).unit()
        return first, axis.cross(first)

    def mix(self, other: Point, share: float) -> Vec:
        """The point on the way to `other`: this one at a share of 0, the other one at 1."""
        return self + (Vec.of(other) - self) * share
