"""Each rule of the language at its edge, asked of the module and of the program: the two agree, in the same words."""

import tempfile
import unittest
from pathlib import Path
from typing import Any

import varlo
from varlo.run import find_binary, run

GOOD: dict[str, dict[str, Any]] = {
    "settings": {"output_type": "ppm", "output_name": "a", "resolution": (1, 1)},
    "camera": {"position": (0, -5, 0), "look_at": (0, 0, 0)},
    "light": {"position": (0, -5, 5), "color": (1, 1, 1)},
    "surface": {},
    "sphere": {"center": (0, 0, 0), "radius": 1},
    "plane": {"normal": (0, 0, 1), "distance": 0},
    "cylinder": {"base": (0, 0, 0), "cap": (0, 0, 1), "radius": 1},
    "cone": {"base": (0, 0, 0), "cap": (0, 0, 1), "base_radius": 1, "cap_radius": 0},
    "disc": {"center": (0, 0, 0), "normal": (0, 0, 1), "radius": 1},
    "ring": {"center": (0, 0, 0), "normal": (0, 0, 1), "internal_radius": 1, "external_radius": 2},
    "triangle": {"vertex": [(0, 0, 0), (1, 0, 0), (0, 1, 0)]},
    "patch": {"vertex": [(0, 0, 0), (1, 0, 0), (0, 1, 0)], "normal": [(0, 0, 1)] * 3},
    "polygon": {"vertex": [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)]},
}
TINY = 5e-324
SMOOTH = {"shadow_type": "smooth", "radius": 1, "light_samples": 1}
LIGHT_MISSING = "Error in light structure - missing parameters"
FLAT_RADIUS = "radius cannot be null or negative"
RING = "external and internal radius cannot be null or negative"
NUMBER = "ecimal value expected"
# The statement, the words that differ from a good one, and the rule that they break; "" where they keep all of them.
RULES: list[tuple[str, dict[str, Any], str]] = [
    ("settings", {"output_type": "jpg"}, "invalid output file type specified"),
    ("settings", {"output_name": "n" * 251}, ""),
    ("settings", {"output_name": "1e5"}, ""),
    ("settings", {"resolution": (1, 0)}, "A picture of 1 x 0 pixels cannot be rendered"),
    ("settings", {"antialiasing": "best"}, "invalid anti-aliasing type specified"),
    ("settings", {"aa_distance": -2**31}, ""),
    ("settings", {"background": (-9, 3, 1e300), "haze_color": (7, 7, 7), "haze_factor": 1}, ""),
    ("camera", {"samples": 1}, ""),
    ("camera", {"samples": 0}, "camera samples must be greater than 0"),
    ("camera", {"projection_type": "round"}, "invalid camera projection type specified"),
    ("camera", {"focal_length": 1, "focal_point": (0, 0, 0)}, "focal lenght OR focal point must be defined"),
    ("light", {"color": (TINY, 1e300, 1)}, ""),
    ("light", {"color": (0, 1, 1)}, "invalid color component(s)"),
    ("light", {"light_type": "lamp"}, "invalid light type specified"),
    ("light", {"light_type": "spot"}, LIGHT_MISSING),
    ("light", {"light_type": "spot", "target": (0, -5, 5)}, "Error in light structure - invalid target"),
    ("light", {"target": (1e-170, -5, 5)}, "Error in light structure - invalid target"),
    ("light", {"light_type": "spot", "target": (0, -5, 5 + 1e-15)}, ""),
    ("light", {"attenuation_type": "d3"}, "invalid light attenuation type specified"),
    ("light", {"shadow_type": "soft"}, "invalid shadow type specified"),
    ("light", SMOOTH, ""),
    ("light", {"shadow_type": "smooth", "radius": 1}, LIGHT_MISSING),
    ("light", {"shadow_type": "smooth", "light_samples": 1}, LIGHT_MISSING),
    ("light", {**SMOOTH, "radius": 0}, "smooth light radius must be greater than 0"),
    ("light", {**SMOOTH, "light_samples": 0}, "smooth light samples must be greater than 0"),
    ("surface", {"color": (0, 1, 0)}, ""),
    ("surface", {"color": (0, 1 + 1e-15, 0)}, "invalid color component(s)"),
    ("surface", {"color": (-TINY, 0, 0)}, "invalid color component(s)"),
    ("surface", {"reflection_type": "dull"}, "invalid reflection type specified"),
    ("surface", {"refraction_index": 1, "refraction": 1}, ""),
    ("surface", {"refraction_index": 1 - 1e-15}, "indice of refraction cannot be lower than 1.0"),
    ("sphere", {"radius": TINY}, ""),
    ("sphere", {"radius": 0}, "sphere radius must be greater than 0"),
    ("plane", {"normal": (0, -TINY, 0)}, ""),
    ("plane", {"normal": (0, -0.0, 0)}, "plane normal cannot be <0 0 0>"),
    ("cylinder", {"radius": 0}, FLAT_RADIUS),
    ("cylinder", {"cap": (0, 0, 0)}, "base and cap cannot be the same point"),
    ("cylinder", {"cap": (0, 0, TINY)}, ""),
    ("cone", {"base_radius": 0, "cap_radius": TINY}, ""),
    ("cone", {"base_radius": 0, "cap_radius": 0}, "base radius and cap radius cannot be both null"),
    ("cone", {"cap_radius": -TINY}, "base radius or cap radius cannot be negative"),
    ("cone", {"cap": (0, 0, 0)}, "base and cap cannot be the same point"),
    ("disc", {"radius": -1}, FLAT_RADIUS),
    ("ring", {"internal_radius": 0}, RING),
    ("ring", {"internal_radius": 3}, ""),
    ("ring", {"internal_radius": 2}, "both radius are equal"),
    ("triangle", {"vertex": [(0, 0, 0)] * 2}, "Too few vertices in triangle structure"),
    ("triangle", {"vertex": [(0, 0, 0)] * 4}, "Too many vertices in triangle structure"),
    ("patch", {"vertex": [(0, 0, 0)] * 2}, "Too few vertices in patch structure"),
    ("patch", {"vertex": [(0, 0, 0)] * 4}, "Too many vertices in patch structure"),
    ("patch", {"normal": [(0, 0, 0)] * 2}, "Too few normals in patch structure"),
    ("patch", {"normal": [(0, 0, 0)] * 4}, "Too many normals in patch structure"),
    ("polygon", {"vertex": [(0, 0, 0)] * 3}, "valid number of vertices expected"),
    ("polygon", {"vertex": [(0, 0, 1e300)] * 5}, ""),
]
# What has no text that the scanner takes, or what the program takes and the manual warns of: the module alone.
ALONE: list[tuple[str, dict[str, Any], str]] = [
    ("settings", {"output_name": "my picture"}, "a string is one word"),
    ("settings", {"output_name": "n" * 256}, "a string is one word"),
    ("settings", {"aa_distance": 2**31}, "Integer value expected"),
    ("settings", {"aa_distance": 2.5}, "Integer value expected"),
    ("settings", {"jitter": "yes"}, "True or False"),
    ("settings", {"haze_factor": 1.01}, "from 0 to 1"),
    ("settings", {"jpeg_quality": 0}, "1 to 100"),
    ("camera", {"look_at": (0, -5, 0)}, "not the position"),
    ("camera", {"up": (0, -2, 0)}, "not along the view"),
    ("camera", {"fov": float("nan")}, NUMBER),
    ("surface", {"reflection_samples": 0}, "0 or less mirror black"),
    ("surface", {"color": "red"}, "# and a declared name"),
    ("sphere", {"radius": float("inf")}, NUMBER),
    ("sphere", {"radius": "1"}, NUMBER),
    ("sphere", {"center": (0, 0, float("inf"))}, "three decimals"),
    ("sphere", {"center": "123"}, "three decimals"),
    ("disc", {"normal": (0, 0, 0)}, "never seen"),
]


def text(word: str, words: dict[str, Any]) -> str:
    """The statement as somebody would write it by hand, whatever its values are."""
    parts = [str(len(words["vertex"]))] if word == "polygon" else []
    for name, value in words.items():
        for one in value if name in ("vertex", "normal") and isinstance(value, list) else [value]:
            numbers = " ".join(map(repr, one if isinstance(one, tuple) else [one]))
            shown = f'"{one}"' if isinstance(one, str) else numbers
            bare = "color" in name or name in ("background", "resolution")
            parts.append(f"{name} {shown}" if bare or not isinstance(one, tuple) else f"{name} <{shown}>")
    return f"{word} {{ {' '.join(parts)} }}\n"


class Rules(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.binary = find_binary()

    def said(self, word: str, statement: str) -> tuple[int, str]:
        """What the program makes of a scene with this statement in place of a good one."""
        lines = {name: text(name, GOOD[name]) for name in ("settings", "camera", "light", "surface", "sphere")}
        lines[word] = statement
        (self.folder / "rule.vlo").write_text("".join(lines.values()))
        done = run(["-i", "rule.vlo"], cwd=self.folder, binary=self.binary)
        return done.status, done.output

    def test_both_know_each_rule(self) -> None:
        for word, change, rule in [(word, {}, "") for word in GOOD] + RULES:
            with self.subTest(word=word, change=change):
                status, output = self.said(word, text(word, {**GOOD[word], **change}))
                if rule:
                    with self.assertRaisesRegex(varlo.SceneError, f"^{word}: ") as caught:
                        getattr(varlo, word)(**{**GOOD[word], **change})
                    self.assertTrue(caught.exception.rule.startswith(rule), caught.exception.rule)
                    self.assertIn(rule, output)
                else:
                    self.assertEqual(status, 0, output)
                    statement = getattr(varlo, word)(**{**GOOD[word], **change})
                    self.assertEqual(self.said(word, statement.text() + "\n")[0], 0)

    def test_the_module_alone(self) -> None:
        for word, change, rule in ALONE:
            with self.subTest(word=word, change=change), self.assertRaises(varlo.SceneError) as caught:
                getattr(varlo, word)(**{**GOOD[word], **change})
            self.assertIn(rule, str(caught.exception))
            self.assertTrue(caught.exception.argument.startswith(next(iter(change))))


if __name__ == "__main__":
    unittest.main()
