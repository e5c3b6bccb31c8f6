#pragma once

#include "app/entities/GeomEntity.h"

namespace app {

// A half plane: ground, wall or slope. Its box is infinite, so nothing that asks for extents counts it.
class PlaneEntity : public GeomEntity {
  public:
    explicit PlaneEntity(const physics::PlanePtr& plane);

    void Draw() override;
    bool CrossesLines(const physics::LineList& lines) const override;
    bool IsInsidePolygon(const physics::Polygon&) const override { return false; }
    void Serialize(EntitySerializer& out) const override;
    EntityPtr Clone() const override;

    const physics::PlanePtr& GetPlane() const { return m_plane; }

  private:
    const physics::PlanePtr m_plane;  // the geom by its own type
};

}  // namespace app
