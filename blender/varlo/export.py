"""A scene of Blender's as one of varlo's."""

from __future__ import annotations

from collections.abc import Iterator
from dataclasses import dataclass, field
from typing import Any

import bpy
import numpy
import varlo

from . import geometry, materials, world
from .notes import Notes

# Shorter scenes are made so long, that varlo's tolerance of 0.001 stays out of sight.
LENGTH = 100.0
DRAWN = ("MESH", "CURVE", "CURVES", "SURFACE", "META", "FONT")
SILENT = ("CAMERA", "LIGHT", "EMPTY", "ARMATURE", "LATTICE", "SPEAKER", "LIGHT_PROBE")


@dataclass
class Placed:
    """Triangles, or an exact shape, and where they stand; kept, since an instance lives only while it is visited."""

    name: str
    matrix: Any
    triangles: geometry.Triangles | None
    shape: Any | None
    slots: list[bpy.types.Material | None]


@dataclass
class Collected:
    """All that the depsgraph shows to a render, unscaled."""

    objects: list[Placed] = field(default_factory=list)
    lamps: list[tuple[bpy.types.Light, Any]] = field(default_factory=list)
    low: Any = field(default_factory=lambda: numpy.full(3, numpy.inf))
    high: Any = field(default_factory=lambda: numpy.full(3, -numpy.inf))

    def reach(self, points: Any) -> None:
        points = points[numpy.isfinite(points).all(axis=1)]
        if len(points):
            self.low = numpy.minimum(self.low, points.min(axis=0))
            self.high = numpy.maximum(self.high, points.max(axis=0))


def collect(depsgraph: bpy.types.Depsgraph, notes: Notes) -> Collected:
    collected = Collected()
    known: dict[int, geometry.Triangles | None] = {}  # instances share the triangles of their object
    for instance in depsgraph.object_instances:
        item = instance.object
        # What the viewport shows and a render does not: an export from the menu has the viewport's depsgraph.
        if not instance.show_self or item.hide_render or (instance.is_instance and instance.parent.hide_render):
            continue
        matrix = numpy.array(instance.matrix_world, float)
        if item.type == "LIGHT":
            collected.lamps.append((item.data, matrix))
        elif item.type in DRAWN:
            key = item.as_pointer()
            if key not in known:
                known[key] = geometry.triangles_of(item)
            if known[key] is not None:
                slots = [slot.material for slot in item.material_slots] or [None]
                collected.objects.append(Placed(item.name, matrix, known[key], None, slots))
                box = numpy.array(item.bound_box)
                collected.reach(box @ matrix[:3, :3].T + matrix[:3, 3])
        elif item.type == "EMPTY" and "varlo" in item:
            material = bpy.data.materials.get(str(item.get("varlo_material", "")))
            collected.objects.append(Placed(item.name, matrix, None, item, [material]))
            collected.reach(matrix[None, :3, 3])
        elif item.type not in SILENT:
            notes.add(f"{item.type.lower().replace('_', ' ')} objects are left out", item.name)
        if any(system.settings.type == "HAIR" and system.settings.render_type == "PATH"
               for system in getattr(item, "particle_systems", ())):
            notes.add("hair is left out", item.name)
    return collected


def export(depsgraph: bpy.types.Depsgraph, size: tuple[int, int], notes: Notes) -> varlo.Scene:
    """The scene of `depsgraph` for a picture of `size`. Raises `VarloError` for a camera that varlo has not."""
    scene = depsgraph.scene
    own = scene.varlo
    if scene.camera is None:
        raise varlo.VarloError("the scene has no camera")
    if scene.render.use_border:
        raise varlo.VarloError("varlo renders whole pictures only; switch Render Region off")
    for is_on, what in ((scene.render.film_transparent, "a transparent film"),
                        (scene.render.use_motion_blur, "motion blur")):
        if is_on:
            notes.add(f"{what} is left out")
    eye = scene.camera.evaluated_get(depsgraph)
    collected = collect(depsgraph, notes)
    nothing = [] if collected.objects else [varlo.surface()]  # varlo wants one all the same
    if nothing:
        notes.add("the scene has nothing that can be seen")
        collected.reach(numpy.array([list(eye.matrix_world.translation)]))
    length = float(numpy.linalg.norm(collected.high - collected.low))
    scale = own.scale or max(1.0, LENGTH / max(length, 1e-6))
    middle, extent = scale * (collected.low + collected.high) / 2, max(scale * length, 1.0)

    surroundings = world.around(scene.world, scale, notes)
    lamps = [world.lamp_of(light, matrix, scale, middle, extent, own.light_samples, notes)
             for light, matrix in collected.lamps]
    result = varlo.Scene(
        varlo.settings(output_type="png", resolution=size, antialiasing=own.antialiasing, aa_distance=own.aa_distance,
                       jitter=own.jitter, **surroundings.words),
        world.camera_of(scene, eye, scale, size, notes),
        *world.lights_of([lamp for lamp in lamps if lamp is not None], own.exposure), *nothing)
    eye_position = scale * numpy.array(eye.matrix_world.translation)

    def objects() -> Iterator[Any]:
        looks: dict[str, materials.Look] = {}
        for item in collected.objects:
            matrix = item.matrix.copy()
            matrix[:3] *= scale
            own_size = scale
            if item.triangles is not None:
                vertices = item.triangles[0] @ matrix[:3, :3].T
                own_size = max(float(numpy.linalg.norm(vertices.max(axis=0) - vertices.min(axis=0))) / 2, 1e-3)
            distance = max(float(numpy.linalg.norm(matrix[:3, 3] - eye_position)), 1.0)
            surfaces = []
            for material in item.slots:
                key = material.name if material else ""
                if key not in looks:
                    looks[key] = materials.look_of(material, notes)
                surfaces.append(materials.surface_of(looks[key], surroundings.ambient, distance, own_size,
                                                     own.reflection_samples))
            if item.triangles is not None:
                yield from geometry.placed(item.triangles, matrix, surfaces, range(len(surfaces)), notes, item.name)
            elif (shape := geometry.exact(item.shape, matrix, notes)) is not None:
                yield varlo.group(shape, surface=surfaces[0])

    result.add(objects)
    return result


def picture_size(scene: bpy.types.Scene) -> tuple[int, int]:
    """Width and height of the picture in pixels."""
    render = scene.render
    return (max(render.resolution_x * render.resolution_percentage // 100, 1),
            max(render.resolution_y * render.resolution_percentage // 100, 1))
