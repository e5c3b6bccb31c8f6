#include "gui/Font.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>

#include "math/BoundingBox.h"
#include "rendering/Gl.h"
#include "rendering/Image.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/Exception.h"
#include "util/FileSystem.h"
#include "util/FileWrapper.h"

namespace gui {

using rendering::ImageRGBA32;
using rendering::ImageRGBA32Ptr;

namespace {

// `path` is without the endings.
Font* LoadFont(const String& path) {
    return new Font(path + ".dat", path + ".raw", {path + "_1.5x.raw", path + "_2x.raw", path + "_3x.raw"});
}

constexpr int STAND_IN_CELL = 16;  // pixels
constexpr int STAND_IN_ADVANCE = 9;

bool HasPicture(int glyph) {
    return (glyph > ' ' && glyph < 127) || glyph > 160;
}

// A box from `left` to `right`, `bottom` to `top`, counted from the lower left corner of the cell.
ImageRGBA32Ptr MakeStandInSheet() {
    constexpr int LEFT = 1, RIGHT = 7, BOTTOM = 3, TOP = 12;
    constexpr int SIDE = STAND_IN_CELL * Font::CELLS_PER_SIDE;
    const ImageRGBA32Ptr sheet = new ImageRGBA32(SIDE, SIDE, rendering::RGBA32(255, 255, 255, 0));
    for (int glyph = 0; glyph < Font::NUM_GLYPHS; ++glyph) {
        if (!HasPicture(glyph)) continue;
        const int x0 = glyph % Font::CELLS_PER_SIDE * STAND_IN_CELL;
        const int y0 = SIDE - (glyph / Font::CELLS_PER_SIDE + 1) * STAND_IN_CELL;
        for (int x = LEFT; x <= RIGHT; ++x) {
            for (int y = BOTTOM; y <= TOP; ++y) {
                const bool isEdge = x == LEFT || x == RIGHT || y == BOTTOM || y == TOP;
                if (isEdge) (*sheet)(x0 + x, y0 + y).w = 255;
            }
        }
    }
    return sheet;
}

// Room round each cell of the texture, in cells: two pixels of the ordinary sheet, and whole ones of each
// finer.
constexpr int CELL_PER_GUTTER = 8;

// The sheet with its cells apart: smooth sampling reads a little beyond a glyph that is not drawn one to one,
// and must not find the next one there.
ImageRGBA32Ptr SpreadCells(const ImageRGBA32& sheet) {
    const int cell = static_cast<int>(sheet.GetWidth()) / Font::CELLS_PER_SIDE;
    const int gutter = std::max(1, cell / CELL_PER_GUTTER);
    const int side = (cell + 2 * gutter) * Font::CELLS_PER_SIDE;
    const ImageRGBA32Ptr spread = new ImageRGBA32(side, side, rendering::RGBA32(255, 255, 255, 0));
    for (int y = 0; y < cell * Font::CELLS_PER_SIDE; ++y) {
        const rendering::RGBA32* source = sheet.GetData().data() + y * cell * Font::CELLS_PER_SIDE;
        rendering::RGBA32* target =
            spread->GetData().data() + (y + gutter * (2 * (y / cell) + 1)) * side + gutter;
        for (int column = 0; column < Font::CELLS_PER_SIDE; ++column) {
            std::copy(source, source + cell, target);
            source += cell;
            target += cell + 2 * gutter;
        }
    }
    return spread;
}

// Where a glyph's cell has something to draw, in cells from the upper left corner; not finite
// where there is nothing. Letters are narrower than their cells by half and more: what is left out need not
// be filled.
math::BoundingBox2f FindInk(const ImageRGBA32& sheet, int glyph) {
    const int cell = static_cast<int>(sheet.GetWidth()) / Font::CELLS_PER_SIDE;
    const int left = glyph % Font::CELLS_PER_SIDE * cell;
    const int top = static_cast<int>(sheet.GetHeight()) - 1 - glyph / Font::CELLS_PER_SIDE * cell;
    const auto cells = [cell](int pixels) { return static_cast<float>(pixels) / static_cast<float>(cell); };
    math::BoundingBox2f ink;
    for (int y = 0; y < cell; ++y) {
        const rendering::RGBA32* const row =
            sheet.GetData().data() + static_cast<size_t>(top - y) * sheet.GetWidth() + left;
        for (int x = 0; x < cell; ++x) {
            if (row[x].w == 0) continue;
            ink.Extend({{cells(x), cells(y)}, {cells(x + 1), cells(y + 1)}});
        }
    }
    return ink;
}

// With a pixel more on each side, for finer sheets and for what interpolation spreads.
math::BoundingBox2f WithMargin(const math::BoundingBox2f& ink, float pixel) {
    return {{std::max(ink.min.x - pixel, 0.0f), std::max(ink.min.y - pixel, 0.0f)},
            {std::min(ink.max.x + pixel, 1.0f), std::min(ink.max.y + pixel, 1.0f)}};
}

// A font's ordinary sheet, which knows where its glyphs have ink.
class InkedSheet : public rendering::Texture {
  public:
    explicit InkedSheet(const ImageRGBA32& sheet) : Texture(SpreadCells(sheet), ImageType::Font()) {
        for (int glyph = 0; glyph < Font::NUM_GLYPHS; ++glyph) m_ink[glyph] = FindInk(sheet, glyph);
    }
    const math::BoundingBox2f& GetInk(unsigned char glyph) const { return m_ink[glyph]; }

  private:
    std::array<math::BoundingBox2f, Font::NUM_GLYPHS> m_ink;
};

rendering::Texture* LoadTexture(const String& path) {
    return new rendering::Texture(SpreadCells(*ImageRGBA32::LoadFile(path)),
                                  rendering::Texture::ImageType::Font());
}

}  // namespace

float Font::s_pixelsPerUnit = 1;

Font::Font() {
    m_advances.fill(1);
}

Font::Font(const String& widthsPath, const String& sheetPath, const std::vector<String>& fineSheetPaths)
    : Font() {
    SetSheet(ImageRGBA32::LoadFile(sheetPath));
    m_advances = LoadWidths(widthsPath, m_cellSize);
    for (const String& path : fineSheetPaths) AddFineSheet(path);
}

Font* Font::MakeStandIn() {
    Font* const font = new Font;
    font->SetSheet(MakeStandInSheet());
    font->m_advances.fill(static_cast<float>(STAND_IN_ADVANCE) / STAND_IN_CELL);
    return font;
}

FontMentorPtr Font::Get(const String& name) {
    static std::map<String, FontMentorPtr>& fonts = *new std::map<String, FontMentorPtr>;
    if (fonts.empty()) FontMentor::SetDefault(new FontMentor(&Font::MakeStandIn));
    FontMentorPtr& mentor = fonts[name];
    if (!mentor) {
        const String path = util::FileSystem::Instance().GetFontsDir() + name;
        mentor = new FontMentor([path] { return LoadFont(path); });
    }
    return mentor;
}

// Bytes are pixels of the sheet.
Font::Advances Font::LoadWidths(const String& path, float cellSize) {
    std::array<unsigned char, NUM_GLYPHS> widths;
    util::FILEWrapper file(path, "rb");
    try {
        file.Read(widths.data(), widths.size());
    } catch (const std::runtime_error&) {
        const String text = "File \"" + path + "\" is corrupt.";
        Log(logging::Error, text);
        THROW(FileReadException, text);
    }
    Advances advances;
    for (int glyph = 0; glyph < NUM_GLYPHS; ++glyph) advances[glyph] = widths[glyph] / cellSize;
    return advances;
}

void Font::SetSheet(const ImageRGBA32Ptr& sheet) {
    DATA_ASSERTION(sheet->GetWidth() == sheet->GetHeight() && sheet->GetWidth() % CELLS_PER_SIDE == 0);
    m_cellSize = static_cast<float>(sheet->GetWidth()) / CELLS_PER_SIDE;
    const util::SharedPtr<InkedSheet> inked = new InkedSheet(*sheet);
    for (int glyph = 0; glyph < NUM_GLYPHS; ++glyph) m_isBlank[glyph] = !inked->GetInk(glyph).IsFinite();
    m_texture = inked;
}

// The sheet is a square of bytes, so that the size of its file tells its scale.
void Font::AddFineSheet(const String& path) {
    constexpr const char* SHEET_ENDING = ".raw";
    const util::FileSystem& files = util::FileSystem::Instance();
    if (!files.Exists(path)) return;
    const double side = std::sqrt(static_cast<double>(std::filesystem::file_size(path)));
    const float cell = static_cast<float>(side) / CELLS_PER_SIDE;
    if (cell <= m_cellSize) return;
    const String widths = path.substr(0, path.size() - std::strlen(SHEET_ENDING)) + ".dat";
    m_fineSheets.push_back({cell / m_cellSize,
                            rendering::TextureManager::Make([path] { return LoadTexture(path); }),
                            files.Exists(widths) ? LoadWidths(widths, cell) : m_advances});
}

// The smallest that is large enough.
const Font::FineSheet* Font::ChooseFineSheet() const {
    const FineSheet* best = nullptr;
    for (size_t i = 0; i < m_fineSheets.size() && (best ? best->m_scale : 1) < s_pixelsPerUnit; ++i) {
        best = &m_fineSheets[i];
    }
    return best;
}

const Font::Advances& Font::ChooseAdvances() const {
    const FineSheet* const fine = ChooseFineSheet();
    return fine ? fine->m_advances : m_advances;
}

// The picture that stands in for a missing one would not have the glyphs in place; it is smaller.
const rendering::Texture& Font::ChooseTexture() const {
    const FineSheet* const fine = ChooseFineSheet();
    if (!fine) return *m_texture;
    const rendering::TexturePtr& texture = fine->m_texture->Get();
    return texture && texture->GetWidth() > m_texture->GetWidth() ? *texture : *m_texture;
}

// Row 0 of the sheet is its upper edge, where t is 1; the quad's y points down.
void Font::AddGlyph(rendering::VertexBatch& batch, unsigned char glyph, math::Vec2 place, float cell) const {
    if (m_isBlank[glyph]) return;
    const math::BoundingBox2f& bare = static_cast<const InkedSheet&>(*m_texture).GetInk(glyph);
    // Pixel for pixel there is nothing beyond the ink.
    const bool isExact = cell == m_cellSize && s_pixelsPerUnit == 1;
    const math::BoundingBox2f ink = isExact ? bare : WithMargin(bare, 1 / m_cellSize);
    constexpr float STRIDE = 1.0f / CELLS_PER_SIDE;
    const float gutter = STRIDE * (1 - m_cellSize * CELLS_PER_SIDE / m_texture->GetWidth()) / 2;
    const float side = STRIDE - 2 * gutter;
    const int row = glyph / CELLS_PER_SIDE, column = glyph % CELLS_PER_SIDE;
    const float s = static_cast<float>(column) * STRIDE + gutter;
    const float t = 1 - static_cast<float>(row) * STRIDE - gutter;
    batch.AddQuad(place + ink.min * cell, place + ink.max * cell,
                  {s + ink.min.x * side, t - ink.min.y * side}, {s + ink.max.x * side, t - ink.max.y * side});
}

bool Font::FitsPixels(float cell) const {
    return cell == m_cellSize && ChooseTexture().GetWidth() == s_pixelsPerUnit * m_texture->GetWidth();
}

void Font::DrawGlyphs(rendering::VertexBatch& batch, bool onPixels) const {
    const rendering::ScopedCapability textured(GL_TEXTURE_2D, true), blended(GL_BLEND, true);
    const rendering::Texture& texture = ChooseTexture();
    texture.Bind();
    const GLint filter = onPixels ? GL_NEAREST : GL_LINEAR;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    batch.DrawAndClear();
    texture.Unbind();
}

}  // namespace gui
