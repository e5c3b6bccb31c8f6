"""Four cumulus clouds, 256 by 256.

A cloud is the height field of a heap of balls, roughened by noise of several octaves. The height gives the opacity,
its slope the light. All randomness comes from fixed seeds.
"""

import math
import random

from PIL import Image

SIDE = 256
OCTAVES = ((5, 0.42), (11, 0.3), (23, 0.2), (47, 0.12), (95, 0.06))  # cells across the picture, weight
ROUGHNESS = 0.85  # weight of the noise against the balls, both about 1 high
COARSE = 64  # side at which the balls are computed before they are enlarged
BASE = 0.64  # flat underside of a cloud, part of the side from the top
FADE = 26  # pixels over which a cloud vanishes towards the frame
CLEAR = 5  # fully empty pixels along the frame
LIT = (255, 255, 255)
SHADED = (184, 200, 232)
LIGHT = (-0.4, -0.75, 0.53)  # from the upper left, x to the right, y downward, z to the viewer

# Per cloud: seed, width of the heap and height of its dome in parts of the side, number of balls on the base.
CLOUDS = ((5, 0.66, 0.26, 7), (23, 0.50, 0.36, 5), (38, 0.72, 0.15, 9), (61, 0.58, 0.20, 6))


def smoothstep(low, high, value):
    """0 below low, 1 above high, smooth between."""
    t = min(1.0, max(0.0, (value - low) / (high - low)))
    return t * t * (3.0 - 2.0 * t)


def noise(rng):
    """Noise about 0 with the octaves above, as a list of SIDE * SIDE numbers."""
    total = [0.0] * (SIDE * SIDE)
    for cells, weight in OCTAVES:
        grid = Image.new("F", (cells, cells))
        grid.putdata([rng.random() * 2.0 - 1.0 for _ in range(cells * cells)])
        layer = grid.resize((SIDE, SIDE), Image.Resampling.BICUBIC).getdata()
        total = [a + weight * b for a, b in zip(total, layer)]
    return total


def heap(rng, width, height, count):
    """Balls (x, y, radius) in parts of the side: columns on a flat base, high in the middle and low at the ends."""
    balls = []
    peak = 0.3 * (rng.random() - 0.5)  # the dome leans to one side
    for i in range(count):
        u = (i + 0.5) / count * 2.0 - 1.0
        dome = max(0.1, 1.0 - (u - peak) ** 2) * (0.8 + 0.4 * rng.random())
        y = BASE - 0.03
        while y > BASE - height * dome - 0.03:
            radius = (0.085 + 0.05 * dome) * (0.8 + 0.4 * rng.random())
            balls.append((0.5 + u * width * 0.5 + (rng.random() - 0.5) * 0.06, y, radius))
            y -= radius * 0.8
    return balls


def height_field(balls):
    """Soft union of the balls, each 1 high at its middle, cut off below the base; computed coarsely and enlarged."""
    field = Image.new("F", (COARSE, COARSE))
    values = []
    for j in range(COARSE):
        for i in range(COARSE):
            x, y = (i + 0.5) / COARSE, (j + 0.5) / COARSE
            near = [1.0 - ((x - bx) ** 2 + (y - by) ** 2) / (r * r) for bx, by, r in balls]
            union = math.log(sum(math.exp(5.0 * max(v, -3.0)) for v in near)) / 5.0
            values.append(union - 12.0 * max(0.0, y - BASE))
    field.putdata(values)
    return list(field.resize((SIDE, SIDE), Image.Resampling.BICUBIC).getdata())


def frame_fade(x, y):
    """1 inside, 0 within CLEAR pixels of the frame."""
    nearest = min(x, y, SIDE - 1 - x, SIDE - 1 - y)
    return smoothstep(CLEAR, CLEAR + FADE, nearest)


def light(relief, x, y):
    """0 in shade to 1 in full light, from the slope of the relief and the height above the base."""
    step = 4
    dx = relief[y * SIDE + min(SIDE - 1, x + step)] - relief[y * SIDE + max(0, x - step)]
    dy = relief[min(SIDE - 1, y + step) * SIDE + x] - relief[max(0, y - step) * SIDE + x]
    nz = 0.6
    facing = (-dx * LIGHT[0] - dy * LIGHT[1] + nz * LIGHT[2]) / math.sqrt(dx * dx + dy * dy + nz * nz)
    return smoothstep(-0.5, 0.65, facing) * (1.0 - 0.6 * smoothstep(BASE - 0.22, BASE + 0.06, y / SIDE))


def draw(seed, width, height, count):
    """One cloud as an RGBA picture; the colour is kept where the alpha is 0, for filters that look across the edge."""
    rng = random.Random(seed)
    balls = height_field(heap(rng, width, height, count))
    rough = noise(rng)
    relief = [a + 0.3 * b for a, b in zip(balls, rough)]
    pixels = []
    for y in range(SIDE):
        for x in range(SIDE):
            i = y * SIDE + x
            alpha = smoothstep(-0.45, 0.85, balls[i] + ROUGHNESS * rough[i]) * frame_fade(x, y)
            shine = light(relief, x, y)
            pixels.append(tuple(round(s + (l - s) * shine) for s, l in zip(SHADED, LIT)) + (round(alpha * 255),))
    picture = Image.new("RGBA", (SIDE, SIDE))
    picture.putdata(pixels)
    return picture


def build():
    """All clouds in the order of their file names."""
    return [draw(*cloud) for cloud in CLOUDS]
