"""The snippets of the manual run, one after the other, and print what they say; so do the example programs, small."""

import contextlib
import importlib.util
import io
import os
import re
import runpy
import tempfile
import unittest
from pathlib import Path

from varlo.run import find_binary

ROOT = Path(__file__).resolve().parents[2]
NEEDS = {"terrain": "numpy", "bars": "fontTools", "points": "fontTools", "lettering": "fontTools"}


class Manual(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        os.environ["VARLO_BINARY"] = str(find_binary())
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)

    @unittest.skipUnless(importlib.util.find_spec("numpy"), "NumPy is not installed")
    def test_snippets(self) -> None:
        names: dict[str, object] = {}
        snippets = re.findall(r"```python\n(.*?)```", (ROOT / "docs/python.md").read_text(), re.DOTALL)
        self.assertGreater(len(snippets), 8)
        for snippet in snippets:
            with self.subTest(snippet), contextlib.redirect_stdout(io.StringIO()) as shown:
                exec(snippet, names)
                said = re.findall(r"print\(.*\)  +# (\w+[ :].*[>}0-9])$", snippet, re.MULTILINE)
                self.assertEqual([line for line in said if line not in shown.getvalue()], [])

    def test_examples(self) -> None:
        programs = sorted((ROOT / "examples/python").glob("*.py"))
        self.assertEqual(len(programs), 10)
        for path in programs:
            if path.stem in NEEDS and not importlib.util.find_spec(NEEDS[path.stem]):
                continue
            with self.subTest(path.stem):
                scene = runpy.run_path(str(path))["build"]()
                scene.render("small.png", width=32, height=18, antialias="none")
                self.assertGreater(os.path.getsize("small.png"), 500)


if __name__ == "__main__":
    unittest.main()
