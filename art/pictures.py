"""Rendering of the drawings, and the file formats of the results."""

import io
import os
import struct
import subprocess

from PIL import Image, ImageChops, ImageStat

HERE = os.path.dirname(os.path.abspath(__file__))
PALETTE = os.path.join(HERE, "palette.css")


def with_palette(svg):
    """The text of a drawing that needs no other file: the palette stands inside."""
    with open(svg, encoding="utf-8") as drawing, open(PALETTE, encoding="utf-8") as palette:
        lines = [line for line in drawing if not line.startswith("<?xml-stylesheet")]
        start = next(i for i, line in enumerate(lines) if line.startswith("<svg"))
        return "".join(lines[: start + 1] + ["  <style>\n", palette.read(), "  </style>\n"] + lines[start + 1 :])


def render(svg, zoom=1):
    """An SVG at its own size, or so many times as large, with the colours of the palette, as RGBA."""
    command = ["rsvg-convert", "--stylesheet", PALETTE, "--zoom", str(zoom), "--format", "png", svg]
    png = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout
    return spread_colour(Image.open(io.BytesIO(png)).convert("RGBA"))


def spread_colour(picture):
    """Gives fully transparent pixels the colour of their nearest neighbours.

    The program blends colours that are not premultiplied, so a linear filter would otherwise mix the black of the
    empty pixels into every outline.
    """
    width, height = picture.size
    pixels = picture.load()
    empty = {(x, y) for y in range(height) for x in range(width) if pixels[x, y][3] == 0}
    if len(empty) == width * height:
        return Image.new("RGBA", picture.size, (255, 255, 255, 0))
    while empty:
        ring = {place: mean for place in empty if (mean := neighbour_mean(pixels, picture.size, place, empty))}
        for place, mean in ring.items():
            pixels[place] = mean + (0,)
        empty -= ring.keys()
    return picture


def neighbour_mean(pixels, size, place, empty):
    """Mean colour of the up to 8 neighbours that have one, or None."""
    around = [(place[0] + i, place[1] + j) for i in (-1, 0, 1) for j in (-1, 0, 1)]
    known = [pixels[p] for p in around if p not in empty and 0 <= p[0] < size[0] and 0 <= p[1] < size[1]]
    if not known:
        return None
    return tuple(sum(colour[k] for colour in known) // len(known) for k in range(3))


def cut(picture, x_cuts, y_cuts):
    """The nine tiles of a frame between the cuts, by the names that the program asks for."""
    columns = {"l": (0, x_cuts[0]), "": x_cuts, "r": (x_cuts[1], picture.width)}
    rows = {"t": (0, y_cuts[0]), "": y_cuts, "b": (y_cuts[1], picture.height)}
    tiles = {}
    for column, (left, right) in columns.items():
        for row, (top, bottom) in rows.items():
            tiles[column + row or "body"] = picture.crop((left, top, right, bottom))
    return tiles


def tga_bytes(picture):
    """Uncompressed true colour, 32 bits with 8 of alpha, bottom row first."""
    header = struct.pack("<BBBHHBHHHHBB", 0, 0, 2, 0, 0, 0, 0, 0, picture.width, picture.height, 32, 8)
    return header + picture.transpose(Image.Transpose.FLIP_TOP_BOTTOM).tobytes("raw", "BGRA")


def save(picture, path):
    """Writes the format that the name's ending asks for, making the folder."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if path.endswith(".tga"):
        with open(path, "wb") as file:
            file.write(tga_bytes(picture))
    elif path.endswith(".bmp"):
        picture.convert("RGB").save(path)
    else:
        picture.save(path, optimize=True)


def difference(first, second):
    """Mean difference per channel, 0 to 255, of two picture files as they look; None if their sizes or kinds differ."""
    a, b = Image.open(first), Image.open(second)
    if a.size != b.size or a.mode != b.mode:
        return None
    if a.mode == "RGBA":
        # What is nearly transparent hardly has a colour: weigh it as it will be seen.
        a, b = a.convert("RGBa"), b.convert("RGBa")
        a, b = (Image.frombytes("RGBA", i.size, i.tobytes()) for i in (a, b))
    return max(ImageStat.Stat(ImageChops.difference(a, b)).mean)
