"""Colours: maps from numbers to colours, and a row of surfaces for them."""

from __future__ import annotations

import importlib
from collections.abc import Callable, Sequence
from typing import Any

from .shading import surface
from .values import Color, SceneError

#: Gives the colour of a number from 0 to 1; what lies outside has the colour of the nearer end.
Map = Callable[[float], Color]

# Five colours each, at 0, 1/4, 1/2, 3/4 and 1, brighter from step to step but for the last, which has two ends.
OWN: dict[str, list[Color]] = {
    "dusk": [(0.07, 0.05, 0.20), (0.36, 0.13, 0.44), (0.72, 0.22, 0.38), (0.95, 0.50, 0.28), (0.99, 0.90, 0.62)],
    "leaf": [(0.16, 0.08, 0.33), (0.19, 0.32, 0.55), (0.13, 0.56, 0.55), (0.40, 0.78, 0.38), (0.97, 0.90, 0.30)],
    "sea": [(0.02, 0.10, 0.25), (0.05, 0.30, 0.50), (0.20, 0.58, 0.68), (0.60, 0.84, 0.84), (0.95, 0.98, 0.96)],
    "earth": [(0.16, 0.28, 0.13), (0.34, 0.42, 0.20), (0.52, 0.46, 0.30), (0.60, 0.55, 0.49), (0.96, 0.96, 0.97)],
    "poles": [(0.17, 0.32, 0.65), (0.56, 0.70, 0.87), (0.93, 0.92, 0.90), (0.93, 0.60, 0.47), (0.70, 0.10, 0.15)],
}


def rgb(text: str) -> Color:
    """The colour of six hexadecimal digits, as pages and drawing programs write it: `rgb("ff8800")`."""
    digits = text.removeprefix("#")
    try:
        if len(digits) != 6:
            raise ValueError
        red, green, blue = bytes.fromhex(digits)
    except ValueError:
        raise SceneError("rgb", "text", text, "six hexadecimal digits") from None
    return red / 255, green / 255, blue / 255


def mix(first: Color, second: Color, share: float) -> Color:
    """The colour between two: the first at a share of 0, the second at 1."""
    red, green, blue = (a + (b - a) * share for a, b in zip(first, second, strict=True))
    return red, green, blue


def gradient(colors: Sequence[Color]) -> Map:
    """A map that goes evenly through these colours, two or more."""
    if len(colors) < 2:
        raise SceneError("gradient", "colors", colors, "two colours or more")

    def color(value: float) -> Color:
        place = min(max(value, 0.0), 1.0) * (len(colors) - 1)
        at = min(int(place), len(colors) - 2)
        return mix(colors[at], colors[at + 1], place - at)
    return color


def colormap(name: str) -> Map:
    """A map by its name: dusk, leaf, sea, earth or poles, and those of matplotlib where it is installed."""
    if name in OWN:
        return gradient(OWN[name])
    try:
        maps: Any = importlib.import_module("matplotlib").colormaps
    except ImportError:
        rule = f"one of {', '.join(OWN)}; matplotlib, which has more, is not installed"
        raise SceneError("colormap", "name", name, rule) from None
    if name not in maps:
        raise SceneError("colormap", "name", name, f"one of {', '.join(OWN)}, or a map of matplotlib")
    found = maps[name]

    def color(value: float) -> Color:
        red, green, blue, _ = found(min(max(float(value), 0.0), 1.0))
        return float(red), float(green), float(blue)
    return color


def shades(colors: str | Map, steps: int, **words: Any) -> list[surface]:
    """Surfaces that go through a map in `steps`, for the `surfaces` of a mesh; `words` are those of `surface`."""
    chosen = colormap(colors) if isinstance(colors, str) else colors
    if steps < 2:
        raise SceneError("shades", "steps", steps, "two steps or more")
    return [surface(color=chosen(at / (steps - 1)), **words) for at in range(steps)]
