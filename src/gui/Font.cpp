#include "gui/Font.h"

#include <algorithm>
#include <map>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Image.h"
#include "rendering/TextureManager.h"
#include "util/Exception.h"
#include "util/FileSystem.h"
#include "util/FileWrapper.h"

namespace gui {

using rendering::Context;
using rendering::ImageRGBA32;
using rendering::ImageRGBA32Ptr;

namespace {

// `path` is without the endings.
Font* LoadFont(const String& path) {
    return new Font(path + ".dat", path + ".raw", path + "_2x.raw");
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

// Room round each cell of the texture, in cells: a pixel of the ordinary sheet.
constexpr int CELL_PER_GUTTER = 16;

// The sheet with its cells apart: smooth sampling reads a little beyond a glyph that is not drawn one to one,
// and must not find the next one there.
ImageRGBA32Ptr SpreadCells(const ImageRGBA32& sheet) {
    const int cell = static_cast<int>(sheet.GetWidth()) / Font::CELLS_PER_SIDE;
    const int gutter = std::max(1, cell / CELL_PER_GUTTER);
    const int side = (cell + 2 * gutter) * Font::CELLS_PER_SIDE;
    const ImageRGBA32Ptr spread = new ImageRGBA32(side, side, rendering::RGBA32(255, 255, 255, 0));
    for (uint32_t y = 0; y < sheet.GetHeight(); ++y) {
        for (uint32_t x = 0; x < sheet.GetWidth(); ++x) {
            (*spread)(x + gutter * (2 * (x / cell) + 1), y + gutter * (2 * (y / cell) + 1)) = sheet(x, y);
        }
    }
    return spread;
}

rendering::Texture* MakeTexture(const ImageRGBA32Ptr& sheet) {
    return new rendering::Texture(SpreadCells(*sheet), rendering::Texture::ImageType::Font());
}

rendering::Texture* LoadTexture(const String& path) {
    return MakeTexture(ImageRGBA32::LoadFile(path));
}

}  // namespace

float Font::s_pixelsPerUnit = 1;

Font::Font() {
    m_advance.fill(1);
}

Font::Font(const String& widthsPath, const String& sheetPath, const String& fineSheetPath) : Font() {
    SetSheet(ImageRGBA32::LoadFile(sheetPath));
    SetFineSheet(fineSheetPath);
    LoadWidths(widthsPath);
    BuildLists();
}

Font::~Font() noexcept(false) {
    if (m_lists != 0 && m_generation == Context::GetGeneration()) glDeleteLists(m_lists, NUM_GLYPHS);
}

Font* Font::MakeStandIn() {
    Font* const font = new Font;
    font->SetSheet(MakeStandInSheet());
    font->m_advance.fill(static_cast<float>(STAND_IN_ADVANCE) / STAND_IN_CELL);
    font->BuildLists();
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

void Font::LoadWidths(const std::string& path) {
    std::array<unsigned char, NUM_GLYPHS> widths;
    util::FILEWrapper file(path, "rb");
    try {
        file.Read(widths.data(), widths.size());
    } catch (const std::runtime_error&) {
        const String text = "File \"" + path + "\" is corrupt.";
        Log(logging::Error, text);
        THROW(FileReadException, text);
    }
    // Bytes are pixels of the sheet; a cell is a sixteenth of it.
    const float cellsPerPixel = 1 / m_cellSize;
    for (int glyph = 0; glyph < NUM_GLYPHS; ++glyph) m_advance[glyph] = widths[glyph] * cellsPerPixel;
}

void Font::SetSheet(const ImageRGBA32Ptr& sheet) {
    DATA_ASSERTION(sheet->GetWidth() == sheet->GetHeight() && sheet->GetWidth() % CELLS_PER_SIDE == 0);
    m_cellSize = static_cast<float>(sheet->GetWidth()) / CELLS_PER_SIDE;
    m_texture = MakeTexture(sheet);
}

void Font::SetFineSheet(const String& path) {
    if (path.empty() || !util::FileSystem::Instance().Exists(path)) return;
    m_fineTexture = rendering::TextureManager::Make([path] { return LoadTexture(path); });
}

// One of another size, which may be the picture that stands in for it, would not have the glyphs in place.
const rendering::Texture& Font::ChooseTexture() const {
    if (s_pixelsPerUnit <= 1 || !m_fineTexture) return *m_texture;
    const rendering::TexturePtr& fine = m_fineTexture->Get();
    return fine && fine->GetWidth() == 2 * m_texture->GetWidth() ? *fine : *m_texture;
}

void Font::BuildLists() {
    if (!Context::Exists()) return;
    m_lists = glGenLists(NUM_GLYPHS);
    m_generation = Context::GetGeneration();
    for (int glyph = 0; glyph < NUM_GLYPHS; ++glyph) BuildGlyph(glyph);
}

// Row 0 of the sheet is its upper edge, where t is 1; the quad's y points down.
void Font::BuildGlyph(int glyph) const {
    constexpr float STRIDE = 1.0f / CELLS_PER_SIDE;
    const float gutter = STRIDE * (1 - m_cellSize * CELLS_PER_SIDE / m_texture->GetWidth()) / 2;
    const float cell = STRIDE - 2 * gutter;
    const float s = glyph % CELLS_PER_SIDE * STRIDE + gutter;
    const float t = 1 - glyph / CELLS_PER_SIDE * STRIDE - gutter;
    glNewList(m_lists + glyph, GL_COMPILE);
    glBegin(GL_QUADS);
    glTexCoord2f(s, t);
    glVertex2f(0, 0);
    glTexCoord2f(s, t - cell);
    glVertex2f(0, 1);
    glTexCoord2f(s + cell, t - cell);
    glVertex2f(1, 1);
    glTexCoord2f(s + cell, t);
    glVertex2f(1, 0);
    glEnd();
    glTranslatef(m_advance[glyph], 0, 0);
    glEndList();
}

void Font::BeginDrawing() const {
    glPushAttrib(GL_LIST_BIT | GL_ENABLE_BIT);
    glListBase(m_lists);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    ChooseTexture().Bind();
}

void Font::DrawRun(const char* bytes, size_t nBytes) const {
    if (m_lists != 0) glCallLists(static_cast<GLsizei>(nBytes), GL_UNSIGNED_BYTE, bytes);
}

void Font::EndDrawing() const {
    ChooseTexture().Unbind();
    glPopAttrib();
}

}  // namespace gui
