#pragma once

#include <array>

#include "rendering/Texture.h"
#include "util/SharedPtr.h"
#include "util/String.h"

namespace gui {

// The nine tiles round a component: four edges, four corners and the body under the content. Copies share
// their tiles. The thickness of a side is its tile's size in pixels, taken as GUI units; an empty border
// has none.
class Border {
  public:
    Border() = default;

    // The skin folder `skin` below the textures of the toolkit. Throws BadDataException, "Bad sizes on
    // border", for tiles that do not fit each other.
    explicit Border(String skin);

    bool IsEmpty() const { return !m_tiles; }
    float GetTop() const { return m_top; }
    float GetBottom() const { return m_bottom; }
    float GetLeft() const { return m_left; }
    float GetRight() const { return m_right; }

    // Round a content box from 0, 0 to width, height: corners at their own size, edges stretched along the
    // box, the body stretched over it. In the present colour.
    void Draw(float width, float height) const;

  private:
    enum Tile { L, R, T, B, LT, RT, LB, RB, BODY, NUM_TILES };
    struct Tiles : public util::Pointee {
        math::Vec2 GetSize(Tile tile) const;  // pixels; zero for a picture that could not be loaded

        std::array<rendering::TextureMentorPtr, NUM_TILES> m_images;
    };

    void MeasureTiles();
    void DrawTile(Tile tile, math::Vec2 min, math::Vec2 max) const;

    util::SharedPtr<Tiles> m_tiles;
    float m_top = 0;
    float m_bottom = 0;
    float m_left = 0;
    float m_right = 0;
};

}  // namespace gui
