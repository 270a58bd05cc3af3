"""varlo, the ray tracer, from Python: scenes made by programs, and the tools around the program."""

from .objects import cone, cylinder, disc, patch, plane, polygon, ring, sphere, triangle
from .run import Fault, VarloError
from .shading import light, surface
from .statements import Statement, declare, include
from .transform import Transform, look_at, move, scale, turn
from .values import SceneError
from .vector import Vec
from .view import camera, settings, true_ratio

__version__ = "0.1.0"
__all__ = [
    "Fault", "SceneError", "Statement", "Transform", "VarloError", "Vec", "camera", "cone", "cylinder", "declare",
    "disc", "include", "light", "look_at", "move", "patch", "plane", "polygon", "ring", "scale", "settings", "sphere",
    "surface", "triangle", "true_ratio", "turn",
]
