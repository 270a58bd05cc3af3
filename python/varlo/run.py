"""Runs the program: finds it, reads what it says while it runs, and ends it when the caller ends."""

import os
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
from collections.abc import Callable, Iterator, Sequence
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path
from types import FrameType

MARK = 0xB1  # one column of the progress bar
COLUMNS = 6  # of these are printed at once
NO_PICTURE = ("Thread creation failed!!", "Memory alloction failed.")

Progress = Callable[[float], None]


class VarloError(Exception):
    """What went wrong, in words for a user."""


class Fault(VarloError):
    """A run of the program that did not end well."""

    def __init__(self, message: str, *, file: Path | None = None, line: int | None = None, status: int = 255,
                 output: str = "") -> None:
        place = "" if file is None else f"{file}: " if line is None else f"{file}:{line}: "
        super().__init__(place + message)
        self.message = message
        self.file = file  # where it is, if it is in a text
        self.line = line
        self.status = status  # of the program; negative for the signal that ended it
        self.output = output  # all that the program said


@dataclass(frozen=True)
class Completed:
    """A run that has ended, well or not."""

    arguments: tuple[str, ...]
    status: int  # negative for the signal that ended it
    output: str  # standard output without the marks of the bar, and behind it standard error
    seconds: float  # by the clock on the wall

    def is_good(self) -> bool:
        """Whether the picture is there; two faults come with a status of 0."""
        return self.status == 0 and not any(words in self.output for words in NO_PICTURE)

    def check(self) -> "Completed":
        """Gives itself back, or raises the `Fault` that the run ended with."""
        if not self.is_good():
            raise self.fault()
        return self

    def fault(self) -> Fault:
        """What the program complains about. A line is the program's own count, which runs on over all files."""
        message, line = complaint(self.output)
        if not message:
            message = f"ended by signal {-self.status}" if self.status < 0 else f"status {self.status}"
        return Fault(message, line=line, status=self.status, output=self.output)


def complaint(output: str) -> tuple[str, int | None]:
    """The message of a failed run, and the line that it names; ("", None) where the program said nothing."""
    found = re.search(r"^ Parser Error - line: (\d+)(?: - *(.*))?$", output, re.MULTILINE)
    if found:
        message = found[2] or ""
        before = output[:found.start()].rstrip("\n").split("\n")
        if not message and len(before) >= 2:  # the scanner, whose words are two lines in front
            message = before[-2].strip()
        elif "Scene parser returned error" in before[-1]:
            message += before[-1][before[-1].index("'"):].join((" ", ""))
        return message.strip(), int(found[1])
    if found := re.search(r"Missing (?:camera|settings|surface)!$", output):  # behind a name, on its line
        return found[0], None
    if "\n Usage: " in output:
        return "the program does not know these arguments", None
    for line in reversed(output.split("\n")):
        if (text := line.strip()) and not text.startswith(("0%---", "Please use the -pqs")):
            return text, None
    return "", None


def find_binary(hint: str | None = None) -> Path:
    """The program: `hint`, else the environment's VARLO_BINARY, else on PATH, else what this checkout has built."""
    for wanted, where in ((hint, "as given"), (os.environ.get("VARLO_BINARY"), "by VARLO_BINARY")):
        if wanted:
            found = shutil.which(wanted)
            if found is None:
                raise VarloError(f"{wanted}, named {where}, is no program")
            return Path(found).absolute()
    found = shutil.which("varlo")
    if found is not None:
        return Path(found).absolute()
    built = Path(__file__).resolve().parents[2] / "build" / "release" / "varlo"
    if os.access(built, os.X_OK):
        return built
    raise VarloError("varlo is not found: install it, put it on PATH, name it in the environment's VARLO_BINARY, "
                     "or build it in a checkout with `./dev demo`")


def run(arguments: Sequence[str], *, cwd: Path | None = None, binary: Path | None = None,
        progress: Progress | None = None, idle: Callable[[], None] | None = None) -> Completed:
    """Runs the program in the folder `cwd` and waits for its end, whatever its status is.

    `progress` is called with what share of the picture is done, from 0 to 1, and `idle` ten times a second while the
    program says nothing. The program is in a process group of its own: Ctrl+C, SIGTERM and any exception, also one of
    these two, end it at once and come out of here.
    """
    start = time.monotonic()
    command = [str(binary or find_binary()), *arguments]
    if setpriv := shutil.which("setpriv"):  # ends it also where this process is killed and can do nothing more
        command = [setpriv, "--pdeathsig", "KILL", *command]
    with ended_by_signals(), tempfile.TemporaryFile() as errors:
        try:
            process = subprocess.Popen(command, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                       stderr=errors, process_group=0)
        except OSError as error:
            raise VarloError(f"cannot run {command[0]} in {cwd or '.'}: {error.strerror}") from error
        try:
            output = listen(process, progress, idle)
            status = process.wait()
        finally:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
            assert process.stdout is not None
            process.stdout.close()
        errors.seek(0)
        if complaints := errors.read():
            output += (b"" if output.endswith(b"\n") else b"\n") + complaints
    text = output.decode("utf-8", "replace")
    return Completed(tuple(arguments), status, text, time.monotonic() - start)


def listen(process: subprocess.Popen[bytes], progress: Progress | None,
           idle: Callable[[], None] | None = None) -> bytearray:
    """Reads the output up to its end, takes the marks of the bar out and tells `progress` of them."""
    assert process.stdout is not None
    output = bytearray()
    bar = -1  # where the bar begins
    marks = total = 0
    while True:
        while idle is not None and not select.select([process.stdout], [], [], 0.1)[0]:
            idle()
        chunk = os.read(process.stdout.fileno(), 65536)
        if not chunk:
            return output
        output += chunk
        if bar < 0 and (head := re.search(rb"Resolution: +\d+ x (\d+)\n\n 0%-+100%\n ", output)):
            bar = head.end()
            step = max(int(head[1]) // 10, 1)
            total = COLUMNS * -(-int(head[1]) // step)
        if bar >= 0 and (new := output.count(MARK, bar)):
            output[bar:] = output[bar:].replace(bytes([MARK]), b"")
            marks += new
            if progress is not None:
                progress(min(marks / total, 1.0))


@contextmanager
def scratch_folder(parent: Path | None = None, prefix: str = "varlo-") -> Iterator[Path]:
    """A new folder in `parent`, else where temporary files go, that is gone behind the block.

    A small process outside of this one waits for its end, so that the folder goes away even where this process is
    killed on the spot.
    """
    try:
        folder = tempfile.mkdtemp(prefix=prefix, dir=parent)
    except OSError as error:
        raise VarloError(f"{parent or tempfile.gettempdir()}: {error.strerror}") from error
    with subprocess.Popen(["/bin/sh", "-c", 'cat && rm -rf -- "$1"', "sh", folder], stdin=subprocess.PIPE,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True):
        try:
            yield Path(folder)
        finally:
            shutil.rmtree(folder, ignore_errors=True)


@contextmanager
def ended_by_signals() -> Iterator[None]:
    """SIGTERM and SIGHUP, which would end Python on the spot, leave the block by an exception in place of that.

    So does a reader of the output that has seen enough, whose absence Python would make a fault.
    """
    def leave(number: int, _: FrameType | None) -> None:
        raise SystemExit(128 + number)

    numbers = [number for number in (signal.SIGTERM, signal.SIGHUP)
               if threading.current_thread() is threading.main_thread()
               and signal.getsignal(number) == signal.SIG_DFL]
    for number in numbers:
        signal.signal(number, leave)
    try:
        yield
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())  # what is left goes nowhere
        raise SystemExit(128 + signal.SIGPIPE) from None
    finally:
        for number in numbers:
            signal.signal(number, signal.SIG_DFL)
