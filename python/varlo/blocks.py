"""The blocks of a scene as words with their values."""

from dataclasses import dataclass, field

from varlo.scan import Statement, decimal, integer

INTEGERS = {"resolution", "display", "aa_distance"}
SAME = {"display": "resolution", "aa_type": "antialiasing"}


@dataclass(frozen=True)
class Value:
    """What stands behind a word of a block."""
    line: int
    numbers: tuple[float, ...] = ()
    text: str = ""


@dataclass
class Block:
    """A block of a scene that the program has accepted: for each word its values in their order."""
    statement: Statement
    values: dict[str, list[Value]] = field(default_factory=dict)

    def last(self, word: str) -> Value | None:
        found = self.values.get(word)
        return found[-1] if found else None

    def line(self, word: str) -> int:
        value = self.last(word)
        return self.statement.line if value is None else value.line

    def numbers(self, word: str, *default: float) -> tuple[float, ...]:
        value = self.last(word)
        return default if value is None else value.numbers

    def number(self, word: str, default: float) -> float:
        return self.numbers(word, default)[0]

    def text(self, word: str, default: str) -> str:
        value = self.last(word)
        return default if value is None else value.text


Colours = dict[str, tuple[float, ...]]


def read_block(statement: Statement, colours: Colours) -> Block:
    block = Block(statement)
    word, line = "", statement.line
    numbers: list[float] = []
    text = ""

    def close() -> None:
        if word:
            block.values.setdefault(SAME.get(word, word), []).append(Value(line, tuple(numbers), text))

    tokens = statement.tokens()
    next(tokens)
    for token in tokens:
        if token.kind == '"':
            text = next(tokens).text
            next(tokens)
        elif token.kind == "#":
            numbers += colours.get(next(tokens).text, (0.0, 0.0, 0.0))
        elif token.kind == "number":
            numbers.append((integer if word in INTEGERS else decimal)(token.text))
        elif token.kind in ("word", "}"):
            close()
            word, line, numbers, text = token.text, token.line, [], ""
    return block


def declare(statement: Statement, colours: Colours) -> None:
    tokens = list(statement.tokens())
    colours[tokens[2].text] = tuple(decimal(token.text) for token in tokens[-3:])
