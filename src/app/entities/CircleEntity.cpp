#include "app/entities/CircleEntity.h"

#include "math/Geometry.h"
#include "physics/Polygon.h"
#include "rendering/ShapePainter.h"
#include "util/ProfileTree.h"

namespace app {

CircleEntity::CircleEntity(const physics::CirclePtr& circle)
    : FiniteGeomEntity("Circle", circle), m_circle(circle) {}

void CircleEntity::Draw() {
    PROFILE_SECTION("Circle::Draw");
    rendering::ShapePainter::Instance().DrawCircle(m_circle->GetTransform(), m_circle->m_radius,
                                                   GetDrawColor());
}

bool CircleEntity::CrossesLines(const physics::LineList& lines) const {
    for (const physics::Line& line : lines) {
        const bool startsInside = m_circle->GetDistance(line.start) < 0;
        const bool endsInside = m_circle->GetDistance(line.end) < 0;
        if (startsInside != endsInside) return true;
        if (startsInside) continue;
        const math::Vec2 closest = math::ClosestPointOnSegment(line.start, line.end, m_circle->GetPos());
        if (m_circle->GetDistance(closest) < 0) return true;
    }
    return false;
}

bool CircleEntity::IsInsidePolygon(const physics::Polygon& polygon) const {
    return polygon.GetDistance(m_circle->GetPos()) < -m_circle->m_radius;
}

void CircleEntity::Serialize(EntitySerializer& out) const {
    FiniteGeomEntity::Serialize(out);
    out["type"] = script::ValueToObject("circle");
    out["radius"] = script::ValueToObject(m_circle->m_radius);
}

EntityPtr CircleEntity::Clone() const {
    const CircleEntityPtr clone = new CircleEntity(new physics::Circle(*m_circle));
    clone->CopyValuesFrom(*this);
    return clone;
}

}  // namespace app
