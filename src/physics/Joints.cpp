// The spring.
//
// Letters: a, b the anchors in the world, n the unit vector from a to b, A0, A1 the anchors in their geoms'
// frames, W and I a body's inverse mass and inertia, k the stiffness, L the length, u the velocity of b less
// that of a:
//   c = n x A (the anchor stands in for the arm from the centre of mass)
//   e = 1 / (W0 + W1 + I0 c0^2 + I1 c1^2)
//   k = springForce e strength,  critical damping cd = 2 sqrt(k e)
//   F = cd damping (u . dir) + k (L - length)
// so that the angular frequency sqrt(k / e) does not depend on the masses.

#include "physics/Joints.h"

#include <cmath>

#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/SolverBody.h"
#include "physics/StepSettings.h"

namespace physics {

uint32_t Joint::s_nextID = 0;

Joint::Joint(const GeomPtr& geom0, const GeomPtr& geom1) : m_geoms{geom0, geom1}, m_id(s_nextID++) {}

Joint::~Joint() noexcept(false) = default;

void Joint::GetBodies(BodyPtr& body0, BodyPtr& body1) const {
    body0 = BodyOf(m_geoms[0]);
    body1 = BodyOf(m_geoms[1]);
}

bool Joint::IsValid() const {
    BodyPtr body0;
    BodyPtr body1;
    GetBodies(body0, body1);
    if (m_geoms[0] == m_geoms[1] || body0 == body1) return false;
    return body0 && body1 && body0->m_inWorld && body1->m_inWorld;
}

SpringJoint::SpringJoint(const GeomPtr& geom0, const GeomPtr& geom1, math::Vec2 anchor0, math::Vec2 anchor1,
                         math::real length, math::real strength, math::real damping)
    : Joint(geom0, geom1),
      m_anchors{anchor0, anchor1},
      m_length(length),
      m_strength(strength),
      m_damping(damping) {}

math::Vec2 SpringJoint::GetWorldAnchor(int end) const {
    return m_geoms[end]->GetTransform()(m_anchors[end]);
}

void SpringJoint::ApplyForce(const StepSettings& settings) {
    BodyPtr body0;
    BodyPtr body1;
    GetBodies(body0, body1);
    if (!body0 || !body1) return;
    const math::Vec2 a = GetWorldAnchor(0);
    const math::Vec2 b = GetWorldAnchor(1);
    const math::real e =
        1 / InverseEffectiveMass(*body0, *body1, m_anchors[0], m_anchors[1], math::Normalized(b - a));
    const math::real k = settings.springForce * e * m_strength;
    const math::real cd = 2 * std::sqrt(k * e);

    math::real length = math::Length(b - a);
    math::Vec2 dir(1, 0);  // for anchors that coincide
    if (math::IsZero(length)) {
        length = 1e-06f;
    } else {
        dir = (b - a) / length;
    }
    const math::Vec2 u = VelocityAt(body1->m_vel, body1->m_angVel, b - body1->m_pos) -
                         VelocityAt(body0->m_vel, body0->m_angVel, a - body0->m_pos);
    const math::Vec2 f = dir * (math::Dot(u, dir) * cd * m_damping + (length - m_length) * k);
    if (!body0->IsImmovable()) AddForceAt(*body0, f, a);
    if (!body1->IsImmovable()) AddForceAt(*body1, -f, b);
}

}  // namespace physics
