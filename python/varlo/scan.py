"""Scans a scene with the files that it includes, by the rules of the program, into tokens that know their place.

The program counts lines on over all files that it reads. `locate` takes such a count back to a file and its line.
Statements come one at a time, and only those that are asked for are cut into tokens, so that a scene of a million
objects is gone through at the speed of a search in its text.
"""

import os
import re
from collections.abc import Iterator
from dataclasses import dataclass, replace
from pathlib import Path
from typing import NamedTuple

from varlo.run import Completed, Fault

BLOCKS = frozenset({"camera", "settings", "light", "surface", "sphere", "plane", "cylinder", "cone", "disc", "ring",
                    "triangle", "patch", "smooth_triangle", "polygon"})
SETTINGS = "3ds settings"  # stands for the word in front of the block that is a settings file

BLANK = re.compile(rb"(?:[ \t\n\v\f\r]++|;[^\n]*+|\[[^\]]*+\])*+")
TOKEN = re.compile(rb"(?P<word>[A-Za-z][A-Za-z0-9_.\\:]*)|(?P<number>[0-9+.-][0-9+.eE-]*)|(?P<mark>[{}<>\"#])")
# A block that holds nothing whose inside could be taken for its end, which nearly all are.
PLAIN_BLOCK = re.compile(rb"([a-z_]+)[ \t\n\v\f\r]*\{[^{}\"#;\[\]]*+\}")

OBJECT_WORDS = "|".join(sorted(BLOCKS - {"camera", "settings", "light", "surface"})).encode()
PLAIN_OBJECTS = re.compile(rb"(?:(?:%s)[ \t\n\v\f\r]*\{[^{}\"#;\[\]]*+\}%s)*+" % (OBJECT_WORDS, BLANK.pattern))


class Token(NamedTuple):
    kind: str  # word, number, end, the mark itself, or "" for what is no token
    text: str  # of a word or a number
    line: int  # in its file
    total: int  # the line as the program counts, on over all files
    start: int  # place in the file, in bytes
    end: int


@dataclass(frozen=True)
class Source:
    """A file of a scene."""
    path: Path  # that leads to it from the folder of the caller
    data: bytes


@dataclass(frozen=True)
class Statement:
    """One statement, or the text at which the program can only stop."""
    word: str  # the statement, SETTINGS, or anything else where the program stops
    source: Source
    line: int  # of its beginning, in its file
    total: int  # and as the program counts
    start: int  # its bytes in the file
    end: int
    opened: int  # number of files that were opened before, this one among them
    whole: bool = True  # false where the program stops in it at the latest
    target: Path | None = None  # of an include

    def holds(self, total: int) -> bool:
        """Whether it can have a token on the line that the program counts as `total`."""
        lines = self.source.data.count(b"\n", self.start, self.end)
        return self.total <= total and (not self.whole or total <= self.total + lines)

    def tokens(self) -> Iterator[Token]:
        reader = Reader(self.source, self.start, self.line, self.total)
        while (token := reader.next()).end <= self.end and token.kind not in ("", "end"):
            yield token
        if not self.whole:
            yield token


class Reader:
    """Reads one file token by token."""

    def __init__(self, source: Source, position: int = 0, line: int = 1, total: int = 1) -> None:
        self.source = source
        self.position = position
        self.line = line
        self.total = total

    def pass_over(self, end: int) -> None:
        lines = self.source.data.count(b"\n", self.position, end)
        self.line += lines
        self.total += lines
        self.position = end

    def pass_blank(self) -> None:
        blank = BLANK.match(self.source.data, self.position)
        assert blank is not None
        self.pass_over(blank.end())

    def next(self) -> Token:
        data = self.source.data
        self.pass_blank()
        found = TOKEN.match(data, self.position)
        if found is None:
            kind = "end" if self.position == len(data) else ""
            token = Token(kind, "", self.line, self.total, self.position, self.position)
            if data[self.position:self.position + 1] == b"[":  # never closed: the program reads on to the end
                token = token._replace(total=self.total + data.count(b"\n", self.position))
            return token
        text = found[0].decode()
        kind = text if found.lastgroup == "mark" else str(found.lastgroup)
        self.position = found.end()
        return Token(kind, "" if kind == text else text, self.line, self.total, found.start(), found.end())

    def string(self) -> str | None:
        """What stands between quotes; None where there is no string."""
        if self.next().kind != '"':
            return None
        text = self.next().text
        return text if self.next().kind == '"' else None

    def block(self) -> bool:
        """Reads from `{` to `}`, and tells whether it got there."""
        if self.next().kind != "{":
            return False
        while True:
            token = self.next()
            if token.kind == "}":
                return True
            if token.kind == "#":
                self.next()
            elif token.kind == '"':
                self.next()
                if self.next().kind != '"':
                    return False
            elif token.kind in ("{", "end", ""):
                return False

    def declaration(self) -> bool:
        if self.string() is None or self.next().text != "color":
            return False
        return all([self.next().kind == "number" for _ in range(3)])


def statements(scene: Path, folder: Path, *, objects: bool = True) -> Iterator[Statement]:
    """The statements in the order in which the program reads them when it runs in `folder`, up to where it stops.

    Without `objects` most of them are passed over, which takes less than a tenth of the time where there are many.
    An `include` comes with its target, and after it what is in that file; a target that cannot be read, or that is
    being read already, is the last statement.
    """
    open_files = [Reader(read(scene))]
    opened = 1
    while open_files:
        reader = open_files[-1]
        reader.pass_blank()
        if not objects and (passed := PLAIN_OBJECTS.match(reader.source.data, reader.position)):
            reader.pass_over(passed.end())
        statement = next_statement(reader, folder, opened)
        if statement is None:
            open_files.pop()
            if open_files:
                open_files[-1].total = reader.total
            continue
        target = statement.target
        if target is not None:
            try:
                open_files.append(Reader(read(target), total=reader.total))
            except OSError:
                yield replace(statement, whole=False)
                return
            opened += 1
            if any(os.path.samefile(other.source.path, target) for other in open_files[:-1]):
                yield replace(statement, whole=False)
                return
        yield statement
        if not statement.whole:
            return


def read(path: Path) -> Source:
    if not path.is_file():
        raise FileNotFoundError(f"{path}: no such file")
    return Source(path, path.read_bytes())


def next_statement(reader: Reader, folder: Path, opened: int) -> Statement | None:
    """The statement at the reader, which stands behind blanks; None at the end of the file."""
    source, start, line, total = reader.source, reader.position, reader.line, reader.total
    plain = PLAIN_BLOCK.match(source.data, start)
    if plain is not None and (word := plain[1].decode()) in BLOCKS:
        reader.pass_over(plain.end())
        return Statement(word, source, line, total, start, plain.end(), opened)
    first = reader.next()
    word = first.text
    target = None
    if first.kind == "end":
        return None
    if first.kind == "{" and opened == 1 and start == first_place(source):
        word = SETTINGS
        reader.position = start
        whole = reader.block()
    elif word == "include":
        name = reader.string()
        target = None if name is None else folder / name
        whole = name is not None
    elif word == "declare":
        whole = reader.declaration()
    else:
        whole = word in BLOCKS and reader.block()
    return Statement(word, source, line, total, start, reader.position, opened, whole, target)


def first_place(source: Source) -> int:
    blank = BLANK.match(source.data)
    assert blank is not None
    return blank.end()


def kind_of(path: Path) -> str:
    """`scene`, `settings`, or `model` for what is neither."""
    by_ending = {".vlo": "scene", ".set": "settings", ".3ds": "model"}
    if path.suffix in by_ending:
        return by_ending[path.suffix]
    first = Reader(read(path)).next()
    if first.kind == "{":
        return "settings"
    return "scene" if first.text in BLOCKS | {"include", "declare"} else "model"


def unreadable(scene: Path, folder: Path) -> Statement | None:
    """The `include` of a file that cannot be read, or that is being read already."""
    return next((s for s in statements(scene, folder, objects=False) if s.target is not None and not s.whole), None)


def working_folder(scene: Path) -> Path:
    """The scene's own folder, unless what it includes is not there but all here."""
    def is_complete(folder: Path) -> bool:
        include = unreadable(scene, folder)
        return include is None or include.target is None or include.target.is_file()

    return Path() if not is_complete(scene.parent) and is_complete(Path()) else scene.parent


# ---- from a fault of the program to its place ----


def locate(scene: Path, folder: Path, total: int, opened: int, message: str) -> tuple[Path, int]:
    """Where a fault is that the program reports for its line `total`, with `opened` files read.

    The last line of an included file and the line of its `include` may have the same count. Then the message
    decides, where it names a block.
    """
    places: list[tuple[Statement, Token]] = []
    last = (scene, 1)
    for statement in statements(scene, folder):
        if statement.opened > opened:
            break
        last = (statement.source.path, statement.line)
        if statement.opened == opened and statement.holds(total):
            places += [(statement, token) for token in statement.tokens() if token.total == total]
    if not places:
        return last
    named = [place for place in places if f"{place[0].word} " in message]
    statement, token = (named or places)[-1]
    return statement.source.path, token.line


def placed(done: Completed, scene: Path, folder: Path) -> Fault:
    """The fault of a run of `scene` in `folder`, with the file and the line where it is."""
    fault = done.fault()
    opened = len(re.findall(r"^ Parsing ", done.output, re.MULTILINE))
    file, line = scene, 1
    if fault.line is not None:
        file, line = locate(scene, folder, fault.line, opened or 1, fault.message)
    elif "could no be opened" in fault.message:
        if include := unreadable(scene, folder):
            file, line = include.source.path, include.line
    elif found := re.search("Unable to find the file: (.*)!", done.output):
        file, line = model_place(scene)
        return Fault(found[0], file=file, line=line, status=fault.status, output=fault.output)
    return Fault(fault.message, file=file, line=line, status=fault.status, output=fault.output)


def model_place(settings: Path) -> tuple[Path, int]:
    for statement in statements(settings, settings.parent):
        for token in statement.tokens():
            if token.text == "input_name":
                return settings, token.line
    return settings, 1


# ---- numbers, cut by their characters and taken as far as they make sense ----

DECIMAL = re.compile(r"[+-]?(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?")
INTEGER = re.compile(r"[+-]?\d+")


def decimal(text: str) -> float:
    found = DECIMAL.match(text)
    return float(found[0]) if found else 0.0


def integer(text: str) -> int:
    """The leading digits; more than 64 bits stop at the largest number, and the program keeps 32 of them."""
    found = INTEGER.match(text)
    number = max(-2**63, min(2**63 - 1, int(found[0]))) if found else 0
    return (number + 2**31) % 2**32 - 2**31
