"""The jump of an editor lands on the fault."""

import json
import os
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

from scenes import SCENE, InFolder

ROOT = Path(__file__).resolve().parents[2]
CASES = [
    (SCENE + "\nsphere { }", "\n", "main.vlo", 7),
    (SCENE + 'include "a.inc"\n', "\n\ncone {\n}", "a.inc", 4),
    (SCENE + 'include "a.inc"\nsphere { }\n', "\n\n\n", "main.vlo", 7),
    ("disc { center <0 0 0> normal <0 0 1> radius 1 }" + SCENE, "", "main.vlo", 1),  # a warning
]


class Jumps(InFolder):
    def setUp(self) -> None:
        super().setUp()
        (self.folder / "bin").mkdir()
        check = self.write("bin/varlo-check", f'#!/bin/sh\nexec "{sys.executable}" -m varlo check "$@"\n')
        check.chmod(0o755)
        self.environment = {**os.environ, "PATH": f"{check.parent}:{os.environ['PATH']}"}

    def test_vim(self) -> None:
        vim = shutil.which("vim")
        if vim is None:
            self.skipTest("vim is not installed")
        for text, included, name, line in CASES:
            with self.subTest(text=text):
                self.write("main.vlo", text)
                self.write("a.inc", included)
                subprocess.run([vim, "-Nu", "NONE", "-es", "-c", f"set rtp+={ROOT}/editors/vim",
                                "-c", "compiler varlo", "-c", "silent make!", "-c", "cfirst",
                                "-c", "call writefile([expand('%:t'), line('.')], 'landed')", "-c", "qa!", "main.vlo"],
                               cwd=self.folder, env=self.environment, check=False, timeout=60)
                self.assertEqual((self.folder / "landed").read_text(), f"{name}\n{line}\n")

    def test_vim_file_types(self) -> None:
        vim = shutil.which("vim")
        if vim is None:
            self.skipTest("vim is not installed")
        for name, text, landed in (("a.vlo", "", "varlo\n; %s\n"),
                                   ("a.set", '{ input_name "a.3ds" }', "varlo\n; %s\n"),
                                   ("b.set", "set of another program", "\n/*%s*/\n")):
            with self.subTest(name=name, text=text):
                self.write(name, text)
                subprocess.run([vim, "-Nu", "NONE", "-es", "-c", f"set rtp^={ROOT}/editors/vim",
                                "-c", "filetype plugin on", "-c", f"edit {name}",
                                "-c", "call writefile([&filetype, &commentstring], 'landed')", "-c", "qa!"],
                               cwd=self.folder, env=self.environment, check=False, timeout=60)
                self.assertEqual((self.folder / "landed").read_text(), landed)

    def test_visual_studio_code(self) -> None:
        matcher = json.loads((ROOT / "editors/vscode/package.json").read_text())["contributes"]["problemMatchers"][0]
        task = json.loads((ROOT / "editors/vscode/tasks.json").read_text())["tasks"][0]
        self.assertEqual(task["problemMatcher"], "$" + matcher["name"])
        pattern = matcher["pattern"]
        for text, included, name, line in CASES:
            with self.subTest(text=text):
                scene = self.write("main.vlo", text)
                self.write("a.inc", included)
                arguments = [argument.replace("${file}", str(scene)) for argument in task["args"]]
                said = subprocess.run([task["command"], *arguments], stdout=subprocess.PIPE, text=True, check=False,
                                      env=self.environment).stdout
                found = re.match(pattern["regexp"], said.split("\n")[0])
                assert found is not None
                self.assertEqual((Path(found[pattern["file"]]).name, int(found[pattern["line"]])), (name, line))


if __name__ == "__main__":
    unittest.main()
