#include "physics/CollisionDetection.h"

#include <algorithm>
#include <cmath>

#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/ContactPool.h"
#include "physics/Geom.h"
#include "physics/LooseBox.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"
#include "util/Assert.h"
#include "util/ProfileTree.h"

namespace physics {

using math::real;
using math::Vec2;
using math::Vec3;

namespace {

// The index of the one contact of a circle whose centre lies inside a polygon.
constexpr uint32_t CENTER_INSIDE = 0xFFFFFFFF;
// The indices of contacts at side points begin here.
constexpr uint32_t SIDE_POINTS = 0x80000000;

void AddBox(PairSweep& sweep, const math::BoundingBox2f& box) {
    sweep.Add(box.min.x, box.min.y, box.max.x, box.max.y);
}

}  // namespace

// ---- assignment ----------------------------------------------------------------------------------------

void Collider::Begin() {
    m_planes.clear();
    m_polygons.clear();
    m_circles.clear();
}

void Collider::Enter(Body& body) {
    for (const BodyPart& part : body.GetParts()) {
        CODE_ASSERTION_TEXT(part.geom.Get()->GetBodyPtr() == &body, "(*g)->GetBody()");
        EnterGeom(&body, part.geom.Get());
    }
}

void Collider::EnterGeom(AbstractBody* body, Geom* geom) {
    const uint32_t flags = GetCollisionFlags(*body, *geom);
    switch (geom->GetKind()) {
        case Geom::Kind::POLYGON: {
            Polygon* const polygon = static_cast<Polygon*>(geom);
            m_polygons.push_back({body, polygon, polygon->GetWorldBoundingCircle(), flags});
            break;
        }
        case Geom::Kind::CIRCLE: {
            Circle* const circle = static_cast<Circle*>(geom);
            m_circles.push_back({body, circle, circle->GetPos(), circle->m_radius, flags});
            break;
        }
        case Geom::Kind::PLANE:
            m_planes.push_back({body, static_cast<Plane*>(geom), flags});
            break;
        case Geom::Kind::OTHER:
            break;
    }
}

inline Geom* Collider::PlaneRec::GetGeom() const {
    return plane;
}
inline Geom* Collider::CircleRec::GetGeom() const {
    return circle;
}
inline Geom* Collider::PolygonRec::GetGeom() const {
    return polygon;
}

void Collider::MakeContact(ContactPool& out, Geom* geomA, Geom* geomB, uint32_t index, Vec2 point,
                           Vec2 normal, real penetration, real rollArm) {
    if (!out.IsFull()) out.Add(geomA, geomB, index, point, normal, penetration).m_rollArm = rollArm;
}

// ---- passes --------------------------------------------------------------------------------------------

void Collider::Collide(const ParticleList& particles, ContactPool& out) {
    PROFILE_SECTION("Collider::Collide");
    FindPairs();
    CollidePlanes(out);
    CollideCircles(out);
    CollidePolygons(out);
    CollideCirclesWithPolygons(out);
    CollideWater(particles, out);
}

// The boxes are numbered as circles first, then polygons. A contact with a polygon needs a point inside or
// near its tight box, which is why that box counts here and not the outline's own.
void Collider::FindPairs() {
    PROFILE_SECTION("Pairs");
    m_sweep.Clear();
    m_sweep.Reserve(m_circles.size() + m_polygons.size());
    for (const CircleRec& rec : m_circles) AddBox(m_sweep, LooseBox(rec.pos, Vec2(rec.radius, rec.radius)));
    for (const PolygonRec& rec : m_polygons) AddBox(m_sweep, LooseBox(rec.polygon->GetWorldOBB()));
    m_sweep.FindPairs();
}

void Collider::CollidePlanes(ContactPool& out) const {
    PROFILE_SECTION("Plane");
    for (const PlaneRec& plane : m_planes) {
        for (const CircleRec& circle : m_circles) PlaneCircle(plane, circle, out);
    }
    for (const PlaneRec& plane : m_planes) {
        for (const PolygonRec& polygon : m_polygons) PlanePolygon(plane, polygon, out);
    }
}

void Collider::CollideCircles(ContactPool& out) const {
    PROFILE_SECTION("CircleCircle");
    const size_t circles = m_circles.size();
    for (size_t i = 0; i < circles; ++i) {
        const uint32_t* const end = m_sweep.PartnersEnd(i);
        for (const uint32_t* j = m_sweep.PartnersBegin(i); j != end && *j < circles; ++j) {
            CircleCircle(m_circles[i], m_circles[*j], out);
        }
    }
}

void Collider::CollidePolygons(ContactPool& out) const {
    PROFILE_SECTION("PolygonPolygon");
    const size_t circles = m_circles.size();
    for (size_t i = 0; i < m_polygons.size(); ++i) {
        const uint32_t* const end = m_sweep.PartnersEnd(circles + i);
        for (const uint32_t* j = m_sweep.PartnersBegin(circles + i); j != end; ++j) {
            PolygonPolygon(m_polygons[i], m_polygons[*j - circles], out);
        }
    }
}

void Collider::CollideCirclesWithPolygons(ContactPool& out) const {
    PROFILE_SECTION("CirclePolygon");
    const size_t circles = m_circles.size();
    if (m_polygons.empty()) return;
    for (size_t i = 0; i < circles; ++i) {
        // The partners are sorted, so those that are polygons stand at the end.
        const uint32_t* const begin = m_sweep.PartnersBegin(i);
        const uint32_t* const end = m_sweep.PartnersEnd(i);
        const uint32_t* polygon = end;
        while (polygon != begin && polygon[-1] >= circles) --polygon;
        for (; polygon != end; ++polygon) CirclePolygon(m_circles[i], m_polygons[*polygon - circles], out);
    }
}

// ---- pairs ---------------------------------------------------------------------------------------------
//
// Distances come before the filter: they decide more, and from fewer bytes. Comparisons are written so that
// a NaN makes no contact.

void Collider::PlaneCircle(const PlaneRec& a, const CircleRec& b, ContactPool& out) {
    const real d = a.plane->Distance(b.pos);
    if (!(d < b.radius) || !MayTouch(a, b)) return;
    const Vec2 n = a.plane->GetNormal();
    MakeContact(out, a.plane, b.circle, 0, b.pos - b.radius * n, n, b.radius - d, b.radius);
}

void Collider::PlanePolygon(const PlaneRec& a, const PolygonRec& b, ContactPool& out) {
    if (!(a.plane->Distance(Vec2(b.circle.x, b.circle.y)) <= b.circle.z) || !MayTouch(a, b)) return;
    const math::OBB2D& box = b.polygon->GetWorldOBB();
    if (!(GetReach(box, a.plane->GetNormal()) >= a.plane->Distance(box.center))) return;
    const math::Vec2List& vertices = b.polygon->GetWorldVertices();
    for (size_t i = 0; i < vertices.size(); ++i) {
        const real s = a.plane->Distance(vertices[i]);
        if (!(s < 0)) continue;
        MakeContact(out, a.plane, b.polygon, static_cast<uint32_t>(i), vertices[i], a.plane->GetNormal(), -s);
    }
}

// The point lies in the middle of the overlap. Circles at the same place get a zero normal, which pushes
// nothing: they stay together.
void Collider::CircleCircle(const CircleRec& a, const CircleRec& b, ContactPool& out) {
    const Vec2 between = b.pos - a.pos;
    const real reach = a.radius + b.radius;
    if (!(math::LengthSquared(between) < reach * reach) || !MayTouch(a, b)) return;
    const real penetration = reach - math::Length(between);
    if (!(penetration > 0)) return;  // rounding
    const Vec2 n = math::Normalized(between);
    MakeContact(out, a.circle, b.circle, 0, a.pos + n * (a.radius - penetration / 2), n, penetration,
                std::min(a.radius, b.radius));
}

void Collider::CirclePolygon(const CircleRec& a, const PolygonRec& b, ContactPool& out) {
    const real d = b.polygon->Distance(a.pos);
    if (d > a.radius || !MayTouch(a, b)) return;
    if (d < 0) {
        MakeContact(out, a.circle, b.polygon, CENTER_INSIDE, a.pos, -b.polygon->GetNormal(a.pos),
                    a.radius - d);
        return;
    }
    CircleOutsidePolygon(a, b, out);
}

// Edges are numbered from 1, and the vertices after them. A vertex is the end of two edges, so it is left
// to the second loop; a circle at a corner thus has up to three contacts.
void Collider::CircleOutsidePolygon(const CircleRec& a, const PolygonRec& b, ContactPool& out) {
    const Vec2 c = a.pos;
    const real r = a.radius;
    const auto touch = [&](uint32_t index, Vec2 q) {
        const real distSq = math::LengthSquared(q - c);
        if (!(distSq < r * r)) return;
        const real penetration = r - std::sqrt(distSq);
        if (!(penetration > 0)) return;  // rounding
        MakeContact(out, a.circle, b.polygon, index, q, math::Normalized(q - c), penetration, r);
    };
    const Vec2* const vertices = b.polygon->GetWorldVertices().data();
    const auto count = static_cast<uint32_t>(b.polygon->GetWorldVertices().size());
    const real near = r + GetSlack(c, Vec2(r, r));
    Vec2 end = vertices[0];
    for (uint32_t i = 0; i < count; ++i) {
        const Vec2 start = end;
        end = vertices[i + 1 < count ? i + 1 : 0];
        if (c.x - near > std::max(start.x, end.x) || c.x + near < std::min(start.x, end.x)) continue;
        if (c.y - near > std::max(start.y, end.y) || c.y + near < std::min(start.y, end.y)) continue;
        const Vec2 q = math::ClosestPointOnSegment(start, end, c);
        if (q != start && q != end) touch(i + 1, q);
    }
    for (uint32_t i = 0; i < count; ++i) touch(count + i + 1, vertices[i]);
}

void Collider::PolygonPolygon(const PolygonRec& a, const PolygonRec& b, ContactPool& out) {
    const Vec2 between(b.circle.x - a.circle.x, b.circle.y - a.circle.y);
    const real reach = a.circle.z + b.circle.z;
    if (!(math::LengthSquared(between) < reach * reach) || !MayTouch(a, b)) return;
    if (!BoundsOverlap(*a.polygon, *b.polygon)) return;
    PointsInside(a.polygon, b.polygon, out);
    PointsInside(b.polygon, a.polygon, out);
}

namespace {

// Calls found(i, distance, normal) for each point that lies in a polygon.
template <class Found>
void FindInside(const math::Vec2List& list, const Polygon& other, Found found) {
    constexpr size_t BLOCK = Polygon::BLOCK;
    if (list.empty()) return;
    const size_t count = list.size();
    const auto test = [&](const Vec2* points, size_t first, uint32_t wanted) {
        real distances[BLOCK];
        Vec2 normals[BLOCK];
        uint32_t inside = other.FindInside(points, distances, normals) & wanted;
        for (; inside != 0; inside &= inside - 1) {
            const auto k = static_cast<uint32_t>(__builtin_ctz(inside));
            found(static_cast<uint32_t>(first + k), distances[k], normals[k]);
        }
    };
    if (count < BLOCK) {
        Vec2 block[BLOCK];
        std::copy(list.begin(), list.end(), block);
        test(block, 0, (1u << count) - 1);
        return;
    }
    // The last block begins early enough to be full; what it has in common with the one before is done.
    for (size_t done = 0; done < count; done += BLOCK) {
        const size_t first = std::min(done, count - BLOCK);
        test(list.data() + first, first, ~0u << (done - first));
    }
}

}  // namespace

// The polygon that a point is found in is the contact's first geom, whichever of the two comes first in the
// list: so a contact keeps its roles, and its cached impulses their meaning. Vertices are numbered from 1;
// vertices of either polygon with equal numbers make equal IDs, of which the cache keeps the later. Side
// points of the one and of the other have numbers of their own.
//
// A vertex beside a corner of the other polygon may be nearest to the side that it stands flush with, and is
// then held by the one it points at. Side points count only along a side.
void Collider::PointsInside(Polygon* owner, Polygon* other, ContactPool& out) {
    const math::Vec2List& vertices = owner->GetWorldVertices();
    FindInside(vertices, *other, [&](uint32_t i, real s, Vec2 normal) {
        const auto count = static_cast<uint32_t>(vertices.size());
        const Vec2 v = vertices[i];
        const OutlineSides::Corner corner(vertices[i > 0 ? i - 1 : count - 1] - v,
                                          vertices[i + 1 < count ? i + 1 : 0] - v);
        if (!corner.PointsAt(normal)) other->FindOpposite(v, corner, s, normal);
        MakeContact(out, other, owner, i + 1, v, normal, -s);
    });
    const math::Vec2List& sidePoints = owner->GetWorldSidePoints();
    const uint32_t first = SIDE_POINTS + (owner->GetID() < other->GetID() ? 0 : 1);
    FindInside(sidePoints, *other, [&](uint32_t i, real s, Vec2 normal) {
        const uint32_t edge = owner->GetSidePoints()[i].edge;
        const Vec2 along = vertices[edge + 1 < vertices.size() ? edge + 1 : 0] - vertices[edge];
        const OutlineSides::Corner side(along, -along);
        if (!side.PointsAt(normal) && !other->FindOpposite(sidePoints[i], side, s, normal)) return;
        MakeContact(out, other, owner, first + 2 * i, sidePoints[i], normal, -s);
    });
}

}  // namespace physics
