"""varlo-render: renders a scene so that a good picture is never lost."""

import os
import shutil
import subprocess
import sys
from collections.abc import Sequence
from dataclasses import dataclass, field
from pathlib import Path

from varlo.bar import Bar
from varlo.blocks import read_block
from varlo.pictures import READERS, NotWhole, whole_size
from varlo.run import Progress, VarloError, ended_by_signals, run, scratch_folder
from varlo.scan import SETTINGS, kind_of, placed, statements, working_folder

USAGE = """usage: varlo-render SCENE [-o PICTURE] [OPTION...]

Renders SCENE, a scene, a settings file, or a model where varlo-import is
installed, in the folder where it lies. The picture takes its place only when it
is whole: whatever happens, PICTURE is the old one or the new one. The status is
0 only for a whole picture, 1 for a fault and 2 for wrong arguments.

  -o PICTURE    the ending tells the format: .png .jpg .tif .bmp .ppm .tga; left
                out, the picture is named as the scene says, in this folder
  --open        shows the picture when it is done
  --quiet       no bar, and not a word but of faults
  --help        this text

The options of varlo for size, format, anti-aliasing, threads and so on are taken
as they are: -w N, -h N (height), -r W H, -png, -aan, -aaq, -aaa N, -j, -t N,
-pqs N, -c N and the others of varlo(1). Without -t, the threads follow from the
processors.
"""

FORMATS = {"-tga": ".tga", "-bmp": ".bmp", "-ppm": ".ppm", "-png": ".png", "-jpg": ".jpg", "-tif": ".tif"}
LONG_FORMATS = {"--jpeg": "-jpg", "--tiff": "-tif", "--tga": "-tga", "--bmp": "-bmp", "--ppm": "-ppm", "--png": "-png"}
# How many values stand behind an option of the program.
VALUES = {0: ("-aan", "--aanone", "-aaq", "--aaquick", "-j", "--jitter"),
          1: ("-c", "--camera", "-w", "--width", "-h", "--height", "-aaa", "--aaadaptive", "-t", "--thread", "-pqs",
              "--pqsize"),
          2: ("-r", "--resolution")}
COUNTS = {option: count for count, options in VALUES.items() for option in options}
LONGEST_NAME = 240  # the program takes 255 bytes, the name of the picture in the scratch folder among them


class Usage(VarloError):
    """Arguments that make no sense."""


@dataclass
class Job:
    """What is asked for on the command line."""
    scene: Path = Path()
    picture: Path | None = None
    format: str | None = None  # option of the program
    options: list[str] = field(default_factory=list)
    open: bool = False
    quiet: bool = False


def read_arguments(arguments: Sequence[str]) -> Job:
    job = Job()
    scenes = []
    rest = list(arguments)
    while rest:
        word = rest.pop(0)
        count = 1 if word in ("-o", "--output") else COUNTS.get(word, 0)
        if len(rest) < count:
            raise Usage(f"{word} needs {count} value{'s' if count > 1 else ''}")
        values, rest = rest[:count], rest[count:]
        if word in ("-o", "--output"):
            job.picture = Path(values[0])
        elif word in COUNTS:
            job.options += [word, *values]
        elif word in FORMATS or word in LONG_FORMATS:
            job.format = LONG_FORMATS.get(word, word)
        elif word in ("--open", "--quiet"):
            setattr(job, word[2:], True)
        elif word.startswith("-"):
            raise Usage(f"there is no option {word}")
        else:
            scenes.append(Path(word))
    if len(scenes) != 1:
        raise Usage("one SCENE is needed" if not scenes else f"more than one SCENE: {scenes[0]} and {scenes[1]}")
    job.scene = scenes[0]
    if job.picture is not None and job.picture.suffix.lower() in READERS:
        ending = job.picture.suffix.lower().replace(".jpeg", ".jpg").replace(".tiff", ".tif")
        wanted = next(option for option, other in FORMATS.items() if other == ending)
        if job.format not in (None, wanted):
            raise Usage(f"{job.format} does not go with {job.picture}")
        job.format = wanted
    if not any(option in job.options for option in ("-t", "--thread")):
        job.options += ["-t", str(threads())]
    return job


def threads() -> int:
    """As many as there are processors, of the numbers that the program takes."""
    processors = len(os.sched_getaffinity(0))
    return 8 if processors >= 8 else 4 if processors >= 4 else 2


Made = tuple[Path, int, int]  # the picture, its width and its height


def render(job: Job, progress: Progress | None = None) -> Made:
    """Renders to a name of its own, and moves what is whole over the old picture. Raises `VarloError` otherwise."""
    if not job.scene.is_file():
        raise VarloError(f"{job.scene}: there is no such file")
    kind = kind_of(job.scene)
    if kind != "model":
        return render_scene(job, job.scene, kind, progress)
    with scratch_folder() as folder:
        return render_scene(job, imported(job.scene, folder), "scene", progress)


def render_scene(job: Job, scene: Path, kind: str, progress: Progress | None) -> Made:
    target = job.picture or Path(picture_name(scene))
    if target.suffix.lower() not in READERS:
        target = target.with_name(f"{target.name}.")  # the ending follows
    target = Path(os.path.realpath(target))
    if target.is_dir():
        raise VarloError(f"{target}: this is a folder")
    with scratch_folder(target.parent, ".varlo-") as scratch:
        made = render_to(scratch, job, scene, kind, progress)
        try:
            size = whole_size(made)
        except NotWhole as error:
            raise VarloError(f"{target}: the new picture is not whole: {error}") from error
        if target.name.endswith("."):
            target = target.with_name(target.name[:-1] + made.suffix)
        with made.open("rb") as file:
            os.fsync(file.fileno())
        os.replace(made, target)
        return target, *size


def render_to(scratch: Path, job: Job, scene: Path, kind: str, progress: Progress | None) -> Path:
    """Runs the program in the folder of the scene, and gives the picture, which it put into `scratch`."""
    folder = working_folder(scene) if kind == "scene" else scene.parent
    name = scene.name if folder == scene.parent else str(scene.absolute())
    output = min(str(scratch / "picture"), os.path.relpath(scratch / "picture", folder), key=len)
    if len(os.fsencode(output)) > LONGEST_NAME:
        raise VarloError(f"{scratch.parent}: the way to this folder is too long for varlo")
    form = [] if job.format is None else [job.format]
    done = run(["-i" if kind == "scene" else "-3ds", name, *job.options, *form, "-o", output], cwd=folder,
               progress=progress)
    if not done.is_good():
        raise placed(done, scene, folder)
    made = next(scratch.iterdir(), None)
    if made is None:
        raise VarloError(f"{scene}: varlo ended well and left no picture")
    return made


def picture_name(scene: Path) -> str:
    """What the scene says, else its own name. One with a fault may have none: the render will tell of it."""
    name = ""
    for statement in statements(scene, working_folder(scene), objects=False):
        if statement.word in ("settings", SETTINGS) and statement.whole:
            value = read_block(statement, {}).last("output_name")
            name = "" if value is None else value.text
    return name or scene.stem


def imported(model: Path, folder: Path) -> Path:
    """The scene that varlo-import makes of a model, in `folder`."""
    program = need("varlo-import", "varlo-tools")
    scene = folder / f"{model.stem}.vlo"
    done = subprocess.run([program, str(model), "-o", str(scene)], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, text=True, errors="replace", check=False)
    if done.returncode != 0:
        raise VarloError(done.stderr.strip() or f"varlo-import: status {done.returncode}")
    return scene


def need(program: str, package: str) -> str:
    """Another program, by its name and the Debian package that brings it."""
    found = shutil.which(program)
    if found is None:
        raise VarloError(f"this needs {program}, of the package {package}: apt-get install {package}")
    return found


def show(picture: Path) -> None:
    """In a window where there is one, else in the terminal."""
    if os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"):
        subprocess.Popen([need("feh", "feh"), "--auto-zoom", str(picture)], stdin=subprocess.DEVNULL,
                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    else:
        subprocess.run([need("chafa", "chafa"), str(picture)], check=False)


def main(arguments: Sequence[str] | None = None) -> int:
    words = sys.argv[1:] if arguments is None else arguments
    if any(word in ("--help", "-?") for word in words):
        print(USAGE, end="")
        return 0
    try:
        job = read_arguments(words)
        with ended_by_signals():
            if job.quiet:
                picture, width, height = render(job)
            else:
                with Bar() as bar:
                    picture, width, height = render(job, bar)
                print(f"{os.path.relpath(picture)}: {width} x {height} pixels")
        if job.open:
            show(picture)
    except Usage as error:
        print(f"varlo-render: {error}\n{USAGE.splitlines()[0]}", file=sys.stderr)
        return 2
    except VarloError as error:
        print(error, file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 130
    return 0


if __name__ == "__main__":
    sys.exit(main())
