#include "CollisionReference.h"

#include <algorithm>
#include <sstream>

#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/CollisionDetection.h"
#include "physics/Contact.h"
#include "physics/ContactPool.h"
#include "physics/Geom.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"

namespace test {

using math::real;
using math::Vec2;
using physics::Circle;
using physics::Geom;
using physics::Plane;
using physics::Polygon;
using Corner = physics::OutlineSides::Corner;

namespace {

bool ShouldCollide(const Geom& a, const Geom& b) {
    if ((a.m_collideSet & b.m_collideSet & 7) == 0) return false;
    if (a.GetBodyPtr() == b.GetBodyPtr()) return false;
    if (a.GetBodyPtr()->IsImmovable() && b.GetBodyPtr()->IsImmovable()) return false;
    return a.m_noCollide.count(const_cast<Geom*>(&b)) == 0;
}

class BruteForce {
  public:
    FoundContacts Run(const physics::BodyList& bodies, const physics::ParticleList& particles) {
        for (const physics::BodyPtr& body : bodies) {
            for (const physics::GeomPtr& geom : body->GetGeoms()) {
                if (auto* polygon = dynamic_cast<Polygon*>(geom.Get())) {
                    m_polygons.push_back(polygon);
                } else if (auto* circle = dynamic_cast<Circle*>(geom.Get())) {
                    m_circles.push_back(circle);
                } else if (auto* plane = dynamic_cast<Plane*>(geom.Get())) {
                    m_planes.push_back(plane);
                }
            }
        }
        for (Plane* p : m_planes) {
            for (Circle* c : m_circles) PlaneCircle(*p, *c);
        }
        for (Plane* p : m_planes) {
            for (Polygon* g : m_polygons) PlanePolygon(*p, *g);
        }
        for (size_t i = 0; i < m_circles.size(); ++i) {
            for (size_t j = i + 1; j < m_circles.size(); ++j) CircleCircle(*m_circles[i], *m_circles[j]);
        }
        for (size_t i = 0; i < m_polygons.size(); ++i) {
            for (size_t j = i + 1; j < m_polygons.size(); ++j) PolygonPolygon(*m_polygons[i], *m_polygons[j]);
        }
        for (Circle* c : m_circles) {
            for (Polygon* g : m_polygons) CirclePolygon(*c, *g);
        }
        for (Plane* p : m_planes) Water(*p, particles);
        for (Circle* c : m_circles) Water(*c, particles);
        for (Polygon* g : m_polygons) Water(*g, particles);
        return m_found;
    }

  private:
    void Add(const Geom& a, const Geom& b, uint32_t index, Vec2 point, Vec2 normal, real penetration) {
        m_found.push_back({a.GetID(), b.GetID(), index, point, normal, penetration});
    }

    void PlaneCircle(const Plane& p, const Circle& c) {
        const real d = p.GetDistance(c.GetPos());
        if (!ShouldCollide(p, c) || !(d < c.m_radius)) return;
        const Vec2 n = p.GetNormal();
        Add(p, c, 0, c.GetPos() - c.m_radius * n, n, c.m_radius - d);
    }

    void PlanePolygon(const Plane& p, const Polygon& g) {
        if (!ShouldCollide(p, g)) return;
        uint32_t index = 0;
        for (const Vec2 v : g.GetWorldVertices()) {
            if (p.GetDistance(v) < 0) Add(p, g, index, v, p.GetNormal(), -p.GetDistance(v));
            ++index;
        }
    }

    void CircleCircle(const Circle& a, const Circle& b) {
        const Vec2 between = b.GetPos() - a.GetPos();
        const real reach = a.m_radius + b.m_radius;
        if (!ShouldCollide(a, b) || !(math::LengthSquared(between) < reach * reach)) return;
        const real penetration = reach - math::Length(between);
        const Vec2 n = math::Normalized(between);
        Add(a, b, 0, a.GetPos() + n * (a.m_radius - penetration / 2), n, penetration);
    }

    void CirclePolygon(const Circle& c, const Polygon& g) {
        if (!ShouldCollide(c, g)) return;
        const real d = g.GetDistance(c.GetPos());
        if (d > c.m_radius) return;
        if (d < 0) {
            Add(c, g, 0xFFFFFFFF, c.GetPos(), -g.GetNormal(c.GetPos()), c.m_radius - d);
            return;
        }
        uint32_t index = 0;
        for (const physics::Line& line : g.GetWorldLines()) {
            ++index;
            const Vec2 q = math::ClosestPointOnSegment(line.start, line.end, c.GetPos());
            if (q != line.start && q != line.end) Touch(c, g, index, q);
        }
        for (const Vec2 v : g.GetWorldVertices()) Touch(c, g, ++index, v);
    }

    void Touch(const Circle& c, const Polygon& g, uint32_t index, Vec2 q) {
        const Vec2 out = q - c.GetPos();
        if (!(math::LengthSquared(out) < c.m_radius * c.m_radius)) return;
        Add(c, g, index, q, math::Normalized(out), c.m_radius - math::Length(out));
    }

    void PolygonPolygon(const Polygon& a, const Polygon& b) {
        if (!ShouldCollide(a, b) || !BoundsOverlap(a, b)) return;
        PointsInside(a, b);
        PointsInside(b, a);
    }

    void PointsInside(const Polygon& owner, const Polygon& other) {
        real distance;
        Vec2 normal;
        const math::Vec2List& vertices = owner.GetWorldVertices();
        const size_t count = vertices.size();
        for (size_t i = 0; i < count; ++i) {
            const Vec2 v = vertices[i];
            if (!IsInBox(other, v) || !other.FindInside(v, distance, normal)) continue;
            const Corner corner(vertices[(i + count - 1) % count] - v, vertices[(i + 1) % count] - v);
            if (!corner.PointsAt(normal)) other.FindOpposite(v, corner, distance, normal);
            Add(other, owner, static_cast<uint32_t>(i + 1), v, normal, -distance);
        }
        const uint32_t first = 0x80000000 + (owner.GetID() < other.GetID() ? 0 : 1);
        for (uint32_t i = 0; i < owner.GetSidePoints().size(); ++i) {
            const Vec2 v = owner.GetWorldSidePoints()[i];
            if (!IsInBox(other, v) || !other.FindInside(v, distance, normal)) continue;
            const uint32_t edge = owner.GetSidePoints()[i].edge;
            const Vec2 along = vertices[(edge + 1) % count] - vertices[edge];
            const Corner side(along, -along);
            if (side.PointsAt(normal) || other.FindOpposite(v, side, distance, normal))
                Add(other, owner, first + 2 * i, v, normal, -distance);
        }
    }

    // Outside the box the normal is zero.
    static bool IsInBox(const Polygon& polygon, Vec2 point) { return polygon.GetNormal(point) != Vec2(); }

    static real GetFieldDistance(const Geom& geom, Vec2 p) {
        const auto* polygon = dynamic_cast<const Polygon*>(&geom);
        return polygon ? polygon->GetFieldDistance(p) : geom.GetDistance(p);
    }
    static Vec2 GetFieldNormal(const Geom& geom, Vec2 p) {
        const auto* polygon = dynamic_cast<const Polygon*>(&geom);
        if (polygon == nullptr) return geom.GetNormal(p);
        const Vec2 points[Polygon::FEW] = {p, p, p, p};
        real distances[Polygon::FEW];
        Vec2 normals[Polygon::FEW];
        polygon->FindNear(points, 1e9f, distances, normals);
        return normals[0];
    }

    void Water(const Geom& geom, const physics::ParticleList& particles) {
        const real radius = physics::SPH::Instance().m_radius->Get() * 0.1f;
        if (!geom.m_collideWater) return;
        for (const physics::ParticlePtr& particle : particles) {
            const Vec2 p = particle->m_pos;
            const real s = GetFieldDistance(geom, p);
            if (s < radius) Add(geom, *particle->m_geom, 0, p, GetFieldNormal(geom, p), radius - s);
        }
    }

    std::vector<Plane*> m_planes;
    std::vector<Circle*> m_circles;
    std::vector<Polygon*> m_polygons;
    FoundContacts m_found;
};

bool OwnsGeom(const physics::AbstractBody* body, uint32_t geomID) {
    if (auto* particle = dynamic_cast<const physics::Particle*>(body))
        return particle->m_geom->GetID() == geomID;
    for (const physics::GeomPtr& geom : static_cast<const physics::Body*>(body)->GetGeoms()) {
        if (geom->GetID() == geomID) return true;
    }
    return false;
}

}  // namespace

FoundContacts CollideByBruteForce(const physics::BodyList& bodies, const physics::ParticleList& particles) {
    return BruteForce().Run(bodies, particles);
}

FoundContacts Collide(physics::Collider& collider, const physics::BodyList& bodies,
                      const physics::ParticleList& particles) {
    physics::ContactPool pool;
    physics::SPH::Instance().Sort(particles);
    physics::SPH::Instance().FindTouches(bodies, Vec2());
    collider.Begin();
    for (const physics::BodyPtr& body : bodies) collider.Enter(*body);
    collider.Collide(particles, pool);
    FoundContacts found;
    for (const physics::ContactPtr& contact : pool) {
        const physics::ContactID& id = contact->m_id;
        uint32_t a = id.geom0, b = id.geom1;
        // The ID does not keep the order of the geoms; the bodies do.
        if (!OwnsGeom(contact->m_bodies[0], a)) std::swap(a, b);
        found.push_back({a, b, id.index, contact->m_point, contact->m_normal, contact->m_penetration});
    }
    return found;
}

std::string FindDifference(const FoundContacts& found, const FoundContacts& expected) {
    std::ostringstream text;
    for (size_t i = 0; i < std::max(found.size(), expected.size()); ++i) {
        if (i < found.size() && i < expected.size() && found[i] == expected[i]) continue;
        text << "contact " << i << " of " << found.size() << ", expected " << expected.size() << "\n";
        if (i < found.size()) text << "found    " << found[i];
        if (i < expected.size()) text << "expected " << expected[i];
        break;
    }
    return text.str();
}

}  // namespace test
