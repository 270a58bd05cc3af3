"""NumPy where it is installed: all that it does for meshes is done without it too, at a tenth of the speed."""

from __future__ import annotations

import importlib
from functools import cache
from typing import Any


@cache
def numpy() -> Any:
    """The module, or None. It is loaded when the first mesh is made, since that takes a tenth of a second."""
    try:
        return importlib.import_module("numpy")
    except ImportError:
        return None
