"""Surfaces by name."""

from __future__ import annotations

from typing import Any

from .shading import surface
from .values import SceneError

# Mirrors take no colour from their surface, so metals with a colour mirror weakly and carry it in their body. A ray
# bends the other way than in real glass: a small index looks most like it.
MATERIALS: dict[str, dict[str, Any]] = {
    "plaster": {"color": (0.82, 0.80, 0.76), "ambient": 0.2, "diffuse": 0.8},
    "rubber": {"color": (0.10, 0.10, 0.11), "ambient": 0.2, "diffuse": 0.8, "specular": 0.15, "roughness": 8},
    "lacquer": {"color": (0.70, 0.06, 0.06), "ambient": 0.15, "diffuse": 0.75, "specular": 0.6, "roughness": 90,
                "reflection": 0.1},
    "chrome": {"color": (0.60, 0.62, 0.65), "ambient": 0.02, "diffuse": 0.08, "specular": 0.5, "roughness": 120,
               "reflection": 0.84},
    "steel": {"color": (0.50, 0.52, 0.54), "ambient": 0.08, "diffuse": 0.45, "brilliance": 1.5, "specular": 0.35,
              "roughness": 22, "reflection": 0.25},
    "gold": {"color": (0.83, 0.58, 0.20), "ambient": 0.16, "diffuse": 0.85, "brilliance": 2, "specular": 0.35,
             "roughness": 28, "reflection": 0.22},
    "copper": {"color": (0.78, 0.42, 0.27), "ambient": 0.14, "diffuse": 0.8, "brilliance": 2, "specular": 0.35,
               "roughness": 26, "reflection": 0.2},
    "glass": {"color": (1, 1, 1), "diffuse": 0.01, "specular": 0.6, "roughness": 180, "reflection": 0.05,
              "refraction": 0.94, "refraction_index": 1.05},
    "water": {"color": (0.03, 0.10, 0.14), "ambient": 0.35, "diffuse": 0.15, "specular": 0.4, "roughness": 150,
              "reflection": 0.5},
}


def material(name: str, **changes: Any) -> surface:
    """A surface by its name, with some of its words changed: `material("plaster", color=(0.9, 0.5, 0.4))`.

    The names are plaster, rubber, lacquer, chrome, steel, gold, copper, glass and water; the words are those of
    `surface`. Chrome and gold are as good as what they have to mirror; water is a surface that mirrors the sky.
    """
    if name not in MATERIALS:
        raise SceneError("material", "name", name, f"one of {', '.join(MATERIALS)}")
    return surface(**{**MATERIALS[name], **changes})
