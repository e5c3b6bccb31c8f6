#include "gui/Border.h"

#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/Exception.h"
#include "util/ProfileTree.h"

namespace gui {

math::Vec2 Border::Tiles::GetSize(Tile tile) const {
    const rendering::TexturePtr texture = m_images[tile]->Get();
    if (!texture) return {};
    return {static_cast<float>(texture->GetWidth()), static_cast<float>(texture->GetHeight())};
}

Border::Border(String skin) {
    if (skin.empty() || skin.back() != '/') skin += '/';
    const char* const files[NUM_TILES] = {"l.tga",  "r.tga",  "t.tga",  "b.tga",   "lt.tga",
                                          "rt.tga", "lb.tga", "rb.tga", "body.tga"};
    const String directory = "gui/vexa/" + skin;
    m_tiles = new Tiles;
    rendering::TextureManager& manager = rendering::TextureManager::Instance();
    for (int tile = 0; tile < NUM_TILES; ++tile) {
        m_tiles->m_images[tile] = manager.Get(directory + files[tile], rendering::Texture::ImageType::Tile());
    }
    MeasureTiles();
}

// A corner is as thick as both edges that it joins; the body is as long as the edges along it.
void Border::MeasureTiles() {
    const Tiles& tiles = *m_tiles;
    const auto width = [&tiles](Tile tile) { return tiles.GetSize(tile).x; };
    const auto height = [&tiles](Tile tile) { return tiles.GetSize(tile).y; };
    m_left = width(L);
    m_right = width(R);
    m_top = height(T);
    m_bottom = height(B);
    const bool cornersFit = width(LT) == m_left && width(LB) == m_left && width(RT) == m_right &&
                            width(RB) == m_right && height(LT) == m_top && height(RT) == m_top &&
                            height(LB) == m_bottom && height(RB) == m_bottom;
    const bool bodyFits = height(L) == height(BODY) && height(R) == height(BODY) && width(T) == width(BODY) &&
                          width(B) == width(BODY);
    if (!cornersFit || !bodyFits) THROW(BadDataException, "Bad sizes on border");
}

void Border::DrawTile(Tile tile, math::Vec2 min, math::Vec2 max) const {
    if (max.x <= min.x || max.y <= min.y) return;
    const rendering::TexturePtr texture = m_tiles->m_images[tile]->Get();
    if (!texture) return;
    const rendering::ScopedTexture bound(texture);
    rendering::Renderer::Instance().DrawQuad(min, max, {0, 1}, {1, 0});
}

void Border::Draw(float width, float height) const {
    PROFILE_SECTION("Border::Draw");
    if (!m_tiles) return;
    const float right = width + m_right, bottom = height + m_bottom;
    DrawTile(BODY, {0, 0}, {width, height});
    DrawTile(L, {-m_left, 0}, {0, height});
    DrawTile(R, {width, 0}, {right, height});
    DrawTile(T, {0, -m_top}, {width, 0});
    DrawTile(B, {0, height}, {width, bottom});
    DrawTile(LT, {-m_left, -m_top}, {0, 0});
    DrawTile(RT, {width, -m_top}, {right, 0});
    DrawTile(LB, {-m_left, height}, {0, bottom});
    DrawTile(RB, {width, height}, {right, bottom});
}

}  // namespace gui
