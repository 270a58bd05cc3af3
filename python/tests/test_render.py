"""Scenes rendered: the picture, whose line a fault is, and what is left when a run is stopped."""

import importlib
import importlib.util
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path
from typing import Any

import varlo
from varlo.run import find_binary

PACKAGES = str(Path(varlo.__file__).parents[1])
SLOW = """
import varlo
scene = varlo.Scene(varlo.camera(position=(0, -5, 0), look_at=(0, 0, 0)), varlo.surface(color=(1, 1, 1), diffuse=1))
scene.add(varlo.light(position=(0, -5, 5), color=(1, 1, 1), shadow_type="smooth", radius=1, light_samples=4000))
scene.add(varlo.sphere(center=(0, 0, 0), radius=1.5))
scene.render("slow.png", width=1600, height=1200, progress=lambda share: print(share, flush=True))
"""
NOTEBOOK = """
import sys
sys.path.insert(0, {packages!r})
import varlo
scene = varlo.Scene(varlo.camera(position=(0, -5, 0), look_at=(0, 0, 0)), varlo.surface(color=(1, 1, 1), ambient=1))
scene.add(varlo.sphere(center=(0, 0, 0), radius=1))
scene.render("ball.png", width=40, height=30)
"""


class Rendering(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        before = os.getcwd()
        self.addCleanup(os.chdir, before)
        os.chdir(self.folder)
        os.environ["VARLO_BINARY"] = str(find_binary())
        self.scene = varlo.Scene(varlo.camera(position=(0, -5, 0), look_at=(0, 0, 0)))
        self.scene.add(varlo.sphere(center=(0, 0, 0), radius=1), surface=varlo.surface(color=(1, 0.5, 0), ambient=1))

    @unittest.skipUnless(importlib.util.find_spec("numpy"), "NumPy is not installed")
    def test_picture(self) -> None:
        self.scene.add(varlo.settings(output_name="ball", output_type="ppm", resolution=(40, 30)))
        plain = self.scene.render()
        self.assertEqual(plain.path, Path("ball.ppm"))
        array = plain.array()
        self.assertEqual(array.shape, (30, 40, 3))
        self.assertEqual([tuple(array[15, 20]), tuple(array[0, 0])], [(255, 127, 0), (0, 0, 0)])
        # A size and colours that use all five filters of the format.
        self.scene.add(varlo.light(position=(3, -5, 4), color=(1, 1, 1)), varlo.material("plaster"),
                       varlo.plane(normal=(0, -1, 1), distance=-2))
        pictures = [self.scene.render(name, width=173, height=131, antialias=2) for name in ("a.png", "a.ppm")]
        self.assertTrue((pictures[0].array() == pictures[1].array()).all())
        self.assertEqual(pictures[0]._repr_png_(), Path("a.png").read_bytes())
        self.assertIsNone(pictures[1]._repr_png_())
        self.assertEqual(sorted(os.listdir()), ["a.png", "a.ppm", "ball.ppm"])

    def test_values(self) -> None:
        faulty: list[dict[str, Any]] = [{"width": 0}, {"height": -1}, {"antialias": "best"}, {"threads": 3},
                                        {"queue": 99}, {"path": "a.gif"}]
        for words in faulty:
            with self.subTest(words), self.assertRaisesRegex(varlo.SceneError, f"render: {next(iter(words))} = "):
                self.scene.render(**dict({"path": "a.png"}, **words))

    def test_whose_line_a_fault_is(self) -> None:
        Path("good.inc").write_text('; two\n; lines\ndeclare "sky" color 2 0 0\n')
        Path("bad.inc").write_text("\n\nsphere { radius 0 }\n")
        for names, file, line, message in (
            (["missing.inc"], __file__, 3, "Scene file: missing.inc could no be opened"),
            (["good.inc", "bad.inc"], "bad.inc", 3, "sphere radius must be greater than 0"),
            (["good.inc"], __file__, 4, "invalid color component(s)"),
        ):
            scene = varlo.Scene(*self.scene._all.items)
            here = sys._getframe().f_lineno
            for name in names:
                scene.add(
                    varlo.include(name))
            scene.add(varlo.surface(color="#sky"))
            with self.assertRaises(varlo.Fault) as caught:
                scene.render("a.png")
            fault = caught.exception
            self.assertEqual((fault.message, os.path.basename(str(fault.file)), fault.status),
                             (message, os.path.basename(file), 255))
            self.assertEqual(fault.line, line if file == "bad.inc" else here + line)
        self.assertEqual(sorted(os.listdir()), ["bad.inc", "good.inc"])

    def test_stopped(self) -> None:
        def stop(share: float) -> None:
            raise KeyboardInterrupt
        with self.assertRaises(KeyboardInterrupt):
            self.scene.render("a.png", width=400, height=300, progress=stop)
        # Ctrl+C reaches Python alone here: varlo is in a group of its own, and has to be ended.
        temporary = self.folder / "tmp"
        temporary.mkdir()
        child = subprocess.Popen([sys.executable, "-c", SLOW], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                 env={**os.environ, "PYTHONPATH": PACKAGES, "TMPDIR": str(temporary)})
        assert child.stdout is not None and child.stderr is not None
        with child.stdout, child.stderr:
            child.stdout.readline()
            start = time.monotonic()
            child.send_signal(signal.SIGINT)
            self.assertIn(b"KeyboardInterrupt", child.stderr.read())
            child.wait()
        self.assertLess(time.monotonic() - start, 5)
        self.assertEqual(os.listdir(temporary), [])
        self.assertEqual(os.listdir(), ["tmp"])

    @unittest.skipUnless(importlib.util.find_spec("nbconvert") and importlib.util.find_spec("ipykernel"),
                         "nbconvert is not installed")
    def test_notebook(self) -> None:
        nbformat: Any = importlib.import_module("nbformat")
        note = nbformat.v4.new_notebook(cells=[nbformat.v4.new_code_cell(NOTEBOOK.format(packages=PACKAGES))])
        nbformat.write(note, "ball.ipynb")
        subprocess.run([sys.executable, "-m", "nbconvert", "--to", "notebook", "--execute", "--inplace", "ball.ipynb"],
                       check=True, capture_output=True, timeout=120)
        outputs = nbformat.read("ball.ipynb", as_version=4).cells[0].outputs
        self.assertTrue(any("image/png" in output.get("data", {}) for output in outputs), outputs)


if __name__ == "__main__":
    unittest.main()
