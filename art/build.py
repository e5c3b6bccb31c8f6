#!/usr/bin/python3
"""Renders every picture and font of the program from its source: Data/Textures, Data/Fonts, Vexa.bmp and the icons of
packaging/.

    art/build.py            writes the results into the tree; they are committed, so that a build needs no art tools
    art/build.py --check    renders into a temporary folder and compares; 1 if the committed files differ
    art/build.py --into D   writes below the folder D

Needs Debian's python3-pil, librsvg2-bin and fonts-dejavu-core. Where one is missing, --check ends with 77 ("skipped").
"""

import argparse
import os
import shutil
import sys
import tempfile

SKIPPED = 77  # what test runners take as "not run"

try:
    import clouds
    import discs
    import fontsheet
    import pictures
    from PIL import Image
except ImportError as missing:
    print("skipped: %s (install python3-pil)" % missing)
    sys.exit(SKIPPED)

ROOT = os.path.dirname(pictures.HERE)
DRAWINGS = os.path.join(pictures.HERE, "svg")
TEXTURES = "Data/Textures"
FONT = "Data/Fonts/fixedsys"
ICONS = "packaging/icons"

# Drawings that become something else than a PNG of the same name below Data/Textures.
ICON = "app/vexa.svg"
ICON_SIZES = (16, 24, 32, 48, 64, 128, 256)  # pixels, of the desktop's icon theme
ICON_UNITS = 32  # size of the drawing
SKINS = {"gui/vexa/window.svg": ((6, 14), (26, 34)), "gui/vexa/button.svg": ((4, 12), (4, 12))}  # cuts in x, in y, units
TGA_FOLDER = "gui/vexa/"

# What the interface draws at a size of its own has so many texels per unit (ICON_DENSITY in Texture.cpp), so that it
# is crisp at every scale of the interface. Pictures of the world are scaled anyway.
DENSITY = 4
INTERFACE = ("file/", "gui/", "popup/", "tools/")

# Versions of the rasteriser smooth edges a little differently; a changed drawing differs by far more.
TOLERANCE = 1.0  # mean difference per channel, of 255


def drawings():
    """Paths of all SVG files, relative to their folder, sorted."""
    found = []
    for folder, _, files in os.walk(DRAWINGS):
        found += [os.path.relpath(os.path.join(folder, f), DRAWINGS) for f in files if f.endswith(".svg")]
    return sorted(found)


def build_drawing(name, target):
    """One SVG into its picture, or its nine tiles."""
    picture = pictures.render(os.path.join(DRAWINGS, name), DENSITY if name.startswith(INTERFACE) else 1)
    textures = os.path.join(target, TEXTURES)
    stem = name[: -len(".svg")]
    if name == ICON:
        pictures.save(picture, os.path.join(target, "Vexa.bmp"))
    elif name in SKINS:
        cuts = [[DENSITY * place for place in axis] for axis in SKINS[name]]
        for tile, part in pictures.cut(picture, *cuts).items():
            pictures.save(part, os.path.join(textures, stem, tile + ".tga"))
    else:
        pictures.save(picture, os.path.join(textures, stem + (".tga" if name.startswith(TGA_FOLDER) else ".png")))


def build_icons(target):
    """The program's icon as desktops want it: in sizes, and as a drawing that stands alone."""
    drawing = os.path.join(DRAWINGS, ICON)
    for size in ICON_SIZES:
        pictures.save(pictures.render(drawing, size / ICON_UNITS), os.path.join(target, ICONS, "vexa-%d.png" % size))
    with open(os.path.join(target, ICONS, "vexa.svg"), "w", encoding="utf-8") as file:
        file.write(pictures.with_palette(drawing))


def build_formulas(target):
    """The pictures that have no drawing."""
    textures = os.path.join(target, TEXTURES)
    made = {
        "blank": Image.new("RGBA", (64, 64), (255, 255, 255, 0)),
        "water": discs.drop(),
        "circleborder": discs.border(),
        "circleborder_no_border": discs.plain(),
        "circle_no_border": discs.plain(),
    }
    for number, cloud in enumerate(clouds.build(), 1):
        made["background/cloud%d" % number] = cloud
    for name, picture in made.items():
        pictures.save(picture, os.path.join(textures, name + ".png"))


def build_font(target):
    """Sheets and advances."""
    path = os.path.join(target, FONT)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    for ending, data in fontsheet.build().items():
        with open(path + ending, "wb") as file:
            file.write(data)


def build(target):
    """Everything, below the folder target."""
    for name in drawings():
        build_drawing(name, target)
    build_icons(target)
    build_formulas(target)
    build_font(target)


def results(root):
    """Relative paths of all files that this program answers for and that exist below root."""
    found = {"Vexa.bmp"} if os.path.exists(os.path.join(root, "Vexa.bmp")) else set()
    for part in (TEXTURES, "Data/Fonts", ICONS):
        for folder, _, files in os.walk(os.path.join(root, part)):
            found |= {os.path.relpath(os.path.join(folder, f), root) for f in files}
    return found


def read(path):
    """The bytes of a file."""
    with open(path, "rb") as file:
        return file.read()


def font_fault(first, second, limit):
    """Why two byte tables do not match, or None; limit is the mean difference per byte."""
    if len(first) != len(second):
        return "is %d bytes long, not %d" % (len(second), len(first))
    unequal = sum(x != y for x, y in zip(first, second))
    mean = sum(abs(x - y) for x, y in zip(first, second)) / len(first)
    return "%d bytes differ" % unequal if mean > limit else None


def fault_of(name, fresh, committed):
    """Why a committed file does not match its source, or None."""
    a, b = os.path.join(fresh, name), os.path.join(committed, name)
    if name.endswith((".raw", ".dat")):
        return font_fault(read(a), read(b), 0.0 if name.endswith(".dat") else TOLERANCE)
    if name.endswith(".svg"):
        return None if read(a) == read(b) else "has another text"
    try:
        mean = pictures.difference(a, b)
    except (OSError, SyntaxError) as error:  # what the image library throws for a damaged file
        return "cannot be read: %s" % error
    if mean is None:
        return "has another size or pixel format"
    return "differs by %.2f on the mean, %.2f allowed" % (mean, TOLERANCE) if mean > TOLERANCE else None


def check():
    """Compares the committed files with fresh ones; prints each fault and returns the exit status."""
    with tempfile.TemporaryDirectory() as fresh:
        build(fresh)
        new, old = results(fresh), results(ROOT)
        faults = ["%s: is not committed" % name for name in sorted(new - old)]
        faults += ["%s: has no source in art/" % name for name in sorted(old - new)]
        for name in sorted(new & old):
            fault = fault_of(name, fresh, ROOT)
            if fault:
                faults.append("%s: %s" % (name, fault))
    print("\n".join(faults) if faults else "%d files match their sources" % len(new))
    if faults:
        print("run art/build.py and commit the results")
    return 1 if faults else 0


def missing_tool():
    """What is not installed, or None."""
    if not shutil.which("rsvg-convert"):
        return "rsvg-convert (install librsvg2-bin)"
    if not os.path.exists(fontsheet.FONT_FILE):
        return "%s (install fonts-dejavu-core)" % fontsheet.FONT_FILE
    return None


def main():
    """Command line."""
    parser = argparse.ArgumentParser(description="Renders the program's pictures and font from their sources.")
    parser.add_argument("--check", action="store_true", help="compare the committed files with fresh ones")
    parser.add_argument("--into", default=ROOT, metavar="FOLDER", help="write below this folder")
    arguments = parser.parse_args()
    missing = missing_tool()
    if missing:
        print("skipped: no " + missing)
        return SKIPPED
    if arguments.check:
        return check()
    build(arguments.into)
    return 0


if __name__ == "__main__":
    sys.exit(main())
