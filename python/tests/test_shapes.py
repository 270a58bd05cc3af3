"""Shapes made of objects and meshes: sizes, closedness and normals, which a picture would show and nobody measures."""

import importlib.util
import math
import unittest
from collections import Counter

import varlo
from varlo import Vec


def corners(mesh: varlo.Mesh) -> list[list[Vec]]:
    return [[Vec.of(mesh.vertices[corner]) for corner in face] for face in mesh.faces]


def volume(mesh: varlo.Mesh) -> float:
    """Of a closed mesh whose faces turn outwards; others give nothing near what they should."""
    return sum(a.dot(b.cross(c)) for a, b, c in corners(mesh)) / 6


def outward(mesh: varlo.Mesh) -> float:
    """The least cosine between a corner's normal and its face."""
    return min(Vec.of(normal).unit().dot((b - a).cross(c - a).unit())
               for (a, b, c), normals in zip(corners(mesh), mesh.normals, strict=True) for normal in normals)


def words(group: varlo.Group) -> Counter[str]:
    return Counter(item.word for item in group.items if isinstance(item, varlo.Statement))


class Shapes(unittest.TestCase):
    def test_volumes(self) -> None:
        ring = [(3 * math.cos(at / 40 * math.tau), 3 * math.sin(at / 40 * math.tau), math.sin(at / 10 * math.tau) / 4)
                for at in range(40)]
        half = [(math.sin(at / 30 * math.pi), -math.cos(at / 30 * math.pi)) for at in range(31)]
        for name, mesh, wanted in (
            ("straight tube", varlo.tube([(0, 0, 0), (1, 0, 0), (4, 0, 0)], 1, sides=96), 4 * math.pi),
            ("closed tube", varlo.tube(ring, 0.5, closed=True, sides=48), math.pi / 4 * 2 * math.pi * 3.05),
            ("tapered tube", varlo.tube([(0, 0, 0), (0, 0, 3)], lambda way: 2 - way, sides=96), 7 * math.pi),
            ("ball", varlo.revolve(half, sides=96), 4 / 3 * math.pi),
            ("cup", varlo.revolve([(0, 0), (2, 0), (2, 3), (1, 3), (1, 1), (0, 1)], sides=96), 10 * math.pi),
        ):
            with self.subTest(name):
                self.assertAlmostEqual(volume(mesh) / wanted, 1, delta=0.02)
                self.assertGreater(outward(mesh), 0.7)

    def test_a_tube_does_not_twist(self) -> None:
        # Along each side, normals turn with the curve alone; a frame that jumps shows as neighbours that differ.
        knot = [Vec(math.sin(t) + 2 * math.sin(2 * t), math.cos(t) - 2 * math.cos(2 * t), -math.sin(3 * t))
                for t in (at / 150 * math.tau for at in range(150))]
        for face in corners(varlo.tube(knot, 0.3, sides=12, closed=True)):
            sides = sorted(abs(face[at] - face[at - 1]) for at in range(3))
            self.assertLess(sides[2], 2.2 * sides[1])

    def test_height_field(self) -> None:
        heights = [[0.0, 0.0, 1.0], [0.0, 2.0, 1.0]]
        shades = varlo.shades("earth", 2)
        mesh = varlo.height_field(heights, x=(-1, 1), y=(5, 6), surfaces=shades, which=[[0, 1]])
        self.assertEqual([tuple(vertex) for vertex in mesh.vertices],
                         [(-1, 5, 0), (0, 5, 0), (1, 5, 1), (-1, 6, 0), (0, 6, 2), (1, 6, 1)])
        self.assertEqual(list(mesh.which), [0, 0, 1, 1])
        self.assertTrue(all((b - a).cross(c - a).z > 0 for a, b, c in corners(mesh)))
        self.assertRaisesRegex(varlo.SceneError, "all alike", varlo.height_field, [[0, 1], [0]], x=(0, 1), y=(0, 1))

    def test_lathe_and_box(self) -> None:
        turned = varlo.lathe([(0, 0), (1, 0), (1, 1), (2, 1), (0.5, 3), (0.5, 3), (0, 3)])
        self.assertEqual(words(turned), {"disc": 2, "cylinder": 1, "ring": 1, "cone": 1})
        self.assertEqual(words(varlo.box((0, 0, 0), (1, 2, 3))), {"polygon": 6})
        self.assertEqual(words(varlo.box((0, 0, 0), (1, 2, 0))), {"polygon": 5})
        self.assertRaisesRegex(varlo.SceneError, "0 or above", varlo.lathe, [(0, 0), (-1, 1)])

    def test_scatter(self) -> None:
        # Two floors, one three times as large, the small one out of bounds for a part of the tests.
        mesh = varlo.mesh([(0, 0, 0), (3, 0, 0), (3, 1, 0), (0, 1, 0), (0, 0, 5), (1, 0, 5), (1, 1, 5), (0, 1, 5)],
                          [(0, 1, 2, 3), (4, 5, 6, 7)])
        places = varlo.scatter(mesh, 4000, seed=1)
        self.assertEqual(places, varlo.scatter(mesh, 4000, seed=1))
        self.assertNotEqual(places, varlo.scatter(mesh, 4000, seed=2))
        self.assertAlmostEqual(sum(point.z > 1 for point, _ in places) / 4000, 0.25, delta=0.03)
        self.assertEqual({tuple(normal) for _, normal in places}, {(0, 0, 1)})
        spaced = [point for point, _ in varlo.scatter(mesh, 900, spacing=0.2, where=lambda point, _: point.z < 1)]
        self.assertTrue(40 < len(spaced) < 900)
        self.assertGreaterEqual(min(abs(a - b) for at, a in enumerate(spaced) for b in spaced[:at]), 0.2)
        self.assertTrue(all(point.z == 0 for point in spaced))

    @unittest.skipUnless(importlib.util.find_spec("fontTools"), "fontTools is not installed")
    def test_text(self) -> None:
        flat = varlo.text("IO\nI", size=2, depth=0, align="right")
        letters = [item for item in flat.items if isinstance(item, varlo.Group)]
        shapes = [item for letter in letters for item in letter.items if isinstance(item, varlo.polygon)]
        self.assertEqual(len(shapes), 3)
        for shape in shapes:
            spread = (shape.vertex[1] - shape.vertex[0]).cross(shape.vertex[2] - shape.vertex[1])
            self.assertGreater(abs(spread), 1e-4, "the first three corners give no plane")
            self.assertEqual({corner.y for corner in shape.vertex}, {0})
        self.assertLessEqual(max(corner.x for shape in shapes for corner in shape.vertex), 0)
        self.assertAlmostEqual(max(corner.z for corner in shapes[0].vertex), 0.73 * 2, delta=0.1)
        # The area of an O by its outline, hole taken away: the way round the hole and over the bridge counts below 0.
        area = sum(a.x * b.z - b.x * a.z for a, b in zip(shapes[1].vertex, shapes[1].vertex[1:], strict=False)) / 2
        box = [max(parts) - min(parts) for parts in zip(*shapes[1].vertex, strict=True)]
        self.assertTrue(0.3 < abs(area) / (box[0] * box[2]) < 0.6)
        self.assertRaisesRegex(varlo.VarloError, "not found|fontTools", varlo.text, "a", "/no/font.ttf")


class Colours(unittest.TestCase):
    def test_maps(self) -> None:
        for name in ("dusk", "leaf", "sea", "earth", "poles"):
            colors = [varlo.colormap(name)(at / 10) for at in range(-1, 12)]
            self.assertTrue(all(0 <= part <= 1 for color in colors for part in color))
            self.assertEqual(colors[0], colors[1])
            self.assertEqual(len(set(colors)), 11)
        self.assertEqual(varlo.gradient([(0, 0, 0), (1, 0, 0), (1, 1, 0)])(0.75), (1, 0.5, 0))
        self.assertEqual(varlo.rgb("ff0033"), (1, 0, 0.2))
        self.assertRaisesRegex(varlo.SceneError, "one of dusk", varlo.colormap, "nothing")
        self.assertRaises(varlo.SceneError, varlo.rgb, "red")

    def test_materials(self) -> None:
        self.assertIn("reflection 0.84", varlo.material("chrome").text())
        self.assertIn("color 0 0 1", varlo.material("glass", color=(0, 0, 1)).text())
        self.assertRaisesRegex(varlo.SceneError, "one of plaster", varlo.material, "wood")


if __name__ == "__main__":
    unittest.main()
