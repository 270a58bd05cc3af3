"""What a scene keeps of varlo's own: the settings of the render panel."""

import bpy
from bpy.props import BoolProperty, EnumProperty, FloatProperty, IntProperty, PointerProperty, StringProperty


class VarloSettings(bpy.types.PropertyGroup):
    antialiasing: EnumProperty(
        name="Sampler", default="adaptive", description="How many rays a pixel gets",
        items=(("none", "None", "One ray for each pixel"),
               ("quick", "Quick", "The corners of each pixel"),
               ("adaptive", "Adaptive", "Up to 25 rays where colours differ")))
    aa_distance: IntProperty(
        name="Threshold", default=8, min=0, max=255,
        description="Difference of colour, of 255, at which the adaptive sampler splits a pixel")
    jitter: BoolProperty(name="Jitter", description="Move each sample at random within its pixel")
    threads: EnumProperty(
        name="Threads", default="8", description="Bands of rows that are rendered at the same time",
        items=(("2", "2", ""), ("4", "4", ""), ("8", "8", "")))
    queue: IntProperty(
        name="Queue", default=1024, min=100, max=100000,
        description="Entries of the queue that a ray may need; crowded scenes need more")
    exposure: FloatProperty(
        name="Exposure", default=0.0, min=-10.0, max=10.0,
        description="Stops by which lamps are made brighter; the brightest gives at most full light")
    light_samples: IntProperty(
        name="Shadow samples", default=16, min=1, max=1024, description="Rays to a lamp that has a size")
    reflection_samples: IntProperty(
        name="Mirror samples", default=8, min=1, max=256, description="Rays of a rough mirror")
    lens_samples: IntProperty(
        name="Lens samples", default=16, min=1, max=1024, description="Rays through a lens that has a size")
    fisheye: FloatProperty(
        name="Fisheye", default=3.141592653589793, min=0.1, max=6.283185307179586, subtype="ANGLE",
        description="Field of view of a panoramic camera, where Cycles does not tell one")
    scale: FloatProperty(
        name="Scale", default=0.0, min=0.0,
        description="Length of a unit in varlo, whose tolerance is 0.001; 0 makes the scene at least 100 long")
    binary: StringProperty(
        name="Program", subtype="FILE_PATH", description="The program varlo; left out, it is looked for on PATH")
    folder: StringProperty(
        name="Keep in", subtype="DIR_PATH",
        description="A folder that keeps the scene and varlo's own picture of each frame; left out, they go away")


def register() -> None:
    bpy.utils.register_class(VarloSettings)
    bpy.types.Scene.varlo = PointerProperty(type=VarloSettings)


def unregister() -> None:
    del bpy.types.Scene.varlo
    bpy.utils.unregister_class(VarloSettings)
