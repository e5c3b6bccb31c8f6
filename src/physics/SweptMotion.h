#pragma once

#include <cstdint>
#include <vector>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/PairSweep.h"
#include "util/VectorPOD.h"

namespace physics {

// Keeps fast bodies from passing through others. A body that moves further than its own radius in a step
// could be in front of a wall before and behind it after, with no contact in between; such a body is stopped
// where it first touches (AbstractBody::m_moveShare), and bounces off in the next step.
//
// The place is found by conservative advancement: a point whose distance from a shape is d can go d along its
// path without touching, whatever the shape. It does so again and again until the path ends or nothing is
// left. Tried are the middles of shapes and the vertices of polygons, against the other's relative motion;
// rotation counts as a straight way of the vertices.
//
// Kept from step to step for its arrays; holds no object from Release to the next Limit.
class SweptMotion {
  public:
    // Sets m_moveShare of the bodies for a step of `h` seconds.
    void Limit(const BodyList& bodies, math::real h);
    // Gives them their whole way again, and lets go of them: before the next step bodies may have died.
    void Release();

  private:
    struct Shape {
        AbstractBody* body;
        Geom* geom;
        uint32_t flags;
        math::Vec2 move;    // m, of the body in this step
        math::real radius;  // m, of a circle about the geom's middle that lies within the shape
        bool isFast;

        Geom* GetGeom() const { return geom; }
    };

    static bool IsFast(const Body& body, math::real h);
    void Gather(const BodyList& bodies, math::real h);
    void TestPairs();
    void LimitPair(const Shape& a, const Shape& b);
    void FindImpact(const Shape& mover, const Shape& target);
    void TestPoint(math::Vec2 point, math::Vec2 move, math::real radius, const Geom& target);

    std::vector<Shape> m_shapes;   // those with a box, in the order of the bodies
    std::vector<Shape> m_endless;  // the others: planes
    util::VectorPOD<AbstractBody*> m_limited;
    PairSweep m_sweep;       // over m_shapes
    math::real m_share = 1;  // of the way, that the pair under test can go
    math::real m_time = 0;   // s, of the step
};

}  // namespace physics
