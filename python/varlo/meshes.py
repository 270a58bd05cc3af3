"""Makes meshes of what users have: rows of numbers in lists or arrays, faces with any number of corners."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from typing import Any, SupportsIndex

from . import normals as by_angle
from . import values
from .arrays import numpy
from .mesh import Mesh
from .shading import surface
from .values import SceneError
from .vector import Point


def mesh(
    vertices: Iterable[Point],
    faces: Iterable[Iterable[SupportsIndex]],
    *,
    smooth: float = 0,
    normals: Iterable[Any] | None = None,
    surfaces: Sequence[surface] = (),
    which: Iterable[SupportsIndex] | None = None,
) -> Mesh:
    """Makes a mesh of vertices and faces.

    `vertices`: points. `faces`: the numbers of their corners, from 0; one of more than three corners is cut into
    triangles from its first corner, so it has to be convex. `smooth`: the angle in degrees, 0 to 180, up to which
    neighbouring faces are shaded as one curved surface; 0 leaves all flat. `normals`, in its place: a direction for
    each vertex, or three for each face, one for each corner, if all faces are triangles. `surfaces` and `which`:
    surfaces, and for each face the number of the one that it has; left out, the mesh takes the surface in front.

    Raises `SceneError` for numbers that are not finite, for corners that are not there, and for rows that are missing.
    """
    points = points_of("mesh", "vertices", vertices)
    triangles, source = _triangles(faces)
    _check_range("mesh", "faces", triangles, len(points))
    if not 0 <= smooth <= 180:
        raise SceneError("mesh", "smooth", smooth, "an angle from 0 to 180 degrees")
    corners: Any = None
    if normals is not None:
        corners = _given(normals, triangles, len(points))
    elif smooth > 0:
        corners = (by_angle.smooth if numpy() is None else by_angle.smooth_array)(points, triangles, smooth)
    return Mesh(points, triangles, corners, surfaces, numbers_of("mesh", which, surfaces, source) if surfaces else None)


def points_of(statement: str, argument: str, rows: Iterable[Any]) -> Any:
    """Checks points: an array with three columns, or without NumPy a list of vectors."""
    np = numpy()
    if np is None:
        return [values.vector(statement, f"{argument}[{at}]", row) for at, row in enumerate(rows)]
    try:
        array = np.asarray(rows if isinstance(rows, np.ndarray) else list(rows), dtype=float)
    except (TypeError, ValueError):
        array = np.zeros(1)
    if array.size == 0:
        return array.reshape(0, 3)
    if array.ndim != 2 or array.shape[1] != 3:
        raise SceneError(statement, argument, rows, "three decimals, x, y and z, for each")
    if not np.isfinite(array).all():
        row = int(np.argmin(np.isfinite(array).all(axis=1)))
        raise SceneError(statement, f"{argument}[{row}]", array[row].tolist(), "a vector is three decimals, x, y and z")
    return array


def _triangles(faces: Iterable[Iterable[SupportsIndex]]) -> tuple[Any, Any]:
    """The corners of each triangle, and the number of the face that it comes from."""
    np = numpy()
    if np is not None and isinstance(faces, np.ndarray) and faces.ndim == 2 and faces.shape[1] >= 3:
        if faces.dtype.kind not in "iu":
            raise SceneError("mesh", "faces", faces, "whole numbers")
        fan = faces.shape[1] - 2
        cut = np.stack([faces[:, [0, at + 1, at + 2]] for at in range(fan)], axis=1)
        return cut.reshape(-1, 3).astype(np.int64), np.repeat(np.arange(len(faces)), fan)
    triangles, source = [], []
    for row, face in enumerate(faces):
        try:
            corners = [int(corner.__index__()) for corner in face]
        except (AttributeError, TypeError):
            raise SceneError("mesh", f"faces[{row}]", face, "whole numbers") from None
        if len(corners) < 3:
            raise SceneError("mesh", f"faces[{row}]", corners, "at least three corners")
        for b, c in zip(corners[1:], corners[2:], strict=False):
            triangles.append((corners[0], b, c))
            source.append(row)
    if np is None:
        return triangles, source
    return np.array(triangles, dtype=np.int64).reshape(-1, 3), np.array(source, dtype=np.int64)


def _check_range(statement: str, argument: str, rows: Any, limit: int) -> None:
    if not len(rows):
        return
    least: int = min(map(min, rows)) if isinstance(rows, list) else int(rows.min())
    most: int = max(map(max, rows)) if isinstance(rows, list) else int(rows.max())
    if least < 0 or most >= limit:
        wrong = least if least < 0 else most
        raise SceneError(statement, argument, wrong, f"the number of one of {limit}, from 0")


def _given(normals: Iterable[Any], triangles: Any, vertices: int) -> Any:
    """Normals for each corner, from those of the vertices or of the corners."""
    np = numpy()
    rows: Any = normals if np is not None and isinstance(normals, np.ndarray) else list(normals)
    flat = rows
    if len(rows) and np is not None and np.ndim(rows[0]) == 2:
        flat = np.asarray(rows, dtype=float).reshape(-1, 3)
    elif len(rows) and np is None and not isinstance(next(iter(rows[0])), (int, float)):
        flat = [normal for corners in rows for normal in corners]
    checked = points_of("mesh", "normals", flat)
    if flat is rows and len(checked) == vertices:
        if np is None:
            return [(checked[a], checked[b], checked[c]) for a, b, c in triangles]
        return checked[triangles]
    if flat is not rows and len(checked) == 3 * len(triangles):
        return list(zip(*[iter(checked)] * 3, strict=True)) if np is None else checked.reshape(-1, 3, 3)
    raise SceneError("mesh", "normals", normals, "one for each vertex, or three for each face, all of them triangles")


def numbers_of(statement: str, which: Iterable[SupportsIndex] | None, surfaces: Sequence[surface], source: Any) -> Any:
    """The number of its surface for each object, from those of the faces that the objects come from."""
    np = numpy()
    numbers = [] if which is None else [int(number) for number in which]
    faces = int(source[-1]) + 1 if len(source) else 0
    if len(numbers) != faces:
        raise SceneError(statement, "which", which, f"the number of a surface for each of {faces}")
    _check_range(statement, "which", [(number,) for number in numbers], len(surfaces))
    return [numbers[face] for face in source] if np is None else np.array(numbers, dtype=np.int64)[np.asarray(source)]
