"""The eye, the lamps, and what is around: camera, lights and world."""

from __future__ import annotations

import math
from collections.abc import Sequence
from dataclasses import dataclass
from typing import Any

import bpy
import numpy
import varlo

from .materials import display, display_color
from .notes import Notes


def camera_of(scene: bpy.types.Scene, eye: bpy.types.Object, scale: float, size: tuple[int, int],
              notes: Notes) -> varlo.camera:
    """The camera `eye`, evaluated, for a picture of `size`. Raises `VarloError` for one that varlo has not."""
    data = eye.data
    matrix = numpy.array(eye.matrix_world)
    position, up, back = scale * matrix[:3, 3], matrix[:3, 1], matrix[:3, 2] / numpy.linalg.norm(matrix[:3, 2])
    words: dict[str, Any] = {"position": position, "look_at": position - scale * back, "up": up}
    if data.shift_x or data.shift_y:
        raise varlo.VarloError(f"{eye.name}: varlo has no camera with a shift; set Shift X and Y to 0")
    if data.type == "ORTHO":
        raise varlo.VarloError(f"{eye.name}: varlo has no orthographic camera; choose Perspective")
    if data.type == "PANO":
        angle = scene.varlo.fisheye
        if "FISHEYE" in getattr(getattr(data, "cycles", None), "panorama_type", ""):
            angle = data.cycles.fisheye_fov
        notes.add("a panorama is a fisheye across the width of the picture", eye.name)
        words.update(projection_type="fisheye", fov=math.degrees(angle), ratio=size[0] / size[1])
    else:
        corners = numpy.array([list(corner) for corner in data.view_frame(scene=scene)])
        half = (corners.max(axis=0) - corners.min(axis=0))[:2] / 2 / -corners[0, 2]
        across, down = 2 * numpy.arctan(half)
        words.update(fov=math.degrees(across), ratio=float(across / down))
    if data.dof.use_dof:
        distance = data.dof.focus_distance
        if data.dof.focus_object is not None:
            distance = float((matrix[:3, 3] - numpy.array(data.dof.focus_object.matrix_world)[:3, 3]) @ back)
        if distance > 0 and data.dof.aperture_fstop > 0:
            # Half the side of a square lens with the area of the round one.
            radius = data.lens / 1000 / scene.unit_settings.scale_length / (2 * data.dof.aperture_fstop)
            words.update(aperture=scale * radius * math.sqrt(math.pi) / 2, focal_length=scale * distance,
                         samples=scene.varlo.lens_samples)
    return varlo.camera(**words)


@dataclass(frozen=True)
class Lamp:
    """A light of Blender's, and what it gives to a white face in the middle of the scene."""

    strength: float  # linear
    color: Any  # linear
    words: dict[str, Any]


def lamp_of(light: bpy.types.Light, matrix: Any, scale: float, middle: Any, extent: float, samples: int,
            notes: Notes) -> Lamp | None:
    """`matrix`: its place, unscaled. `middle` and `extent`: of the scaled scene."""
    position = scale * matrix[:3, 3]
    axis = -matrix[:3, 2] / numpy.linalg.norm(matrix[:3, 2])
    distance = max(float(numpy.linalg.norm(position - middle)), 0.01 * extent) / scale
    size = 0.0
    words: dict[str, Any] = {"position": position}
    # How much of its power a lamp sends to a distance of 1, by Blender's own convention for each kind.
    if light.type == "SUN":
        strength = light.energy / math.pi
        away = 100 * extent
        words["position"] = middle - away * axis
        size = away * math.tan(light.angle / 2)
    elif light.type == "AREA":
        strength = light.energy / (math.pi * distance) ** 2
        sides = light.size, light.size_y if light.shape in ("RECTANGLE", "ELLIPSE") else light.size
        size = scale * math.sqrt(sides[0] * sides[1]) / 2
        # It shines to one side alone, less and less towards its own plane.
        words.update(light_type="spot", target=position + axis, min_angle=90.0, max_angle=180.0)
        if sides[0] != sides[1]:
            notes.add("a lamp is a square of the same area", light.name)
    else:
        strength = light.energy / (2 * math.pi * distance) ** 2
        size = scale * light.shadow_soft_size
        if light.type == "SPOT":
            angle = math.degrees(light.spot_size)
            words.update(light_type="spot", target=position + axis, max_angle=angle,
                         min_angle=angle * (1 - light.spot_blend))
    if light.use_nodes:
        notes.add("the nodes of a lamp are left out", light.name)
    if not light.use_shadow:
        notes.add("a lamp without shadow gets one", light.name)
    color = numpy.array(light.color)
    if strength <= 0 or not color.any():
        return None
    if size > 0:
        words.update(shadow_type="smooth", radius=size, light_samples=samples)
    return Lamp(strength, color, words)


def lights_of(lamps: Sequence[Lamp], exposure: float) -> list[varlo.light]:
    """The lamps of varlo, for the screen: the brightest gives at most 1, and the others keep their share of it."""
    levels = [[display(float(lamp.strength * 2.0 ** exposure * part)) for part in lamp.color] for lamp in lamps]
    brightest = max((part for level in levels for part in level), default=1.0)
    factor = 1 / max(brightest, 1.0)
    return [varlo.light(color=tuple(max(factor * part, 0.001) for part in level), attenuation_type="none", **lamp.words)
            for lamp, level in zip(lamps, levels)]


@dataclass(frozen=True)
class Around:
    """What the world gives: the words of `settings`, and the light that comes from everywhere."""

    words: dict[str, Any]
    ambient: float  # for the screen, 0 to 1


def around(world: bpy.types.World | None, scale: float, notes: Notes) -> Around:
    if world is None:
        return Around({}, 0.0)
    color = numpy.array(world.color)
    if world.use_nodes and world.node_tree is not None:
        node = next((node for node in world.node_tree.nodes if node.type == "BACKGROUND"), None)
        if node is not None:
            color = numpy.array(node.inputs["Color"].default_value[:3]) * node.inputs["Strength"].default_value
            if node.inputs["Color"].is_linked:
                notes.add("a picture or sky around the scene becomes one colour", world.name)
    shown = display_color(color)
    words: dict[str, Any] = {"background": shown}
    mist = world.mist_settings
    if mist.use_mist and mist.start + mist.depth > 0:
        # Haze grows by the same share with each unit; at the mist's end it hides 95 %.
        words.update(haze_color=shown, haze_factor=1 - 0.05 ** (1 / (scale * (mist.start + mist.depth))))
    return Around(words, min(display(float(color.mean())), 1.0))
