"""Curved shapes as smooth meshes: height fields, tubes along curves, surfaces of revolution."""

from __future__ import annotations

import math
from collections.abc import Callable, Iterable, Iterator, Sequence
from typing import Any

from . import values
from .arrays import numpy
from .mesh import Mesh
from .meshes import mesh
from .shading import surface
from .values import SceneError
from .vector import Point, Vec


def height_field(
    heights: Any,
    *,
    x: tuple[float, float],
    y: tuple[float, float],
    smooth: float = 180,
    surfaces: Sequence[surface] = (),
    which: Any = None,
) -> Mesh:
    """A surface over a grid: two triangles for each of its cells.

    `heights`: rows of heights, each from the least x to the most, from the least y to the most; lists or a NumPy
    array. `x`, `y`: where the grid begins and ends. `smooth`: the smoothing angle in degrees. `surfaces` and
    `which`: surfaces, and the number of one for each cell, in rows as the heights, one shorter both ways.
    """
    rows, columns = len(heights), len(heights[0]) if len(heights) else 0
    if rows < 2 or columns < 2 or any(len(row) != columns for row in heights):
        rule = "two rows or more of two heights or more, all alike"
        raise SceneError("height_field", "heights", (rows, columns), rule)
    np = numpy()
    if np is None:
        across = [x[0] + (x[1] - x[0]) * at / (columns - 1) for at in range(columns)]
        along = [y[0] + (y[1] - y[0]) * at / (rows - 1) for at in range(rows)]
        vertices: Any = [(u, v, heights[row][at]) for row, v in enumerate(along) for at, u in enumerate(across)]
        cells = None if which is None else [number for row in which for number in row]
    else:
        grid = np.meshgrid(np.linspace(*x, columns), np.linspace(*y, rows))
        vertices = np.stack([*grid, np.asarray(heights, dtype=float)], axis=-1).reshape(-1, 3)
        cells = None if which is None else np.asarray(which).ravel().tolist()
    return mesh(vertices, grid_faces(rows, columns), smooth=smooth, surfaces=surfaces, which=cells)


def grid_faces(rows: int, columns: int, *, around: bool = False) -> Any:
    """The faces of a grid of vertices that stand row by row, four corners each.

    `around` joins the last column to the first. Where columns go along x and rows along y, the faces look up.
    """
    np = numpy()
    wide = columns if around else columns - 1
    if np is None:
        return [(row * columns + at, row * columns + (at + 1) % columns, (row + 1) * columns + (at + 1) % columns,
                 (row + 1) * columns + at) for row in range(rows - 1) for at in range(wide)]
    first = (np.arange(rows - 1) * columns)[:, None]
    at = np.arange(wide)
    after = (at + 1) % columns
    return np.stack([first + at, first + after, first + columns + after, first + columns + at], axis=-1).reshape(-1, 4)


def tube(
    curve: Iterable[Point],
    radius: float | Sequence[float] | Callable[[float], float],
    *,
    sides: int = 24,
    closed: bool = False,
    surfaces: Sequence[surface] = (),
    which: Sequence[int] | None = None,
) -> Mesh:
    """A smooth round tube along a curve, with flat ends.

    `curve`: its points, two or more, none twice in a row. `radius`: one length, one for each point, or a function of
    the way from 0 at the begin to 1 at the end; above 0. `sides`: of its section, 3 or more. `closed`: joins the
    end to the begin. `surfaces` and `which`: surfaces, and the number of one for each piece between two points.
    """
    points = [values.vector("tube", f"curve[{at}]", point) for at, point in enumerate(curve)]
    if len(points) < 2 or sides < 3:
        raise SceneError("tube", "curve, sides", (len(points), sides), "two points or more, three sides or more")
    last = len(points) if closed else len(points) - 1
    radii = [radius(at / last) if callable(radius) else radius if isinstance(radius, (int, float)) else radius[at]
             for at in range(len(points))]
    for length in radii:
        values.above("tube", "radius", length, "a radius is above 0")
    vertices = [place + (across * math.cos(angle) + up * math.sin(angle)) * length
                for place, length, (across, up) in zip(points, radii, _frames(points, closed), strict=True)
                for angle in (2 * math.pi * at / sides for at in range(sides))]
    faces = [tuple(face) for face in grid_faces(len(points), sides, around=True)]
    if closed:
        end = len(vertices) - sides
        faces += [(end + at, end + (at + 1) % sides, (at + 1) % sides, at) for at in range(sides)]
    pieces = None if which is None else [number for number in which for _ in range(sides)]
    if not closed:  # the ends have vertices of their own, so that no normal is shared across the edge
        for begin, order, number in ((0, range(sides - 1, -1, -1), 0), (len(points) * sides - sides, range(sides), -1)):
            faces.append(tuple(len(vertices) + at for at in range(sides)))
            vertices += [vertices[begin + at] for at in order]
            if pieces is not None and which is not None:
                pieces.append(which[number])
    return mesh(vertices, faces, smooth=80, surfaces=surfaces, which=pieces)


def _frames(points: Sequence[Vec], closed: bool) -> Iterator[tuple[Vec, Vec]]:
    """Two directions square to the curve at each point, which turn about it no more than they must.

    By two reflections from point to point (W. Wang and others, Computation of Rotation Minimizing Frames, 2008). A
    closed curve comes back with a twist, which is spread over its length.
    """
    count = len(points)
    ways = []
    for at in range(count):
        before = points[at - 1] if at or closed else points[at]
        after = points[(at + 1) % count] if at + 1 < count or closed else points[at]
        if after == points[at] and before == points[at]:
            raise SceneError("tube", "curve", points[at], "no point stands twice in a row")
        way = after - before
        ways.append(way.unit() if any(way) else (points[at] - before).unit())
    frames = [ways[0].across()[0]]
    for at in range(count if closed else count - 1):
        step = points[(at + 1) % count] - points[at]
        if not any(step):
            raise SceneError("tube", "curve", points[at], "no point stands twice in a row")
        side, way = (vector - step * (2 * step.dot(vector) / step.dot(step)) for vector in (frames[at], ways[at]))
        turn = ways[(at + 1) % count] - way
        length = turn.dot(turn)
        side = side - turn * (2 * turn.dot(side) / length) if length > 1e-20 else side
        frames.append((side - ways[(at + 1) % count] * side.dot(ways[(at + 1) % count])).unit())
    twist = 0.0
    if closed:
        twist = math.atan2(frames[0].cross(frames[-1]).dot(ways[0]), frames[0].dot(frames[-1]))
    for at in range(count):
        up = ways[at].cross(frames[at])
        angle = -twist * at / count
        yield frames[at] * math.cos(angle) + up * math.sin(angle), up * math.cos(angle) - frames[at] * math.sin(angle)


def revolve(
    profile: Iterable[Sequence[float]],
    *,
    sides: int = 72,
    angle: float = 360,
    smooth: float = 35,
    surfaces: Sequence[surface] = (),
    which: Sequence[int] | None = None,
) -> Mesh:
    """A surface of revolution about the z axis, as a smooth mesh; `lathe` makes exact objects of straight profiles.

    `profile`: points of radius and height. `sides`: steps of a whole turn. `angle`: how far it is turned from x to
    y, in degrees. `smooth`: profiles that bend more than this angle keep an edge. `surfaces` and `which`: surfaces,
    and the number of one for each piece between two points of the profile.
    """
    points = [(values.decimal("revolve", "radius", radius), values.decimal("revolve", "height", height))
              for radius, height in profile]
    if len(points) < 2 or not 0 < angle <= 360:
        raise SceneError("revolve", "profile, angle", (len(points), angle), "two points or more, and 0 to 360 degrees")
    least = 1e-9 * max(abs(radius) for radius, _ in points)  # sin(pi) is not quite 0
    points = [(radius if abs(radius) > least else 0.0, height) for radius, height in points]
    whole = angle == 360
    steps = max(3, math.ceil(sides * angle / 360))
    turns = [math.radians(angle * at / steps) for at in range(steps if whole else steps + 1)]
    circle = [(math.cos(turn), math.sin(turn)) for turn in turns]
    vertices = [(radius * cos, radius * sin, height) for radius, height in points for cos, sin in circle]
    wide = len(turns) if whole else len(turns) - 1
    faces, pieces = [], []
    for at, cell in enumerate(grid_faces(len(points), len(turns), around=whole)):
        # On the axis, one vertex stands for all: the surface is round there, and the faces have three corners.
        faces.append(list(dict.fromkeys(
            int(corner) - int(corner) % len(turns) * (points[corner // len(turns)][0] == 0) for corner in cell)))
        pieces.append(0 if which is None else which[at // wide])
    kept = [at for at, face in enumerate(faces) if len(face) > 2]
    return mesh(vertices, [faces[at] for at in kept], smooth=smooth, surfaces=surfaces,
                which=None if which is None else [pieces[at] for at in kept])
