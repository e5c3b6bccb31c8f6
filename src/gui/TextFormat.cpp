#include "gui/TextFormat.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "util/Exception.h"
#include "util/ProfileTree.h"

namespace gui {
namespace {

bool IsSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// The pen behind bytes [begin, end) of one line, starting at `x`.
float MovePen(const TextFormat& format, const String& text, float x, size_t begin, size_t end) {
    for (size_t i = begin; i < end; ++i) {
        x = text[i] == '\t' ? format.GetNextTabStop(x) : x + format.GetWidth(text[i]);
    }
    return x;
}

// Fills the lines of a text, byte by byte.
class LineBreaker {
  public:
    LineBreaker(FormattedText& out, float startX)
        : m_out(out), m_format(out.m_format), m_text(out.m_text), m_lineX(startX), m_x(startX) {}

    void Run() {
        for (size_t i = 0; i < m_text.size();) i = Place(i);
        EndLine(m_text.size(), m_text.size());
    }

  private:
    // Puts byte `i` into the present line, or ends the line; the result is the next byte to place.
    size_t Place(size_t i) {
        if (m_text[i] == '\n') return EndLine(i, i + 1);
        if (m_text[i] == '\t') {
            m_x = m_format.GetNextTabStop(m_x);
            return i + 1;
        }
        const float next = m_x + m_format.GetWidth(m_text[i]);
        // A byte wider than the line is placed alone, for a line without bytes would never end.
        if (next > m_format.m_maxWidth && i > m_begin) return Wrap(i);
        m_x = next;
        return i + 1;
    }

    // Ends the line at the last white space up to `i`, which is dropped, or cuts it in front of `i`.
    size_t Wrap(size_t i) {
        for (size_t j = i; j > m_begin; --j) {
            if (IsSpace(m_text[j])) return EndLine(j, j + 1);
        }
        return EndLine(i, i);
    }

    size_t EndLine(size_t end, size_t next) {
        const float x = MovePen(m_format, m_text, m_lineX, m_begin, end);
        const TextLine line{m_begin, end, m_lineX, m_y, x - m_lineX, m_format.m_lineHeight};
        m_out.m_lines.push_back(line);
        m_out.m_width = std::max(m_out.m_width, line.m_x + line.m_w);
        m_out.m_height = std::max(m_out.m_height, line.m_y + line.m_h);
        m_begin = next;
        m_y += m_format.m_lineHeight;
        m_lineX = 0;
        m_x = 0;
        return next;
    }

    FormattedText& m_out;
    const TextFormat& m_format;
    const String& m_text;
    size_t m_begin = 0;  // of the present line
    float m_lineX;       // where it starts
    float m_x;           // pen
    float m_y = 0;
};

// Where glyphs may stand: on whole pixels, between which they would be blurred. In a sheared window, which is
// moving, anywhere.
class PixelGrid {
  public:
    PixelGrid() : m_scale(Font::GetPixelsPerUnit()) {
        GLfloat matrix[16];  // by columns
        glGetFloatv(GL_MODELVIEW_MATRIX, matrix);
        m_isStraight = matrix[0] == 1 && matrix[5] == 1 && matrix[1] == 0 && matrix[4] == 0;
        m_origin = {matrix[12], matrix[13]};
    }
    math::Vec2 Snap(math::Vec2 place) const {
        if (!m_isStraight) return place;
        const math::Vec2 pixels = (place + m_origin) * m_scale;
        return math::Vec2(std::round(pixels.x), std::round(pixels.y)) / m_scale - m_origin;
    }

    bool IsStraight() const { return m_isStraight; }

  private:
    float m_scale;
    bool m_isStraight;
    math::Vec2 m_origin;  // GUI units
};

void AddLine(rendering::VertexBatch& batch, const PixelGrid& grid, const Font& font,
             const FormattedText& formatted, const TextLine& line, math::Vec2 origin) {
    const TextFormat& format = formatted.m_format;
    float pen = line.m_x;
    for (size_t i = line.m_begin; i < line.m_end; ++i) {
        const char c = formatted.m_text[i];
        if (c == '\t') {
            pen = format.GetNextTabStop(pen);
            continue;
        }
        font.AddGlyph(batch, c, grid.Snap(origin + math::Vec2(pen, line.m_y)), format.m_size);
        pen += font.GetAdvance(c) * format.m_size;
    }
}

void DrawLines(const TextFormat& format, float x, float y, const FormattedText& formatted) {
    static rendering::VertexBatch s_batch;
    const FontPtr font = format.m_font->Get();
    if (!(format.m_size > 0)) return;
    const PixelGrid grid;
    for (const TextLine& line : formatted.m_lines) {
        if (line.m_end <= formatted.m_text.size()) AddLine(s_batch, grid, *font, formatted, line, {x, y});
    }
    if (s_batch.IsEmpty()) return;
    font->DrawGlyphs(s_batch, grid.IsStraight() && font->FitsPixels(format.m_size));
}

}  // namespace

float TextFormat::GetNextTabStop(float x) const {
    constexpr float TAB_CELLS = 4;
    constexpr float HAIR = 1e-4f;  // of a tab; what sums of widths lose by rounding
    const float tab = TAB_CELLS * m_size;
    if (!(tab > 0)) return x;
    return (std::floor(x / tab + HAIR) + 1) * tab;
}

math::BoundingBox2f FormattedText::GetCharBounds(size_t index) const {
    const auto isBefore = [](size_t i, const TextLine& line) { return i < line.m_begin; };
    auto line = std::upper_bound(m_lines.begin(), m_lines.end(), index, isBefore);
    if (line == m_lines.begin() || index > m_text.size()) {
        THROW(BadDataException, "Error in TextFormat::GetCharBounds");
    }
    --line;
    const size_t byte = std::min(index, line->m_end);
    const float left = MovePen(m_format, m_text, line->m_x, line->m_begin, byte);
    const float right =
        byte < line->m_end ? MovePen(m_format, m_text, left, byte, byte + 1) : left + m_format.GetWidth(' ');
    return {{left, line->m_y}, {right, line->m_y + line->m_h}};
}

FormattedText FormatText(const TextFormat& format, const String& text, float startX) {
    PROFILE_SECTION("FF::FormatText");
    FormattedText result;
    result.m_format = format;
    result.m_text = text;
    LineBreaker(result, startX).Run();
    return result;
}

math::Vec2 DrawText(const TextFormat& format, float x, float y, const FormattedText& formatted) {
    PROFILE_SECTION("FF::DrawText");
    if (formatted.m_lines.empty()) return {x, y};
    if (rendering::Context::Exists()) {
        const rendering::ScopedColor kept;
        rendering::Renderer::Instance().MultColor(format.m_color);
        DrawLines(format, x, y, formatted);
    }
    const TextLine& last = formatted.m_lines.back();
    return {x + last.m_x + last.m_w, y + last.m_y};
}

math::Vec2 DrawString(const TextFormat& format, float x, float y, const String& text) {
    return DrawText(format, x, y, FormatText(format, text));
}

}  // namespace gui
