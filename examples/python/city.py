"""A city by night: boxes with lit windows on both sides of an avenue, traces of cars, a moon, and wet asphalt.

A window is a polygon with an `ambient` of 1, which needs no light; only the lamps of the avenue shine.
"""

import math
import random
import sys

import varlo

NIGHT = (0.02, 0.03, 0.075)


def house(chance: random.Random, x: float, y: float, wide: float, deep: float, tall: float) -> list[varlo.Group]:
    """A tower with a set-back top: its walls, its warm windows and its cold ones."""
    walls, warm, cold = varlo.group(), varlo.group(), varlo.group()
    floors = [(wide, deep, 0.0, tall)]
    if tall > 7 and chance.random() < 0.7:
        top = chance.uniform(0.12, 0.3) * tall
        floors = [(wide, deep, 0.0, tall - top), (wide * 0.66, deep * 0.66, tall - top, tall)]
        if chance.random() < 0.35:
            walls.add(varlo.cone(base=(x, y, tall), cap=(x, y, tall + 2.2), base_radius=0.09, cap_radius=0.01))
    lit = chance.uniform(0.2, 0.62)
    for w, d, low, high in floors:
        walls.add(varlo.box((x - w / 2, y - d / 2, low), (x + w / 2, y + d / 2, high)))
        rows = int((high - low) / 0.42)
        for row in range(rows):
            z = low + 0.2 + row * 0.42
            dark = chance.random() < 0.12  # a whole floor that has gone home
            # The wall to the avenue, and the one to the eye.
            side = x - math.copysign(w / 2 + 0.01, x)
            panes = [(side, y - d / 2 + 0.18 + at * 0.36, 0.0, 0.2) for at in range(int((d - 0.3) / 0.36))]
            panes += [(x - w / 2 + 0.18 + at * 0.36, y - d / 2 - 0.01, 0.2, 0.0) for at in range(int((w - 0.3) / 0.36))]
            for u, v, across, along in panes:
                if dark or chance.random() > lit:
                    continue
                pane = varlo.polygon(vertex=[(u, v, z), (u + across, v + along, z),
                                             (u + across, v + along, z + 0.25), (u, v, z + 0.25)])
                (warm if chance.random() < 0.72 else cold).add(pane)
    return [walls, warm, cold]


def traces(chance: random.Random) -> list[varlo.Group]:
    """What cars leave in a long exposure: white towards the eye on the left, red away from it on the right."""
    found = []
    for side, color in ((-1, (1.0, 0.93, 0.78)), (1, (0.95, 0.10, 0.05))):
        lines = varlo.group(surface=varlo.surface(color=color, ambient=1.2))
        for _ in range(16):
            lane = side * chance.choice((0.6, 1.4, 2.2)) + chance.choice((-0.15, -0.05, 0.05, 0.15))
            begin, end = chance.uniform(-40, 6), chance.uniform(45, 110)
            lines.add(varlo.cylinder(base=(lane, begin, chance.uniform(0.12, 0.3)), cap=(lane, end, 0.2), radius=0.032))
        found.append(lines)
    return found


def sky() -> varlo.Group:
    """Bands from the glow over the roofs up to the night."""
    color = varlo.gradient([(0.42, 0.25, 0.20), (0.20, 0.15, 0.22), (0.07, 0.08, 0.17), (0.02, 0.03, 0.075)])
    bands = varlo.group()
    for at in range(200):
        low, high = (-2 + 0.48 * step for step in (at, at + 1))
        bands.add(varlo.group(varlo.cylinder(base=(0, 0, low), cap=(0, 0, high), radius=170),
                              surface=varlo.surface(color=color(at / 130), ambient=1)))
    return bands


def build() -> varlo.Scene:
    chance = random.Random(17)
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, background=NIGHT),
        varlo.camera(position=(1.4, -22, 13.5), look_at=(0.2, 30, 6.4), fov=50, ratio=varlo.true_ratio(50, 16, 9)),
        varlo.light(position=(70, 60, 90), color=(0.30, 0.34, 0.46), attenuation_type="none"),
        varlo.light(position=(-40, -60, 50), color=(0.10, 0.10, 0.17), attenuation_type="none"),
        sky(),
    )
    scene.add(varlo.sphere(center=(47, 150, 27), radius=4), surface=varlo.surface(color=(0.98, 0.95, 0.86), ambient=1))
    scene.add(varlo.plane(normal=(0, 0, 1), distance=0), surface=varlo.surface(
        color=(0.05, 0.05, 0.06), ambient=0.2, diffuse=0.9, reflection=0.34, specular=0.3, roughness=40))

    looks = [varlo.surface(color=(0.26, 0.28, 0.38), ambient=0.2, diffuse=0.9),
             varlo.surface(color=(1.0, 0.80, 0.46), ambient=1), varlo.surface(color=(0.72, 0.86, 1.0), ambient=0.9)]
    for side in (-1, 1):
        for row in range(4):
            y = -6.0
            while y < 112:
                wide, deep = chance.uniform(2.6, 4.2), chance.uniform(2.6, 4.6)
                tall = chance.uniform(3, 7) + 9 * chance.random() ** 3 + row * 1.1
                x = side * (4.6 + row * 4.7 + wide / 2)
                for part, look in zip(house(chance, x, y + deep / 2, wide, deep, tall), looks, strict=True):
                    scene.add(part, surface=look)
                y += deep + chance.uniform(0.25, 0.7)

    for line in traces(chance):
        scene.add(line)
    pole = varlo.surface(color=(0.2, 0.2, 0.2), ambient=0.1, diffuse=0.5)
    bulb = varlo.surface(color=(1, 0.86, 0.62), ambient=1.2)
    for at in range(9):
        for side in (-1, 1):
            y = -6 + at * 9
            top = varlo.Vec(side * 2.9, y, 2.1)
            scene.add(varlo.cylinder(base=(side * 3.5, y, 0), cap=(side * 3.5, y, 2.15), radius=0.035),
                      varlo.cylinder(base=(side * 3.5, y, 2.15), cap=top, radius=0.03), surface=pole)
            scene.add(varlo.sphere(center=top, radius=0.09), surface=bulb)
            if at < 7:
                scene.add(varlo.light(position=top - (0, 0, 0.12), color=(9, 6.3, 3.4), attenuation_type="d2"))
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "city.png")
