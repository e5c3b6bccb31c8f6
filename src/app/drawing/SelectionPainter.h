#pragma once

#include <cstdint>

#include "app/Fwd.h"
#include "math/BoundingBox.h"
#include "math/Vector.h"
#include "rendering/Texture.h"
#include "rendering/VertexBatch.h"

namespace app {

// Marks what is selected: a bright line with dark edges along the outline, which shows on every colour.
// Shapes get their own outline, anything else the box round it.
class SelectionPainter {
  public:
    SelectionPainter();

    // In world coordinates, over the shapes. `width` in world units, with the dark edges.
    void Draw(const Selection& selection, const math::BoundingBox2f& view, float width,
              const math::Vec3& color);

  private:
    void AddOutline(const Entity& entity, const math::BoundingBox2f& view);
    void AddStroke(const math::Vec2List& points, bool closed);

    rendering::TextureMentorPtr m_profile;  // across the line
    rendering::VertexBatch m_strokes;
    float m_half = 0;  // of the width
};

}  // namespace app
