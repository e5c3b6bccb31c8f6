// The water pass of the collider: particles against planes, circles and polygons.
//
// Water asks for no collision layers, no barred partners and no mass, only for the geom's m_collideWater:
// a held or fixed shape takes water too. Particles do not touch each other here; they feel each other
// through the fluid forces.

#include <cmath>
#include <limits>

#include "math/Geometry.h"
#include "math/OBB2D.h"
#include "physics/CollisionDetection.h"
#include "physics/ContactPool.h"
#include "physics/Geom.h"
#include "physics/LooseBox.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "util/ProfileTree.h"

namespace physics {

using math::BoundingBox2f;
using math::real;
using math::Vec2;

namespace {

math::OBB2D ToOriented(const BoundingBox2f& box) {
    math::OBB2D oriented;
    oriented.center = box.GetCenter();
    oriented.halfSize = box.GetSize() * 0.5f;
    return oriented;
}

bool BoxOverlapsCircle(const BoundingBox2f& box, Vec2 center, real radius) {
    const Vec2 middle = box.GetCenter(), half = box.GetSize() * 0.5f;
    const real dx = std::fabs(center.x - middle.x) - half.x;
    const real dy = std::fabs(center.y - middle.y) - half.y;
    if (radius < dx || radius < dy) return false;
    if (dx > 0 && dy > 0) return dx * dx + dy * dy < radius * radius;
    return true;
}

BoundingBox2f Grown(BoundingBox2f box, real margin) {
    box.Grow(margin);
    return box;
}

}  // namespace

void Collider::CollideWater(ContactPool& out) const {
    if (m_particles.empty()) return;
    PROFILE_SECTION("Water");
    const BoundingBox2f water = GetWaterBox();
    PlanesInWater(water, out);
    CirclesInWater(water, out);
    PolygonsInWater(water, out);
}

BoundingBox2f Collider::GetWaterBox() const {
    PROFILE_SECTION("Creating BB");
    BoundingBox2f box;
    for (const Vec2 pos : m_particlePos) box.Extend(pos);
    return Grown(box, m_particleRadius);
}

void Collider::PlanesInWater(const BoundingBox2f& water, ContactPool& out) const {
    PROFILE_SECTION("Plane-Water");
    constexpr real INF = std::numeric_limits<real>::infinity();
    for (const PlaneRec& rec : m_planes) {
        const real reach = GetReach(ToOriented(water), rec.plane->GetNormal());
        if (!(rec.plane->Distance(water.GetCenter()) <= reach) || !rec.plane->m_collideWater) continue;
        TestParticles(rec.plane, BoundingBox2f({-INF, -INF}, {INF, INF}), out);
    }
}

void Collider::CirclesInWater(const BoundingBox2f& water, ContactPool& out) const {
    PROFILE_SECTION("Circle-Water");
    for (const CircleRec& rec : m_circles) {
        if (!BoxOverlapsCircle(water, rec.pos, rec.radius) || !rec.circle->m_collideWater) continue;
        TestParticles(rec.circle, LooseBox(rec.pos, Vec2(rec.radius, rec.radius)), out);
    }
}

void Collider::PolygonsInWater(const BoundingBox2f& water, ContactPool& out) const {
    PROFILE_SECTION("Poly-Water");
    const math::OBB2D waterBox = ToOriented(water);
    for (const PolygonRec& rec : m_polygons) {
        const math::OBB2D& box = rec.polygon->GetWorldOBB();
        if (!BoxOverlapsCircle(water, Vec2(rec.circle.x, rec.circle.y), rec.circle.z)) continue;
        if (!BoxesOverlap(box, waterBox) || !rec.polygon->m_collideWater) continue;
        TestParticles(rec.polygon, LooseBox(box), out);
    }
}

// `box` holds the shape; what lies beyond the particles' radius outside it is out of reach. A particle
// within reach but outside a polygon's own box gets a zero normal, which pushes nothing.
template <class Shape>
void Collider::TestParticles(Shape* shape, const BoundingBox2f& box, ContactPool& out) const {
    const BoundingBox2f reach = Grown(box, m_particleRadius);
    const size_t count = m_particles.size();
    for (size_t i = 0; i < count; ++i) {
        const Vec2 pos = m_particlePos[i];
        if (!reach.Contains(pos)) continue;
        const real s = shape->Shape::GetDistance(pos);
        if (!(s < m_particleRadius)) continue;
        MakeContact(out, shape, m_particles[i]->m_geom.Get(), 0, pos, shape->Shape::GetNormal(pos),
                    m_particleRadius - s);
    }
}

}  // namespace physics
