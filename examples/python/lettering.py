"""Letters of lacquer, gold, porcelain and copper on a dark mirror, in front of an evening sky."""

import math
import sys

import varlo

EVENING = varlo.gradient([(1.0, 0.62, 0.30), (0.90, 0.36, 0.32), (0.45, 0.22, 0.42), (0.13, 0.12, 0.30),
                          (0.04, 0.05, 0.14)])


def sky() -> varlo.Group:
    """Rings of colour all round, which the chrome and the floor have to mirror."""
    rings = varlo.group()
    for at in range(120):
        low, high = (math.radians(step * 0.72 - 1.5) for step in (at, at + 1))
        band = varlo.cone(base=(0, 0, 60 * math.sin(low)), cap=(0, 0, 60 * math.sin(high)),
                          base_radius=60 * math.cos(low), cap_radius=60 * math.cos(high))
        rings.add(varlo.group(band, surface=varlo.surface(color=EVENING(at / 70), ambient=1)))
    return rings


def build() -> varlo.Scene:
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8),
        varlo.camera(position=(-2.2, -9.6, 1.25), look_at=(0.0, 0, 0.98), fov=40, ratio=varlo.true_ratio(40, 16, 9)),
        varlo.light(position=(-7, -9, 9), color=(0.98, 0.92, 0.86), attenuation_type="none", shadow_type="smooth",
                    radius=1.2, light_samples=24),
        varlo.light(position=(9, -4, 3), color=(0.55, 0.26, 0.18), attenuation_type="none"),
        sky(),
    )
    scene.add(varlo.plane(normal=(0, 0, 1), distance=0), surface=varlo.surface(
        color=(0.07, 0.06, 0.09), ambient=0.3, diffuse=0.5, reflection=0.42))
    # Flat fronts that mirror the horizon would look like glass.
    dull = {"reflection": 0.03, "brilliance": 1, "ambient": 0.24}
    looks = [varlo.material("lacquer", **dull), varlo.material("gold", **dull),
             varlo.material("plaster", color=(0.93, 0.90, 0.86), specular=0.5, roughness=60, **dull),
             varlo.material("lacquer", **dull, color=(0.05, 0.26, 0.42)), varlo.material("copper", **dull)]
    x = -3.15
    for letter, look, turned in zip("varlo", looks, (-7, 4, -3, 6, -5), strict=True):
        shape = varlo.text(letter, "DejaVu Serif:bold", size=2.6, depth=0.62)
        wide = {"v": 1.5, "a": 1.62, "r": 1.30, "l": 0.92, "o": 1.5}[letter]
        # Each stands on its own foot, turned a little about its middle.
        scene.add((varlo.move(x, 0, 0.04) @ varlo.turn(z=turned, about=(wide / 2, 0.3, 0)))(shape), surface=look)
        x += wide
    for at in range(46):
        angle = at * 2.399963  # the golden angle: beads as seeds in a sunflower
        far = 0.62 * math.sqrt(at + 2)
        place = (far * 1.9 * math.cos(angle), far * math.sin(angle) - 0.9, 0.09)
        if abs(place[1] - 0.3) > 0.75 or abs(place[0]) > 3.6:
            scene.add(varlo.sphere(center=place, radius=0.09), surface=looks[at % 5])
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "lettering.png")
