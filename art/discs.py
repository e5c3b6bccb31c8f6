"""Round pictures that are formulas, not drawings: the profiles of a circle's rim and the water drop."""

from PIL import Image

RIM_START = 0.8  # part of the radius at which the border begins
RIM_SOFT = 0.05  # part of the radius over which it darkens: one pixel where a border is four pixels wide
RIM_GREY = 0.35
DISC_SIDE = 256
DROP_SIDE = 64


def from_radius(side, function):
    """A picture from a function of the distance to the middle, in texels, that returns grey and alpha, 0 to 1."""
    pixels = []
    middle = side / 2.0
    for y in range(side):
        for x in range(side):
            grey, alpha = function(((x + 0.5 - middle) ** 2 + (y + 0.5 - middle) ** 2) ** 0.5)
            value = round(grey * 255)
            pixels.append((value, value, value, round(alpha * 255)))
    picture = Image.new("RGBA", (side, side))
    picture.putdata(pixels)
    return picture


def disc(grey):
    """A disc that fills the square but for one texel; its outline is smoothed over one texel.

    The grey value goes on outside the disc, so that a linear filter at the outline mixes in no foreign colour.
    """
    radius = DISC_SIDE / 2.0 - 1.0
    return from_radius(DISC_SIDE, lambda r: (grey(r / radius), min(1.0, max(0.0, radius - r + 0.5))))


def border():
    """White inside; from RIM_START outward darkening to RIM_GREY."""

    def grey(r):
        t = min(1.0, max(0.0, (r - RIM_START) / RIM_SOFT))
        return 1.0 - (1.0 - RIM_GREY) * t * t * (3.0 - 2.0 * t)

    return disc(grey)


def plain():
    """White to the outline."""
    return disc(lambda r: 1.0)


def drop():
    """Soft white disc whose alpha (1 - r^2)^2 falls to 0 at the edge of the square."""
    radius = DROP_SIDE / 2.0 - 1.0
    return from_radius(DROP_SIDE, lambda r: (1.0, max(0.0, 1.0 - (r / radius) ** 2) ** 2))
