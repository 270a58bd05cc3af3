"""A lake in the mountains on an autumn morning: 600 000 patches from an array of heights, water, and haze.

Needs NumPy. The heights are noise whose waves are the weaker the shorter they are; folded at zero it has ridges.
"""

import random
import sys
from typing import Any

import numpy as np
import varlo

WIDE, DEEP = 760, 400  # cells of the grid
X, Y = (-58.0, 58.0), (-14.0, 74.0)
HAZE = 0.0055
AIR = (0.86, 0.83, 0.80)


def noise(seed: int, fall: float, size: float) -> Any:
    """Noise with a mean of 0 and a spread of 1; waves longer than `size`, in lengths, are cut off."""
    chance = np.random.default_rng(seed)
    x = np.fft.fftfreq(2 * WIDE, (X[1] - X[0]) / WIDE)
    y = np.fft.fftfreq(2 * DEEP, (Y[1] - Y[0]) / DEEP)
    wave = np.hypot(x, y[:, None])
    power = np.where(wave > 1 / size, np.maximum(wave, 1e-9) ** -fall, 0)
    field = np.fft.ifft2(power * np.exp(2j * np.pi * chance.random(power.shape))).real[:DEEP + 1, :WIDE + 1]
    return (field - field.mean()) / field.std()


def mountains() -> varlo.Mesh:
    x, y = np.meshgrid(np.linspace(*X, WIDE + 1), np.linspace(*Y, DEEP + 1))
    ridges = np.exp(-1.2 * np.hypot(noise(11, 2.5, 50), 0.16)) + 0.3 * np.exp(-1.5 * np.abs(noise(5, 2.2, 16)))
    # A basin for the lake, open towards the eye, with the high peaks behind it.
    basin = np.hypot((x - 4) / 22, (y - 12) / 21)
    rise = np.clip(basin - 0.72, 0, 2.2)
    far = np.clip((y - 20) / 40, 0, 1)
    heights = -1.3 + 1.6 * rise + ridges * (0.5 + 3.6 * rise * (0.45 + 1.15 * far)) + 0.06 * noise(8, 1.8, 4)
    heights -= 3.5 * np.exp(-((x - 3) / 12) ** 2 - ((y + 14) / 14) ** 2)
    # Snow above, meadows and woods below, rock where it is steep.
    down, across = np.gradient(heights, y[1, 0] - y[0, 0], x[0, 1] - x[0, 0])
    steep = np.hypot(down, across)[:-1, :-1]
    height = heights[:-1, :-1]
    line = 4.6 + 0.7 * noise(21, 1.4, 5)[:-1, :-1]
    kind = np.where((height > line) & (steep < 1.1 + 0.12 * height), 2, np.where((steep > 0.8) | (height > 5.2), 1, 0))
    kind = np.where(height < 0.18, 3, kind)
    tone = np.clip(2.5 + 1.3 * noise(31, 1.0, 4)[:-1, :-1], 0, 5).astype(int)
    colors = [varlo.gradient(list(ends)) for ends in (
        ((0.17, 0.19, 0.07), (0.40, 0.29, 0.09)), ((0.30, 0.27, 0.25), (0.46, 0.42, 0.38)),
        ((0.86, 0.88, 0.92), (0.95, 0.96, 0.98)), ((0.30, 0.27, 0.22), (0.40, 0.36, 0.29)))]
    surfaces = [shade for color in colors for shade in varlo.shades(color, 6, ambient=0.16, diffuse=0.95)]
    return varlo.height_field(heights, x=X, y=Y, surfaces=surfaces, which=kind * 6 + tone)


def woods(land: varlo.Mesh) -> varlo.Group:
    """Firs, and larches in their autumn colour, where it is neither steep nor high."""
    chance = random.Random(4)
    kinds = [varlo.surface(color=color, ambient=0.25, diffuse=0.85)
             for color in ((0.07, 0.11, 0.06), (0.10, 0.15, 0.07), (0.50, 0.30, 0.06))]
    trees = [varlo.group(surface=kind) for kind in kinds]
    for point, _ in varlo.scatter(land, 9000, seed=2, where=lambda point, normal: (
            0.2 < point.z < 2.6 and normal.z > 0.72 and point.y < 40 and -30 < point.x < 34)):
        tall = chance.uniform(0.35, 0.8)
        trees[chance.choice((0, 0, 0, 1, 1, 2))].add(varlo.cone(
            base=point - (0, 0, 0.05), cap=point + (0, 0, tall), base_radius=0.2 * tall, cap_radius=0))
    return varlo.group(*trees)


def water() -> varlo.Mesh:
    """A flat lake whose normals make the waves."""
    side = 220
    x, y = np.meshgrid(np.linspace(-50, 50, side), np.linspace(-40, 50, side))
    waves = [(0.9, 2.1, 0.4), (-1.7, 2.9, 2.2), (3.1, 1.2, 4.0), (0.3, 4.7, 1.1)]
    calm = 0.006 * np.clip(1 - (y + 14) / 60, 0.25, 1)
    lean = [sum(calm * part[axis] / 2 * np.cos(part[0] * x + part[1] * y + part[2]) for part in waves)
            for axis in (0, 1)]
    points = np.stack([x, y, np.zeros_like(x)], axis=-1).reshape(-1, 3)
    normals = np.stack([*lean, np.ones_like(x)], axis=-1).reshape(-1, 3)
    return varlo.mesh(points, varlo.grid_faces(side, side), normals=normals)


def sky() -> varlo.Mesh:
    """A dome of bands, which the haze makes paler: each has the colour that is left of what should be seen."""
    radius = 140.0
    through = (1 - HAZE) ** radius
    seen = varlo.gradient([(0.95, 0.83, 0.68), (0.84, 0.82, 0.80), (0.62, 0.73, 0.84), (0.42, 0.58, 0.78)])
    angles = np.linspace(-0.06, 1.2, 241)
    bands = []
    for at in range(240):
        color = [(part - (1 - through) * air) / through for part, air in zip(seen(at / 120), AIR, strict=True)]
        bands.append(varlo.surface(color=[min(max(part / 3, 0), 1) for part in color], ambient=3))
    profile = [(radius * np.cos(angle), radius * np.sin(angle)) for angle in angles]
    return varlo.revolve(profile, sides=48, surfaces=bands, which=list(range(240)))


def build() -> varlo.Scene:
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, haze_factor=HAZE,
                       haze_color=AIR),
        varlo.camera(position=(3, -15, 2.6), look_at=(1.5, 20, 4.5), fov=52, ratio=varlo.true_ratio(52, 16, 9)),
        varlo.light(position=(-90, -6, 36), color=(1.05, 0.86, 0.62), attenuation_type="none"),
        varlo.light(position=(30, -80, 60), color=(0.10, 0.13, 0.18), attenuation_type="none"),
    )
    land = mountains()
    scene.add(sky(), land, woods(land))
    scene.add(water(), surface=varlo.material("water", color=(0.05, 0.10, 0.12), ambient=0.4, reflection=0.72))
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "terrain.png")
