"""Text in three dimensions, from the outlines of a font; needs fontTools (apt-get install python3-fonttools)."""

from __future__ import annotations

import importlib
import os
import shutil
import subprocess
from pathlib import Path
from typing import Any

from . import values
from .meshes import mesh
from .objects import polygon, triangle
from .run import VarloError
from .values import SceneError
from .vector import Vec
from .writer import Group, Item, group

Contour = list[tuple[float, float]]


def text(
    string: str,
    font: str | os.PathLike[str] = "DejaVu Sans:bold",
    *,
    size: float = 1,
    depth: float = 0.2,
    align: str = "left",
    steps: int = 6,
) -> Group:
    """Letters that stand on the x axis, look along y to the viewer at negative y, and have z up.

    `font`: a file (.ttf, .otf), or a name as `fc-match` understands it. `size`: of the font, in lengths: capitals
    are some 0.7 of it. `depth`: how far they go along y, 0 for flat ones. `align`: "left", "center" or "right" of
    the origin. `steps`: straight lines for each curve of an outline. Lines of text are parted by line ends.

    Raises `VarloError` without fontTools and for a font that is not found.
    """
    values.above("text", "size", size, "a size is above 0")
    if not depth >= 0:
        raise SceneError("text", "depth", depth, "a depth is 0 or above")
    share = values.choice("text", "align", align, ("left", "center", "right"), "invalid alignment")
    opened = _font(font)
    glyphs, names = opened.getGlyphSet(), opened.getBestCmap()
    scale = size / opened["head"].unitsPerEm
    letters: list[Item] = []
    for number, line in enumerate(string.split("\n")):
        line_letters: list[tuple[float, list[Contour]]] = []
        place = 0.0
        for character in line:
            glyph = glyphs[names.get(ord(character), ".notdef")]
            line_letters.append((place, _outline(glyph, glyphs, scale, steps)))
            place += glyph.width * scale
        begin = {"left": 0.0, "center": -place / 2, "right": -place}[share]
        for left, contours in line_letters:
            if contours:
                letters.append(_letter(contours, Vec(begin + left, 0, -1.2 * size * number), depth))
    return group(*letters)


def _font(font: str | os.PathLike[str]) -> Any:
    try:
        fonts: Any = importlib.import_module("fontTools.ttLib")
    except ImportError:
        raise VarloError("text needs fontTools: apt-get install python3-fonttools, or pip install fonttools") from None
    path = Path(font)
    if len(path.parts) == 1 and not path.is_file() and shutil.which("fc-match"):
        asked = ["fc-match", "-f", "%{file}", os.fspath(font)]
        path = Path(subprocess.run(asked, capture_output=True, text=True, check=False).stdout)
    if not path.is_file():
        raise VarloError(f"the font {font} is not found; name its file")
    return fonts.TTFont(path, fontNumber=0)


def _outline(glyph: Any, glyphs: Any, scale: float, steps: int) -> list[Contour]:
    """The closed lines round a glyph, with straight pieces in place of curves, no point twice in a row."""
    pens: Any = importlib.import_module("fontTools.pens.basePen")
    contours: list[Contour] = []

    class Pen(pens.BasePen):  # type: ignore[misc]
        def _moveTo(self, point: tuple[float, float]) -> None:
            contours.append([point])

        def _lineTo(self, point: tuple[float, float]) -> None:
            contours[-1].append(point)

        def _curveToOne(self, b: tuple[float, float], c: tuple[float, float], d: tuple[float, float]) -> None:
            a = contours[-1][-1]
            for t in (at / steps for at in range(1, steps + 1)):
                weights = ((1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t ** 3)
                x, y = (sum(w * p[axis] for w, p in zip(weights, (a, b, c, d), strict=True)) for axis in (0, 1))
                contours[-1].append((x, y))

    glyph.draw(Pen(glyphs))
    closed = []
    for contour in contours:
        scaled = [(x * scale, y * scale) for x, y in contour]
        points = [point for at, point in enumerate(scaled) if point != scaled[at - 1]]
        if len(points) > 2:
            closed.append(points)
    return closed


def _letter(contours: list[Contour], place: Vec, depth: float) -> Group:
    """The front, the back and the sides of a letter."""
    # One line round all contours: from the first one to each other and back the same way, which encloses nothing.
    # What it encloses twice is a hole, as it is in the font.
    first, *others = contours
    first = _turned(first)
    line = first + ([first[0]] if others else [])
    for contour in others:
        line += contour + [contour[0], first[0]]
    shape = triangle if len(line) == 3 else polygon
    parts: list[Item] = [shape(vertex=[place + (x, y, z) for x, z in line]) for y in ({0.0, depth})]
    if depth > 0:
        for contour in contours:
            ends = [place + (x, y, z) for x, z in contour for y in (0.0, depth)]
            count = len(ends)
            faces = [(at, (at + 2) % count, (at + 3) % count, at + 1) for at in range(0, count, 2)]
            parts.append(mesh(ends, faces, smooth=30))
    return group(*parts)


def _turned(contour: Contour) -> Contour:
    """The contour from the corner at which three points give its plane best."""
    def area(at: int) -> float:
        (ax, ay), (bx, by), (cx, cy) = (contour[(at + step) % len(contour)] for step in range(3))
        return abs((bx - ax) * (cy - ay) - (by - ay) * (cx - ax))
    best = max(range(len(contour)), key=area)
    return contour[best:] + contour[:best]
