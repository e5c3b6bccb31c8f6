// The rows of a contact.
//
// Letters: n unit normal from body 0 to body 1, t the tangent, r0, r1 the arms from the bodies' positions to
// the point, W and I a body's inverse mass and inertia (0 while it cannot move), F and T its force and
// torque. Relative values are body 1 less body 0:
//   u = velocity at the point, a = acceleration (W F, turned by I T) at the point.
// Effective masses:
//   1/m(n) = W0 + W1 + I0 (r0 x n)^2 + I1 (r1 x n)^2,  soft: 1 / (1/m + eps).
//
// A persisting contact is a very stiff damped spring, integrated over one step (the constants stand in
// StepSettings.cpp), with e the way to the depth it rests at:
//   e = min(maxPositionCorrection, targetPenetration - penetration)
//   normalTarget  = -m(n) (acc (a . n) + max(dist e, -MAX_PUSH_OUT) + vel (u . n))
//   tangentTarget = -m(t) (acc (a . t) + slip (u . t))
// e is negative when too deep, so its bound never slows the way out, which has one of its own; and positive
// when shallower, so that the contact settles at targetPenetration. The softness enters the mass only, not as
// eps times impulse: it slows the approach to the fixed point and does not move it.
//
// A new contact is an impact with the exact masses:
//   normalTarget = -m(n) (1 + restitution) (u . n).
//
// What rolls is braked besides, see ContactSolve.h.

#include "physics/Contact.h"

#include <algorithm>
#include <cmath>

#include "physics/Body.h"
#include "physics/ContactRow.h"
#include "physics/ContactSolve.h"
#include "physics/Geom.h"

namespace physics {

// Friction and restitution of a pair. A negative product (a user's number) counts as 0: its root would be
// a NaN in every velocity.
static math::real GeometricMean(math::real a, math::real b) {
    return std::sqrt(std::max(a * b, 0.0f));
}

Contact::Contact(Geom* geomA, Geom* geomB, uint32_t index, math::Vec2 point, math::Vec2 normal,
                 math::real penetration) {
    Reset(geomA, geomB, index, point, normal, penetration);
}

void Contact::Reset(Geom* geomA, Geom* geomB, uint32_t index, math::Vec2 point, math::Vec2 normal,
                    math::real penetration) {
    m_id = ContactID(geomA->GetID(), geomB->GetID(), index);
    m_bodies[0] = geomA->GetBodyPtr();
    m_bodies[1] = geomB->GetBodyPtr();
    m_friction = GeometricMean(geomA->m_friction, geomB->m_friction);
    m_restitution = GeometricMean(geomA->m_restitution, geomB->m_restitution);
    m_point = point;
    m_normal = normal;
    m_penetration = penetration;
    m_r[0] = point - m_bodies[0]->m_pos;
    m_r[1] = point - m_bodies[1]->m_pos;
    m_new = true;
    m_implied = false;
    m_normalImpulse = m_tangentImpulse = 0;
    m_distFactor = 1;
    m_rollArm = 0;
}

bool Contact::SolveInit(const SolveConstants& constants) {
    if (!HasMovableBody()) return false;
    InitContactRows(*this, *this, constants, *m_bodies[0], *m_bodies[1]);
    return true;
}

void Contact::SolveCalc() {
    const math::Vec2 c = DeltaVelocityAt(*m_bodies[1], m_r[1]) - DeltaVelocityAt(*m_bodies[0], m_r[0]);
    const ContactDelta delta = SolveContactRows(*this, c);
    m_normalDelta = delta.normal;
    m_tangentDelta = delta.tangent;
    m_residual = m_tangentDelta * m_tangentDelta + m_normalDelta * m_normalDelta;
}

void Contact::SolveApply() {
    ApplyImpulse(m_normal * m_normalDelta + math::Perpendicular(m_normal) * m_tangentDelta);
    m_normalImpulse += m_normalDelta;
    m_tangentImpulse += m_tangentDelta;
}

}  // namespace physics
