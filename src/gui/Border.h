#pragma once

#include "util/SharedPtr.h"
#include "util/String.h"

namespace gui {

// The nine tiles round a component: four edges, four corners and the body under the content. Copies share
// their tiles. The thickness of a side is its tile's size in pixels, taken as GUI units; an empty border
// has none.
class Border {
  public:
    Border();

    // The skin folder `skin` below the textures of the toolkit. Throws BadDataException, "Bad sizes on
    // border", for tiles that do not fit each other.
    explicit Border(String skin);

    // Where the tiles' holder is known.
    Border(const Border& other);
    Border& operator=(const Border& other);
    ~Border();

    bool IsEmpty() const { return !m_tiles; }
    float GetTop() const { return m_top; }
    float GetBottom() const { return m_bottom; }
    float GetLeft() const { return m_left; }
    float GetRight() const { return m_right; }

    // Round a content box from 0, 0 to width, height: corners at their own size, edges stretched along the
    // box, the body stretched over it. In the present colour.
    void Draw(float width, float height) const;

  private:
    struct Tiles;

    util::SharedPtr<Tiles> m_tiles;  // null when empty
    float m_top = 0;
    float m_bottom = 0;
    float m_left = 0;
    float m_right = 0;
};

}  // namespace gui
