"""Checks of the values that statements are given; the rules have the words of the program and its manual."""

from __future__ import annotations

import re
import sys
from collections.abc import Iterable
from types import FrameType
from typing import SupportsFloat, SupportsIndex

from .run import VarloError
from .vector import Point, Vec

#: A file and a line of Python.
Place = tuple[str, int]
Color = tuple[float, float, float]
#: Red, green and blue, or a declared name behind a `#`.
ColorLike = Iterable[SupportsFloat] | str

_WORD = re.compile(r"[A-Za-z][A-Za-z0-9_.\\:]{0,254}|[0-9+.-][0-9+.eE-]{0,254}")
_LARGEST = 2**31 - 1
COLOR_RULE = "invalid color component(s)"


class SceneError(VarloError, ValueError):
    """A value that the language has no room for: which statement, which argument, which value, and the rule."""

    def __init__(self, statement: str, argument: str, value: object, rule: str) -> None:
        shown = repr(value)
        if len(shown) > 80:
            shown = shown[:77] + "..."
        super().__init__(f"{statement}: {argument} = {shown}: {rule}" if argument else f"{statement}: {rule}")
        self.statement = statement
        self.argument = argument
        self.value = value
        self.rule = rule


def caller() -> Place:
    """The line outside of this package that is being run."""
    frame: FrameType | None = sys._getframe(1)
    while frame is not None and frame.f_globals.get("__package__") == __package__:
        frame = frame.f_back
    return ("?", 0) if frame is None else (frame.f_code.co_filename, frame.f_lineno)


def decimal(statement: str, argument: str, value: SupportsFloat) -> float:
    """A finite number."""
    try:
        number = float(value) if not isinstance(value, str) else None
    except (TypeError, ValueError, OverflowError):
        number = None
    if number is None or number - number != 0.0:  # infinities and what is no number have no text
        raise SceneError(statement, argument, value, "Decimal value expected")
    return number


def integer(statement: str, argument: str, value: SupportsIndex) -> int:
    """A whole number of 32 bits."""
    try:
        number = value.__index__()
    except (AttributeError, TypeError):
        number = None
    if number is None or not -_LARGEST - 1 <= number <= _LARGEST:
        raise SceneError(statement, argument, value, "Integer value expected")
    return number


def above(statement: str, argument: str, value: SupportsFloat, rule: str) -> float:
    """A number above 0."""
    number = decimal(statement, argument, value)
    if not number > 0.0:
        raise SceneError(statement, argument, value, rule)
    return number


def count(statement: str, argument: str, value: SupportsIndex, rule: str) -> int:
    """A whole number above 0."""
    number = integer(statement, argument, value)
    if not number > 0:
        raise SceneError(statement, argument, value, rule)
    return number


def vector(statement: str, argument: str, value: Point) -> Vec:
    """Three finite numbers."""
    try:
        if not isinstance(value, str):
            x, y, z = value
            x, y, z = float(x), float(y), float(z)
            if (x - x) + (y - y) + (z - z) == 0.0:  # infinities and what is no number fail
                return tuple.__new__(Vec, (x, y, z))  # half the time of Vec(x, y, z)
    except (TypeError, ValueError, OverflowError):
        pass
    raise SceneError(statement, argument, value, "a vector is three decimals, x, y and z")


def direction(statement: str, argument: str, value: Point, rule: str) -> Vec:
    """A vector of any length but 0."""
    made = vector(statement, argument, value)
    if not any(made):
        raise SceneError(statement, argument, value, rule)
    return made


def vectors(statement: str, argument: str, value: Iterable[Point], wanted: int, few: str, many: str) -> list[Vec]:
    """As many vectors as wanted."""
    made = [vector(statement, f"{argument}[{at}]", item) for at, item in enumerate(value)]
    if len(made) != wanted:
        raise SceneError(statement, argument, made, few if len(made) < wanted else many)
    return made


def choice(statement: str, argument: str, value: str, words: tuple[str, ...], rule: str) -> str:
    """One of the words."""
    if value not in words:
        raise SceneError(statement, argument, value, f"{rule}: one of {', '.join(words)}")
    return value


def string(statement: str, argument: str, value: str) -> str:
    """What can stand between double quotes: one word or one number of at most 255 characters."""
    if not isinstance(value, str) or not _WORD.fullmatch(value):
        rule = "a string is one word or one number: a letter, then letters, digits, _ . \\ and :, at most 255 in all"
        raise SceneError(statement, argument, value, rule)
    return value


def color(statement: str, argument: str, value: ColorLike) -> Color | str:
    """Three numbers, or a declared name with its `#`; the range is the affair of the statement."""
    if isinstance(value, str):
        if not value.startswith("#") or not _WORD.fullmatch(value[1:]):
            raise SceneError(statement, argument, value, "a colour is three decimals, or # and a declared name")
        return value
    try:
        red, green, blue = value
        made = decimal("", "", red), decimal("", "", green), decimal("", "", blue)
    except (TypeError, ValueError):
        rule = "a colour is three decimals, red, green and blue"
        raise SceneError(statement, argument, value, rule) from None
    return made


def color_text(value: Color | str) -> str:
    """The colour as a scene has it."""
    return value if isinstance(value, str) else "%r %r %r" % value
