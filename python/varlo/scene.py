"""A scene: filled in order, written to a file."""

from __future__ import annotations

import os
from collections.abc import Callable
from contextlib import suppress
from pathlib import Path
from typing import TextIO

from . import rendering
from .picture import Picture
from .rendering import FORMATS
from .shading import surface
from .view import settings
from .writer import Group, Item, Writer


class Scene:
    """What varlo renders: settings, a camera, lamps, and surfaces with the objects behind them, in order."""

    def __init__(self, *items: Item) -> None:
        self._all = Group(items, None)

    def add(self, *items: Item, surface: surface | None = None) -> None:
        """Adds statements, meshes and groups, and whatever yields them: a list, a generator, a function to be called.

        Generators are asked when the scene is written, so that a million objects need no memory; a generator can be
        written once, a function as often as wanted. `surface`: how these items look, whatever stands in front.
        """
        self._all.add(*items) if surface is None else self._all.add(Group(items, surface))

    def write(self, path: str | os.PathLike[str] | TextIO) -> None:
        """Writes the scene to a file that appears when it is whole, or to an open text file.

        A scene without settings gets the default ones.
        Raises `SceneError` for what varlo would refuse, and for a transformation that it cannot hold.
        """
        if not isinstance(path, (str, os.PathLike)):
            self._write(path)
            return
        target = Path(path)
        part = target.with_name(f".{target.name}.{os.getpid()}.part")
        try:
            with open(part, "w", encoding="ascii") as out:
                self._write(out)
            os.replace(part, target)
        finally:
            with suppress(FileNotFoundError):
                part.unlink()

    def render(
        self,
        path: str | os.PathLike[str] | None = None,
        *,
        width: int | None = None,
        height: int | None = None,
        antialias: str | int | None = None,
        jitter: bool = False,
        threads: int | None = None,
        queue: int = 1000,
        binary: str | None = None,
        progress: Callable[[float], None] | None = None,
    ) -> Picture:
        """Renders the scene with varlo and gives back the picture, which a notebook shows.

        `path`: the picture, which appears when it is whole; its ending tells the format. Left out, the picture has
        the name and the format of the settings, in the working directory.
        `width`, `height`: pixels. `antialias`: "none", "quick", or a number: the `aa_distance` of the adaptive
        sampler, of 255. `threads`: 2, 4 or 8, left out by the number of processors. `queue`: entries of the queue of
        a ray, at least 100; more change nothing in the picture, and scenes that programs make fill a short one.
        What is left out of the others is as the settings say. `binary`: the program, if it is not on
        PATH. `progress`: called with the share that is done, from 0 to 1; left out, a terminal shows a bar and a
        notebook per cents.

        Ctrl+C, the stop button of a notebook and an exception of `progress` end varlo at once, and leave nothing.
        Raises `Fault` for a run that did not end well, with the line of Python that made the statement at fault.
        """
        arguments = rendering.options(width, height, antialias, jitter, threads, queue)
        chosen = self._settings()
        target = Path(chosen.output_name + FORMATS[chosen.output_type][1]) if path is None else Path(path)

        def write(scene: Path) -> Writer:
            with open(scene, "w", encoding="ascii") as out:
                return self._write(out)
        return rendering.render(write, target, arguments, binary, progress)

    def _settings(self) -> settings:
        """The settings that count, the last ones that stand in the scene itself; else the defaults."""
        found = [item for item in self._all.items if isinstance(item, settings)]
        return found[-1] if found else settings()

    def _write(self, out: TextIO) -> Writer:
        writer = Writer(out)
        writer.add(self._all)
        if not writer.words & {"settings", "include"}:
            writer.add(settings())
        writer.end()
        return writer
