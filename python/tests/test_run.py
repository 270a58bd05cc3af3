"""The program as a child: what it says, how far it is, and how it ends."""

import os
import signal
import subprocess
import sys
import time
import unittest
from pathlib import Path

from scenes import SCENE, InFolder
from varlo.run import Fault, VarloError, find_binary, run


class Running(InFolder):
    def setUp(self) -> None:
        super().setUp()
        self.write("a.vlo", SCENE)

    def test_a_picture_and_its_progress(self) -> None:
        for height in (1, 7, 19, 40, 43):
            with self.subTest(height=height):
                steps: list[float] = []
                done = run(["-i", "a.vlo", "-r", "8", str(height)], cwd=self.folder, progress=steps.append)
                self.assertIn("Rendering to: picture.ppm", done.check().output)
                self.assertNotIn("\ufffd", done.output)
                self.assertEqual(sorted(steps), steps)
                self.assertEqual(steps[-1], 1.0)

    def test_faults(self) -> None:
        cases = [
            ("sphere { radius 0 }", 255, 6, "sphere radius must be greater than 0"),
            ("\nmodify", 255, 7, "Unkown term 'modify'"),
            ("\n,", 255, 7, "Syntaxic analyser stopped on character: ','"),
            ('include "none"', 255, None, "Scene file: none could no be opened"),
        ]
        for text, status, line, message in cases:
            with self.subTest(text=text):
                self.write("bad.vlo", SCENE + text)
                done = run(["-i", "bad.vlo", "-r", "8", "6"], cwd=self.folder)
                with self.assertRaises(Fault) as caught:
                    done.check()
                fault = caught.exception
                self.assertEqual((fault.status, fault.line, fault.message), (status, line, message))
        done = run(["-i", "a.vlo", "-o", "no/a"], cwd=self.folder)
        self.assertEqual((done.status, done.fault().message), (1, "no/a.ppm: No such file or directory"))
        self.assertEqual(run(["a.vlo"], cwd=self.folder).fault().message, "the program does not know these arguments")

    def test_signals_end_the_program_too(self) -> None:
        program = ("import sys; from pathlib import Path; from varlo.run import run\n"
                   "run(['-i', 'a.vlo', '-r', '4000', '3000', '-aaa', '-1'], cwd=Path(sys.argv[1]),"
                   " progress=lambda share: print(share, flush=True))")
        for number, status in ((signal.SIGTERM, 143), (signal.SIGINT, -signal.SIGINT), (signal.SIGPIPE, 141)):
            with self.subTest(signal=number), subprocess.Popen(
                    [sys.executable, "-c", program, str(self.folder)], stdout=subprocess.PIPE,
                    stderr=subprocess.DEVNULL) as child:
                assert child.stdout is not None
                child.stdout.readline()
                picture = self.folder / "picture.ppm"
                if number == signal.SIGPIPE:
                    child.stdout.close()
                else:
                    child.send_signal(number)
                self.assertEqual(child.wait(10), status)
                self.assertEqual(processes_with(picture), [])

    def test_where_the_program_is(self) -> None:
        self.assertTrue(find_binary().is_absolute())
        with self.assertRaisesRegex(VarloError, "none_such, named as given"):
            find_binary("none_such")


def processes_with(path: Path) -> list[str]:
    """Processes that have this file open, half a second from now at the latest."""
    found = []
    for _ in range(10):
        found = [entry for entry in Path("/proc").glob("[0-9]*/fd/*") if link(entry) == str(path)]
        if not found:
            break
        time.sleep(0.05)
    return [str(entry) for entry in found]


def link(entry: Path) -> str:
    try:
        return os.readlink(entry)
    except OSError:
        return ""


if __name__ == "__main__":
    unittest.main()
