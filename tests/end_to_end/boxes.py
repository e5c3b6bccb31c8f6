"""A plain scene to try things on: two boxes on a ground, in free space all round."""

import math

from harness import View, box, ground, of_type

BOXES = [ground(0), box(-4.5, 0.5, 1), box(4.5, 0.5, 1)]
VIEW = View(-5, 0, 5, 1)  # shows x from -5.5 to 5.5, beside the tools


def circle(x, y, radius, turns=0.98, steps=48):
    angles = [2 * math.pi * turns * i / steps for i in range(steps + 1)]
    return [VIEW(x + radius * math.cos(a), y + radius * math.sin(a)) for a in angles]


def line(a, b, steps=16):
    return [VIEW(a[0] + (b[0] - a[0]) * i / steps, a[1] + (b[1] - a[1]) * i / steps)
            for i in range(steps + 1)]


def polygons(entities):
    return of_type(entities, "polygon")


def is_at(entities, place):
    """Whether a polygon stands there, to two pixels."""
    return any(math.dist(polygon["pos"], place) < 2 / VIEW.scale for polygon in polygons(entities))


def start_boxes(session):
    session.start_scene(*BOXES)
    session.wait_scene("the loaded scene", lambda e: len(polygons(e)) == 2)
