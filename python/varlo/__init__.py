"""varlo, the ray tracer, from Python: scenes made by programs, and the tools around the program."""

from .balls import Spheres, spheres
from .colors import colormap, gradient, mix, rgb, shades
from .lettering import text
from .materials import material
from .mesh import Mesh
from .meshes import mesh
from .objects import cone, cylinder, disc, patch, plane, polygon, ring, sphere, triangle
from .picture import Picture
from .run import Fault, VarloError
from .scatter import scatter
from .scene import Scene
from .shading import light, surface
from .shapes import box, lathe
from .statements import Statement, declare, include
from .surfaces import grid_faces, height_field, revolve, tube
from .transform import Transform, look_at, move, scale, turn
from .values import SceneError
from .vector import Vec
from .view import camera, settings, true_ratio
from .writer import Group, group

__version__ = "0.1.0"
__all__ = [
    "Fault", "Group", "Mesh", "Picture", "Scene", "SceneError", "Spheres", "Statement", "Transform", "VarloError",
    "Vec", "box", "camera", "colormap", "cone", "cylinder", "declare", "disc", "gradient", "grid_faces", "group",
    "height_field", "include", "lathe", "light", "look_at", "material", "mesh", "mix", "move", "patch", "plane",
    "polygon", "revolve", "rgb", "ring", "scale", "scatter", "settings", "shades", "sphere", "spheres", "surface",
    "text", "triangle", "true_ratio", "tube", "turn",
]
