#pragma once

#include <array>
#include <vector>

#include "math/Vector.h"
#include "rendering/Texture.h"
#include "rendering/VertexBatch.h"
#include "util/Mentor.h"
#include "util/SharedPtr.h"
#include "util/String.h"

namespace gui {

// A bitmap font of 256 glyphs with a proportional width table: one byte of text is one glyph, in the order
// of ISO 8859-1.
//
// Two files make it: a sheet, a square image of 16 by 16 cells with glyph g in column g % 16 and row g / 16,
// row 0 at the top; and 256 bytes of advances in pixels of the sheet. All lengths here are in cells, so a
// sheet of any resolution measures alike.
//
// More sheets, one and a half times, twice and three times as large, may be there for screens of high
// density; without them the letters are only softer there. Each has advances of its own: those of the small
// letters, rounded to whole pixels of the small sheet, would set large ones unevenly. So a text is as long as
// the present scale makes it, and has to be measured anew when that changes.
//
// Widths and sheet load without a GL context, for windows are measured before there is one; the texture needs
// it. Held by a mentor, which builds the font anew after the loss of the context.
class Font : public util::Pointee {
  public:
    static constexpr int NUM_GLYPHS = 256;
    static constexpr int CELLS_PER_SIDE = 16;  // of the sheet

    // Throws FileReadException for a damaged file, std::runtime_error for a missing one.
    Font(const String& widthsPath, const String& sheetPath, const std::vector<String>& fineSheetPaths = {});

    // What stands in for a font that cannot be loaded: a box for each printable byte, from no file.
    static Font* MakeStandIn();

    // The mentor of the font `name` of the installation's font folder; the same name gives the same mentor.
    static util::SharedPtr<util::Mentor<Font>> Get(const String& name);

    // Cells; a text of these bytes is as long as their sum.
    float GetAdvance(unsigned char glyph) const { return ChooseAdvances()[glyph]; }
    float GetCellSize() const { return m_cellSize; }  // pixels of the sheet

    // Pixels of the window per GUI unit, from the GUI's scale: decides which sheet is drawn.
    static void SetPixelsPerUnit(float pixels) { s_pixelsPerUnit = pixels; }
    static float GetPixelsPerUnit() { return s_pixelsPerUnit; }

    // Adds the picture of a glyph, its cell's upper left corner at `place`, y down. A cell is `cell` high.
    void AddGlyph(rendering::VertexBatch& batch, unsigned char glyph, math::Vec2 place, float cell) const;
    // Whether a sheet has just the pixels of such a cell on the screen.
    bool FitsPixels(float cell) const;
    // In the present colour; empties the batch. Glyphs that stand on whole pixels and fit them need no
    // sampling between texels, which is half of what a text costs in software.
    void DrawGlyphs(rendering::VertexBatch& batch, bool onPixels = false) const;

  private:
    using Advances = std::array<float, NUM_GLYPHS>;  // cells
    struct FineSheet {
        float m_scale;  // pixels to one of the ordinary sheet
        rendering::TextureMentorPtr m_texture;
        Advances m_advances;
    };

    Font();

    static Advances LoadWidths(const String& path, float cellSize);
    const FineSheet* ChooseFineSheet() const;  // null for the ordinary one
    const Advances& ChooseAdvances() const;
    void SetSheet(const rendering::ImageRGBA32Ptr& sheet);
    void AddFineSheet(const String& path);
    const rendering::Texture& ChooseTexture() const;

    rendering::TexturePtr m_texture;      // GL_ALPHA: colour comes from the text
    std::vector<FineSheet> m_fineSheets;  // from the smallest; textures are loaded when needed
    float m_cellSize = 16;                // pixels
    Advances m_advances;
    std::array<bool, NUM_GLYPHS> m_isBlank{};  // has nothing to draw

    static float s_pixelsPerUnit;
};
using FontPtr = util::SharedPtr<Font>;
using FontMentor = util::Mentor<Font>;
using FontMentorPtr = util::SharedPtr<FontMentor>;

}  // namespace gui
