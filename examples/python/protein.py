"""A molecule from a file: balls and sticks for the atoms of a PDB or XYZ file, dots for hydrogen bonds.

Usage: protein.py [PICTURE [FILE]]. The file beside this program, helix.pdb, is an alpha helix of twenty alanines.
"""

import sys
from pathlib import Path

import varlo
from varlo import Vec

# Radius of the ball, reach of a bond, and colour of each element; lengths in units of 0.1 nm.
ELEMENTS = {
    "H": (0.24, 0.37, (0.93, 0.93, 0.92)), "C": (0.38, 0.77, (0.22, 0.24, 0.27)), "N": (0.38, 0.72, (0.13, 0.30, 0.80)),
    "O": (0.38, 0.70, (0.82, 0.11, 0.09)), "S": (0.46, 1.04, (0.90, 0.72, 0.12)), "P": (0.46, 1.10, (0.90, 0.45, 0.10)),
}
OTHER = (0.46, 1.1, (0.75, 0.35, 0.65))
Atom = tuple[str, Vec]


def read(path: Path) -> list[Atom]:
    """The atoms of a file, each with its element and its place."""
    lines = path.read_text().splitlines()
    if path.suffix == ".xyz":
        rows = [line.split() for line in lines[2:2 + int(lines[0])]]
        return [(name, Vec.of(map(float, place))) for name, *place in (row[:4] for row in rows)]
    return [(line[76:78].strip().title(), Vec(*(float(line[at:at + 8]) for at in (30, 38, 46))))
            for line in lines if line.startswith(("ATOM", "HETATM"))]


def pairs(atoms: list[Atom], reach: float) -> list[tuple[Atom, Atom, float]]:
    """All pairs nearer than `reach`, with their distance; cells of that size spare the looking."""
    cells: dict[tuple[int, ...], list[int]] = {}
    found = []
    for at, (_, place) in enumerate(atoms):
        cell = tuple(int(part // reach) for part in place)
        for x, y, z in ((x, y, z) for x in (-1, 0, 1) for y in (-1, 0, 1) for z in (-1, 0, 1)):
            for other in cells.get((cell[0] + x, cell[1] + y, cell[2] + z), ()):
                distance = abs(atoms[other][1] - place)
                if distance < reach:
                    found.append((atoms[other], atoms[at], distance))
        cells.setdefault(cell, []).append(at)
    return found


def molecule(atoms: list[Atom]) -> varlo.Group:
    def look(color: tuple[float, float, float]) -> varlo.surface:
        return varlo.surface(color=color, ambient=0.2, diffuse=0.72, specular=0.55, roughness=70, reflection=0.07)

    looks = {name: look(color) for name, (_, _, color) in ELEMENTS.items()}
    parts: dict[str, varlo.Group] = {}
    for name, place in atoms:
        part = parts.setdefault(name, varlo.group(surface=looks.get(name) or look(OTHER[2])))
        part.add(varlo.sphere(center=place, radius=ELEMENTS.get(name, OTHER)[0]))
    dots = varlo.group(surface=varlo.surface(color=(0.20, 0.55, 0.62), ambient=0.35, diffuse=0.6))
    for (first, a), (second, b), distance in pairs(atoms, 2.4):
        if distance < 1.15 * (ELEMENTS.get(first, OTHER)[1] + ELEMENTS.get(second, OTHER)[1]):
            middle = a.mix(b, 0.5)
            for name, begin in ((first, a), (second, b)):
                parts[name].add(varlo.cylinder(base=begin, cap=middle, radius=0.13))
        elif {first, second} == {"H", "O"} and 1.6 < distance:
            for step in range(1, 7):
                dots.add(varlo.sphere(center=a.mix(b, 0.12 + 0.76 * step / 7), radius=0.065))
    return varlo.group(*parts.values(), dots)


def build(path: Path = Path(__file__).with_name("helix.pdb")) -> varlo.Scene:
    atoms = read(path)
    middle = sum((place for _, place in atoms), Vec(0, 0, 0)) / len(atoms)
    size = max(abs(place - middle) for _, place in atoms)
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, haze_factor=0.02 / size,
                       haze_color=(0.92, 0.95, 0.97)),
        varlo.camera(position=(0, -3.6 * size, 0.9 * size), look_at=(0.03 * size, 0, -0.06 * size), fov=34,
                     ratio=varlo.true_ratio(34, 16, 9)),
        varlo.light(position=(-2 * size, -2.4 * size, 3.2 * size), color=(0.78, 0.77, 0.74), attenuation_type="none",
                    shadow_type="smooth", radius=size / 5, light_samples=20),
        # A fill from the eye itself: nobody sees its shadows.
        varlo.light(position=(0, -3.6 * size, 0.9 * size), color=(0.24, 0.25, 0.28), attenuation_type="none"),
    )
    scene.add(varlo.plane(normal=(0, 0, 1), distance=-0.42 * size),
              surface=varlo.surface(color=(0.90, 0.93, 0.95), ambient=0.46, diffuse=0.62))
    turned = varlo.turn(z=-16) @ varlo.turn(y=9) @ varlo.turn(x=40) @ varlo.move(*-middle)
    scene.add(turned(molecule(atoms)))
    return scene


if __name__ == "__main__":
    build(*map(Path, sys.argv[2:3])).render(sys.argv[1] if len(sys.argv) > 1 else "protein.png")
