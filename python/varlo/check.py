"""varlo-check: is a scene all right, without rendering it?"""

import argparse
import math
import os
import sys
from collections.abc import Callable, Iterator, Sequence
from dataclasses import dataclass
from pathlib import Path

from varlo.blocks import Block, Colours, declare, read_block
from varlo.run import VarloError, ended_by_signals, run, scratch_folder
from varlo.scan import BLOCKS, kind_of, placed, statements, unreadable, working_folder

OBJECTS = BLOCKS - {"camera", "settings", "light", "surface"}
VISIBLE = 0.5 / 255  # less than this rounds to no step of a picture
JAGGED = 32
STRETCH = 0.05

WARNINGS = {
    "early-object": "an object ahead of the first surface, which is black",
    "dim-lamp": "a lamp without attenuation_type that is too far away from everything to add light",
    "glowing-rim": "a refraction whose colour has a channel at 1 and another one below",
    "stretched": "a picture whose shape is not that of the camera's ratio",
    "jagged": f"an adaptive threshold above {JAGGED}, which leaves edges jagged",
    "far-include": "an included file that does not lie beside the scene",
    "low-index": "a refraction_index below 1, for which 1 is taken",
    "unlit": "a scene without a light",
}


@dataclass(frozen=True)
class Finding:
    file: Path
    line: int
    message: str
    name: str | None = None  # of a warning

    def __str__(self) -> str:
        kind = "" if self.name is None else "warning: "
        tail = "" if self.name is None else f" [{self.name}]"
        return f"{self.file}:{self.line}: {kind}{self.message}{tail}"


# ---- warnings ----


def warning(block: Block, name: str, word: str, message: str) -> Finding:
    return Finding(block.statement.source.path, block.line(word), message, name)


def scene_warnings(scene: Path, folder: Path) -> Iterator[Finding]:
    colours: Colours = {}
    views: dict[str, Block] = {}
    lamps = []
    has_surface = has_light = False
    for statement in statements(scene, folder):
        word = statement.word
        if word == "declare":
            declare(statement, colours)
        elif word == "include":
            if statement.target is not None and not (scene.parent / statement.target.name).is_file():
                yield Finding(statement.source.path, statement.line,
                              f"{statement.target.name} does not lie beside the scene, only in this folder",
                              "far-include")
        elif word in OBJECTS:
            if not has_surface:
                yield Finding(statement.source.path, statement.line,
                              f"this {word} stands ahead of the first surface and is black", "early-object")
        else:
            block = read_block(statement, colours)
            if word == "surface":
                has_surface = True
                yield from surface_warnings(block)
            elif word == "light":
                has_light = True
                if "attenuation_type" not in block.values and is_attenuated(block):
                    lamps.append(block)
            else:
                views[word] = block
    if not has_light:
        yield Finding(scene, 1, "the scene has no light", "unlit")
    yield from dim_lamps(scene, folder, lamps)
    yield from view_warnings(views["camera"], views["settings"])


def surface_warnings(surface: Block) -> Iterator[Finding]:
    color = surface.numbers("color", 0, 0, 0)
    if surface.number("refraction", 0) > 0 and max(color) == 1 and min(color) < 1:
        yield warning(surface, "glowing-rim", "color", "the rim of this glass will glow: through a long way in it, a "
                      "channel at 1 stays and the others go; use 0.999 in place of 1")
    if surface.number("refraction_index", 1) < 1:
        yield warning(surface, "low-index", "refraction_index", "a refraction_index below 1 is taken as 1")


def view_warnings(camera: Block, settings: Block) -> Iterator[Finding]:
    width, height = settings.numbers("resolution", 320, 240)
    if width > 0 and height > 0:
        ratio, shape = camera.number("ratio", 4 / 3), width / height
        true = shape
        if camera.text("projection_type", "flat") == "flat" and 0 < camera.number("fov", 45) < 180:
            fov = math.radians(camera.number("fov", 45))
            true = fov / (2 * math.atan(math.tan(fov / 2) / shape))
        if all(abs(ratio / wanted - 1) > STRETCH for wanted in (shape, true)):
            yield warning(settings, "stretched", "resolution", f"a picture of {width:g} by {height:g} is stretched by "
                          f"the camera's ratio {ratio:.4g}; its true shape is ratio {true:.4g}")
    yield from jagged(settings)


def jagged(settings: Block) -> Iterator[Finding]:
    threshold = settings.number("aa_distance", 64)
    if settings.text("antialiasing", "none") == "adaptive" and threshold > JAGGED:
        yield warning(settings, "jagged", "aa_distance", f"aa_distance {threshold:g} leaves edges jagged where colours "
                      f"differ by less than {min(2 * threshold, 255):g} of 255; 8 is a good value")


def is_attenuated(lamp: Block) -> bool:
    red, green, blue = lamp.numbers("color", 0, 0, 0)
    return red + green + blue / 3 > 1


def dim_lamps(scene: Path, folder: Path, lamps: list[Block]) -> Iterator[Finding]:
    """Of lamps whose light falls off by the square of the distance, those that are too far from every object."""
    dim = list(lamps)
    colours: Colours = {}
    surface = None
    has_objects = False
    for statement in statements(scene, folder) if lamps else ():
        if statement.word == "declare":
            declare(statement, colours)
        elif statement.word == "surface":
            surface = read_block(statement, colours)
        elif statement.word in OBJECTS and surface is not None:
            has_objects = True
            gap = GAPS[statement.word]
            body = read_block(statement, colours)
            dim = [lamp for lamp in dim if not adds_light(lamp, surface, gap(body, lamp.numbers("position")))]
            if not dim:
                return
    for lamp in dim if has_objects else ():
        yield warning(lamp, "dim-lamp", "color", "this lamp is so far away that it adds nothing: its light falls off "
                      'by the square of the distance; write attenuation_type "none" or a larger color')


def adds_light(lamp: Block, surface: Block, distance: float) -> bool:
    diffuse, specular = surface.number("diffuse", 0), surface.number("specular", 0)
    if diffuse <= 0 and specular > 0:  # such a highlight is not attenuated
        return True
    weight = max(surface.numbers("color", 0, 0, 0)) * diffuse + specular
    distance -= lamp.number("radius", 0)
    return distance <= 0 or max(lamp.numbers("color")) * weight >= VISIBLE * distance * distance


# ---- how far a point is from an object, at least ----

Point = tuple[float, ...]


def ball_gap(body: Block, point: Point) -> float:
    radius = max(body.number(word, 0) for word in ("radius", "internal_radius", "external_radius"))
    return math.dist(body.numbers("center"), point) - radius


def tube_gap(body: Block, point: Point) -> float:
    base, cap = body.numbers("base"), body.numbers("cap")
    axis = [b - a for a, b in zip(base, cap)]
    along = sum(a * (p - b) for a, p, b in zip(axis, point, base)) / sum(a * a for a in axis)
    nearest = [b + max(0.0, min(1.0, along)) * a for b, a in zip(base, axis)]
    return math.dist(nearest, point) - max(body.number(word, 0) for word in ("radius", "base_radius", "cap_radius"))


def plane_gap(body: Block, point: Point) -> float:
    normal = body.numbers("normal")
    return abs(sum(n * p for n, p in zip(normal, point)) / math.hypot(*normal) - body.number("distance", 0))


def corner_gap(body: Block, point: Point) -> float:
    axes = list(zip(*(value.numbers for value in body.values["vertex"])))
    return math.dist(point, [max(min(axis), min(max(axis), p)) for axis, p in zip(axes, point)])


GAPS: dict[str, Callable[[Block, Point], float]] = {
    "sphere": ball_gap, "disc": ball_gap, "ring": ball_gap, "cylinder": tube_gap, "cone": tube_gap,
    "plane": plane_gap, "triangle": corner_gap, "patch": corner_gap, "smooth_triangle": corner_gap,
    "polygon": corner_gap,
}


# ---- faults ----


def check(scene: Path) -> list[Finding]:
    """What is to be said about a scene or a settings file; a finding without a name is a fault."""
    kind = kind_of(scene)
    if kind == "model":
        return [Finding(scene, 1, "this is neither a scene nor a settings file")]
    folder = working_folder(scene) if kind == "scene" else scene.parent
    circle = unreadable(scene, folder) if kind == "scene" else None
    if circle is not None and circle.target is not None and os.access(circle.target, os.R_OK):
        return [Finding(circle.source.path, circle.line, f"{circle.target.name} is being read already, and would be "
                        "read for ever")]
    name = scene.name if folder == scene.parent else str(scene.absolute())
    with scratch_folder() as scratch:
        done = run(["-i" if kind == "scene" else "-3ds", name, "-o", str(scratch / "picture"), "-ppm", "-r",
                    "1", "2", "-aan", "-pqs", "100000"], cwd=folder)
    if not done.is_good():
        fault = placed(done, scene, folder)
        return [Finding(fault.file or scene, fault.line or 1, fault.message)]
    if kind == "scene":
        settings = [read_block(s, {}) for s in statements(scene, folder, objects=False)
                    if s.word == "settings"][-1]
        return [*size_faults(settings), *scene_warnings(scene, folder)]
    settings = read_block(next(statements(scene, folder)), {})
    return [*size_faults(settings), *jagged(settings)]


def size_faults(settings: Block) -> Iterator[Finding]:
    """The check renders a size of its own, so that the one that is written has to be looked at."""
    value = settings.last("resolution")
    if value is not None and min(value.numbers) < 1:
        yield Finding(settings.statement.source.path, value.line,
                      f"A picture of {value.numbers[0]:g} x {value.numbers[1]:g} pixels cannot be rendered")


def main(arguments: Sequence[str] | None = None) -> int:
    parser = argparse.ArgumentParser(
        prog="varlo-check", description="Tells whether scenes and settings files are all right, without rendering "
        "them. Each fault is a line `file:line: message`, with the place where it is, also in included files. "
        "The status is 0 where there is no fault, and 1 where there is one; warnings do not count.")
    parser.add_argument("files", metavar="FILE", type=Path, nargs="*",
                        help="a scene or a settings file; all in this folder if left out")
    for name, text in WARNINGS.items():
        parser.add_argument(f"--no-{name}", action="append_const", const=name, dest="silent",
                            help=f"do not warn of {text}")
    options = parser.parse_args(arguments)
    files = options.files or sorted(path for ending in ("*.vlo", "*.set") for path in Path().glob(ending))
    if not files:
        parser.error("no FILE is given, and no *.vlo or *.set lies in this folder")
    status = 0
    with ended_by_signals():
        for file in files:
            try:
                findings = check(file)
            except OSError as error:
                findings = [Finding(file, 1, error.strerror or str(error))]
            except VarloError as error:
                print(f"varlo-check: {error}", file=sys.stderr)
                return 1
            for finding in findings:
                if finding.name not in (options.silent or ()):
                    print(finding, flush=True)
                status |= finding.name is None
    return status


if __name__ == "__main__":
    sys.exit(main())
