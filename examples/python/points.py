"""A scatter plot for a slide: 900 measurements of three kinds in an open cube, each with its shadow on the floor."""

import random
import sys

import varlo
from varlo import Vec

KINDS = {  # name: colour, middle, spread along three axes, number
    "setosa": (varlo.rgb("2a7fb8"), Vec(-1.7, -1.3, -1.1), (0.38, 0.62, 0.42), 260),
    "versicolor": (varlo.rgb("f2a541"), Vec(0.1, 0.3, 0.2), (0.62, 0.42, 0.55), 320),
    "virginica": (varlo.rgb("c8385a"), Vec(1.5, 0.9, 1.35), (0.50, 0.66, 0.46), 320),
}
HALF = 2.8  # of the cube
EYE = (-8.8, -18.0, 8.6)


def frame(ink: varlo.surface) -> varlo.Group:
    """Three sides of the cube: fine lines, thicker at the edges, and numbers along two of them."""
    lines = varlo.group(surface=varlo.surface(color=(0.74, 0.77, 0.81), ambient=0.55, diffuse=0.3))
    for step in range(-2, 3):
        at = step * HALF / 2
        radius = 0.016 if abs(step) == 2 else 0.007
        for a, b in (((at, -HALF, -HALF), (at, HALF, -HALF)), ((-HALF, at, -HALF), (HALF, at, -HALF)),
                     ((at, HALF, -HALF), (at, HALF, HALF)), ((-HALF, HALF, at), (HALF, HALF, at)),
                     ((HALF, at, -HALF), (HALF, at, HALF)), ((HALF, -HALF, at), (HALF, HALF, at))):
            lines.add(varlo.cylinder(base=a, cap=b, radius=radius))
        lying = varlo.turn(x=-90)(varlo.text(str(5 + step), size=0.30, depth=0.01, align="center"))
        lines.add(varlo.group(varlo.move(at, -HALF - 0.42, -HALF)(lying),
                              varlo.move(-HALF - 0.34, at - 0.1, -HALF)(lying), surface=ink))
    for words, place in (("petal length", varlo.move(0, -HALF - 0.95, -HALF) @ varlo.turn(x=-90)),
                         ("sepal width", varlo.move(-HALF - 0.78, 0, -HALF) @ varlo.turn(z=90) @ varlo.turn(x=-90))):
        lines.add(varlo.group(place(varlo.text(words, size=0.36, depth=0.01, align="center")), surface=ink))
    return lines


def build() -> varlo.Scene:
    chance = random.Random(6)
    ink = varlo.surface(color=(0.16, 0.19, 0.24), ambient=0.5, diffuse=0.4)
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, background=(0.96, 0.97, 0.98)),
        varlo.camera(position=EYE, look_at=(0.75, -0.5, -0.62), fov=40, ratio=varlo.true_ratio(40, 16, 9)),
        varlo.light(position=(-30, -36, 90), color=(0.70, 0.69, 0.67), attenuation_type="none", shadow_type="smooth",
                    radius=5, light_samples=16),
        # A fill from the eye itself: nobody sees its shadows.
        varlo.light(position=EYE, color=(0.28, 0.28, 0.30), attenuation_type="none"),
    )
    paper = varlo.surface(color=(0.95, 0.96, 0.97), ambient=0.45, diffuse=0.74)
    scene.add(varlo.plane(normal=(0, 0, 1), distance=-HALF - 0.02), surface=paper)
    scene.add(frame(ink))
    for row, (name, (color, middle, spread, number)) in enumerate(KINDS.items()):
        look = varlo.surface(color=color, ambient=0.3, diffuse=0.72, specular=0.4, roughness=50)
        balls = varlo.group(surface=look)
        while number:
            lean = chance.gauss(0, 1)
            place = middle + Vec(*(part * (0.8 * chance.gauss(0, 1) + 0.6 * lean) for part in spread))
            if max(abs(part) for part in place) < HALF - 0.1:
                balls.add(varlo.sphere(center=place, radius=0.075))
                number -= 1
        scene.add(balls)
        # The legend lies on the floor beside the cube.
        x, y = 3.55, -2.2 + row * 0.62
        scene.add(varlo.sphere(center=(x, y, -HALF + 0.12), radius=0.13), surface=look)
        word = varlo.turn(x=-90)(varlo.text(name, size=0.36, depth=0.01))
        scene.add(varlo.move(x + 0.32, y - 0.12, -HALF)(word), surface=ink)
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "points.png")
