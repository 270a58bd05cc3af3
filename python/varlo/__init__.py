"""varlo, the ray tracer, from Python: scenes made by programs, and the tools around the program."""

from .mesh import Mesh
from .meshes import mesh
from .objects import cone, cylinder, disc, patch, plane, polygon, ring, sphere, triangle
from .run import Fault, VarloError
from .scene import Scene
from .shading import light, surface
from .statements import Statement, declare, include
from .transform import Transform, look_at, move, scale, turn
from .values import SceneError
from .vector import Vec
from .view import camera, settings, true_ratio
from .writer import Group, group

__version__ = "0.1.0"
__all__ = [
    "Fault", "Group", "Mesh", "Scene", "SceneError", "Statement", "Transform", "VarloError", "Vec", "camera", "cone",
    "cylinder", "declare", "disc", "group", "include", "light", "look_at", "mesh", "move", "patch", "plane", "polygon",
    "ring", "scale", "settings", "sphere", "surface", "triangle", "true_ratio", "turn",
]
