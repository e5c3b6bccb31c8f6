#include "gui/Border.h"

#include <algorithm>
#include <array>

#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "rendering/VertexBatch.h"
#include "util/Exception.h"
#include "util/ProfileTree.h"

// The nine tiles are drawn from one texture, in which they lie as on screen, three by three, each with its
// outermost pixels repeated round it: so a border is one call, and smooth sampling between pixels (at other
// scales than one to one, or in a sheared window) shows no seams between tiles.
namespace gui {
namespace {

using math::Vec2;
using rendering::ImageRGBA32;
using rendering::ImageRGBA32Ptr;

enum Tile { L, R, T, B, LT, RT, LB, RB, BODY, NUM_TILES };
constexpr const char* TILE_FILES[NUM_TILES] = {"l.tga",  "r.tga",  "t.tga",  "b.tga",   "lt.tga",
                                               "rt.tga", "lb.tga", "rb.tga", "body.tga"};
// Column from the left and row from the top, 0 to 2.
constexpr math::Vec2i TILE_PLACES[NUM_TILES] = {{0, 1}, {2, 1}, {1, 0}, {1, 2}, {0, 0},
                                                {2, 0}, {0, 2}, {2, 2}, {1, 1}};
constexpr int GUTTER = 4;  // texels round each tile: one that is left in the mipmap of the scale of one

}  // namespace

struct Border::Tiles : public util::Pointee {
    std::array<rendering::TextureMentorPtr, NUM_TILES> m_images;
    rendering::TextureMentorPtr m_sheet;
    std::array<int, 3> m_columns{};  // widths, texels
    std::array<int, 3> m_rows{};     // heights, texels, from the top

    explicit Tiles(const String& directory);
    math::Vec2i GetSize(Tile tile) const;  // zero for a picture that could not be loaded
    void Measure();
    bool Fit() const;

    rendering::Texture* MakeSheet() const;
    void CopyTile(Tile tile, ImageRGBA32& sheet) const;
    // From the lower left of the sheet.
    math::Vec2i GetOrigin(int column, int row) const;
    math::Vec2i GetSheetSize() const;
    void AddQuad(rendering::VertexBatch& batch, int column, int row, Vec2 min, Vec2 max) const;
};

Border::Tiles::Tiles(const String& directory) {
    rendering::TextureManager& manager = rendering::TextureManager::Instance();
    for (int tile = 0; tile < NUM_TILES; ++tile) {
        m_images[tile] = manager.Get(directory + TILE_FILES[tile], rendering::Texture::ImageType::Tile());
    }
    m_sheet = rendering::TextureManager::Make([this] { return MakeSheet(); });
    Measure();
}

math::Vec2i Border::Tiles::GetSize(Tile tile) const {
    const rendering::TexturePtr texture = m_images[tile]->Get();
    if (!texture) return {};
    return {static_cast<int>(texture->GetWidth()), static_cast<int>(texture->GetHeight())};
}

void Border::Tiles::Measure() {
    m_columns = {GetSize(L).x, GetSize(BODY).x, GetSize(R).x};
    m_rows = {GetSize(T).y, GetSize(BODY).y, GetSize(B).y};
}

// A corner is as thick as both edges that it joins; the body is as long as the edges along it.
bool Border::Tiles::Fit() const {
    for (int tile = 0; tile < NUM_TILES; ++tile) {
        const math::Vec2i place = TILE_PLACES[tile];
        if (GetSize(static_cast<Tile>(tile)) != math::Vec2i(m_columns[place.x], m_rows[place.y]))
            return false;
    }
    return true;
}

math::Vec2i Border::Tiles::GetOrigin(int column, int row) const {
    math::Vec2i origin(GUTTER, GUTTER);
    for (int i = 0; i < column; ++i) origin.x += m_columns[i] + 2 * GUTTER;
    for (int i = 2; i > row; --i) origin.y += m_rows[i] + 2 * GUTTER;
    return origin;
}

math::Vec2i Border::Tiles::GetSheetSize() const {
    return GetOrigin(3, -1) - math::Vec2i(GUTTER, GUTTER);
}

// Pictures may have been exchanged for others since they were measured: what is not there any more repeats
// the outermost pixels.
void Border::Tiles::CopyTile(Tile tile, ImageRGBA32& sheet) const {
    const rendering::TexturePtr texture = m_images[tile]->Get();
    if (!texture) return;
    const ImageRGBA32* const image = dynamic_cast<const ImageRGBA32*>(texture->GetImage().Get());
    if (image == nullptr) return;
    const int column = TILE_PLACES[tile].x, row = TILE_PLACES[tile].y;
    const math::Vec2i origin = GetOrigin(column, row);
    const int right = static_cast<int>(image->GetWidth()) - 1, top = static_cast<int>(image->GetHeight()) - 1;
    for (int y = -GUTTER; y < m_rows[row] + GUTTER; ++y) {
        for (int x = -GUTTER; x < m_columns[column] + GUTTER; ++x) {
            sheet(origin.x + x, origin.y + y) = (*image)(std::clamp(x, 0, right), std::clamp(y, 0, top));
        }
    }
}

rendering::Texture* Border::Tiles::MakeSheet() const {
    const math::Vec2i size = GetSheetSize();
    const ImageRGBA32Ptr sheet = new ImageRGBA32(size.x, size.y);
    for (int tile = 0; tile < NUM_TILES; ++tile) CopyTile(static_cast<Tile>(tile), *sheet);
    return new rendering::Texture(sheet, rendering::Texture::ImageType::Tile());
}

void Border::Tiles::AddQuad(rendering::VertexBatch& batch, int column, int row, Vec2 min, Vec2 max) const {
    if (!(max.x > min.x && max.y > min.y)) return;
    const math::Vec2i origin = GetOrigin(column, row), size = GetSheetSize();
    const Vec2 unit(1.0f / size.x, 1.0f / size.y);  // one texel
    const float left = origin.x * unit.x, bottom = origin.y * unit.y;
    batch.AddQuad(min, max, {left, bottom + m_rows[row] * unit.y},
                  {left + m_columns[column] * unit.x, bottom});
}

Border::Border() = default;
Border::Border(const Border& other) = default;
Border& Border::operator=(const Border& other) = default;
Border::~Border() = default;

Border::Border(String skin) {
    if (skin.empty() || skin.back() != '/') skin += '/';
    m_tiles = new Tiles("gui/vexa/" + skin);
    if (!m_tiles->Fit()) THROW(BadDataException, "Bad sizes on border");
    const float unit = 1.0f / rendering::Texture::ImageType::Tile().density;  // GUI units per texel
    m_left = m_tiles->m_columns[0] * unit;
    m_right = m_tiles->m_columns[2] * unit;
    m_top = m_tiles->m_rows[0] * unit;
    m_bottom = m_tiles->m_rows[2] * unit;
}

void Border::Draw(float width, float height) const {
    PROFILE_SECTION("Border::Draw");
    if (!m_tiles) return;
    const rendering::TexturePtr sheet = m_tiles->m_sheet->Get();
    if (!sheet) return;
    static rendering::VertexBatch s_batch;
    const float xs[4] = {-m_left, 0, width, width + m_right};
    const float ys[4] = {-m_top, 0, height, height + m_bottom};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            m_tiles->AddQuad(s_batch, column, row, {xs[column], ys[row]}, {xs[column + 1], ys[row + 1]});
        }
    }
    const rendering::ScopedTexture bound(sheet);
    s_batch.DrawAndClear();
}

}  // namespace gui
