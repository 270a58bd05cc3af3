"""The picture and the eye: `settings` and `camera`."""

from __future__ import annotations

import math
from collections.abc import Iterator
from typing import TYPE_CHECKING

from . import values
from .statements import Statement, block, vector_text
from .values import Color, ColorLike, SceneError
from .vector import Point

if TYPE_CHECKING:
    from .transform import Transform

FORMATS = ("png", "jpeg", "bmp", "ppm", "tga", "tiff")


class settings(Statement):
    """What picture is made, and how. A later one replaces the first.

    `output_type`: "png", "jpeg", "bmp", "ppm", "tga" or "tiff". `output_name`: the name without the extension.
    `resolution`: width and height in pixels. `antialiasing`: "none", "quick" or "adaptive"; `aa_distance`: the
    difference of colour, of 255, at which the adaptive sampler splits a pixel. `jitter`: moves each sample at
    random. `background`: a colour. `haze_factor`: the share of haze that a unit of length adds, 0 to 1;
    `haze_color`: its colour, and with haze that of the background. `jpeg_quality`: 1 to 100.
    """

    __slots__ = ("output_type", "output_name", "resolution", "antialiasing", "aa_distance", "jitter", "background",
                 "haze_factor", "haze_color", "jpeg_quality")
    word = "settings"

    def __init__(
        self,
        *,
        output_type: str = "png",
        output_name: str = "picture",
        resolution: tuple[int, int] = (320, 240),
        antialiasing: str = "none",
        aa_distance: int = 64,
        jitter: bool = False,
        background: ColorLike = (0, 0, 0),
        haze_factor: float = 0,
        haze_color: ColorLike = (0, 0, 0),
        jpeg_quality: int = 90,
    ) -> None:
        super().__init__()
        word = self.word
        self.output_type = values.choice(word, "output_type", output_type, FORMATS,
                                         "invalid output file type specified")
        self.output_name = values.string(word, "output_name", output_name)
        try:
            width, height = resolution
        except (TypeError, ValueError):
            raise SceneError(word, "resolution", resolution, "Integer value expected") from None
        size = [values.integer(word, "resolution", side) for side in (width, height)]
        if min(size) <= 0:
            rule = f"A picture of {width} x {height} pixels cannot be rendered"
            raise SceneError(word, "resolution", resolution, rule)
        self.resolution = size
        self.antialiasing = values.choice(word, "antialiasing", antialiasing, ("none", "quick", "adaptive"),
                                          "invalid anti-aliasing type specified")
        self.aa_distance = values.integer(word, "aa_distance", aa_distance)
        if not isinstance(jitter, bool):
            raise SceneError(word, "jitter", jitter, "jitter must be either True or False")
        self.jitter = jitter
        self.background = self._color("background", background)
        self.haze_factor = values.decimal(word, "haze_factor", haze_factor)
        if not 0 <= self.haze_factor <= 1:
            rule = "the share of haze that a unit of length adds, from 0 to 1"
            raise SceneError(word, "haze_factor", haze_factor, rule)
        self.haze_color = self._color("haze_color", haze_color)
        self.jpeg_quality = values.integer(word, "jpeg_quality", jpeg_quality)
        if not 1 <= self.jpeg_quality <= 100:
            raise SceneError(word, "jpeg_quality", jpeg_quality, "1 to 100")

    def colors(self) -> Iterator[tuple[str, Color | str]]:
        yield "background", self.background
        yield "haze_color", self.haze_color

    def text(self) -> str:
        parts = [f'output_type "{self.output_type}"', f'output_name "{self.output_name}"',
                 "resolution %d %d" % tuple(self.resolution)]
        if self.antialiasing != "none":
            parts += [f'antialiasing "{self.antialiasing}"', f"aa_distance {self.aa_distance}"]
        if self.jitter:
            parts.append('jitter "yes"')
        if self.background != (0, 0, 0):
            parts.append("background " + values.color_text(self.background))
        if self.haze_factor:
            parts += [f"haze_factor {self.haze_factor!r}", "haze_color " + values.color_text(self.haze_color)]
        if self.output_type == "jpeg":
            parts.append(f"jpeg_quality {self.jpeg_quality}")
        return block(self.word, parts)


class camera(Statement):
    """The eye. A later one replaces the first.

    `position`: where it is. `look_at`: the point in the middle of the picture. `up`: what points up in the
    picture. `fov`: field of view across the width, in degrees. `ratio`: that divided by the one down the height,
    which for a picture of true shape `true_ratio` tells. `projection_type`: "flat" or "fisheye". `aperture`: half
    the width of the lens, 0 for a pinhole, sharp at `focal_length`, 10 if left out, or at the distance of
    `focal_point`; `samples`: rays through the lens for each sample of the picture.
    """

    __slots__ = ("position", "look_at", "up", "fov", "ratio", "projection_type", "aperture", "focal_length",
                 "focal_point", "samples")
    word = "camera"

    def __init__(
        self,
        *,
        position: Point,
        look_at: Point,
        up: Point = (0, 0, 1),
        fov: float = 45,
        ratio: float = 4 / 3,
        projection_type: str = "flat",
        aperture: float = 0,
        focal_length: float | None = None,
        focal_point: Point | None = None,
        samples: int = 16,
    ) -> None:
        super().__init__()
        word = self.word
        self.position = values.vector(word, "position", position)
        self.look_at = values.vector(word, "look_at", look_at)
        view = self.look_at - self.position
        if not any(view):
            raise SceneError(word, "look_at", look_at, "the point in the middle of the picture; not the position")
        self.up = values.vector(word, "up", up)
        if not any(self.up) or not any(view.unit().cross(self.up.unit())):
            raise SceneError(word, "up", up, "what points up in the picture; not along the view")
        self.fov = values.decimal(word, "fov", fov)
        self.ratio = values.decimal(word, "ratio", ratio)
        self.projection_type = values.choice(word, "projection_type", projection_type, ("flat", "fisheye"),
                                             "invalid camera projection type specified")
        self.aperture = values.decimal(word, "aperture", aperture)
        if focal_length is not None and focal_point is not None:
            raise SceneError(word, "focal_length", focal_length, "focal lenght OR focal point must be defined")
        self.focal_length = None if focal_length is None else values.decimal(word, "focal_length", focal_length)
        self.focal_point = None if focal_point is None else values.vector(word, "focal_point", focal_point)
        self.samples = values.count(word, "samples", samples, "camera samples must be greater than 0")

    def text(self) -> str:
        parts = ["position " + vector_text(self.position), "look_at " + vector_text(self.look_at)]
        if tuple(self.up) != (0, 0, 1):
            parts.append("up " + vector_text(self.up))
        parts += [f"{name} {value!r}" for name, value, usual in (
            ("fov", self.fov, 45), ("ratio", self.ratio, 4 / 3)) if value != usual]
        if self.projection_type != "flat":
            parts.append(f'projection_type "{self.projection_type}"')
        if self.aperture:
            parts += [f"aperture {self.aperture!r}", f"samples {self.samples}"]
        if self.focal_length is not None:
            parts.append(f"focal_length {self.focal_length!r}")
        if self.focal_point is not None:
            parts.append("focal_point " + vector_text(self.focal_point))
        return block(self.word, parts)

    def transformed(self, transform: Transform) -> camera:
        changes: dict[str, object] = {
            "position": transform.point(self.position),
            "look_at": transform.point(self.look_at),
            "up": transform.direction(self.up),
        }
        if self.focal_point is not None:
            changes["focal_point"] = transform.point(self.focal_point)
        if self.aperture:
            factor = transform.factor(self.word, "a lens has one aperture")
            changes["aperture"] = self.aperture * factor
            if self.focal_point is None:
                changes["focal_length"] = (10.0 if self.focal_length is None else self.focal_length) * factor
        return self._again(**changes)


def true_ratio(fov: float, width: float, height: float) -> float:
    """The `ratio` of a camera with this `fov` in degrees that shows a picture of width by height in its true shape."""
    down = 2 * math.atan(math.tan(math.radians(fov) / 2) * height / width)
    return math.radians(fov) / down
