"""Shapes that the language lacks, as groups of exact objects: boxes and what comes from a lathe."""

from __future__ import annotations

from collections.abc import Iterable, Sequence

from . import values
from .objects import cone, cylinder, disc, polygon, ring
from .statements import Statement
from .values import SceneError
from .vector import Point, Vec
from .writer import Group, group


def box(corner: Point, opposite: Point) -> Group:
    """A box along the axes with two opposite corners, closed; flat where two coordinates are equal."""
    a, b = values.vector("box", "corner", corner), values.vector("box", "opposite", opposite)

    def side(axis: int, at: float) -> polygon:
        first, second = (other for other in range(3) if other != axis)
        corners = []
        for u, v in ((a[first], a[second]), (b[first], a[second]), (b[first], b[second]), (a[first], b[second])):
            place = [at, at, at]
            place[first], place[second] = u, v
            corners.append(Vec.of(place))
        return polygon(vertex=corners)
    return group(*(side(axis, at) for axis in range(3) for at in {a[axis], b[axis]}))


def lathe(profile: Iterable[Sequence[float]]) -> Group:
    """What a profile leaves when it is turned about the z axis: cylinders, cones, discs and rings, all exact.

    `profile`: points of radius and height, joined by straight lines, from the bottom to the top for instance; a
    radius is 0 or above. The ends are open unless the profile begins and ends at a radius of 0.
    """
    points = [(values.decimal("lathe", "radius", radius), values.decimal("lathe", "height", height))
              for radius, height in profile]
    for radius, _ in points:
        if radius < 0:
            raise SceneError("lathe", "radius", radius, "a radius is 0 or above")
    pieces: list[Statement] = []
    up = Vec(0, 0, 1)
    for (r0, z0), (r1, z1) in zip(points, points[1:], strict=False):
        base, cap = up * z0, up * z1
        if z0 == z1:
            if r0 != r1 and min(r0, r1) > 0:
                pieces.append(ring(center=base, normal=up, internal_radius=r0, external_radius=r1))
            elif r0 != r1:
                pieces.append(disc(center=base, normal=up, radius=max(r0, r1)))
        elif r0 == r1 > 0:
            pieces.append(cylinder(base=base, cap=cap, radius=r0))
        elif r0 != r1:
            pieces.append(cone(base=base, cap=cap, base_radius=r0, cap_radius=r1))
    return group(*pieces)
