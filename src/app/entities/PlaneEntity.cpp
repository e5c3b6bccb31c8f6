#include "app/entities/PlaneEntity.h"

#include "rendering/ShapePainter.h"
#include "util/ProfileTree.h"

namespace app {

PlaneEntity::PlaneEntity(const physics::PlanePtr& plane) : GeomEntity("Plane", plane), m_plane(plane) {}

void PlaneEntity::Draw() {
    PROFILE_SECTION("Plane::Draw");
    rendering::ShapePainter::Instance().DrawPlane(m_plane->GetPlane(), GetDrawColor());
}

bool PlaneEntity::CrossesLines(const physics::LineList& lines) const {
    for (const physics::Line& line : lines) {
        if ((m_plane->GetDistance(line.start) < 0) != (m_plane->GetDistance(line.end) < 0)) return true;
    }
    return false;
}

void PlaneEntity::Serialize(EntitySerializer& out) const {
    GeomEntity::Serialize(out);
    const math::Vec3& plane = m_plane->GetLocalPlane();
    out["type"] = script::ValueToObject("plane");
    out["normal"] = script::ValueToObject(math::Vec2(plane.x, plane.y));
    out["dist"] = script::ValueToObject(plane.z);
}

EntityPtr PlaneEntity::Clone() const {
    const PlaneEntityPtr clone = new PlaneEntity(new physics::Plane(*m_plane));
    clone->CopyValuesFrom(*this);
    return clone;
}

}  // namespace app
