"""What all statements share, `declare` and `include`.

The class of a statement has the name and the words of the language. It checks its values when it is made, and
raises `SceneError` with the rule for one that varlo would refuse. Lengths have no unit, angles are in degrees, and
z is up unless the camera says otherwise.
"""

from __future__ import annotations

from collections.abc import Iterator
from typing import TYPE_CHECKING, ClassVar

from . import values
from .values import Color, ColorLike, Place, SceneError
from .vector import Vec

if TYPE_CHECKING:
    from typing import Self

    from .transform import Transform


class Statement:
    """One statement of a scene; `place` is the line of Python that made it."""

    __slots__ = ("place",)
    word: ClassVar[str]
    place: Place

    def __init__(self) -> None:
        self.place = values.caller()

    def text(self) -> str:
        """The statement as a line of a scene, without the line's end."""
        raise NotImplementedError

    def transformed(self, transform: Transform) -> Self:
        """A copy in its new place; the thing itself where it has none."""
        return self

    def colors(self) -> Iterator[tuple[str, Color | str]]:
        """The colours that may be names, each with its argument."""
        return iter(())

    def check_color(self, argument: str, color: Color, shown: ColorLike) -> None:
        """Raises `SceneError` where the statement has no room for the colour."""

    def __repr__(self) -> str:
        return self.text()

    def _again(self, **changes: object) -> Self:
        """The same from the same line with words changed, checked once more: rounding can bring points together."""
        words = [name for kind in type(self).__mro__ for name in getattr(kind, "__slots__", ()) if name != "place"]
        other = type(self)(**{name: getattr(self, name) for name in words} | changes)
        other.place = self.place
        return other

    def _color(self, argument: str, value: ColorLike) -> Color | str:
        made = values.color(self.word, argument, value)
        if not isinstance(made, str):
            self.check_color(argument, made, value)
        return made


def block(word: str, parts: list[str]) -> str:
    """A statement with its words and values."""
    return tidy(f"{word} {{ {'  '.join(parts)} }}" if parts else f"{word} {{ }}")


def tidy(text: str) -> str:
    """Takes away the point of whole numbers: `<1.0 2.0 3.5>` becomes `<1 2 3.5>`."""
    return text.replace(".0 ", " ").replace(".0>", ">")


def vector_text(vector: Vec) -> str:
    """The vector as a scene has it."""
    return "<%r %r %r>" % vector


class declare(Statement):
    """Names a colour for what follows: `color="#NAME"`, or the statement itself in place of a colour.

    `name`: one word of at most 63 characters. A later declaration hides an earlier one.
    """

    __slots__ = ("name", "color")
    word = "declare"

    def __init__(self, name: str, color: ColorLike) -> None:
        super().__init__()
        self.name = values.string(self.word, "name", name)
        if len(name) > 63:
            raise SceneError(self.word, "name", name, "declared name too long: at most 63 characters")
        made = values.color(self.word, "color", color)
        if isinstance(made, str):
            raise SceneError(self.word, "color", color, "Decimal value expected")
        self.color: Color = made

    def text(self) -> str:
        return f'declare "{self.name}" color ' + values.color_text(self.color)


class include(Statement):
    """Reads another file here. The name is looked up in the folder in which varlo runs."""

    __slots__ = ("name",)
    word = "include"

    def __init__(self, name: str) -> None:
        super().__init__()
        self.name = values.string(self.word, "name", name)

    def transformed(self, transform: Transform) -> include:
        raise SceneError(self.word, "name", self.name, "an included file stays as it stands; nothing moves it")

    def text(self) -> str:
        return f'include "{self.name}"'
