#pragma once

#include "math/Vector.h"

namespace rendering {

// Rectangles whose colour goes over from one edge to the opposite one, times the present colour. Vertices
// carry the colours: a texture of two texels would do as well, but in software it costs eight times as much.
class Gradient {
  public:
    explicit Gradient(const math::Vec4& start = {}, const math::Vec4& end = {}) { SetColors(start, end); }

    void SetColors(const math::Vec4& start, const math::Vec4& end);

    // From the first colour at min.x or min.y to the second.
    void DrawAcross(math::Vec2 min, math::Vec2 max) const;
    void DrawDown(math::Vec2 min, math::Vec2 max) const;

  private:
    void Draw(const math::Vec2* corners) const;

    math::Vec4 m_start, m_end;  // clamped to 0 to 1
};

}  // namespace rendering
