"""A bar chart for a slide: made-up sales of four regions in six years, with labels on the bars' own floor."""

import sys

import varlo

YEARS = ("2019", "2020", "2021", "2022", "2023", "2024")
SALES = {"North": (21, 18, 24, 31, 36, 42), "East": (15, 13, 17, 20, 27, 33),
         "South": (28, 22, 25, 27, 30, 34), "West": (9, 12, 15, 22, 31, 47)}
COLORS = [varlo.rgb(code) for code in ("1f5f8b", "2a9d8f", "e9b44c", "d1495b")]
WIDE, STEP, HIGH = 0.56, 1.0, 0.088  # of a bar, from bar to bar, and of one unit of sales
EYE = (-7.4, -19.5, 12.0)


def flat(words: str, size: float, align: str = "left") -> varlo.Group:
    """Letters that lie on the floor."""
    return (varlo.move(0, 0, 0.016) @ varlo.turn(x=-90))(varlo.text(words, size=size, depth=0.015, align=align))


def build() -> varlo.Scene:
    ink = varlo.surface(color=(0.16, 0.19, 0.24), ambient=0.5, diffuse=0.4)
    scene = varlo.Scene(
        varlo.settings(resolution=(1280, 720), antialiasing="adaptive", aa_distance=8, background=(0.97, 0.97, 0.96)),
        varlo.camera(position=EYE, look_at=(2.3, 1.3, 1.82), fov=28, ratio=varlo.true_ratio(28, 16, 9)),
        varlo.light(position=(-54, -24, 84), color=(0.72, 0.71, 0.69), attenuation_type="none", shadow_type="smooth",
                    radius=8, light_samples=24),
        # A fill from the eye itself: nobody sees its shadows.
        varlo.light(position=EYE, color=(0.26, 0.26, 0.28), attenuation_type="none"),
    )
    paper = varlo.surface(color=(0.95, 0.95, 0.94), ambient=0.42, diffuse=0.78)
    scene.add(varlo.plane(normal=(0, 0, 1), distance=0), surface=paper)

    # Two walls with lines at every ten units, behind and to the right of the bars.
    right, back = len(YEARS) * STEP - 0.1, len(SALES) * STEP - 0.1
    line = varlo.surface(color=(0.78, 0.80, 0.83), ambient=0.6, diffuse=0.3)
    for value in range(0, 51, 10):
        z = value * HIGH + 0.012
        scene.add(varlo.cylinder(base=(-0.4, back, z), cap=(right, back, z), radius=0.012),
                  varlo.cylinder(base=(right, -0.4, z), cap=(right, back, z), radius=0.012), surface=line)
        if value:
            label = varlo.text(str(value), size=0.30, depth=0.01)
            scene.add(varlo.move(-0.96, back, z - 0.1)(label), surface=ink)

    for row, (region, values) in enumerate(SALES.items()):
        y = row * STEP
        color = COLORS[row]
        bars = varlo.surface(color=color, ambient=0.3, diffuse=0.75, specular=0.18, roughness=30)
        for column, value in enumerate(values):
            x = column * STEP
            scene.add(varlo.box((x, y, 0), (x + WIDE, y + WIDE, value * HIGH)), surface=bars)
            number = varlo.move(x + WIDE / 2, y + 0.19, value * HIGH)(flat(str(value), 0.24, "center"))
            scene.add(number, surface=varlo.surface(color=(1, 1, 1), ambient=0.8, diffuse=0.3))
        scene.add(varlo.move(-0.25, y + 0.18, 0)(flat(region, 0.33, "right")), surface=ink)
    for column, year in enumerate(YEARS):
        scene.add(varlo.move(column * STEP + WIDE / 2, -0.52, 0)(flat(year, 0.33, "center")), surface=ink)
    scene.add(varlo.move(0, -1.18, 0)(flat("Sales by region, in millions", 0.36)), surface=ink)
    return scene


if __name__ == "__main__":
    build().render(sys.argv[1] if len(sys.argv) > 1 else "bars.png")
