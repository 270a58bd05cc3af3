"""The frames of a film: a folder with a scene, a picture and a log for each, and what the scenes include."""

import hashlib
import os
import shutil
import subprocess
from collections.abc import Sequence
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from pathlib import Path

from varlo.pictures import NotWhole, whole_size
from varlo.run import VarloError
from varlo.scan import statements
from varlo.template import fill


@dataclass
class Frames:
    """All that the frames of one film have in common."""
    folder: Path
    count: int
    suffix: str  # of the pictures
    options: list[str]  # of varlo-render
    included: list[str] = field(default_factory=list)  # names of files that lie in the folder beside the scenes

    def names(self) -> list[str]:
        """The numbers of the frames, from 0, with as many digits as the film needs."""
        return [self.name(frame) for frame in range(self.count)]

    def name(self, frame: int) -> str:
        return f"{frame:0{max(4, len(str(self.count - 1)))}}"

    def scene(self, name: str) -> Path:
        return self.folder / f"{name}.vlo"

    def picture(self, name: str) -> Path:
        return self.folder / f"{name}{self.suffix}"

    def log(self, name: str) -> Path:
        return self.folder / "logs" / name

    def is_whole(self, name: str) -> bool:
        try:
            whole_size(self.picture(name))
        except NotWhole:
            return False
        return True

    def missing(self) -> list[str]:
        return [name for name in self.names() if not self.is_whole(name)]


def from_template(frames: Frames, template: Path) -> None:
    """Writes the scene of every frame."""
    try:
        text = template.read_text(errors="surrogateescape")
    except OSError as error:
        raise VarloError(f"{template}: {error.strerror}") from error
    scenes = []
    for frame in range(frames.count):
        try:
            scenes.append(fill(text, frame, frames.count))
        except VarloError as error:
            raise VarloError(f"{template}:{error}") from error
    write_scenes(frames, scenes, template.parent)


def from_command(frames: Frames, command: str) -> None:
    """Has `command` print the scene of each frame, whose number it finds behind its own arguments.

    What a command prints cannot be foreseen: a frame that is whole and was printed by the same command stays.
    """
    mark = f"; printed by: {' '.join(command.split())}\n"

    def scene(frame: int) -> str:
        name = frames.name(frame)
        if frames.is_whole(name) and frames.scene(name).is_file():
            text = frames.scene(name).read_text(errors="surrogateescape")
            if mark in text:
                return text[:text.index(mark)]
        done = subprocess.run(f"{command} {frame}", shell=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, errors="surrogateescape", check=False)
        if done.returncode != 0:
            raise VarloError(f"frame {frame}: status {done.returncode} from: {command} {frame}\n{done.stderr.strip()}")
        return done.stdout if done.stdout.endswith("\n") else done.stdout + "\n"

    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        scenes = list(pool.map(scene, range(frames.count)))
    write_scenes(frames, [scene + mark for scene in scenes], Path())


def write_scenes(frames: Frames, scenes: Sequence[str], origin: Path) -> None:
    """Puts the scenes and what they include, which lies in `origin`, into the folder.

    A picture that was made from another scene, with other options or with another text of an include goes: so a second
    run finishes the first one, and a changed film is made anew where it has changed.
    """
    frames.folder.joinpath("logs").mkdir(parents=True, exist_ok=True)
    copied: dict[str, str] = {}
    for name, scene in zip(frames.names(), scenes):
        path = frames.scene(name)
        new = path.with_suffix(".new")
        new.write_text(scene, errors="surrogateescape")
        for statement in statements(new, origin, objects=False):
            if statement.target is not None and statement.target.name not in copied:
                copied[statement.target.name] = copy(statement.target, frames.folder)
        key = " ".join([*frames.options, *(f"{file}:{digest}" for file, digest in sorted(copied.items()))])
        text = f"{scene}; made with: {key}\n" if scene.endswith("\n") else f"{scene}\n; made with: {key}\n"
        data = text.encode(errors="surrogateescape")
        if not path.is_file() or path.read_bytes() != data:
            frames.picture(name).unlink(missing_ok=True)
        new.write_bytes(data)
        new.replace(path)
    frames.included = sorted(copied)


def copy(file: Path, folder: Path) -> str:
    """Copies an included file, and gives what tells its text from others. One that is not there is varlo's affair."""
    if not file.is_file():
        folder.joinpath(file.name).unlink(missing_ok=True)
        return "missing"
    if not (folder / file.name).exists() or not os.path.samefile(file, folder / file.name):
        shutil.copyfile(file, folder / file.name)
    return hashlib.sha256(file.read_bytes()).hexdigest()[:16]
