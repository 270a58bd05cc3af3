"""The normals of meshes: by a smoothing angle, and leaning no farther than a patch can hold.

Each step stands here twice, for NumPy arrays and for lists of vectors. Normals of corners have a row for each face,
with one normal for each of its three corners.
"""

from __future__ import annotations

import math
from typing import Any

from .arrays import numpy
from .vector import Vec

Face = tuple[int, int, int]
Corners = tuple[Vec, Vec, Vec]

# The least cosine between a corner's normal and its face: varlo turns round what is at 0 or below.
LEAN = 0.01
# Pairs of corners at once: these are some 100 bytes each.
BLOCK = 1_000_000


def face_normals(vertices: list[Vec], faces: list[Face]) -> list[Vec]:
    """Square to each face, by the right hand, as long as twice its area."""
    return [(vertices[b] - vertices[a]).cross(vertices[c] - vertices[a]) for a, b, c in faces]


def face_normal_array(vertices: Any, faces: Any) -> Any:
    """The same of arrays."""
    a, b, c = (vertices[faces[:, corner]] for corner in range(3))
    return numpy().cross(b - a, c - a)


def smooth(vertices: list[Vec], faces: list[Face], angle: float) -> list[Corners]:
    """The normal of each corner: the mean of the faces at its vertex that lean up to `angle` degrees from its own.

    Each face counts by its angle at the vertex (G. Thuermer and C. A. Wuethrich, Computing Vertex Normals from
    Polygonal Facets, 1998), so that it does not matter how a surface is cut into triangles.
    """
    units = [_unit(normal) for normal in face_normals(vertices, faces)]
    least = math.cos(math.radians(angle)) - 1e-9
    around: dict[int, list[tuple[Vec, Vec]]] = {}
    for face, unit in zip(faces, units, strict=True):
        for at in range(3):
            first, second = (_unit(vertices[face[at - side]] - vertices[face[at]]) for side in (1, 2))
            weight = math.acos(max(-1.0, min(1.0, first.dot(second))))
            around.setdefault(face[at], []).append((unit, unit * weight))

    def corner(vertex: int, own: Vec) -> Vec:
        total = Vec(0, 0, 0)
        for unit, weighted in around[vertex]:
            if own.dot(unit) >= least:
                total += weighted
        return _unit(total)

    return [(corner(a, own), corner(b, own), corner(c, own)) for (a, b, c), own in zip(faces, units, strict=True)]


def smooth_array(vertices: Any, faces: Any, angle: float) -> Any:
    """The same of arrays."""
    np = numpy()
    units = _unit_array(face_normal_array(vertices, faces))
    sides = _unit_array(vertices[faces[:, [1, 2, 0]]] - vertices[faces])
    weights = np.arccos(np.clip(-(sides * sides[:, [2, 0, 1]]).sum(axis=2), -1, 1)).ravel()
    corners = faces.ravel()
    weighted = np.repeat(units, 3, axis=0) * weights[:, None]
    if angle >= 180:
        sums = [np.bincount(corners, weighted[:, axis], len(vertices)) for axis in range(3)]
        return _unit_array(np.stack(sums, axis=1))[faces]

    # The corners in the order of their vertices: those at one vertex stand together, each paired with each.
    order = np.argsort(corners, kind="stable")
    places = corners[order]
    mates = np.bincount(corners, minlength=len(vertices))
    starts = np.concatenate([[0], np.cumsum(mates)])[:-1]
    ends = np.cumsum(mates[places])
    least = math.cos(math.radians(angle)) - 1e-9
    result = np.zeros((len(corners), 3))
    first = 0
    while first < len(places):
        done = ends[first - 1] if first else 0
        last = max(first + 1, int(np.searchsorted(ends, done + BLOCK)))
        counts = mates[places[first:last]]
        begins = np.cumsum(counts) - counts
        left = np.repeat(order[first:last], counts)
        right = order[np.repeat(starts[places[first:last]] - begins, counts) + np.arange(counts.sum())]
        near = (units[left // 3] * units[right // 3]).sum(axis=1) >= least
        result[order[first:last]] = np.add.reduceat(weighted[right] * near[:, None], begins, axis=0)
        first = last
    return _unit_array(result).reshape(-1, 3, 3)


def fit(vertices: list[Vec], faces: list[Face], normals: list[Corners]) -> list[Corners]:
    """Bends the normals that lean too far from their face back to its side, that of most of its corners."""
    fitted = []
    for square, corners in zip(face_normals(vertices, faces), normals, strict=True):
        face = _unit(square)
        units = [_unit(normal) for normal in corners]
        if sum(face.dot(unit) for unit in units) < 0:
            face = -face
        bent = [_unit(unit + face * max(0.0, LEAN - face.dot(unit))) for unit in units]
        fitted.append((bent[0], bent[1], bent[2]))
    return fitted


def fit_array(vertices: Any, faces: Any, normals: Any) -> Any:
    """The same of arrays."""
    np = numpy()
    units = _unit_array(normals)
    face = _unit_array(face_normal_array(vertices, faces))
    lean = np.einsum("fci,fi->fc", units, face)
    back = lean.sum(axis=1) < 0
    face[back] *= -1
    lean[back] *= -1
    far = (lean < LEAN).any(axis=1)
    units[far] = _unit_array(units[far] + face[far, None] * np.maximum(0, LEAN - lean[far])[..., None])
    return units


def _unit(vector: Vec) -> Vec:
    return vector.unit() if any(vector) else vector


def _unit_array(vectors: Any) -> Any:
    np = numpy()
    length = np.sqrt((vectors * vectors).sum(axis=-1, keepdims=True))
    return vectors / np.where(length > 0, length, 1)
