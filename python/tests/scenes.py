"""What the tests share: small scenes, and a folder to put them in."""

import tempfile
import unittest
from pathlib import Path

HEAD = """camera { position <0 -5 0> look_at <0 0 0> }
settings { output_type "ppm" output_name "picture" resolution 8 6 }
light { position <0 -5 5> color 1 1 1 }
surface { color 1 1 1 diffuse 1 }
"""
SCENE = HEAD + "sphere { center <0 0 0> radius 1 }\n"


class InFolder(unittest.TestCase):
    """Gives each test an empty folder of its own."""

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name: str, text: str) -> Path:
        path = self.folder / name
        path.write_text(text)
        return path
