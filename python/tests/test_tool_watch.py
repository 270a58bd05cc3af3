"""A save gives a new picture, of the scene or of what it includes, and a fault keeps the last one."""

import os
import signal
import subprocess
import sys
import threading
import time
import unittest
from queue import Empty, Queue

from scenes import SCENE, InFolder
from varlo.pictures import whole_size


class Watching(InFolder):
    def setUp(self) -> None:
        super().setUp()
        # A chafa that keeps the picture and says so.
        chafa = self.write("chafa", f'#!/bin/sh\nfor picture; do :; done\ncp "$picture" "{self.folder}/shown.png"\n')
        chafa.chmod(0o755)
        self.write("a.inc", "; nothing\n")
        self.write("a.vlo", SCENE + 'include "a.inc"\n')
        (self.folder / "scratch").mkdir()
        environment = {"PATH": f"{self.folder}:/usr/bin:/bin", "TMPDIR": str(self.folder / "scratch")}
        self.child = subprocess.Popen(
            [sys.executable, "-m", "varlo", "watch", "a.vlo", "--size", "40"], cwd=self.folder, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, text=True, env=os.environ | environment)
        self.addCleanup(self.child.communicate)
        self.addCleanup(self.child.kill)
        self.lines: Queue[str] = Queue()
        threading.Thread(target=self.listen, daemon=True).start()

    def listen(self) -> None:
        assert self.child.stdout is not None
        for line in self.child.stdout:
            self.lines.put(line.strip())

    def said(self) -> str:
        return self.lines.get(timeout=20)

    def save(self, name: str, text: str) -> str:
        start = time.monotonic()
        self.write(name, text)
        line = self.said()
        self.assertLess(time.monotonic() - start, 5)  # alone on a machine it takes a tenth of a second
        return line

    def test_saves(self) -> None:
        shown = self.folder / "shown.png"
        self.assertRegex(self.said(), "^a.vlo: 8 x 6 pixels in ")
        pictures = [shown.read_bytes()]
        self.assertRegex(self.save("a.vlo", SCENE.replace("8 6", "80 30") + 'include "a.inc"\n'), "a.vlo: 40 x 15 ")
        self.assertEqual(whole_size(shown), (40, 15))
        for name, text in (("a.inc", "plane { normal <0 -1 0> distance 0 }"), ("a.inc", "")):
            pictures.append(shown.read_bytes())
            self.assertRegex(self.save(name, text), "^a.vlo: 40 x 15 pixels in ")
        self.assertEqual(len({*pictures, shown.read_bytes()}), 3)  # the last one is the second again
        faults = [("a.inc", "\nsphere { }", "a.inc:2: error in sphere structure declaration"),
                  ("a.vlo", SCENE + '\ninclude "b.inc"', "a.vlo:7: Scene file: b.inc could no be opened")]
        for name, text, fault in faults:
            before = shown.read_bytes()
            self.assertEqual(self.save(name, text), fault)
            self.assertEqual(shown.read_bytes(), before)
        self.assertRegex(self.save("b.inc", ""), "^a.vlo: 8 x 6 pixels in ")
        with self.assertRaises(Empty):
            self.lines.get(timeout=0.3)  # nothing is shown twice
        self.child.send_signal(signal.SIGINT)
        self.assertEqual(self.child.wait(10), 0)
        self.assertEqual(list((self.folder / "scratch").iterdir()), [])


if __name__ == "__main__":
    unittest.main()
