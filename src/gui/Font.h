#pragma once

#include <array>

#include "rendering/Texture.h"
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
// A third file, a sheet of twice the size with the same glyphs at the same places, may be there for screens
// of high density; without it the letters are only softer there.
//
// Widths and sheet load without a GL context, for windows are measured before there is one; texture and
// display lists need it. Held by a mentor, which builds the font anew after the loss of the context.
class Font : public util::Pointee {
  public:
    static constexpr int NUM_GLYPHS = 256;
    static constexpr int CELLS_PER_SIDE = 16;  // of the sheet

    // Throws FileReadException for a damaged file, std::runtime_error for a missing one.
    Font(const String& widthsPath, const String& sheetPath, const String& fineSheetPath = String());
    ~Font() noexcept(false) override;

    // What stands in for a font that cannot be loaded: a box for each printable byte, from no file.
    static Font* MakeStandIn();

    // The mentor of the font `name` of the installation's font folder; the same name gives the same mentor.
    static util::SharedPtr<util::Mentor<Font>> Get(const String& name);

    // Cells; a text of these bytes is as long as their sum.
    float GetAdvance(unsigned char glyph) const { return m_advance[glyph]; }
    float GetScale() const { return m_scale; }
    float GetCellSize() const { return m_cellSize; }  // pixels of the sheet

    // Pixels of the window per GUI unit, from the GUI's scale: decides which sheet is drawn.
    static void SetPixelsPerUnit(float pixels) { s_pixelsPerUnit = pixels; }

    // Draws the bytes as one run from the origin of the current matrix, a cell being one unit, y down, in
    // the present colour; moves the matrix behind the run. Between BeginDrawing and EndDrawing only.
    void BeginDrawing() const;
    void DrawRun(const char* bytes, size_t nBytes) const;
    void EndDrawing() const;

  private:
    Font();

    void LoadWidths(const std::string& path);
    void SetSheet(const rendering::ImageRGBA32Ptr& sheet);
    void SetFineSheet(const String& path);
    const rendering::Texture& ChooseTexture() const;
    void BuildLists();
    void BuildGlyph(int glyph) const;

    rendering::TexturePtr m_texture;            // GL_ALPHA: colour comes from the text
    rendering::TextureMentorPtr m_fineTexture;  // loaded when it is needed; null when there is none
    float m_scale = 1;                          // cells per cell drawn
    float m_cellSize = 16;                      // pixels
    std::array<float, NUM_GLYPHS> m_advance;
    unsigned int m_lists = 0;   // GL name of the first of 256 display lists; 0 without a context
    uint32_t m_generation = 0;  // of the context that m_lists belongs to

    static float s_pixelsPerUnit;
};
using FontPtr = util::SharedPtr<Font>;
using FontMentor = util::Mentor<Font>;
using FontMentorPtr = util::SharedPtr<FontMentor>;

}  // namespace gui
