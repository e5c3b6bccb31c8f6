#pragma once

#include <cstdint>

#include "math/BoundingBox.h"
#include "math/Vector.h"
#include "physics/CollisionFilter.h"
#include "physics/Fwd.h"
#include "physics/PairSweep.h"
#include "util/VectorPOD.h"

namespace physics {

// Turns the places of all bodies into the contacts of a step.
//
// What comes out is defined by brute force over all pairs of geoms, in the order planes and circles, planes
// and polygons, circles, polygons, circles and polygons, each pass in the order of the lists, and then the
// water's, body by body. Pairs whose boxes are apart cannot touch, so a sweep hands out only the others, and
// in that same order.
//
// Shapes have no edges-against-edges test: a contact of two polygons is a vertex or side point of one found
// inside the other. Normals point from the contact's first geom to its second.
//
// Kept from step to step, for its arrays and for the sweep's order; it holds no object between calls of
// Collide.
class Collider {
  public:
    void Begin();            // with no geom
    void Enter(Body& body);  // lists its geoms
    // Appends the contacts of those, and of these particles, whose touches SPH has found, with them.
    void Collide(const ParticleList& particles, ContactPool& out);

  private:
    struct PlaneRec {
        AbstractBody* body;
        Plane* plane;
        uint32_t flags;
        Geom* GetGeom() const;
    };
    struct CircleRec {
        AbstractBody* body;
        Circle* circle;
        math::Vec2 pos;
        math::real radius;
        uint32_t flags;
        Geom* GetGeom() const;
    };
    struct PolygonRec {
        AbstractBody* body;
        Polygon* polygon;
        math::Vec3 circle;  // bounding circle: x, y, radius
        uint32_t flags;
        Geom* GetGeom() const;
    };

    static void MakeContact(ContactPool& out, Geom* geomA, Geom* geomB, uint32_t index, math::Vec2 point,
                            math::Vec2 normal, math::real penetration, math::real rollArm = 0);

    void EnterGeom(AbstractBody* body, Geom* geom);
    void FindPairs();

    void CollidePlanes(ContactPool& out) const;
    void CollideCircles(ContactPool& out) const;
    void CollidePolygons(ContactPool& out) const;
    void CollideCirclesWithPolygons(ContactPool& out) const;

    static void PlaneCircle(const PlaneRec& a, const CircleRec& b, ContactPool& out);
    static void PlanePolygon(const PlaneRec& a, const PolygonRec& b, ContactPool& out);
    static void CircleCircle(const CircleRec& a, const CircleRec& b, ContactPool& out);
    static void CirclePolygon(const CircleRec& a, const PolygonRec& b, ContactPool& out);
    static void PolygonPolygon(const PolygonRec& a, const PolygonRec& b, ContactPool& out);
    static void CircleOutsidePolygon(const CircleRec& a, const PolygonRec& b, ContactPool& out);
    static void PointsInside(Polygon* owner, Polygon* other, ContactPool& out);
    static void CollideWater(const ParticleList& particles, ContactPool& out);

    util::VectorPOD<PlaneRec> m_planes;
    util::VectorPOD<PolygonRec> m_polygons;
    util::VectorPOD<CircleRec> m_circles;

    PairSweep m_sweep;  // over circles, then polygons
};

}  // namespace physics
