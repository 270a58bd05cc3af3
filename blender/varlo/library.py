"""Finds the Python package varlo: in the add-on itself, where its zip carries it, or in the checkout around it."""

import sys
from pathlib import Path

_here = Path(__file__).resolve().parent
for _folder in (_here / "lib", _here.parents[1] / "python"):
    if (_folder / "varlo" / "scene.py").exists():
        if str(_folder) not in sys.path:
            sys.path.insert(0, str(_folder))
        break
