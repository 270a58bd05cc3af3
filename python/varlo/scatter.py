"""Random places on a mesh, the same for the same seed."""

from __future__ import annotations

import math
import random
from bisect import bisect
from collections.abc import Callable
from itertools import accumulate
from typing import Any

from .arrays import numpy
from .mesh import Mesh
from .normals import face_normal_array, face_normals
from .values import SceneError
from .vector import Vec

#: Tries for each place that is wanted, before the mesh counts as full.
TRIES = 30


def scatter(
    mesh: Mesh,
    count: int,
    *,
    seed: int = 0,
    spacing: float = 0,
    where: Callable[[Vec, Vec], bool] | None = None,
) -> list[tuple[Vec, Vec]]:
    """Up to `count` places on a mesh, evenly over its area: pairs of a point and the unit normal of the surface there.

    `seed`: another one gives other places. `spacing`: the least distance between two of them, in lengths. `where`:
    called with a point and its normal, and tells whether the place is wanted. There are fewer places than asked for
    where they do not fit.
    """
    if spacing < 0:
        raise SceneError("scatter", "spacing", spacing, "a distance is 0 or above")
    if numpy() is None:
        squares: Any = face_normals(mesh.vertices, mesh.faces)
    else:
        squares = [Vec(*square) for square in face_normal_array(mesh.vertices, mesh.faces).tolist()]
    areas: list[float] = list(accumulate(map(abs, squares)))
    if not areas or areas[-1] == 0:
        return []
    chance = random.Random(seed)
    places: list[tuple[Vec, Vec]] = []
    cells: dict[tuple[int, ...], list[Vec]] = {}
    for _ in range(TRIES * count):
        if len(places) == count:
            break
        face = min(bisect(areas, chance.random() * areas[-1]), len(areas) - 1)
        # Evenly over a triangle (G. Turk, Generating Random Points in Triangles, 1990).
        root, along = math.sqrt(chance.random()), chance.random()
        weights = (1 - root, root * (1 - along), root * along)
        point = _mean(weights, [Vec.of(mesh.vertices[corner]) for corner in mesh.faces[face]])
        normal = squares[face]
        if mesh.normals is not None:
            normal = _mean(weights, [Vec.of(corner) for corner in mesh.normals[face]])
        normal = normal.unit() if any(normal) else squares[face].unit()
        if where is not None and not where(point, normal):
            continue
        if spacing:
            cell = tuple(math.floor(part / spacing) for part in point)
            around = (cells.get((cell[0] + x, cell[1] + y, cell[2] + z), ())
                      for x in (-1, 0, 1) for y in (-1, 0, 1) for z in (-1, 0, 1))
            if any(abs(other - point) < spacing for near in around for other in near):
                continue
            cells.setdefault(cell, []).append(point)
        places.append((point, normal))
    return places


def _mean(weights: tuple[float, float, float], corners: list[Vec]) -> Vec:
    a, b, c = (corner * weight for corner, weight in zip(corners, weights, strict=True))
    return a + b + c
