"""A sea shell: one curve that grows as it turns, and a tube round it that grows with it; rippled sand around.

Each whorl is larger than the one before by the same factor (D'Arcy Thompson, On Growth and Form, 1917).
"""

import math
import random
import sys

import varlo
from varlo import Vec

TURNS, GROWTH = 6.6, 1.72  # whorls, and the factor of the size from one to the next


def shell() -> varlo.Mesh:
    """The wall of the shell, with bands of colour along its whorls and fine ribs across them."""
    steps, sides = 1500, 120
    vertices, which = [], []
    for step in range(steps + 1):
        turn = math.tau * TURNS * step / steps
        size = GROWTH ** (turn / math.tau - TURNS)
        lip = 1 + 0.16 * max(0.0, (step - 0.965 * steps) / (0.035 * steps)) ** 2
        middle = Vec(math.cos(turn) * 0.92, math.sin(turn) * 0.92, -1.95) * size
        out, up = Vec(math.cos(turn), math.sin(turn), 0), Vec(0, 0, 1)
        rib = 1 + 0.022 * math.cos(turn * 19) ** 4
        for side in range(sides):
            angle = math.tau * side / sides
            knob = 1 + 0.10 * max(0.0, math.cos(turn * 5.0)) ** 3 * math.exp(-((angle - 0.95) / 0.33) ** 2)
            radius = size * rib * knob * lip
            vertices.append(middle + out * (0.96 * radius * math.cos(angle)) + up * (1.12 * radius * math.sin(angle)))
            if step < steps:
                which.append(min(int(24 * dark(turn, math.degrees(angle))), 23))
    color = varlo.gradient([(0.97, 0.90, 0.78), (0.95, 0.78, 0.58), (0.80, 0.47, 0.27), (0.48, 0.22, 0.13)])
    shades = varlo.shades(color, 24, ambient=0.18, diffuse=0.78, specular=0.35, roughness=45)
    faces = varlo.grid_faces(steps + 1, sides, around=True)
    return varlo.mesh(vertices, faces, smooth=180, surfaces=shades, which=which)


def dark(turn: float, angle: float) -> float:
    """How dark the wall is, from 0 to 1: spots where clouds along the whorls meet waves across them."""
    wave = 0.5 + 0.5 * math.sin(angle * 0.21 + 0.5 * math.sin(turn * 8) + 0.25 * math.sin(turn * 23 + angle / 25))
    cloud = 0.5 + 0.5 * math.sin(turn * 11 + 2.5 * math.sin(angle / 40) + 1.7 * math.sin(turn * 3.1))
    return (0.35 + 0.65 * cloud) * wave


def sand(x: float, y: float) -> float:
    """The height of the sand, in ripples that wander."""
    bend = x * 2.6 + 0.9 * math.sin(y * 0.6) + 0.5 * math.sin(y * 1.7 + x * 0.4)
    return 0.035 * (1 - abs(math.sin(bend + y * 0.35))) ** 1.4 * 2 + 0.05 * math.sin(x * 0.5) * math.cos(y * 0.4)


def build() -> varlo.Scene:
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, background=(0.93, 0.86, 0.74),
                       haze_factor=0.012, haze_color=(0.95, 0.88, 0.77)),
        varlo.camera(position=(-2.4, -9.6, 3.5), look_at=(0.05, 0, 1.12), fov=34, ratio=varlo.true_ratio(34, 16, 9)),
        varlo.light(position=(-11, -3.5, 8), color=(1.0, 0.90, 0.74), attenuation_type="none", shadow_type="smooth",
                    radius=1.1, light_samples=16),
        varlo.light(position=(8, -9, 7), color=(0.17, 0.19, 0.24), attenuation_type="none"),
    )
    lying = varlo.move(-1.6, -0.4, 1.08) @ varlo.turn(z=198) @ varlo.turn(y=106) @ varlo.turn(z=205)
    scene.add(lying(shell()))

    ground = varlo.height_field([[sand(at * 0.05 - 9, row * 0.05 - 6) for at in range(361)] for row in range(361)],
                                x=(-9, 9), y=(-6, 12))
    scene.add(ground, surface=varlo.surface(color=(0.86, 0.73, 0.55), ambient=0.22, diffuse=0.8))
    chance = random.Random(8)
    tones = varlo.shades(varlo.gradient([(0.55, 0.42, 0.30), (0.98, 0.93, 0.84)]), 5, ambient=0.2, diffuse=0.8)
    grains = [varlo.group(surface=tone) for tone in tones]
    for point, normal in varlo.scatter(ground, 5000, seed=5, where=lambda point, _: point.y < 4 and abs(point.x) < 5):
        size = 0.005 + 0.018 * chance.random() ** 4
        chance.choice(grains).add(varlo.sphere(center=point + normal * (size * 0.4), radius=size))
    scene.add(*grains)
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "whelk.png")
