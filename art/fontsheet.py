"""The font sheet: 16 by 16 cells of 16 by 16 pixels, one byte a pixel, and the table of advances.

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
CONTROLS = set(range(0, 32)) | set(range(127, 160))


def load_font():
    """The typeface at the sheet's size, without any shaping between glyphs."""
    return ImageFont.truetype(FONT_FILE, FONT_PIXELS, layout_engine=ImageFont.Layout.BASIC)


def draw_glyph(font, code):
    """One cell and its advance in pixels. Ink left of the pen would be cut off, so such a glyph moves right."""
    cell = Image.new("L", (CELL, CELL), 0)
    advance = round(font.getlength(" " if code in CONTROLS else chr(code)))
    if code in CONTROLS:
        return cell, advance
    left, top, right, bottom = font.getbbox(chr(code), anchor="ls")
    shift = max(0, -left)
    if BASELINE + top < 0 or BASELINE + bottom > CELL or right + shift > CELL:
        raise ValueError("glyph %d does not fit its cell" % code)
    ImageDraw.Draw(cell).text((shift, BASELINE), chr(code), font=font, fill=255, anchor="ls")
    return cell, max(advance, right + shift if shift else 0)


def build():
    """Returns the bytes of the sheet and the bytes of the table of advances."""
    font = load_font()
    sheet = Image.new("L", (16 * CELL, 16 * CELL), 0)
    advances = []
    for code in range(256):
        cell, advance = draw_glyph(font, code)
        sheet.paste(cell, (code % 16 * CELL, code // 16 * CELL))
        advances.append(advance)
    return sheet.tobytes(), bytes(advances)
