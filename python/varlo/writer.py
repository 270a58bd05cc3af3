"""Writes the things of a scene as text, one statement on a line, in order and without keeping them."""

from __future__ import annotations

from array import array
from bisect import bisect_right
from collections.abc import Callable, Iterable, Iterator
from typing import TYPE_CHECKING, TextIO, Union

from .many import Many
from .objects import Object
from .shading import surface
from .statements import Statement, declare, include
from .values import Color, Place, SceneError

if TYPE_CHECKING:
    from .transform import Transform

#: A statement, a mesh, a group, something that yields such things, or a function that gives something that does.
Item = Union[Statement, Many, "Group", Iterable["Item"], Callable[[], Iterable["Item"]]]

# Lines that are kept before they are written.
LINES = 4096


class Group:
    """Things that are added, moved and turned together; the function `group` makes one."""

    def __init__(self, items: Iterable[Item], surface: surface | None, transform: Transform | None = None) -> None:
        self.surface = surface
        self.transform = transform
        self.items: list[Item] = []
        self.add(*items)

    def add(self, *items: Item) -> None:
        """Adds more, which goes where the group has gone."""
        self.items += (_Once(item) if isinstance(item, Iterator) else item for item in items)

    def transformed(self, transform: Transform) -> Group:
        """The group in its new place. What varlo cannot hold there is told when the group is written."""
        return Group(self.items, self.surface, transform if self.transform is None else transform @ self.transform)


def group(*items: Item, surface: surface | None = None) -> Group:
    """Makes one thing of several: statements, meshes, groups, and whatever yields them, which is asked when written.

    `surface`: how all of it looks. A surface that stands among the items holds up to the end of the group.
    """
    return Group(items, surface)


class _Once:
    """A generator, which gives its things a single time: the second time is an error and not an empty scene."""

    def __init__(self, items: Iterator[Item]) -> None:
        self.items: Iterator[Item] | None = items

    def __iter__(self) -> Iterator[Item]:
        items, self.items = self.items, None
        if items is None:
            raise SceneError("scene", "", None, "a generator gives its things once; add the function that makes it, "
                                                "and it is called each time that the scene is written")
        return items


class Writer:
    """One text of a scene in the making."""

    def __init__(self, out: TextIO) -> None:
        self.out = out
        self.words: set[str] = set()  # of the statements that were written
        self.lines = 0
        self._kept: list[str] = []
        self._declared: dict[str, Color] = {}
        self._wanted: surface | None = None  # the surface of the next object
        self._written: surface | None = None  # the one that the text has last
        # Where in Python the lines come from: the first line of each run with one place, and the number of the place.
        self._firsts = array("L")
        self._places = array("L")
        self._known: dict[Place, int] = {}
        self._place: Place | None = None

    def add(self, item: Item, transform: Transform | None = None) -> None:
        """Writes one thing and all that is in it, moved by the transformation."""
        if isinstance(item, Statement):
            self._statement(item if transform is None else item.transformed(transform))
        elif isinstance(item, Many):
            self._many(item if transform is None else item.transformed(transform))
        elif isinstance(item, Group):
            outer = self._wanted
            if item.surface is not None:
                self._wanted = item.surface
            if item.transform is not None:
                transform = item.transform if transform is None else transform @ item.transform
            for part in item.items:
                self.add(part, transform)
            self._wanted = outer
        else:
            try:
                parts = iter(item() if callable(item) else item)
            except TypeError:
                raise SceneError("scene", "", None, f"neither a statement nor a mesh nor a group: {item!r}") from None
            for part in parts:
                self.add(part, transform)

    def end(self) -> None:
        """Writes what is left; raises `SceneError` where varlo would miss a block."""
        self._flush()
        for word in ("camera", "settings", "surface"):
            if word not in self.words and "include" not in self.words:
                raise SceneError("scene", "", None, f"Missing {word}!")

    def place_of(self, line: int) -> Place | None:
        """The line of Python that made a line of the text, counted from 1."""
        run = bisect_right(self._firsts, line - 1) - 1
        return None if run < 0 else list(self._known)[self._places[run]]

    def _statement(self, statement: Statement) -> None:
        if isinstance(statement, Object):
            if self._wanted is not self._written or self._wanted is None:
                self._use_surface(statement.word)
        elif isinstance(statement, surface):
            self._wanted = statement
            self._use_surface(statement.word)
            return
        else:
            self._check_colors(statement)
            self.words.add(statement.word)
            if isinstance(statement, declare):
                self._declared[statement.name] = statement.color
            elif isinstance(statement, include):
                self._wanted = self._written = None  # the file may have one
        self._line(statement.text(), statement.place)

    def _many(self, many: Many) -> None:
        outer = self._wanted
        for chosen, text, lines in many.parts():
            if chosen is not None:
                self._wanted = chosen
            if self._wanted is not self._written or self._wanted is None:
                self._use_surface(type(many).__name__.lower())
            self._from(many.place)
            self._flush()
            self.out.write(text)
            self.lines += lines
        self._wanted = outer

    def _use_surface(self, what: str) -> None:
        wanted = self._wanted
        if wanted is None and "include" not in self.words:
            raise SceneError(what, "", None, "no surface stands in front of it, so it would be black")
        if wanted is not None:
            self._check_colors(wanted)
            self.words.add("surface")
            if self._written is None or wanted.text() != self._written.text():
                self._line(wanted.text(), wanted.place)
            self._written = wanted

    def _check_colors(self, statement: Statement) -> None:
        """Looks names of colours up; those that an included file may declare are left to varlo."""
        for argument, color in statement.colors():
            if isinstance(color, str):
                value = self._declared.get(color[1:])
                if value is not None:
                    statement.check_color(argument, value, color)
                elif "include" not in self.words:
                    raise SceneError(statement.word, argument, color, "Color declaration not found")

    def _line(self, text: str, place: Place) -> None:
        if place != self._place:
            self._from(place)
        self._kept.append(text)
        self.lines += 1
        if len(self._kept) == LINES:
            self._flush()

    def _from(self, place: Place) -> None:
        if place != self._place:
            self._place = place
            self._firsts.append(self.lines)
            self._places.append(self._known.setdefault(place, len(self._known)))

    def _flush(self) -> None:
        if self._kept:
            self._kept.append("")
            self.out.write("\n".join(self._kept))
            self._kept.clear()
