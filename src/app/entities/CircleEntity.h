#pragma once

#include "app/entities/GeomEntity.h"

namespace app {

class CircleEntity : public FiniteGeomEntity {
  public:
    explicit CircleEntity(const physics::CirclePtr& circle);

    void Draw() override;
    bool CrossesLines(const physics::LineList& lines) const override;
    bool IsInsidePolygon(const physics::Polygon& polygon) const override;
    void Serialize(EntitySerializer& out) const override;
    EntityPtr Clone() const override;

    const physics::CirclePtr& GetCircle() const { return m_circle; }

  private:
    const physics::CirclePtr m_circle;  // the geom by its own type
};

}  // namespace app
