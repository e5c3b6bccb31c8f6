#pragma once

#include "app/entities/GeomEntity.h"
#include "physics/Polygon.h"
#include "rendering/Image.h"
#include "rendering/Texture.h"

namespace app {

// A polygon, drawn as one quad whose pixels ask the distance map whether they are fill, border or outside.
class PolyEntity : public FiniteGeomEntity {
  public:
    explicit PolyEntity(const physics::PolygonPtr& polygon);

    void Draw() override;
    // A stroke has to cross the outline twice, so one inside a big polygon leaves it alone.
    bool CrossesLines(const physics::LineList& lines) const override;
    bool IsInsidePolygon(const physics::Polygon& polygon) const override;
    void Serialize(EntitySerializer& out) const override;
    EntityPtr Clone() const override;  // shares map and texture

    const physics::PolygonPtr& GetPolygon() const { return m_polygon; }
    // World length of the texture's full range: a texel holds (d / scale + 1) / 2 of the distance d.
    math::real GetDistScale() const { return m_distScale; }
    // 128 by 128 texels over the polygon's map box; made at the first use.
    const rendering::TextureMentorPtr& GetDistTexture();
    // Its texels, from the polygon's distance map.
    static rendering::ImageFloatPtr MakeDistImage(const physics::Polygon& polygon, math::real scale);

  private:
    const physics::PolygonPtr m_polygon;  // the geom by its own type
    math::real m_distScale;
    rendering::TextureMentorPtr m_distTexture;  // shared with clones; null until drawn
};

}  // namespace app
