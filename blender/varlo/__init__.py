"""varlo as a render engine in Blender: F12 renders with it, and scenes can be exported for it."""

bl_info = {
    "name": "varlo",
    "author": "The VARLO authors",
    "version": (0, 1, 0),
    "blender": (3, 4, 0),
    "location": "Render properties > Render Engine; File > Export",
    "description": "Renders with varlo, and exports its scenes",
    "category": "Render",
}

from . import library  # noqa: E402, F401  puts the package varlo where the other modules find it
from . import engine, panels, properties  # noqa: E402


def register() -> None:
    for module in (properties, engine, panels):
        module.register()


def unregister() -> None:
    for module in (panels, engine, properties):
        module.unregister()
