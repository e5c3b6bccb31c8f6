#pragma once

#include <limits>
#include <vector>

#include "gui/Font.h"
#include "math/BoundingBox.h"
#include "math/Vector.h"
#include "util/String.h"

// Laying text out in lines and drawing it. Text is bytes, one glyph each. Lengths are GUI units, y down.
namespace gui {

// How to use a font.
struct TextFormat {
    FontMentorPtr m_font;  // shared; must not be null
    float m_size = 16;     // height of one cell; also multiplies the advances
    float m_lineHeight = 16;
    math::Vec4 m_color{1, 1, 1, 1};                             // red, green, blue, alpha
    float m_maxWidth = std::numeric_limits<float>::infinity();  // where lines wrap

    float GetWidth(unsigned char byte) const { return m_font->Get()->GetAdvance(byte) * m_size; }

    // The stop behind `x`, at every fourth cell. A value a hair below a stop counts as being on it.
    float GetNextTabStop(float x) const;
};

// One line of a formatted text. Bytes [m_begin, m_end); a line feed or the blank of a wrap is in no line.
struct TextLine {
    size_t m_begin;
    size_t m_end;
    float m_x;  // top left corner
    float m_y;
    float m_w;
    float m_h;
};

struct FormattedText {
    TextFormat m_format;
    String m_text;
    std::vector<TextLine> m_lines;  // at least one
    float m_width = 0;              // of the box round all lines, from 0, 0
    float m_height = 0;

    // The box of the byte at `index`, a line high. At the end of a line it is the place behind its last
    // byte, a blank wide. Throws BadDataException, "Error in TextFormat::GetCharBounds", for an index
    // beyond the text.
    math::BoundingBox2f GetCharBounds(size_t index) const;
};

// Breaks `text` into lines at line feeds and, at the last white space before the format's maximum width, by
// wrapping; a word wider than that is cut. The pen starts at `startX` in the first line.
FormattedText FormatText(const TextFormat& format, const String& text, float startX = 0);

// Draws with the top left corner of the text at x, y, in the format's colour times the renderer's. The
// result is the pen behind the last line, at its top. Without a GL context nothing is drawn.
math::Vec2 DrawText(const TextFormat& format, float x, float y, const FormattedText& formatted);
math::Vec2 DrawString(const TextFormat& format, float x, float y, const String& text);

}  // namespace gui
