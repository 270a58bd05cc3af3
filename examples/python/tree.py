"""An old tree in October: branches that fork by chance, some 15 000 leaves, and those that have fallen."""

import math
import random
import sys

import varlo
from varlo import Vec

LEAVES = [(0.80, 0.28, 0.04), (0.86, 0.42, 0.05), (0.90, 0.58, 0.10), (0.68, 0.16, 0.04), (0.55, 0.42, 0.08)]


class Tree:
    """Wood, and leaves by colour."""

    def __init__(self, seed: int) -> None:
        self.chance = random.Random(seed)
        self.wood = varlo.group()
        self.leaves = [varlo.group() for _ in LEAVES]

    def limb(self, begin: Vec, way: Vec, length: float, thick: float, depth: int) -> None:
        """A branch of three bent pieces, and what grows out of it."""
        chance = self.chance
        points, ways = [begin], way
        for _ in range(3):
            bend = Vec(chance.gauss(0, 1), chance.gauss(0, 1), chance.gauss(0.25, 0.8)) * 0.16
            ways = (ways + bend).unit()
            points.append(points[-1] + ways * (length / 3))
        taper = 0.68
        radii = [thick * (1 - (1 - taper) * at / 3) for at in range(4)]
        for at in range(3):
            self.wood.add(varlo.sphere(center=points[at + 1], radius=radii[at + 1]),
                          varlo.cone(base=points[at], cap=points[at + 1],
                                     base_radius=radii[at], cap_radius=radii[at + 1]))
        if depth <= 2:
            for _ in range(6 if depth else 13):
                self.leaf(points[1].mix(points[3], chance.random()), 0.42)
        if depth == 0:
            return
        side, other = ways.across()
        turn = chance.uniform(0, math.tau)
        for at in range(3 if depth > 3 or chance.random() < 0.55 else 2):
            angle = turn + at * 2.4
            lean = chance.uniform(0.45, 0.85) if at else chance.uniform(0.15, 0.4)
            grown = ways * math.cos(lean) + (side * math.cos(angle) + other * math.sin(angle)) * math.sin(lean)
            grown = (grown + Vec(0, 0, 0.10 if depth > 2 else -0.03)).unit()
            self.limb(points[3], grown, length * chance.uniform(0.70, 0.88), radii[3] * chance.uniform(0.68, 0.86),
                      depth - 1)

    def leaf(self, near: Vec, far: float) -> None:
        """Two triangles about a crease, hanging anywhere near a twig."""
        chance = self.chance
        stem = near + Vec(*(chance.gauss(0, far / 2) for _ in range(3)))
        way = Vec(chance.gauss(0, 1), chance.gauss(0, 1), chance.gauss(-0.4, 0.6)).unit()
        self.lay(stem, way, chance.uniform(0.10, 0.17))

    def lay(self, stem: Vec, way: Vec, size: float) -> None:
        """A leaf of a size, from its stem into a direction."""
        side, up = way.across()
        turn = self.chance.uniform(0, math.tau)
        side = side * math.cos(turn) + up * math.sin(turn)
        middle, tip = stem + way * (0.5 * size), stem + way * size
        color = min(int(abs(self.chance.gauss(0, 1.5))), len(LEAVES) - 1)
        for edge in (side, -side):
            lobe = middle + edge * (0.42 * size) + way.cross(side) * (0.10 * size)
            self.leaves[color].add(varlo.triangle(vertex=[stem, lobe, tip]))


def ground(x: float, y: float) -> float:
    """A knoll under the tree, and hills behind it."""
    knoll = 1.3 * math.exp(-(x * x + y * y) / 90) - 1.3
    far = max(0.0, y - 14) * (0.055 + 0.03 * math.sin(x * 0.07 + 0.6))
    far += max(0.0, y - 50) * 0.08 * math.sin(x * 0.05 + 2)
    return knoll + far + 0.07 * math.sin(x * 0.8) * math.cos(y * 0.6)


def field(x: tuple[float, float], y: tuple[float, float], step: float) -> varlo.Mesh:
    columns, rows = (round((end - begin) / step) for begin, end in (x, y))
    return varlo.height_field([[ground(x[0] + (x[1] - x[0]) * at / columns, y[0] + (y[1] - y[0]) * row / rows)
                                for at in range(columns + 1)] for row in range(rows + 1)], x=x, y=y)


def build() -> varlo.Scene:
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, haze_factor=0.006,
                       haze_color=(0.93, 0.88, 0.80)),
        varlo.camera(position=(0.4, -21, 1.3), look_at=(0.2, 0, 3.95), fov=51, ratio=varlo.true_ratio(51, 16, 9)),
        varlo.light(position=(-50, -52, 42), color=(1.0, 0.86, 0.66), attenuation_type="none", shadow_type="smooth",
                    radius=1.6, light_samples=10),
        varlo.light(position=(40, -60, 60), color=(0.16, 0.19, 0.25), attenuation_type="none"),
    )
    sky = varlo.gradient([(0.96, 0.88, 0.74), (0.86, 0.86, 0.82), (0.62, 0.75, 0.86), (0.46, 0.63, 0.82)])
    for at in range(160):
        band = varlo.cylinder(base=(0, 0, at * 0.75 - 12), cap=(0, 0, at * 0.75 - 11.25), radius=140)
        scene.add(band, surface=varlo.surface(color=sky(at / 115 - 0.12), ambient=1.0))

    tree = Tree(12)
    tree.limb(Vec(0, 0, -0.3), Vec(0.05, 0, 1), 2.5, 0.42, 7)
    scene.add(field((-70, 70), (-24, 120), 0.8),
              surface=varlo.surface(color=(0.36, 0.40, 0.13), ambient=0.2, diffuse=0.75))
    near = field((-14, 14), (-16, 7), 0.8)
    for point, normal in varlo.scatter(near, 4200, seed=3, where=lambda point, _: (
            math.hypot(point.x, point.y) < 3.2 + 9 * tree.chance.random() ** 3)):
        along = normal.cross((tree.chance.gauss(0, 1), tree.chance.gauss(0, 1), 0.2)).unit()
        tree.lay(point + normal * tree.chance.uniform(0.01, 0.06), along, tree.chance.uniform(0.12, 0.18))
    grass = varlo.group(surface=varlo.surface(color=(0.45, 0.47, 0.16), ambient=0.25, diffuse=0.7))
    for point, _ in varlo.scatter(near, 30000, seed=9):
        lean = Vec(tree.chance.gauss(0, 0.05), tree.chance.gauss(0, 0.05), tree.chance.uniform(0.10, 0.28))
        grass.add(varlo.triangle(vertex=[point - (0.012, 0, 0.01), point + (0.012, 0, -0.01), point + lean]))
    scene.add(grass)

    scene.add(tree.wood, surface=varlo.surface(color=(0.23, 0.17, 0.13), ambient=0.2, diffuse=0.8))
    for color, leaves in zip(LEAVES, tree.leaves, strict=True):
        scene.add(leaves, surface=varlo.surface(color=color, ambient=0.42, diffuse=0.8))
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "tree.png")
