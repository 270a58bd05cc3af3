"""Meshes, whatever they were made from, and exact objects in place of some empties."""

from __future__ import annotations

from collections.abc import Iterator, Sequence
from typing import Any

import bpy
import numpy
import varlo

from .notes import Notes

#: Triangles of one object, in its own coordinates: vertices (V, 3), corners (T, 3), their normals (T, 3, 3), and the
#: material slot of each.
Triangles = tuple[Any, Any, Any, Any]

# Corner normals that differ less than this from the face's own are those of a flat face.
FLAT = 1e-4
EXACT = ("sphere", "cone", "cylinder", "disc", "plane")


def triangles_of(item: bpy.types.Object) -> Triangles | None:
    """The triangles of an evaluated object; None if it has none. No loop of Python goes over them."""
    mesh = item.to_mesh()
    try:
        if mesh is None or not mesh.polygons:
            return None
        mesh.calc_loop_triangles()
        count = len(mesh.loop_triangles)
        vertices = numpy.empty(3 * len(mesh.vertices), numpy.float32)
        mesh.vertices.foreach_get("co", vertices)
        corners, loops = numpy.empty(3 * count, numpy.int32), numpy.empty(3 * count, numpy.int32)
        mesh.loop_triangles.foreach_get("vertices", corners)
        mesh.loop_triangles.foreach_get("loops", loops)
        slots = numpy.empty(count, numpy.int32)
        mesh.loop_triangles.foreach_get("material_index", slots)
        normals = _loop_normals(mesh)[loops]
        return vertices.reshape(-1, 3).astype(float), corners.reshape(-1, 3), normals.reshape(-1, 3, 3), slots
    finally:
        item.to_mesh_clear()


def _loop_normals(mesh: bpy.types.Mesh) -> Any:
    normals = numpy.empty(3 * len(mesh.loops), numpy.float32)
    if hasattr(mesh, "calc_normals_split"):
        mesh.calc_normals_split()
        mesh.loops.foreach_get("normal", normals)
    else:  # from Blender 4.1 on they are always there
        mesh.corner_normals.foreach_get("vector", normals)
    return normals.reshape(-1, 3).astype(float)


def placed(triangles: Triangles, matrix: Any, surfaces: Sequence[varlo.surface], slots: Sequence[int],
           notes: Notes, name: str) -> Iterator[varlo.Mesh]:
    """The triangles in the world: the flat ones as one mesh, the smooth ones as another.

    `matrix`: from the object to the scene, 4 by 4. `slots`: for each material slot the number of its surface.
    """
    local, corners, normals, slot = triangles
    linear = matrix[:3, :3]
    vertices = local @ linear.T + matrix[:3, 3]
    if not numpy.isfinite(vertices).all() or abs(numpy.linalg.det(linear)) < 1e-30:
        notes.add("objects of no size or without a place are left out", name)
        return
    turned = numpy.linalg.det(linear) < 0
    if turned:
        corners, normals = corners[:, ::-1], normals[:, ::-1]
    bent = normals @ numpy.linalg.inv(linear)  # the inverse transposed, for rows
    lengths = numpy.linalg.norm(bent, axis=2, keepdims=True)
    bent = bent / numpy.where(lengths > 0, lengths, 1)

    a, b, c = (vertices[corners[:, at]] for at in range(3))
    faces = numpy.cross(b - a, c - a)
    areas = numpy.linalg.norm(faces, axis=1, keepdims=True)
    real = areas[:, 0] > 0
    if not real.all():
        notes.add("triangles of no area are left out", name)
    faces = faces / numpy.where(areas > 0, areas, 1)
    # A corner without a normal of its own takes that of the face.
    bent = numpy.where(lengths > 0, bent, faces[:, None, :])
    flat = (numpy.abs(bent - faces[:, None, :]).max(axis=(1, 2)) < FLAT) & real
    which = numpy.asarray(slots, numpy.int64)[numpy.clip(slot, 0, len(slots) - 1)]
    for rows, own in ((flat, None), (real & ~flat, bent)):
        if rows.any():
            yield varlo.mesh(vertices, corners[rows], normals=None if own is None else own[rows], surfaces=surfaces,
                             which=which[rows])


def exact(item: bpy.types.Object, matrix: Any, notes: Notes) -> Any | None:
    """What an empty with the custom property "varlo" stands for, in the scene; None if it is just an empty.

    The shapes are those of radius 1 (times the empty's size) around its origin, cones and cylinders from there one
    unit up. An uneven scale is held where varlo has a shape for it.
    """
    kind = item.get("varlo")
    if kind is None:
        return None
    if kind not in EXACT:
        notes.add(f'the property "varlo" names none of {", ".join(EXACT)}', item.name)
        return None
    shapes = {
        "sphere": lambda: varlo.sphere(center=(0, 0, 0), radius=1),
        "cone": lambda: varlo.cone(base=(0, 0, 0), base_radius=1, cap=(0, 0, 1), cap_radius=0),
        "cylinder": lambda: varlo.cylinder(base=(0, 0, 0), cap=(0, 0, 1), radius=1),
        "disc": lambda: varlo.disc(center=(0, 0, 0), normal=(0, 0, 1), radius=1),
    }
    size = item.empty_display_size
    try:
        if kind == "plane":
            normal = varlo.Vec(*map(float, matrix[:3, 2])).unit()
            return varlo.plane(normal=normal, distance=normal.dot(varlo.Vec(*map(float, matrix[:3, 3]))))
        columns = [varlo.Vec(*(size * matrix[:3, at]).tolist()) for at in range(3)]
        move = varlo.Transform(*columns, varlo.Vec(*matrix[:3, 3].tolist()))
        return move(shapes[kind]())
    except varlo.SceneError as error:
        notes.add(f"an exact {kind} cannot be held: {error.rule}", item.name)
        return None
