"""Meshes: their normals, what the program's rule for them leaves, and the same text with NumPy and without."""

import contextlib
import functools
import io
import math
import random
import re
import unittest
from collections.abc import Iterator
from typing import Any
from unittest import mock

import varlo
from varlo import Vec

CUBE = [(x, y, z) for x in (0, 1) for y in (0, 1) for z in (0, 1)]
QUADS = [(0, 1, 3, 2), (4, 6, 7, 5), (0, 4, 5, 1), (2, 3, 7, 6), (0, 2, 6, 4), (1, 5, 7, 3)]
NUMBER = r"(-?\d[\d.e+-]*)"
try:
    import numpy
except ImportError:
    numpy = None  # type: ignore[assignment]


def patches(mesh: varlo.Mesh) -> list[tuple[list[Vec], list[Vec]]]:
    """Corners and normals as a reader of the text finds them."""
    found = []
    for _, text, lines in mesh.parts():
        assert text.count("\n") == lines
        for line in text.splitlines():
            rows = {word: [Vec.of(map(float, row)) for row in re.findall(rf"{word} <{NUMBER} {NUMBER} {NUMBER}>", line)]
                    for word in ("vertex", "normal")}
            found.append((rows["vertex"], rows["normal"]))
    return found


def without_numpy(make: Any) -> Any:
    with contextlib.ExitStack() as stack:
        for module in ("balls", "many", "mesh", "meshes"):
            stack.enter_context(mock.patch(f"varlo.{module}.numpy", lambda: None))
        return make()


class Meshes(unittest.TestCase):
    def test_smoothing_angle(self) -> None:
        # At a corner of the cube, three faces with the same angle there: smooth, the normal is the diagonal.
        for angle, flat in ((89, True), (91, False)):
            for corners, normals in patches(varlo.mesh(CUBE, QUADS, smooth=angle)):
                face = (corners[1] - corners[0]).cross(corners[2] - corners[0]).unit()
                for corner, normal in zip(corners, normals, strict=True):
                    wanted = face if flat else (corner - Vec(0.5, 0.5, 0.5)).unit()
                    self.assertLess(abs(normal.unit() - wanted), 1e-4)

    def test_normals_stay_on_their_side(self) -> None:
        # A folded strip: the normals that it is given lean over the edge of some faces.
        rng = random.Random(3)
        points = [Vec(x / 4, y, rng.uniform(-1, 1)) for x in range(12) for y in (0, 1)]
        faces = [(at, at + 2, at + 1) for at in range(22)]
        given = [Vec(rng.gauss(0, 1), rng.gauss(0, 1), 1) for _ in points]
        for corners, normals in patches(varlo.mesh(points, faces, normals=given)):
            face = (corners[1] - corners[0]).cross(corners[2] - corners[0])
            sides = {normal.dot(face) > 0 for normal in normals}
            self.assertEqual(len(sides), 1, "the program would turn one of them round")

    @unittest.skipIf(numpy is None, "NumPy is not installed")
    def test_lists_as_arrays(self) -> None:
        rng = random.Random(5)
        points = [Vec(x, y, rng.random()) for x in range(9) for y in range(9)]
        faces = [(at, at + 9, at + 10, at + 1) for at in range(71) if at % 9 < 8]
        red, blue = varlo.surface(color=(1, 0, 0)), varlo.surface(color=(0, 0, 1))
        ways = varlo.turn(x=20, z=70) @ varlo.scale(1, -2, 3) @ varlo.move(1, 2, 3)
        spread = [Vec(rng.gauss(0, 1), rng.gauss(0, 1), 1) for _ in points]
        for options in ({}, {"smooth": 25}, {"smooth": 180}, {"normals": spread},
                        {"surfaces": [red, blue], "which": [at % 2 for at in range(len(faces))]}):
            def make(options: Any = options) -> list[Any]:
                return list(ways(varlo.mesh(points, faces, **options)).parts())
            listed = without_numpy(make)
            arrays = make()
            self.assertEqual([part[0] for part in listed], [part[0] for part in arrays])
            for left, right in zip(listed, arrays, strict=True):
                numbers = [[float(number) for number in re.findall(NUMBER, part[1])] for part in (left, right)]
                self.assertEqual(len(numbers[0]), len(numbers[1]))
                worst = max(abs(a - b) for a, b in zip(*numbers, strict=True))
                self.assertLessEqual(worst, 1.5)  # one part of a normal in 100 000, from another order of sums

    def test_more_than_one_block(self) -> None:
        side = 150  # 44 402 triangles
        points = [(x, y, math.sin(x / 9)) for x in range(side) for y in range(side)]
        faces = [(at, at + side, at + side + 1, at + 1) for at in range(side * (side - 1)) if at % side < side - 1]
        found = patches(varlo.mesh(points, faces, smooth=180))
        self.assertEqual(len(found), 2 * (side - 1) ** 2)
        self.assertEqual({tuple(corner)[:2] for corners, _ in found for corner in corners},
                         {point[:2] for point in points})

    def test_spheres(self) -> None:
        places, radii = [(1, 2, 3), (4, 5.5, 6)], [1, 0.25]
        shades = varlo.shades("sea", 2)
        cases: list[tuple[dict[str, Any], list[int]]] = [({}, [0, 1]), ({"surfaces": shades, "which": [1, 0]}, [1, 0])]
        for options, order in cases:
            def make(options: dict[str, Any] = options) -> str:
                many = varlo.scale(2)(varlo.spheres(places, radii, **options))
                return "".join(text for _, text, _ in many.parts())
            for found in (make(), without_numpy(make)):
                single = [varlo.scale(2)(varlo.sphere(center=places[at], radius=radii[at])).text() for at in order]
                self.assertEqual(found.splitlines(), single)
        self.assertEqual(len(varlo.spheres(places, 1)), 2)
        faulty: list[Any] = [[1, 0], [1], [1, 2, 3]]
        for radius in faulty:
            self.assertRaisesRegex(varlo.SceneError, "radius", varlo.spheres, places, radius)
        with self.assertRaisesRegex(varlo.SceneError, "unevenly"):
            varlo.scale(1, 1, 2)(varlo.spheres(places, 1))

    def test_faults(self) -> None:
        cases: list[tuple[Any, dict[str, Any], str]] = [
            (([(0, 0)] * 3, [(0, 1, 2)]), {}, "vertices"),
            (([(0, 0, 0), (0, 0, math.inf), (1, 0, 0)], [(0, 1, 2)]), {}, r"vertices\[1\]"),
            ((CUBE, [(0, 1, 8)]), {}, "faces = 8"),
            ((CUBE, [(0, 1, -1)]), {}, "faces = -1"),
            ((CUBE, [(0, 1)]), {}, "three corners"),
            ((CUBE, [(0, 1, 2.5)]), {}, "whole numbers"),
            ((CUBE, QUADS), {"normals": [(0, 0, 1)] * 7}, "normals"),
            ((CUBE, QUADS), {"surfaces": [varlo.surface()], "which": [0] * 5}, "for each of 6"),
            ((CUBE, QUADS), {"surfaces": [varlo.surface()], "which": [0] * 5 + [1]}, "which = 1"),
        ]
        for arguments, options, said in cases:
            with self.subTest(said), self.assertRaisesRegex(varlo.SceneError, said):
                varlo.mesh(*arguments, **options)
            with self.subTest(said), self.assertRaisesRegex(varlo.SceneError, said):
                without_numpy(functools.partial(varlo.mesh, *arguments, **options))


def written(*items: Any) -> list[str]:
    out = io.StringIO()
    scene = varlo.Scene(varlo.settings(), varlo.camera(position=(0, -5, 0), look_at=(0, 0, 0)), *items)
    scene.write(out)
    return out.getvalue().splitlines()[2:]


class Written(unittest.TestCase):
    def test_surfaces_hold_to_the_end_of_their_group(self) -> None:
        red, blue = varlo.surface(color=(1, 0, 0)), varlo.surface(color=(0, 0, 1))
        ball = varlo.sphere(center=(0, 0, 0), radius=1)
        found = written(red, ball, varlo.group(ball, varlo.group(blue, ball), ball, surface=blue), ball,
                        varlo.surface(color=(1, 0, 0)), ball)
        order = ["red" if "1 0 0" in line else "blue" if "0 0 1" in line else "ball" for line in found]
        self.assertEqual(order, ["red", "ball", "blue", "ball", "ball", "ball", "red", "ball", "ball"])
        with self.assertRaisesRegex(varlo.SceneError, "no surface"):
            written(varlo.group(red, ball), varlo.group(ball))

    def test_generators(self) -> None:
        def balls() -> Iterator[varlo.sphere]:
            return (varlo.sphere(center=(at, 0, 0), radius=1) for at in range(3))
        ways: list[Any] = [balls, balls(), list(balls())]
        ends = [written(varlo.surface(), varlo.move(0, 0, 1)(varlo.group(item)))[-1] for item in ways]
        self.assertEqual(ends, ["sphere { center <2 0 1>  radius 1 }"] * 3)
        once = varlo.group(balls())
        written(varlo.surface(), once)
        with self.assertRaisesRegex(varlo.SceneError, "once"):
            written(varlo.surface(), once)

    def test_names_of_colours(self) -> None:
        cases: list[tuple[list[varlo.Statement], str]] = [
            ([varlo.surface(color="#red")], "Color declaration not found"),
            ([varlo.declare("red", (2, 0, 0)), varlo.surface(color="#red")], "each part from 0 to 1"),
            ([varlo.declare("red", (1, 0, 0)), varlo.surface(color="#red")], ""),
            ([varlo.include("colours.inc"), varlo.surface(color="#red")], ""),
        ]
        for items, said in cases:
            with self.subTest(said):
                if said:
                    self.assertRaisesRegex(varlo.SceneError, said, written, *items)
                else:
                    self.assertIn("color #red", written(*items)[-1])


class Transformations(unittest.TestCase):
    def test_what_holds(self) -> None:
        quarter = varlo.turn(z=90)
        for item, way, wanted in (
            (varlo.sphere(center=(1, 0, 0), radius=1), varlo.move(0, 0, 1) @ quarter @ varlo.scale(2),
             "sphere { center <0 2 1>  radius 2 }"),
            (varlo.plane(normal=(0, 0, 2), distance=1), varlo.move(0, 0, 1) @ varlo.scale(1, 1, -3),
             "plane { normal <0 0 -1>  distance 2 }"),
            (varlo.cylinder(base=(0, 0, 0), cap=(1, 0, 0), radius=1), varlo.scale(3, 2, 2),
             "cylinder { base <0 0 0>  cap <3 0 0>  radius 2 }"),
            (varlo.disc(center=(0, 0, 0), normal=(0, 0, 1), radius=1), varlo.scale(2, 2, 7),
             "disc { center <0 0 0>  normal <0 0 1>  radius 2 }"),
            (varlo.cone(base=(0, 0, 0), cap=(0, 1, 0), base_radius=1, cap_radius=0),
             varlo.look_at((5, 5, 5), (9, 5, 5)), "cone { base <5 5 5>  cap <6 5 5>  base_radius 1  cap_radius 0 }"),
        ):
            # Minus zeros and last bits are no matter here.
            shown = re.sub(NUMBER, lambda found: f"{round(float(found[1]), 9) + 0.0:g}", way(item).text())
            self.assertEqual(shown, wanted)

    def test_what_does_not(self) -> None:
        shear = varlo.Transform(Vec(1, 0, 0), Vec(0, 1, 0), Vec(1, 0, 1), Vec(0, 0, 0))
        cases: list[tuple[Any, varlo.Transform]] = [
            (varlo.sphere(center=(0, 0, 0), radius=1), varlo.scale(1, 1, 2)),
            (varlo.sphere(center=(0, 0, 0), radius=1), shear),
            (varlo.cone(base=(0, 0, 0), cap=(0, 0, 1), base_radius=1, cap_radius=0), shear),
            (varlo.disc(center=(0, 0, 0), normal=(0, 0, 1), radius=1), varlo.scale(2, 1, 1)),
            (varlo.camera(position=(0, 0, 0), look_at=(1, 0, 0), aperture=1), varlo.scale(1, 2, 1)),
            (varlo.include("part.inc"), varlo.move(1, 0, 0)),
            (varlo.cylinder(base=(0, 0, 0), cap=(0, 0, 1e-20), radius=1), varlo.move(0, 0, 1)),
            (varlo.sphere(center=(0, 0, 0), radius=1e-300), varlo.scale(1e-100)),
            (varlo.mesh([(0, 0, 1e200), (0, 1, 0), (1, 0, 0)], [(0, 1, 2)]), varlo.scale(1e200)),
        ]
        for item, way in cases:
            with self.subTest(item=item), self.assertRaisesRegex(
                    varlo.SceneError, "unevenly|stays|same point|greater than 0|too large"):
                written(varlo.surface(), way(item))


if __name__ == "__main__":
    unittest.main()
