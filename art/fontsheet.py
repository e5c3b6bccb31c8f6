"""The font sheets: 16 by 16 cells of 16 by 16 pixels, one byte a pixel, and the table of advances; and the same
glyphs at one and a half times, twice and three times the size for screens of high density, with advances of their own:
small letters are hinted far from their true widths.

Glyph g lies in column g % 16 and row g / 16, row 0 at the top of the file. The text is ISO 8859-1, so a byte is the
Unicode character of the same number; control characters are empty cells with the advance of a blank.
"""

import os

# Full hinting in both directions (interpreter 35) puts every stem on whole pixels: crisp where one sheet pixel is one
# screen pixel. The newer interpreter ignores the horizontal hints. The library reads this when it starts.
os.environ["FREETYPE_PROPERTIES"] = "truetype:interpreter-version=35"

from PIL import Image, ImageDraw, ImageFont  # noqa: E402

FONT_FILE = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
FONT_PIXELS = 12  # em size; ascenders with accents and descenders together take 15 rows
CELL = 16
BASELINE = 13  # rows from the top of a cell: accents begin in row 1, descenders end in row 15, row 0 parts the rows
SCALES = {"_1.5x": 1.5, "_2x": 2, "_3x": 3}  # of the sheets for screens of high density, by file ending
CONTROLS = set(range(0, 32)) | set(range(127, 160))


def load_font(scale):
    """The typeface at the sheet's size, without any shaping between glyphs."""
    return ImageFont.truetype(FONT_FILE, round(FONT_PIXELS * scale), layout_engine=ImageFont.Layout.BASIC)


def advance_of(font, code):
    """Pixels; control characters are as wide as a blank."""
    return round(font.getlength(" " if code in CONTROLS else chr(code)))


def draw_glyph(font, code, scale):
    """One cell and the advance of its glyph in pixels. Ink left of the pen would be cut off, so such a glyph moves
    right, and takes the room."""
    side = round(CELL * scale)
    advance = advance_of(font, code)
    cell = Image.new("L", (side, side), 0)
    if code in CONTROLS:
        return cell, advance
    left, top, right, bottom = font.getbbox(chr(code), anchor="ls")
    shift = max(0, -left)
    baseline = int(BASELINE * scale)
    if baseline + top < 0 or baseline + bottom > side or right + shift > side:
        raise ValueError("glyph %d does not fit its cell" % code)
    ImageDraw.Draw(cell).text((shift, baseline), chr(code), font=font, fill=255, anchor="ls")
    return cell, max(advance, right + shift if shift > 0 else 0)


def draw_sheet(scale):
    """The bytes of a sheet and of its advances."""
    font = load_font(scale)
    side = round(CELL * scale)
    sheet = Image.new("L", (16 * side, 16 * side), 0)
    advances = []
    for code in range(256):
        cell, advance = draw_glyph(font, code, scale)
        sheet.paste(cell, (code % 16 * side, code // 16 * side))
        advances.append(advance)
    return sheet.tobytes(), bytes(advances)


def build():
    """Returns the files by their endings: sheets and tables of advances."""
    files = {}
    for ending, scale in {"": 1, **SCALES}.items():
        files[ending + ".raw"], files[ending + ".dat"] = draw_sheet(scale)
    return files
