"""Renders what a scene has written: runs the program, shows how far it is, and tells whose line a fault is."""

from __future__ import annotations

import os
import shutil
import sys
import tempfile
from collections.abc import Callable, Iterator
from contextlib import contextmanager, suppress
from pathlib import Path

from .bar import Bar
from .picture import Picture
from .render import threads as usual_threads
from .run import Completed, Fault, find_binary, run
from .scan import placed
from .values import SceneError
from .writer import Writer

# The option of each format, and the ending that the program gives its pictures.
FORMATS = {"png": ("-png", ".png"), "jpeg": ("-jpg", ".jpg"), "bmp": ("-bmp", ".bmp"), "ppm": ("-ppm", ".ppm"),
           "tga": ("-tga", ".tga"), "tiff": ("-tif", ".tif")}


def format_of(path: Path) -> str:
    """The format that a file's ending asks for; raises `SceneError` for an ending that is none of the six."""
    ending = {".jpeg": ".jpg", ".tiff": ".tif"}.get(path.suffix.lower(), path.suffix.lower())
    for name, (_, usual) in FORMATS.items():
        if ending == usual:
            return name
    raise SceneError("render", "path", str(path), "a picture ends in .png, .jpg, .bmp, .ppm, .tga or .tif")


def options(width: int | None, height: int | None, antialias: str | int | None, jitter: bool, threads: int | None,
            queue: int) -> list[str]:
    """The options of the program; raises `SceneError` for values that it would not take."""
    chosen: list[str] = []
    for name, option, value in (("width", "-w", width), ("height", "-h", height)):
        if value is not None:
            if value < 1:
                raise SceneError("render", name, value, "a picture has at least one pixel")
            chosen += [option, str(value)]
    if antialias in ("none", "quick"):
        chosen.append("-aan" if antialias == "none" else "-aaq")
    elif isinstance(antialias, int):
        chosen += ["-aaa", str(antialias or -1)]  # the program takes no 0, and splits every pixel below it
    elif antialias is not None:
        rule = '"none", "quick", or the aa_distance of the adaptive sampler'
        raise SceneError("render", "antialias", antialias, rule)
    if jitter:
        chosen.append("-j")
    if threads not in (None, 2, 4, 8):
        raise SceneError("render", "threads", threads, "2, 4 or 8 threads")
    chosen += ["-t", str(threads or usual_threads())]
    if queue < 100:
        raise SceneError("render", "queue", queue, "at least 100 entries")
    return [*chosen, "-pqs", str(queue)]


def render(write: Callable[[Path], Writer], path: Path, arguments: list[str], binary: str | None,
           progress: Callable[[float], None] | None) -> Picture:
    """Writes a scene, renders it in the working directory, and puts the picture in its place when it is whole.

    Nothing is left behind but the picture, however the run ends. Raises `Fault` with the line of Python that made
    the statement at fault, or with the place in an included file.
    """
    with tempfile.TemporaryDirectory(prefix="varlo-") as folder:
        scene = Path(folder, "scene.vlo")
        writer = write(scene)
        kind = format_of(path)
        option, ending = FORMATS[kind]
        with shown(progress) as report:
            done = run(["-i", str(scene), "-o", str(Path(folder, "picture")), option, *arguments],
                       binary=find_binary(binary), progress=report)
        if done.status != 0:
            raise _fault(done, writer, scene)
        done.check()
        part = path.with_name(f".{path.name}.{os.getpid()}.part")
        try:
            shutil.copyfile(Path(folder, "picture" + ending), part)
            os.replace(part, path)
        finally:
            with suppress(FileNotFoundError):
                part.unlink()
    return Picture(path)


def _fault(done: Completed, writer: Writer, scene: Path) -> Fault:
    """The fault with its place: a line of Python for what this scene has written, else that of an included file."""
    fault = done.fault()
    if fault.line is None and "could no be opened" not in fault.message:
        return fault  # it is in no line of the scene
    if "include" in writer.words:
        fault = placed(done, scene, Path.cwd())
        if fault.file != scene:
            return fault
    place = writer.place_of(fault.line or 1)
    return fault if place is None else Fault(fault.message, file=Path(place[0]), line=place[1], status=fault.status,
                                             output=fault.output)


@contextmanager
def shown(progress: Callable[[float], None] | None) -> Iterator[Callable[[float], None] | None]:
    """The bar on a terminal, and per cents in a notebook, where nobody has asked for more."""
    if progress is None and sys.stderr.isatty():
        with Bar() as bar:
            yield bar
    elif progress is None and "ipykernel" in sys.modules:
        yield lambda share: print(f"\r{share:5.0%}", end="", file=sys.stderr, flush=True)
        print("\r      \r", end="", file=sys.stderr, flush=True)
    else:
        yield progress
