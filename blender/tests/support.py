"""What the tests share: a clean scene, the add-on in it, what it writes, and who covers which pixel."""

import re
import tempfile
from pathlib import Path

import bpy
import numpy

FOLDER = Path(bpy.app.tempdir)  # goes away with this Blender
tempfile.tempdir = bpy.app.tempdir  # what the add-on leaves behind is found here


def fresh(width: int = 160, height: int = 120) -> bpy.types.Scene:
    """An empty scene for varlo, with a camera that looks from the front along y."""
    bpy.ops.wm.read_homefile(use_empty=True, use_factory_startup=True)
    bpy.ops.preferences.addon_enable(module="render_varlo")
    scene = bpy.context.scene
    scene.render.engine = "VARLO"
    scene.render.resolution_x, scene.render.resolution_y, scene.render.resolution_percentage = width, height, 100
    scene.view_settings.view_transform = "Standard"
    scene.world = bpy.data.worlds.new("world")
    bpy.ops.object.camera_add(location=(0.3, -9, 1.1), rotation=(1.5, 0.1, 0))
    scene.camera = bpy.context.object
    return scene


def written() -> str:
    """The scene as the export writes it."""
    path = FOLDER / "written.vlo"
    bpy.ops.export_scene.varlo(filepath=str(path))
    return path.read_text()


def statement(word: str) -> str:
    """The last statement of this kind in the scene."""
    return re.findall(rf"^{word} .*$", written(), re.MULTILINE)[-1]


def number(word: str, text: str) -> float:
    return float(re.search(rf"\b{word} (\S+)", text)[1])


def numbers(word: str, text: str) -> list[float]:
    return [float(each) for each in re.search(rf"\b{word} <?([-\d.e+]+ [-\d.e+]+ [-\d.e+]+)", text)[1].split()]


def rendered() -> numpy.ndarray:
    """Renders as F12 does. Rows from the bottom, each pixel red, green, blue and alpha."""
    scene = bpy.context.scene
    scene.render.filepath = str(FOLDER / "picture.png")
    bpy.ops.render.render(write_still=True)
    image = bpy.data.images.load(scene.render.filepath)
    return numpy.array(image.pixels[:]).reshape(image.size[1], image.size[0], -1)


def covered(engine: str) -> numpy.ndarray:
    """The pixels whose middle meets an object, by varlo or by Cycles."""
    scene = bpy.context.scene
    scene.render.engine, scene.varlo.antialiasing = engine, "none"
    if engine == "VARLO":
        scene.world.color = (1, 1, 1)  # brighter than all that it lights
        return rendered()[..., :3].min(axis=2) < 0.98
    scene.cycles.samples, scene.cycles.use_denoising, scene.render.film_transparent = 1, False, True
    scene.cycles.pixel_filter_type, scene.cycles.filter_width = "GAUSSIAN", 0.01
    return rendered()[..., 3] > 0.5


def grown(mask: numpy.ndarray) -> numpy.ndarray:
    """The mask and all pixels beside it."""
    wide = numpy.pad(mask, 1)
    rows, columns = mask.shape
    return numpy.logical_or.reduce([wide[y:y + rows, x:x + columns] for y in range(3) for x in range(3)])
