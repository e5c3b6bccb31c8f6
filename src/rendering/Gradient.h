#pragma once

#include "math/Vector.h"
#include "rendering/Texture.h"

namespace rendering {

// Rectangles whose colour goes over from one edge to the opposite one, times the present colour. The colours
// are texels, so that no vertex has one of its own: a driver that draws in software compiles a program for
// each set of values that differ from vertex to vertex, and everything else has texture coordinates.
class Gradient {
  public:
    explicit Gradient(const math::Vec4& start = {}, const math::Vec4& end = {});
    Gradient(const Gradient&) = delete;
    Gradient& operator=(const Gradient&) = delete;

    void SetColors(const math::Vec4& start, const math::Vec4& end);

    // From the first colour at min.x or min.y to the second.
    void DrawAcross(math::Vec2 min, math::Vec2 max) const;
    void DrawDown(math::Vec2 min, math::Vec2 max) const;

  private:
    Texture* MakeTexture() const;
    void Draw(const math::Vec2* corners) const;

    math::Vec4 m_start, m_end;
    TextureMentorPtr m_texture;
};

}  // namespace rendering
