"""What many objects that are made text together have in common."""

from __future__ import annotations

from collections.abc import Iterable, Iterator, Sequence
from typing import TYPE_CHECKING, Any, TypeVar

from . import values
from .arrays import numpy
from .shading import surface
from .values import SceneError

if TYPE_CHECKING:
    from typing import Self

    from .transform import Transform

# Objects that are made text at once.
BLOCK = 16384

M = TypeVar("M", bound="Many")


class Many:
    """Objects of one kind, with one surface or with one of several for each."""

    __slots__ = ("place", "surfaces", "which")

    def __init__(self, surfaces: Sequence[surface], which: Any) -> None:
        self.place = values.caller()
        self.surfaces = list(surfaces)
        self.which = which  # the number of its surface, for each object

    def __len__(self) -> int:
        raise NotImplementedError

    def transformed(self, transform: Transform) -> Self:
        """The objects in their new places."""
        raise NotImplementedError

    def text(self, block: Any) -> tuple[int, str]:
        """The number and the text of some objects, which a slice or a list of numbers tells."""
        raise NotImplementedError

    def array_text(self, block: Any) -> tuple[int, str]:
        """The same of NumPy arrays."""
        raise NotImplementedError

    def like(self, other: M) -> M:
        """The other one, which comes from the same line of Python."""
        other.place = self.place
        return other

    def parts(self) -> Iterator[tuple[surface | None, str, int]]:
        """The text, block by block: each with its surface, if it has one, and its number of lines."""
        np = numpy()
        if not self.surfaces:
            groups: Iterable[tuple[surface | None, Any]] = [(None, None)]
        elif np is None:
            groups = [(chosen, [at for at, one in enumerate(self.which) if one == number])
                      for number, chosen in enumerate(self.surfaces)]
        else:
            order = np.argsort(self.which, kind="stable")
            bounds = np.searchsorted(self.which[order], np.arange(len(self.surfaces) + 1))
            groups = ((chosen, order[bounds[number]:bounds[number + 1]])
                      for number, chosen in enumerate(self.surfaces))
        for chosen, numbers in groups:
            for first in range(0, len(self) if numbers is None else len(numbers), BLOCK):
                block: Any = slice(first, first + BLOCK) if numbers is None else numbers[first:first + BLOCK]
                lines, text = self.array_text(block) if np is not None else self.text(block)
                if "inf" in text or "nan" in text:  # no word of these objects has either
                    raise SceneError(type(self).__name__.lower(), "", None, "its numbers are too large there")
                yield chosen, text, lines


def rows(form: str, array: Any) -> list[str]:
    """The rows of an array in a form, and an empty one behind them."""
    return ((form + "\n") * len(array) % tuple(array.ravel().tolist())).split("\n")
