"""A room at night under sixty paper lanterns, each of which is a lamp."""

import math
import random
import sys

import varlo
from varlo import Vec

WIDE, DEEP, HIGH = 5.0, 9.0, 4.2  # from the middle to the walls, to the back, to the ceiling
PAPER = [(1.0, 0.72, 0.36), (1.0, 0.58, 0.28), (0.98, 0.80, 0.52), (0.95, 0.46, 0.30)]


def lantern(place: Vec, size: float, color: tuple[float, float, float]) -> varlo.Group:
    """A round paper lantern with a hole below, through which its lamp shines, and its cord."""
    angles = [0.45 + at * 0.19 for at in range(13)]
    paper = varlo.revolve([(size * math.sin(angle) * (1 + 0.03 * (at % 2)), -size * 0.86 * math.cos(angle))
                           for at, angle in enumerate(angles)], sides=28, smooth=80)
    return varlo.group(
        varlo.group(varlo.move(*place)(paper), surface=varlo.surface(color=color, ambient=0.92, diffuse=0.12)),
        varlo.group(varlo.cylinder(base=place + (0, 0, 0.8 * size), cap=(place.x, place.y, HIGH), radius=0.006),
                    surface=varlo.surface(color=(0.2, 0.15, 0.1), ambient=0.2, diffuse=0.5)))


def room() -> varlo.Group:
    """Boards, walls and a ceiling, a long table with cups, and benches along it."""
    floor = varlo.group()
    chance = random.Random(2)
    for row in range(25):
        shade = chance.uniform(0.85, 1.1)
        boards = varlo.surface(color=(0.30 * shade, 0.18 * shade, 0.10 * shade), ambient=0.04, diffuse=0.34,
                               reflection=0.10, specular=0.2, roughness=20)
        x = -WIDE + row * 2 * WIDE / 25
        floor.add(varlo.group(varlo.box((x + 0.012, -9, -0.1), (x + 2 * WIDE / 25 - 0.012, DEEP, 0)), surface=boards))
    walls = varlo.group(surface=varlo.surface(color=(0.55, 0.36, 0.27), ambient=0.05, diffuse=0.34))
    walls.add(varlo.box((-WIDE, DEEP, 0), (WIDE, DEEP + 0.1, HIGH)),
              varlo.box((-WIDE - 0.1, -9, 0), (-WIDE, DEEP, HIGH)),
              varlo.box((WIDE, -9, 0), (WIDE + 0.1, DEEP, HIGH)),
              varlo.group(varlo.box((-WIDE, -9, HIGH), (WIDE, DEEP, HIGH + 0.1)), surface=varlo.surface(
                  color=(0.34, 0.17, 0.10), ambient=0.45)))
    beams = varlo.group(surface=varlo.surface(color=(0.16, 0.085, 0.05), ambient=0.5, diffuse=0.3))
    beams.add(*(varlo.box((-WIDE, y, HIGH - 0.28), (WIDE, y + 0.22, HIGH)) for y in range(-4, 9, 2)))
    wood = varlo.group(surface=varlo.surface(color=(0.38, 0.21, 0.10), ambient=0.04, diffuse=0.36, reflection=0.08,
                                             specular=0.25, roughness=30))
    wood.add(varlo.box((-0.75, -1.2, 0.84), (0.75, 6.4, 0.92)))
    for x in (-1.25, 1.25):
        wood.add(varlo.box((x - 0.22, -1.2, 0.46), (x + 0.22, 6.4, 0.52)))
    for y in (-0.6, 2.6, 5.8):
        wood.add(*(varlo.box((x - 0.06, y - 0.06, 0), (x + 0.06, y + 0.06, high)) for x, high in (
            (-0.6, 0.84), (0.6, 0.84), (-1.25, 0.46), (1.25, 0.46))))
    cups = varlo.group(surface=varlo.material("plaster", color=(0.86, 0.84, 0.80), ambient=0.06, diffuse=0.32,
                                              specular=0.1, roughness=40))
    cup = varlo.revolve([(0, 0), (0.07, 0), (0.12, 0.06), (0.135, 0.15), (0.125, 0.15), (0.105, 0.06), (0, 0.02)])
    for at in range(9):
        for side in (-1, 1):
            cups.add(varlo.move(side * 0.48 + chance.gauss(0, 0.03), -0.8 + at * 0.82, 0.92)(cup))
    pot = varlo.lathe([(0, 0), (0.16, 0), (0.24, 0.10), (0.24, 0.18), (0.12, 0.28), (0.03, 0.30), (0.03, 0.35),
                       (0, 0.35)])
    cups.add(*(varlo.move(chance.gauss(0, 0.06), y, 0.92)(pot) for y in (0.3, 2.7, 5.0)))
    return varlo.group(floor, walls, beams, wood, cups)


def build() -> varlo.Scene:
    chance = random.Random(5)
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, background=(0.01, 0.01, 0.02)),
        varlo.camera(position=(0.9, -6.2, 1.75), look_at=(-0.1, 2.4, 1.72), fov=62, ratio=varlo.true_ratio(62, 16, 9)),
        room(),
    )
    places: list[Vec] = []
    while len(places) < 60:
        place = Vec(chance.uniform(-4.2, 4.2), chance.uniform(-2.6, 8.2), chance.uniform(2.35, 3.65))
        if all(abs(place - other) > 0.8 for other in places) and abs(place.y % 2 - 0.1) > 0.3:
            places.append(place)
    for place in places:
        color = chance.choice(PAPER)
        size = chance.uniform(0.16, 0.27)
        scene.add(lantern(place, size, color))
        lamp = place - (0, 0, size * 0.8)
        scene.add(varlo.light(position=lamp, color=[1.45 * part for part in color], attenuation_type="d2"))
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "lamps.png")
