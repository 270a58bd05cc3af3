"""Prints one frame of a simulation: balls that drop into a box, lose a little at each bounce, and come to rest.

Usage: bounce.py FRAME
"""

import random
import sys

STEPS = 8  # of the simulation in a frame
RADIUS = 0.4


def balls_at(frame: int) -> list[list[float]]:
    """Where the balls are: from the same start, as many steps as it takes."""
    dice = random.Random(7)
    balls = [[dice.uniform(-2, 2), dice.uniform(-2, 2), dice.uniform(2, 7),
              dice.uniform(-2, 2), dice.uniform(-2, 2), 0.0] for _ in range(24)]
    step = 1 / (25 * STEPS)
    for _ in range(frame * STEPS):
        for ball in balls:
            ball[5] -= 9.81 * step
            for axis, low, high in ((0, -2.6, 2.6), (1, -2.6, 2.6), (2, RADIUS, 99)):
                ball[axis] += ball[axis + 3] * step
                if not low <= ball[axis] <= high:
                    ball[axis] = low if ball[axis] < low else high
                    ball[axis + 3] *= -0.8
    return balls


print('''settings { output_type "png"  output_name "bounce"  resolution 480 360
           antialiasing "adaptive"  aa_distance 8  background 0.2 0.24 0.3 }
camera { position <1 -11 5>  look_at <0 0 1.6>  fov 40 }
light { position <-5 -6 9>  color 0.9 0.88 0.8  attenuation_type "none" }
surface { color 0.7 0.7 0.72  ambient 0.25  diffuse 0.75 }
plane { normal <0 0 1>  distance 0 }''')
for number, (x, y, z, *_) in enumerate(balls_at(int(sys.argv[1]))):
    red = number % 4 / 4 + 0.2
    print(f"surface {{ color {red:.2f} 0.45 {1.1 - red:.2f}  ambient 0.2  diffuse 0.7  specular 0.5  roughness 60 }}")
    print(f"sphere {{ center <{x:.4f} {y:.4f} {z:.4f}>  radius {RADIUS} }}")
