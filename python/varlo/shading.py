"""Lamps and surfaces: `light` and `surface`."""

from __future__ import annotations

from collections.abc import Iterator
from typing import TYPE_CHECKING, SupportsFloat

from . import values
from .statements import Statement, block, vector_text
from .values import COLOR_RULE, Color, ColorLike, SceneError
from .vector import Point

if TYPE_CHECKING:
    from .transform import Transform


class light(Statement):
    """One more lamp; lamps are never seen themselves.

    `position`: where it is. `color`: each part above 0, also above 1. `light_type`: "point", or "spot", which
    needs a `target`; it is full across `min_angle` and dark outside `max_angle`, in degrees. `attenuation_type`:
    "none", "d" divides by the distance, "d2" by its square. `shadow_type`: "sharp", or "smooth", which needs a
    `radius`, the size of the lamp, and `light_samples`, the rays to it from each point.
    """

    __slots__ = ("position", "color", "light_type", "target", "min_angle", "max_angle", "attenuation_type",
                 "shadow_type", "radius", "light_samples")
    word = "light"

    def __init__(
        self,
        *,
        position: Point,
        color: ColorLike,
        light_type: str = "point",
        target: Point | None = None,
        min_angle: float = 10,
        max_angle: float = 30,
        attenuation_type: str = "d2",
        shadow_type: str = "sharp",
        radius: float | None = None,
        light_samples: int | None = None,
    ) -> None:
        super().__init__()
        word = self.word
        missing = "Error in light structure - missing parameters"
        self.position = values.vector(word, "position", position)
        self.color = self._color("color", color)
        self.light_type = values.choice(word, "light_type", light_type, ("point", "spot"),
                                        "invalid light type specified")
        self.target = None if target is None else values.vector(word, "target", target)
        if self.target is not None:
            way = self.target - self.position
            # As varlo computes it: a way so short that its square is 0 is none.
            if way.dot(way) == 0.0:
                raise SceneError(word, "target", target, "Error in light structure - invalid target")
        elif light_type == "spot":
            raise SceneError(word, "target", target, missing)
        self.min_angle = values.decimal(word, "min_angle", min_angle)
        self.max_angle = values.decimal(word, "max_angle", max_angle)
        self.attenuation_type = values.choice(word, "attenuation_type", attenuation_type, ("none", "d", "d2"),
                                              "invalid light attenuation type specified")
        self.shadow_type = values.choice(word, "shadow_type", shadow_type, ("sharp", "smooth"),
                                         "invalid shadow type specified")
        self.radius = None
        if radius is not None:
            self.radius = values.above(word, "radius", radius, "smooth light radius must be greater than 0")
        self.light_samples = None
        if light_samples is not None:
            self.light_samples = values.count(word, "light_samples", light_samples,
                                              "smooth light samples must be greater than 0")
        if shadow_type == "smooth":
            for argument, given in (("radius", radius), ("light_samples", light_samples)):
                if given is None:
                    raise SceneError(word, argument, given, missing)

    def colors(self) -> Iterator[tuple[str, Color | str]]:
        yield "color", self.color

    def check_color(self, argument: str, color: Color, shown: ColorLike) -> None:
        if not min(color) > 0.0:
            raise SceneError(self.word, argument, shown, COLOR_RULE + ": each part above 0; write 0.001 for none")

    def text(self) -> str:
        parts = ["position " + vector_text(self.position), "color " + values.color_text(self.color)]
        if self.target is not None:
            parts.append("target " + vector_text(self.target))
        if self.light_type == "spot":
            parts += ['light_type "spot"', f"min_angle {self.min_angle!r}", f"max_angle {self.max_angle!r}"]
        parts.append(f'attenuation_type "{self.attenuation_type}"')
        if self.shadow_type == "smooth":
            parts += ['shadow_type "smooth"', f"radius {self.radius!r}", f"light_samples {self.light_samples}"]
        return block(self.word, parts)

    def transformed(self, transform: Transform) -> light:
        changes: dict[str, object] = {"position": transform.point(self.position)}
        if self.target is not None:
            changes["target"] = transform.point(self.target)
        if self.radius is not None and self.shadow_type == "smooth":
            changes["radius"] = self.radius * transform.factor(self.word, "a smooth light has one radius")
        return self._again(**changes)


class surface(Statement):
    """How the objects behind it look, up to the next surface, the end of the group or the end of the scene.

    What it shows is the sum of its terms. `color`: each part from 0 to 1. `ambient`: share of the colour that
    needs no light. `diffuse`: weight of the light that falls on it; `brilliance`: exponent on the cosine of that
    light, of use above 1. `specular`: weight of the highlight; `roughness`: its exponent, larger makes it
    smaller. `reflection`: weight of what it mirrors; `reflection_type`: "sharp" or "fuzzy", with a blur of
    `reflection_radius` by `reflection_samples` rays. `refraction`: weight of what is seen through it;
    `refraction_index`: 1 or more, and only above 1 can it be seen through.
    """

    __slots__ = ("color", "_text")
    word = "surface"

    def __init__(
        self,
        *,
        color: ColorLike = (0, 0, 0),
        ambient: float = 0,
        diffuse: float = 0,
        brilliance: float = 0,
        specular: float = 0,
        roughness: float = 0,
        reflection: float = 0,
        reflection_type: str = "sharp",
        reflection_radius: float = 1,
        reflection_samples: int = 10,
        refraction: float = 0,
        refraction_index: float = 1,
    ) -> None:
        super().__init__()
        word = self.word
        self.color = self._color("color", color)
        weights: dict[str, SupportsFloat] = {
            "ambient": ambient, "diffuse": diffuse, "brilliance": brilliance, "specular": specular,
            "roughness": roughness, "reflection": reflection, "reflection_radius": reflection_radius,
            "refraction": refraction, "refraction_index": refraction_index,
        }
        numbers = {name: values.decimal(word, name, value) for name, value in weights.items()}
        if not numbers["refraction_index"] >= 1:
            rule = "indice of refraction cannot be lower than 1.0"
            raise SceneError(word, "refraction_index", refraction_index, rule)
        values.choice(word, "reflection_type", reflection_type, ("sharp", "fuzzy"), "invalid reflection type specified")
        samples = values.count(word, "reflection_samples", reflection_samples, "0 or less mirror black")
        parts = ["color " + values.color_text(self.color)]
        defaults = {"reflection_radius": 1, "refraction_index": 1}
        parts += [f"{name} {value!r}" for name, value in numbers.items() if value != defaults.get(name, 0)]
        if reflection_type != "sharp":
            parts.append(f'reflection_type "{reflection_type}"')
        if samples != 10:
            parts.append(f"reflection_samples {samples}")
        self._text = block(word, parts)

    def colors(self) -> Iterator[tuple[str, Color | str]]:
        yield "color", self.color

    def check_color(self, argument: str, color: Color, shown: ColorLike) -> None:
        if not (min(color) >= 0.0 and max(color) <= 1.0):
            raise SceneError(self.word, argument, shown, COLOR_RULE + ": each part from 0 to 1")

    def text(self) -> str:
        return self._text
