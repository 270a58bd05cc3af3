"""Moving, turning and scaling, which the language lacks: what is written has its new coordinates."""

from __future__ import annotations

import math
from typing import NamedTuple, Protocol, Self, TypeVar

from . import values
from .values import SceneError
from .vector import Point, Vec

# Lengths and right angles that differ by less than this share are the rounding of a few turns, not a choice.
TOLERANCE = 1e-9


class Transformable(Protocol):
    """Statements, groups and meshes."""

    def transformed(self, transform: Transform) -> Self: ...


T = TypeVar("T", bound=Transformable)


class Transform(NamedTuple):
    """Where the three axes of a thing and its origin go.

    Called with a statement, a group or a mesh it gives a copy in the new place: `move(0, 0, 2)(ball)`. Two of them
    make one with `@`; the right one comes first: `move(0, 0, 2) @ turn(z=30)` turns, then moves.
    """

    x: Vec
    y: Vec
    z: Vec
    origin: Vec

    def __call__(self, item: T) -> T:
        return item.transformed(self)

    def __matmul__(self, first: Transform) -> Transform:
        x, y, z = (self.direction(axis) for axis in first[:3])
        return Transform(x, y, z, self.point(first.origin))

    def point(self, point: Point) -> Vec:
        """Where a point goes."""
        return self.direction(point) + self.origin

    def direction(self, direction: Point) -> Vec:
        """Where the way between two points goes."""
        a, b, c = Vec.of(direction)
        return self.x * a + self.y * b + self.z * c

    def normal(self, normal: Point) -> Vec:
        """Where a direction square to a surface goes, of any length; on the same side of the surface."""
        # The cofactors of the matrix: its inverse, transposed, but for a factor.
        a, b, c = Vec.of(normal)
        square = self.y.cross(self.z) * a + self.z.cross(self.x) * b + self.x.cross(self.y) * c
        return square if self.volume() > 0 else -square

    def volume(self) -> float:
        """The factor of volumes, below 0 where left and right change places."""
        return self.x.cross(self.y).dot(self.z)

    def factor(self, word: str, rule: str) -> float:
        """The factor of all lengths; raises `SceneError` with the rule where it is not the same in all directions."""
        factors = [self.factor_across(word, axis, rule) for axis in (Vec(1, 0, 0), Vec(0, 1, 0), Vec(0, 0, 1))]
        return factors[0] if _alike(min(factors), max(factors)) else _uneven(word, rule)

    def factor_across(self, word: str, axis: Vec, rule: str, *, upright: bool = False) -> float:
        """The factor of all lengths square to `axis`; `upright` asks that the axis stays square to them."""
        first, second = (self.direction(side) for side in axis.across())
        straight = abs(first.dot(second)) <= TOLERANCE * abs(first) * abs(second)
        if upright:
            along = self.direction(axis)
            straight = straight and max(abs(along.dot(first)), abs(along.dot(second))) <= (
                TOLERANCE * abs(along) * abs(first))
        return abs(first) if straight and _alike(abs(first), abs(second)) else _uneven(word, rule)


def _alike(a: float, b: float) -> bool:
    return abs(a - b) <= TOLERANCE * max(a, b)


def _uneven(word: str, rule: str) -> float:
    raise SceneError(word, "", None, f"{rule}, so it cannot be scaled unevenly; a mesh can")


def move(x: float, y: float, z: float) -> Transform:
    """Moves by lengths along the three axes."""
    return Transform(Vec(1, 0, 0), Vec(0, 1, 0), Vec(0, 0, 1), values.vector("move", "x, y, z", (x, y, z)))


def scale(x: float, y: float | None = None, z: float | None = None) -> Transform:
    """Scales about the origin: alike in all directions with one factor, along the axes with three; none may be 0."""
    factors = (x, x, x) if y is None and z is None else (x, 1 if y is None else y, 1 if z is None else z)
    a, b, c = values.vector("scale", "x, y, z", factors)
    if not (a and b and c):
        raise SceneError("scale", "x, y, z", factors, "a factor of 0 leaves nothing")
    return Transform(Vec(a, 0, 0), Vec(0, b, 0), Vec(0, 0, c), Vec(0, 0, 0))


def turn(*, x: float = 0, y: float = 0, z: float = 0, axis: Point | None = None, angle: float = 0,
         about: Point = (0, 0, 0)) -> Transform:
    """Turns by degrees about the axes of the world, x first, then y, then z, or by `angle` about an `axis`.

    It turns by the right hand: `turn(z=90)` brings x to y. The axis goes through the point `about`.
    """
    if axis is None:
        turned = _turn(Vec(0, 0, 1), z) @ _turn(Vec(0, 1, 0), y) @ _turn(Vec(1, 0, 0), x)
    else:
        turned = _turn(values.direction("turn", "axis", axis, "an axis has a direction"), angle)
    centre = values.vector("turn", "about", about)
    return turned if not any(centre) else move(*centre) @ turned @ move(*-centre)


def look_at(position: Point, target: Point, *, up: Point = (0, 0, 1)) -> Transform:
    """Moves what stands at the origin and looks along y, with z up, to `position`, so that it looks at `target`."""
    origin = values.vector("look_at", "position", position)
    way = values.vector("look_at", "target", target) - origin
    if not any(way):
        raise SceneError("look_at", "target", target, "the target is not the position")
    ahead = way.unit()
    side = ahead.cross(values.direction("look_at", "up", up, "what points up has a direction"))
    if not abs(side) > TOLERANCE:
        raise SceneError("look_at", "up", up, "what points up is not along the view")
    right = side.unit()
    return Transform(right, ahead, right.cross(ahead), origin)


def _turn(axis: Vec, degrees: float) -> Transform:
    """By the formula of Rodrigues, with exact quarter turns."""
    angle = values.decimal("turn", "angle", degrees) % 360
    quarters = {0.0: (1.0, 0.0), 90.0: (0.0, 1.0), 180.0: (-1.0, 0.0), 270.0: (0.0, -1.0)}
    cos, sin = quarters.get(angle) or (math.cos(math.radians(angle)), math.sin(math.radians(angle)))
    unit = axis.unit()
    x, y, z = (side * cos + unit.cross(side) * sin + unit * (unit.dot(side) * (1 - cos))
               for side in (Vec(1, 0, 0), Vec(0, 1, 0), Vec(0, 0, 1)))
    return Transform(x, y, z, Vec(0, 0, 0))
