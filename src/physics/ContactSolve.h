#pragma once

#include <algorithm>

#include "physics/Contact.h"
#include "physics/SolverBody.h"
#include "physics/StepSettings.h"

// The inner operations of a contact, for bodies and for the solver's packed copies of them.
namespace physics {

// What rolls is braked as if it had to climb a slope of this size: it comes to rest on what is level but for
// rounding. Else a ball on a tower would creep to the edge within minutes, since its weight tilts the tower.
constexpr math::real ROLLING_SLOPE = 0.0002f;

// m/s at which the position term pushes what overlaps apart, at most. What falls into each other in a step
// lies below; what is drawn or put half into something comes out of it instead of being shot away.
constexpr math::real MAX_PUSH_OUT = 2;

// Takes away the relative spin, within the bound of ROLLING_SLOPE times what the normal row carried in the
// last step; and half of it at most, since a ball may touch several.
template <class B>
void BrakeRolling(const Contact& contact, B& b0, B& b1) {
    const math::real inertiaInv = b0.GetInertiaInv() + b1.GetInertiaInv();
    const math::real limit = ROLLING_SLOPE * contact.m_rollArm * contact.m_normalImpulse;
    if (!(limit > 0 && inertiaInv > 0)) return;
    const math::real brake = (b0.m_angVel - b1.m_angVel) / (2 * inertiaInv);
    ApplyTurnPair(b0, b1, std::min(std::max(brake, -limit), limit));
}

// Takes masses, right-hand sides and impulses of the step from the contact and its bodies, and applies the
// impulses. Row is a ContactRow, or the contact itself; the equations stand in Contact.cpp.
template <class Row, class B>
void InitContactRows(Row& row, const Contact& contact, const SolveConstants& constants, B& b0, B& b1) {
    const RowWeights& w = constants.contact;
    const math::Vec2 n = contact.m_normal, t = math::Perpendicular(n);
    const math::Vec2 r0 = contact.m_r[0], r1 = contact.m_r[1];
    const math::Vec2 u = VelocityAt(b1.m_vel, b1.m_angVel, r1) - VelocityAt(b0.m_vel, b0.m_angVel, r0);
    const math::Vec2 a = AccelerationAt(b1, r1) - AccelerationAt(b0, r0);

    const auto getMass = [&](math::Vec2 along) {
        const math::real m = 1 / InverseEffectiveMass(b0, b1, r0, r1, along);
        return contact.m_new ? m : 1 / (1 / m + w.eps);
    };
    BrakeRolling(contact, b0, b1);
    row.m_useNormalMass = getMass(n);
    row.m_useTangentMass = getMass(t);
    math::real g;
    if (contact.m_new) {
        g = math::Dot(u, n) * (contact.m_restitution + 1);
    } else {
        const math::real e =
            std::min(constants.maxPositionCorrection, constants.targetPenetration - contact.m_penetration);
        const math::real push = std::max(w.dist * e * contact.m_distFactor, -MAX_PUSH_OUT);
        g = math::Dot(a, n) * w.acc + push + math::Dot(u, n) * w.vel;
    }
    row.m_normalTarget = -row.m_useNormalMass * g;
    row.m_tangentTarget = -row.m_useTangentMass * (math::Dot(a, t) * w.acc + math::Dot(u, t) * w.slip);

    const math::real share = contact.m_new ? 0 : constants.warmStartShare;
    row.m_normalImpulse = share == 0 ? 0 : contact.m_normalImpulse * share;
    row.m_tangentImpulse = share == 0 ? 0 : contact.m_tangentImpulse * share;
    if (share != 0) ApplyImpulsePair(b0, b1, r0, r1, n * row.m_normalImpulse + t * row.m_tangentImpulse);
}

}  // namespace physics
