"""The bar of a render: per cent, time used and time left."""

import sys
import threading
import time
from types import TracebackType
from typing import TextIO

WIDTH = 30  # columns
EIGHTHS = " ▏▎▍▌▋▊▉█"


def clock(seconds: float) -> str:
    """`0:07`, `12:30` or `1:02:03`."""
    minutes, second = divmod(round(seconds), 60)
    hours, minute = divmod(minutes, 60)
    return f"{hours}:{minute:02}:{second:02}" if hours else f"{minute}:{second:02}"


def columns(share: float, unicode: bool) -> str:
    if not unicode:
        return ("#" * round(share * WIDTH)).ljust(WIDTH, ".")
    whole, eighths = divmod(round(share * WIDTH * 8), 8)
    return ("█" * whole + (EIGHTHS[eighths] if eighths else "")).ljust(WIDTH, "░")


class Bar:
    """On a terminal one line that is written anew each half second; in a log a line for every 10 %.

    Leaving its block ends the line. Where the stream takes no block characters, others stand for them.
    """

    def __init__(self, stream: TextIO = sys.stderr) -> None:
        self.stream = stream
        self.terminal = stream.isatty()
        self.unicode = (stream.encoding or "").lower().replace("-", "") == "utf8"
        self.start = self.told = time.monotonic()
        self.share = 0.0
        self.lines = 0  # of the log
        self.ended = threading.Event()
        self.ticker = threading.Thread(target=self.tick, daemon=True)

    def __enter__(self) -> "Bar":
        if self.terminal:
            self.ticker.start()
        return self

    def __exit__(self, kind: type[BaseException] | None, _: BaseException | None, __: TracebackType | None) -> None:
        self.ended.set()
        if self.terminal:
            self.ticker.join()
            self.draw()
            print(file=self.stream, flush=True)

    def __call__(self, share: float) -> None:
        self.share, self.told = share, time.monotonic()
        if self.terminal:
            self.draw()
        while not self.terminal and self.lines < int(share * 10 + 1e-6):
            self.lines += 1
            print(f"{self.lines * 10:4} %  {self.times()}", file=self.stream, flush=True)

    def tick(self) -> None:
        while not self.ended.wait(0.5):
            self.draw()

    def draw(self) -> None:
        self.stream.write(f"\r{columns(self.share, self.unicode)} {self.share * 100:3.0f} %  {self.times()}\x1b[K")
        self.stream.flush()

    def times(self) -> str:
        used = time.monotonic() - self.start
        if self.share == 0 or self.share == 1:
            return f"{clock(used)} used"
        left = (self.told - self.start) / self.share * (1 - self.share) - (time.monotonic() - self.told)
        return f"{clock(used)} used, {clock(max(left, 0))} left"
