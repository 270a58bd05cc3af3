"""Many spheres at once, from lists or from NumPy arrays."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from typing import TYPE_CHECKING, Any, SupportsFloat, SupportsIndex

from . import values
from .arrays import numpy
from .many import Many
from .meshes import numbers_of, points_of
from .shading import surface
from .values import SceneError
from .vector import Point

if TYPE_CHECKING:
    from .transform import Transform

_FORM = "sphere { center <%.9g %.9g %.9g>  radius %.9g }\n"


class Spheres(Many):
    """Spheres; the function `spheres` checks and makes them. `rows` has x, y, z and the radius of each."""

    __slots__ = ("rows",)

    def __init__(self, rows: Any, surfaces: Sequence[surface], which: Any) -> None:
        super().__init__(surfaces, which)
        self.rows = rows

    def __len__(self) -> int:
        return len(self.rows)

    def transformed(self, transform: Transform) -> Spheres:
        """The spheres in their new places; raises `SceneError` where they are scaled unevenly."""
        factor = transform.factor("spheres", "a sphere has one radius")
        if len(self.rows) and not min(row[3] for row in self.rows) * factor > 0:
            raise SceneError("spheres", "radius", 0, "sphere radius must be greater than 0")
        np = numpy()
        if np is None:
            moved: Any = [(*transform.point(row[:3]), row[3] * factor) for row in self.rows]
        else:
            places = self.rows[:, :3] @ np.array(transform[:3]) + np.array(transform.origin)
            moved = np.column_stack([places, self.rows[:, 3] * factor])
        return self.like(Spheres(moved, self.surfaces, self.which))

    def text(self, block: Any) -> tuple[int, str]:
        chosen = range(len(self.rows))[block] if isinstance(block, slice) else block
        return len(chosen), "".join(_FORM % self.rows[row] for row in chosen)

    def array_text(self, block: Any) -> tuple[int, str]:
        chosen = self.rows[block]
        return len(chosen), _FORM * len(chosen) % tuple(chosen.ravel().tolist())


def spheres(
    centers: Iterable[Point],
    radius: SupportsFloat | Iterable[SupportsFloat],
    *,
    surfaces: Sequence[surface] = (),
    which: Iterable[SupportsIndex] | None = None,
) -> Spheres:
    """Makes many spheres: in a fifth of the time of as many `sphere`s, with nine digits of each number.

    `centers`: their middles. `radius`: one for all, or one for each, above 0. `surfaces` and `which`: surfaces, and
    for each sphere the number of the one that it has; left out, they take the surface in front of them.
    """
    places = points_of("spheres", "centers", centers)
    radii = radius if isinstance(radius, Iterable) else [radius] * len(places)
    checked = [values.above("spheres", "radius", one, "sphere radius must be greater than 0") for one in radii]
    if len(checked) != len(places):
        raise SceneError("spheres", "radius", len(checked), f"one for all, or one for each of {len(places)} spheres")
    chosen = numbers_of("spheres", which, surfaces, range(len(places))) if surfaces else None
    np = numpy()
    if np is None:
        return Spheres([(*place, one) for place, one in zip(places, checked, strict=True)], surfaces, chosen)
    return Spheres(np.column_stack([places, checked]), surfaces, chosen)
