"""varlo-watch: a small picture of a scene at every save of one of its files."""

import argparse
import os
import shutil
import subprocess
import sys
import time
from collections.abc import Callable, Sequence
from dataclasses import dataclass, field
from pathlib import Path

from varlo.blocks import read_block
from varlo.render import need, threads
from varlo.run import Fault, VarloError, ended_by_signals, run, scratch_folder
from varlo.scan import SETTINGS, Statement, kind_of, placed, statements, working_folder

POLL = 0.04  # seconds between two looks at the files
WANTED = 0.25  # seconds that a render should take, so that all in all half a second is kept
FIRST = 160  # pixels of the longer side, until it is known how long a render takes
SMALLEST = 40

State = dict[Path, tuple[int, int, int] | None]


class Changed(Exception):
    """A file was saved while its picture was being made."""


@dataclass
class Watch:
    scene: Path
    kind: str
    largest: int  # pixels of the longer side
    scratch: Path
    side: int = FIRST
    state: State = field(default_factory=dict)

    def look(self) -> State:
        """The files of the scene as they are now; one that is missing is watched too."""
        return {path: stamp(path) for path in self.state}

    def wait(self, check: Callable[[], None]) -> None:
        """Until a file has changed, and no more is written to it."""
        before = self.state
        while (now := self.look()) == before:
            check()
            time.sleep(POLL)
        while True:
            time.sleep(POLL)
            if (later := self.look()) == now:
                return
            now = later

    def picture(self) -> tuple[Path, str]:
        """Makes the picture, and tells in a line what it is. Raises `Fault` or `Changed`."""
        folder = working_folder(self.scene) if self.kind == "scene" else self.scene.parent
        parts = list(statements(self.scene, folder, objects=False))
        self.state = {path: stamp(path) for path in (self.scene, *(part.target for part in parts)) if path is not None}
        width, height = self.size(parts)
        name = self.scene.name if folder == self.scene.parent else str(self.scene.absolute())

        def unless_changed(_: float) -> None:
            if self.look() != self.state:
                raise Changed

        kind = "-i" if self.kind == "scene" else "-3ds"
        done = run([kind, name, "-o", str(self.scratch / "new"), "-png", "-aan", "-r", str(width), str(height), "-t",
                    str(threads())], cwd=folder, progress=unless_changed)
        if not done.is_good():
            raise placed(done, self.scene, folder)
        os.replace(self.scratch / "new.png", self.scratch / "picture.png")
        self.side = round(max(SMALLEST, min(self.side * (WANTED / max(done.seconds, 0.01)) ** 0.5, self.largest)))
        return self.scratch / "picture.png", f"{self.scene}: {width} x {height} pixels in {done.seconds:.2f} s"

    def size(self, parts: list[Statement]) -> tuple[int, int]:
        """Of the shape that the scene gives, the longer side as long as there is time for."""
        numbers: tuple[float, ...] = (320, 240)
        for part in parts:
            if part.word in ("settings", SETTINGS) and part.whole:
                numbers = read_block(part, {}).numbers("resolution", 320, 240)
        longer = max(*numbers, 1)
        width, height = (max(round(max(number, 1) * min(self.side / longer, 1)), 1) for number in numbers)
        return width, height


def stamp(path: Path) -> tuple[int, int, int] | None:
    try:
        status = path.stat()
    except OSError:
        return None
    return status.st_mtime_ns, status.st_size, status.st_ino


# ---- where the picture is shown ----


class Terminal:
    """Shows pictures by chafa, which knows what the terminal can; a fault stands below the last good one."""

    def __init__(self) -> None:
        self.program = need("chafa", "chafa")

    def show(self, picture: Path, line: str) -> None:
        columns, lines = shutil.get_terminal_size()
        if sys.stdout.isatty():
            print("\x1b[2J\x1b[H", end="", flush=True)
        subprocess.run([self.program, "--size", f"{columns}x{max(lines - 3, 1)}", str(picture)], check=False)
        print(line, flush=True)

    def tell(self, fault: str) -> None:
        print(fault, flush=True)

    def check(self) -> None:
        """A terminal stays."""

    def close(self) -> None:
        """And so does what is on it."""


class Window:
    """Shows pictures by feh, which reads its file anew when it changes."""

    def __init__(self) -> None:
        self.program = need("feh", "feh")
        self.process: subprocess.Popen[bytes] | None = None

    def show(self, picture: Path, line: str) -> None:
        if self.process is None:
            self.process = subprocess.Popen([self.program, "--reload", "0.2", "--auto-zoom", "--force-aliasing",
                                             "--geometry", "640x480", "--title", "varlo-watch", str(picture)],
                                            stdin=subprocess.DEVNULL)
        print(line, flush=True)

    def tell(self, fault: str) -> None:
        print(fault, flush=True)

    def check(self) -> None:
        if self.process is not None and self.process.poll() is not None:
            raise KeyboardInterrupt  # the window is closed

    def close(self) -> None:
        if self.process is not None:
            self.process.terminate()
            self.process.wait()


def watch(work: Watch, view: Terminal | Window) -> None:
    """Goes on until it is interrupted."""
    while True:
        try:
            picture, line = work.picture()
            view.show(picture, line)
        except Changed:
            continue
        except Fault as fault:
            view.tell(str(fault))
        work.wait(view.check)


def main(arguments: Sequence[str] | None = None) -> int:
    parser = argparse.ArgumentParser(
        prog="varlo-watch", description="Shows a small picture of a scene, without anti-aliasing, and a new one at "
        "every save of the scene or of a file that it includes. In place of a picture a fault is told with its place; "
        "the last good picture stays. Ctrl+C ends it.")
    parser.add_argument("scene", metavar="SCENE", type=Path, help="a scene or a settings file")
    parser.add_argument("--window", action="store_true",
                        help="in a window, by feh, in place of the terminal, by chafa (Debian packages of these names)")
    parser.add_argument("--size", metavar="PIXELS", type=int, default=480,
                        help="longest side that a picture may have (480); it is less where a render takes long")
    options = parser.parse_args(arguments)
    if options.size < SMALLEST:
        parser.error(f"--size has to be {SMALLEST} or more")
    try:
        if not options.scene.is_file():
            raise VarloError(f"{options.scene}: there is no such file")
        kind = kind_of(options.scene)
        if kind == "model":
            raise VarloError(f"{options.scene}: this is neither a scene nor a settings file")
        view: Terminal | Window = Window() if options.window else Terminal()
        with ended_by_signals(), scratch_folder() as scratch:
            try:
                watch(Watch(options.scene, kind, options.size, scratch), view)
            finally:
                view.close()
    except VarloError as error:
        print(f"varlo-watch: {error}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        pass
    return 0


if __name__ == "__main__":
    sys.exit(main())
