"""A scene: filled in order, written to a file."""

from __future__ import annotations

import os
from contextlib import suppress
from pathlib import Path
from typing import TextIO

from .shading import surface
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

    def _write(self, out: TextIO) -> Writer:
        writer = Writer(out)
        writer.add(self._all)
        writer.end()
        return writer
