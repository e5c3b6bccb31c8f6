#include "app/entities/PolyEntity.h"

#include <algorithm>

#include "app/entities/PointList.h"
#include "rendering/ShapePainter.h"
#include "util/ProfileTree.h"

namespace app {

namespace {

// Share of the map box's greater side that the distance texture resolves to either side of the outline.
constexpr math::real DIST_SCALE = 0.04f;

rendering::Texture* MakeDistTexture(const physics::PolygonPtr& polygon, math::real scale) {
    return rendering::TextureFromImageFloat(PolyEntity::MakeDistImage(*polygon, scale),
                                            rendering::Texture::ImageType::Distance());
}

}  // namespace

PolyEntity::PolyEntity(const physics::PolygonPtr& polygon)
    : FiniteGeomEntity("Poly", polygon),
      m_polygon(polygon),
      m_distScale(2 * std::max(polygon->GetMapOBB().halfSize.x, polygon->GetMapOBB().halfSize.y) *
                  DIST_SCALE) {}

void PolyEntity::Draw() {
    PROFILE_SECTION("Poly::Draw");
    rendering::ShapePainter::Instance().DrawPolygon(m_polygon->GetTransform(), m_polygon->GetMapOBB(),
                                                    GetDistTexture()->Get(), m_distScale, GetDrawColor());
}

bool PolyEntity::CrossesLines(const physics::LineList& lines) const {
    return m_polygon->CountIntersections(lines) > 1;
}

bool PolyEntity::IsInsidePolygon(const physics::Polygon& polygon) const {
    return polygon.Encloses(*m_polygon);
}

// The outline is written where it stands, but unturned: the angle has a key of its own. Sums in float would
// round the vertices; those in double give them back exactly.
void PolyEntity::Serialize(EntitySerializer& out) const {
    FiniteGeomEntity::Serialize(out);
    out["type"] = script::ValueToObject("polygon");
    const math::Vec2 pos = m_polygon->GetPos();
    PointList::Points points;
    points.reserve(m_polygon->GetVertices().size());
    for (const math::Vec2& vertex : m_polygon->GetVertices())
        points.push_back({double(vertex.x) + double(pos.x), double(vertex.y) + double(pos.y)});
    out["vecs"] = script::ObjectPtr(new PointList(std::move(points)));
}

EntityPtr PolyEntity::Clone() const {
    const PolyEntityPtr clone = new PolyEntity(new physics::Polygon(*m_polygon));
    clone->CopyValuesFrom(*this);
    clone->m_distTexture = m_distTexture;
    return clone;
}

rendering::ImageFloatPtr PolyEntity::MakeDistImage(const physics::Polygon& polygon, math::real scale) {
    const auto& cells = polygon.GetDistMap().GetData();
    const uint32_t size = physics::DistanceMap::SIZE;
    const rendering::ImageFloatPtr image = new rendering::ImageFloat(size, size);
    std::transform(cells.begin(), cells.end(), image->GetData().begin(),
                   [scale](float distance) { return std::clamp((distance / scale + 1) / 2, 0.0f, 1.0f); });
    return image;
}

const rendering::TextureMentorPtr& PolyEntity::GetDistTexture() {
    if (!m_distTexture) {
        m_distTexture = new rendering::TextureMentor(
            [polygon = m_polygon, scale = m_distScale] { return MakeDistTexture(polygon, scale); });
    }
    return m_distTexture;
}

}  // namespace app
