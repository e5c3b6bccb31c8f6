#include "physics/SweptMotion.h"

#include <algorithm>
#include <cmath>

#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/CollisionFilter.h"
#include "physics/Geom.h"
#include "physics/Polygon.h"
#include "util/ProfileTree.h"

namespace physics {

using math::real;
using math::Vec2;

namespace {

constexpr real SLOW_WAY = 0.01f;       // m per step, too short to pass through anything worth a test
constexpr real CORE_SHARE = 0.5f;      // of the radius, for what touches already
constexpr real TOUCH_DEPTH = 0.0005f;  // m, of the overlap at which a body is stopped
constexpr real GRAZING = 0.25f;        // of the radius: less way into the shape than that does no harm
constexpr real PROBE = 0.002f;         // m, along the path, to see how steeply it enters
constexpr int MOST_ADVANCES = 100;

}  // namespace

void SweptMotion::Limit(const BodyList& bodies, real h) {
    const auto isFast = [h](const BodyPtr& body) { return IsFast(*body.Get(), h); };
    if (std::none_of(bodies.begin(), bodies.end(), isFast)) return;
    PROFILE_SECTION("Swept motion");
    m_time = h;
    Gather(bodies, h);
    TestPairs();
}

void SweptMotion::Release() {
    for (AbstractBody* const body : m_limited) body->m_moveShare = 1;
    m_limited.clear();
}

bool SweptMotion::IsFast(const Body& body, real h) {
    const real way = math::Length(body.m_vel) * h;
    return way > SLOW_WAY && !body.IsImmovable() && body.GetCoreRadius() < way;
}

void SweptMotion::Gather(const BodyList& bodies, real h) {
    m_shapes.clear();
    m_endless.clear();
    m_sweep.Clear();
    for (const BodyPtr& pointer : bodies) {
        Body& body = *pointer.Get();
        const Vec2 move = body.IsImmovable() ? Vec2() : body.m_vel * h;
        const bool isFast = IsFast(body, h);
        for (const BodyPart& part : body.GetParts()) {
            Geom& geom = *part.geom.Get();
            const Shape shape{&body, &geom, GetCollisionFlags(body, geom), move, 0, isFast};
            if (geom.GetKind() == Geom::Kind::PLANE) m_endless.push_back(shape);
            if (geom.GetKind() != Geom::Kind::CIRCLE && geom.GetKind() != Geom::Kind::POLYGON) continue;
            m_shapes.push_back(shape);
            m_shapes.back().radius = isFast ? geom.GetCoreRadius() : 0;
            math::BoundingBox2f box = geom.GetBoundingBox();
            box.Extend({box.min + move, box.max + move});
            m_sweep.Add(box.min.x, box.min.y, box.max.x, box.max.y);
        }
    }
}

void SweptMotion::TestPairs() {
    for (const Shape& shape : m_shapes) {
        if (!shape.isFast) continue;
        for (const Shape& plane : m_endless) LimitPair(shape, plane);
    }
    m_sweep.FindPairs();
    for (size_t i = 0; i < m_shapes.size(); ++i) {
        for (const uint32_t* j = m_sweep.PartnersBegin(i); j != m_sweep.PartnersEnd(i); ++j) {
            LimitPair(m_shapes[i], m_shapes[*j]);
        }
    }
}

// Both stop where they meet.
void SweptMotion::LimitPair(const Shape& a, const Shape& b) {
    if (!(a.isFast || b.isFast) || !MayTouch(a, b)) return;
    m_share = 1;
    if (a.isFast) FindImpact(a, b);
    if (b.isFast) FindImpact(b, a);
    if (!(m_share < 1)) return;
    for (const Shape* const shape : {&a, &b}) {
        if (!shape->isFast) continue;
        if (shape->body->m_moveShare == 1) m_limited.push_back(shape->body);
        shape->body->m_moveShare = std::min(shape->body->m_moveShare, m_share);
    }
}

void SweptMotion::FindImpact(const Shape& mover, const Shape& target) {
    const Vec2 move = mover.move - target.move;
    const AbstractBody& body = *mover.body;
    TestPoint(mover.geom->GetPos(), move, mover.radius, *target.geom);
    if (mover.geom->GetKind() != Geom::Kind::POLYGON) return;
    const real turn = body.m_angVel * m_time;
    const real c = std::cos(turn), s = std::sin(turn);
    for (const Vec2 v : static_cast<const Polygon*>(mover.geom)->GetWorldVertices()) {
        const Vec2 r = v - body.m_pos;
        const Vec2 turned(c * r.x - s * r.y, s * r.x + c * r.y);
        TestPoint(v, move + turned - r, 0, *target.geom);
    }
}

// What touches at the start is left to its contact, until the core of the shape gets there; and so is what
// comes in at so flat an angle that a contact can catch it: a ball rolling fast over a row of shapes would
// otherwise halt at each of them.
void SweptMotion::TestPoint(Vec2 point, Vec2 move, real radius, const Geom& target) {
    const real way = math::Length(move);
    real reach = radius - TOUCH_DEPTH;
    if (target.GetDistance(point) <= reach) reach = CORE_SHARE * radius - TOUCH_DEPTH;
    real s = 0;
    for (int i = 0; i < MOST_ADVANCES; ++i) {
        const Vec2 place = point + move * s;
        const real gap = target.GetDistance(place) - reach;
        if (gap <= TOUCH_DEPTH / 2) {
            if (s == 0) return;
            const real entry = (gap + reach - target.GetDistance(place + move * (PROBE / way))) / PROBE;
            const bool isGrazing = reach > CORE_SHARE * radius && entry * way * (1 - s) < GRAZING * radius;
            if (!isGrazing) {
                m_share = std::min(m_share, s);
                return;
            }
            reach = CORE_SHARE * radius - TOUCH_DEPTH;
            continue;
        }
        s += gap / way;
        if (!(s < m_share)) return;
    }
    // A path that hugs the shape: it stops where it has been followed to.
    m_share = std::min(m_share, s);
}

}  // namespace physics
