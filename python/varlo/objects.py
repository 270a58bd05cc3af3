"""The nine objects of the language; each takes the surface in front of it."""

from __future__ import annotations

from collections.abc import Sequence
from typing import TYPE_CHECKING

from . import values
from .statements import Statement, tidy, vector_text
from .values import SceneError
from .vector import Point

if TYPE_CHECKING:
    from .transform import Transform

SAME_ENDS = "base and cap cannot be the same point"
RADIUS_RULE = "radius cannot be null or negative"
SEEN_RULE = "direction square to it; with a length of 0 it is never seen"


class Object(Statement):
    """What has a surface and can be seen."""

    __slots__ = ()


class sphere(Object):
    """A ball: its middle `center` and its `radius`, above 0, in lengths."""

    __slots__ = ("center", "radius")
    word = "sphere"

    def __init__(self, *, center: Point, radius: float) -> None:
        super().__init__()
        self.center = values.vector("sphere", "center", center)
        self.radius = values.above("sphere", "radius", radius, "sphere radius must be greater than 0")

    def text(self) -> str:
        return tidy("sphere { center <%r %r %r>  radius %r }" % (*self.center, self.radius))

    def transformed(self, transform: Transform) -> sphere:
        factor = transform.factor("sphere", "a sphere has one radius")
        return self._again(center=transform.point(self.center), radius=self.radius * factor)


class plane(Object):
    """An endless plane, seen only from the side to which its `normal` points, at a `distance` from the origin along it.

    `normal`: a direction of any length but 0. `distance`: a length, which may be negative.
    """

    __slots__ = ("normal", "distance")
    word = "plane"

    def __init__(self, *, normal: Point, distance: float) -> None:
        super().__init__()
        self.normal = values.direction("plane", "normal", normal, "plane normal cannot be <0 0 0>")
        self.distance = values.decimal("plane", "distance", distance)

    def text(self) -> str:
        return tidy("plane { normal <%r %r %r>  distance %r }" % (*self.normal, self.distance))

    def transformed(self, transform: Transform) -> plane:
        normal = transform.normal(self.normal).unit()
        return self._again(normal=normal, distance=normal.dot(transform.point(self.normal.unit() * self.distance)))


class _Round(Object):
    """A cylinder or a cone: what turns about the line from `base` to `cap`."""

    __slots__ = ("base", "cap")

    def __init__(self, base: Point, cap: Point) -> None:
        super().__init__()
        self.base = values.vector(self.word, "base", base)
        self.cap = values.vector(self.word, "cap", cap)

    def _check_ends(self) -> None:
        if self.base == self.cap:
            raise SceneError(self.word, "cap", tuple(self.cap), SAME_ENDS)

    def _moved(self, transform: Transform) -> tuple[dict[str, object], float]:
        """The ends in their new places, and the factor of the radii."""
        rule = f"the section of a {self.word} is a circle square to its axis"
        factor = transform.factor_across(self.word, self.cap - self.base, rule, upright=True)
        return {"base": transform.point(self.base), "cap": transform.point(self.cap)}, factor


class cylinder(_Round):
    """A wall without ends, from the middle `base` of one end to that of the other, `cap`, with a `radius` above 0."""

    __slots__ = ("radius",)
    word = "cylinder"

    def __init__(self, *, base: Point, cap: Point, radius: float) -> None:
        super().__init__(base, cap)
        self.radius = values.above("cylinder", "radius", radius, RADIUS_RULE)
        self._check_ends()

    def text(self) -> str:
        return tidy("cylinder { base <%r %r %r>  cap <%r %r %r>  radius %r }"
                    % (*self.base, *self.cap, self.radius))

    def transformed(self, transform: Transform) -> cylinder:
        ends, factor = self._moved(transform)
        return self._again(**ends, radius=self.radius * factor)


class cone(_Round):
    """A cone or a part of one, without ends: `base_radius` at `base`, `cap_radius` at `cap`; one of them may be 0."""

    __slots__ = ("base_radius", "cap_radius")
    word = "cone"

    def __init__(self, *, base: Point, cap: Point, base_radius: float, cap_radius: float) -> None:
        super().__init__(base, cap)
        self.base_radius = values.decimal("cone", "base_radius", base_radius)
        self.cap_radius = values.decimal("cone", "cap_radius", cap_radius)
        if self.base_radius == 0 and self.cap_radius == 0:
            rule = "base radius and cap radius cannot be both null"
            raise SceneError("cone", "base_radius, cap_radius", (base_radius, cap_radius), rule)
        for argument, radius in (("base_radius", self.base_radius), ("cap_radius", self.cap_radius)):
            if radius < 0:
                raise SceneError("cone", argument, radius, "base radius or cap radius cannot be negative")
        self._check_ends()

    def text(self) -> str:
        return tidy("cone { base <%r %r %r>  cap <%r %r %r>  base_radius %r  cap_radius %r }"
                    % (*self.base, *self.cap, self.base_radius, self.cap_radius))

    def transformed(self, transform: Transform) -> cone:
        ends, factor = self._moved(transform)
        return self._again(**ends, base_radius=self.base_radius * factor, cap_radius=self.cap_radius * factor)


class disc(Object):
    """A flat circle: its middle `center`, a direction `normal` square to it, and its `radius`, above 0."""

    __slots__ = ("center", "normal", "radius")
    word = "disc"

    def __init__(self, *, center: Point, normal: Point, radius: float) -> None:
        super().__init__()
        self.center = values.vector("disc", "center", center)
        self.normal = values.direction("disc", "normal", normal, SEEN_RULE)
        self.radius = values.above("disc", "radius", radius, RADIUS_RULE)

    def text(self) -> str:
        return tidy("disc { center <%r %r %r>  normal <%r %r %r>  radius %r }"
                    % (*self.center, *self.normal, self.radius))

    def transformed(self, transform: Transform) -> disc:
        factor = transform.factor_across("disc", self.normal, "a disc has one radius")
        return self._again(center=transform.point(self.center), normal=transform.normal(self.normal).unit(),
                           radius=self.radius * factor)


class ring(Object):
    """A disc with a hole: `internal_radius` and `external_radius`, above 0 and not equal, in any order."""

    __slots__ = ("center", "normal", "internal_radius", "external_radius")
    word = "ring"

    def __init__(self, *, center: Point, normal: Point, internal_radius: float, external_radius: float) -> None:
        super().__init__()
        rule = "external and internal radius cannot be null or negative"
        self.center = values.vector("ring", "center", center)
        self.normal = values.direction("ring", "normal", normal, SEEN_RULE)
        self.internal_radius = values.above("ring", "internal_radius", internal_radius, rule)
        self.external_radius = values.above("ring", "external_radius", external_radius, rule)
        if self.internal_radius == self.external_radius:
            raise SceneError("ring", "external_radius", external_radius, "both radius are equal")

    def text(self) -> str:
        return tidy("ring { center <%r %r %r>  normal <%r %r %r>  internal_radius %r  external_radius %r }"
                    % (*self.center, *self.normal, self.internal_radius, self.external_radius))

    def transformed(self, transform: Transform) -> ring:
        factor = transform.factor_across("ring", self.normal, "a ring has two radii")
        return self._again(center=transform.point(self.center), normal=transform.normal(self.normal).unit(),
                           internal_radius=self.internal_radius * factor,
                           external_radius=self.external_radius * factor)


class triangle(Object):
    """A flat triangle: three corners `vertex`."""

    __slots__ = ("vertex",)
    word = "triangle"

    def __init__(self, *, vertex: Sequence[Point]) -> None:
        super().__init__()
        self.vertex = values.vectors("triangle", "vertex", vertex, 3, "Too few vertices in triangle structure",
                                     "Too many vertices in triangle structure")

    def text(self) -> str:
        a, b, c = self.vertex
        return tidy("triangle { vertex <%r %r %r>  vertex <%r %r %r>  vertex <%r %r %r> }" % (*a, *b, *c))

    def transformed(self, transform: Transform) -> triangle:
        return self._again(vertex=[transform.point(corner) for corner in self.vertex])


class patch(Object):
    """A triangle that is shaded as if it were curved: three corners `vertex`, and a `normal` for each.

    A normal is a direction square to the surface there. varlo turns all three to the same side of the face, so a
    normal that leans more than 90 degrees away from the others comes out turned round.
    """

    __slots__ = ("vertex", "normal")
    word = "patch"

    def __init__(self, *, vertex: Sequence[Point], normal: Sequence[Point]) -> None:
        super().__init__()
        self.vertex = values.vectors("patch", "vertex", vertex, 3, "Too few vertices in patch structure",
                                     "Too many vertices in patch structure")
        self.normal = values.vectors("patch", "normal", normal, 3, "Too few normals in patch structure",
                                     "Too many normals in patch structure")

    def text(self) -> str:
        corners = [part for pair in zip(self.vertex, self.normal, strict=True) for vec in pair for part in vec]
        return tidy("patch { %s }" % ("vertex <%r %r %r> normal <%r %r %r>  " * 3 % tuple(corners)).rstrip())

    def transformed(self, transform: Transform) -> patch:
        return self._again(vertex=[transform.point(corner) for corner in self.vertex],
                           normal=[transform.normal(normal) for normal in self.normal])


class polygon(Object):
    """A flat shape with four corners `vertex` or more, in a row round it.

    It may be concave, and where the outline crosses itself a part that it encloses twice is a hole. The first three
    corners give the plane; the others have to lie in it.
    """

    __slots__ = ("vertex",)
    word = "polygon"

    def __init__(self, *, vertex: Sequence[Point]) -> None:
        super().__init__()
        corners = list(vertex)
        if len(corners) < 4:
            raise SceneError("polygon", "vertex", corners, "valid number of vertices expected: at least 4")
        self.vertex = values.vectors("polygon", "vertex", corners, len(corners), "", "")

    def text(self) -> str:
        corners = "  ".join("vertex " + vector_text(corner) for corner in self.vertex)
        return tidy(f"polygon {{ {len(self.vertex)}  {corners} }}")

    def transformed(self, transform: Transform) -> polygon:
        return self._again(vertex=[transform.point(corner) for corner in self.vertex])
