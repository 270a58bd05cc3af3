"""A Menger sponge of the fourth level with a lamp inside: 160 000 cubes, of which only the free sides are written.

The sponge is made anew each time that it is written: a generator yields its sides, and nothing keeps them.
"""

import sys
from collections.abc import Iterator
from functools import cache

import varlo

LEVEL = 4
SIDE = 3 ** LEVEL


@cache
def is_full(x: int, y: int, z: int) -> bool:
    """Whether a small cube belongs to the sponge: at no level two of its three numbers are in the middle."""
    if not (0 <= x < SIDE and 0 <= y < SIDE and 0 <= z < SIDE):
        return False
    while x or y or z:
        if (x % 3 == 1) + (y % 3 == 1) + (z % 3 == 1) > 1:
            return False
        x, y, z = x // 3, y // 3, z // 3
    return True


def sides() -> Iterator[varlo.polygon]:
    """The squares that are seen, from without or through the holes, joined to strips where they lie in a row."""
    for axis in range(3):
        for level in range(SIDE + 1):
            for row in range(SIDE):
                begin = None
                for at in range(SIDE + 1):
                    free = False
                    if at < SIDE:
                        low, high = [0, 0, 0], [0, 0, 0]
                        low[axis], high[axis] = level - 1, level
                        for cell in (low, high):
                            cell[(axis + 1) % 3], cell[(axis + 2) % 3] = row, at
                        free = is_full(*low) != is_full(*high)
                    if free and begin is None:
                        begin = at
                    elif not free and begin is not None:
                        yield strip(axis, level, row, begin, at)
                        begin = None


def strip(axis: int, level: int, row: int, begin: int, end: int) -> varlo.polygon:
    corners = []
    for across, along in ((row, begin), (row + 1, begin), (row + 1, end), (row, end)):
        corner = [0.0, 0.0, 0.0]
        corner[axis], corner[(axis + 1) % 3], corner[(axis + 2) % 3] = level, across, along
        corners.append([part * 2 / SIDE - 1 for part in corner])
    return varlo.polygon(vertex=corners)


def build() -> varlo.Scene:
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, background=(0.03, 0.05, 0.07)),
        varlo.camera(position=(-4.4, -6.9, 3.7), look_at=(0.05, 0, -0.17), fov=36, ratio=varlo.true_ratio(36, 16, 9)),
        varlo.light(position=(-7, -3, 8), color=(0.46, 0.56, 0.66), attenuation_type="none"),
        varlo.light(position=(5, -8, 3), color=(0.18, 0.22, 0.28), attenuation_type="none"),
        varlo.light(position=(0, 0, 0), color=(4.4, 2.1, 0.65), attenuation_type="d"),
    )
    scene.add(sides, surface=varlo.surface(color=(0.86, 0.82, 0.76), ambient=0.10, diffuse=0.85))
    scene.add(varlo.plane(normal=(0, 0, 1), distance=-1.02), surface=varlo.surface(
        color=(0.10, 0.13, 0.16), ambient=0.25, diffuse=0.85, reflection=0.22))
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "menger.png")
