"""Meshes of triangles, from lists or from NumPy arrays."""

from __future__ import annotations

from collections.abc import Sequence
from itertools import chain
from typing import TYPE_CHECKING, Any

from . import normals
from .arrays import numpy
from .many import Many, rows
from .shading import surface
from .vector import Vec

if TYPE_CHECKING:
    from .transform import Transform

# A normal is written in whole parts of its length, which are half as long as decimals and made twice as fast.
PARTS = 100_000
_VERTEX = "vertex <%.9g %.9g %.9g>"
_NORMAL = "normal <%d %d %d>"
_FORMS = {False: "triangle { %s %s %s }\n", True: "patch { %s %s %s %s %s %s }\n"}


class Mesh(Many):
    """Triangles that share their corners, with or without normals; the function `mesh` checks and makes one.

    `vertices` has a row of three for each vertex, `faces` three whole numbers for each face, counted from 0, and
    `normals`, if there are any, a row of three for each corner of each face. They are NumPy arrays where NumPy is
    installed and lists where it is not.
    """

    __slots__ = ("vertices", "faces", "normals")

    def __init__(self, vertices: Any, faces: Any, corner_normals: Any, surfaces: Sequence[surface], which: Any) -> None:
        super().__init__(surfaces, which)
        self.vertices = vertices
        self.faces = faces
        self.normals = corner_normals

    def __len__(self) -> int:
        return len(self.faces)

    def transformed(self, transform: Transform) -> Mesh:
        """The mesh in its new place; anything goes, uneven scaling too."""
        np = numpy()
        turned = transform.volume() < 0  # left and right change places: so does the order of a face's corners
        if np is None:
            step = -1 if turned else 1
            vertices: Any = [transform.point(vertex) for vertex in self.vertices]
            faces: Any = [face[::step] for face in self.faces]
            bent: Any = None if self.normals is None else [
                tuple(transform.normal(normal) for normal in corners[::step]) for corners in self.normals]
        else:
            with np.errstate(over="ignore", invalid="ignore"):  # told when the text is made
                vertices = self.vertices @ np.array(transform[:3]) + np.array(transform.origin)
            faces = self.faces[:, ::-1] if turned else self.faces
            bent = self.normals
            if bent is not None:
                axes = [transform.normal(axis) for axis in ((1, 0, 0), (0, 1, 0), (0, 0, 1))]
                bent = (bent[:, ::-1] if turned else bent) @ np.array(axes)
        return self.like(Mesh(vertices, faces, bent, self.surfaces, self.which))

    def text(self, block: Any) -> tuple[int, str]:
        chosen = range(len(self.faces))[block] if isinstance(block, slice) else block
        faces = [self.faces[row] for row in chosen]
        corners = [[_VERTEX % self.vertices[corner] for corner in face] for face in faces]
        if self.normals is not None:
            bent = normals.fit(self.vertices, faces, [self.normals[row] for row in chosen])
            corners = [list(chain.from_iterable(zip(of_face, (_NORMAL % _parts(normal) for normal in turned))))
                       for of_face, turned in zip(corners, bent, strict=True)]
        form = _FORMS[self.normals is not None]
        return len(faces), "".join(form % tuple(of_face) for of_face in corners)

    def array_text(self, block: Any) -> tuple[int, str]:
        np = numpy()
        faces = self.faces[block]
        used, where = np.unique(faces, return_inverse=True)
        vertices = rows(_VERTEX, self.vertices[used])
        words = list(map(vertices.__getitem__, where.ravel().tolist()))
        if self.normals is None:
            return len(faces), _FORMS[False] * len(faces) % tuple(words)

        # Corners of a smooth surface share their normals: each is made text once.
        whole = np.rint(normals.fit_array(self.vertices, faces, self.normals[block]) * PARTS).astype(np.int64) + PARTS
        packed = whole[..., 0] << 40 | whole[..., 1] << 20 | whole[..., 2]
        keys, which = np.unique(packed.ravel(), return_inverse=True)
        part = (1 << 20) - 1
        texts = rows(_NORMAL, np.stack([keys >> 40, keys >> 20 & part, keys & part], axis=1) - PARTS)
        both: list[str] = [""] * (2 * len(words))
        both[0::2] = words
        both[1::2] = map(texts.__getitem__, which.ravel().tolist())
        return len(faces), _FORMS[True] * len(faces) % tuple(both)


def _parts(normal: Vec) -> tuple[int, int, int]:
    return round(normal.x * PARTS), round(normal.y * PARTS), round(normal.z * PARTS)
