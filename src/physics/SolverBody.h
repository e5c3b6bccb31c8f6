#pragma once

#include "math/Vector.h"

// The motion of a body's points, written once for the bodies themselves and for the solver's packed copies.
// A record B has m_deltaVel, m_deltaAngVel, GetMassInv() and GetInertiaInv(); r is the arm from its position.
namespace physics {

// What the sweeps read and write of a body, moved as one.
struct alignas(16) BodyMotion {
    math::Vec2 m_deltaVel;         // m/s
    math::real m_deltaAngVel = 0;  // rad/s
    math::real m_massInv = 0;      // 1/kg, 0 when it cannot move
};

// The solver's copy of a body: what constraints make their rows from, and its motion.
struct SolverBody : BodyMotion {
    math::real m_inertiaInv = 0;  // 1/(kg m^2), 0 when it cannot move
    math::real m_angVel = 0;      // rad/s
    math::real m_torque = 0;      // N m
    math::Vec2 m_vel;             // m/s
    math::Vec2 m_force;           // N

    math::real GetMassInv() const { return m_massInv; }
    math::real GetInertiaInv() const { return m_inertiaInv; }
    bool IsImmovable() const { return m_massInv == 0 && m_inertiaInv == 0; }
};

// The velocity at r of something that moves with v and turns with w.
inline math::Vec2 VelocityAt(math::Vec2 v, math::real w, math::Vec2 r) {
    return {v.x - r.y * w, v.y + r.x * w};
}

// The velocity change at r so far in this solve.
template <class B>
inline math::Vec2 DeltaVelocityAt(const B& body, math::Vec2 r) {
    return VelocityAt(body.m_deltaVel, body.m_deltaAngVel, r);
}

// The acceleration at r from forces and torque; centripetal terms are left out.
template <class B>
inline math::Vec2 AccelerationAt(const B& body, math::Vec2 r) {
    const math::real angAcc = body.GetInertiaInv() * body.m_torque;
    return {body.GetMassInv() * body.m_force.x - angAcc * r.y,
            body.GetMassInv() * body.m_force.y + angAcc * r.x};
}

// Adds the force f at the point p of the world.
template <class B>
inline void AddForceAt(B& body, math::Vec2 f, math::Vec2 p) {
    body.m_force += f;
    body.m_torque += math::Cross(p - body.m_pos, f);
}

// 1 / the effective mass of a row that acts along the unit vector n at the arms r0, r1.
template <class B>
inline math::real InverseEffectiveMass(const B& b0, const B& b1, math::Vec2 r0, math::Vec2 r1, math::Vec2 n) {
    const math::real c0 = math::Cross(r0, n);
    const math::real c1 = math::Cross(r1, n);
    return b0.GetMassInv() + b1.GetMassInv() + b0.GetInertiaInv() * c0 * c0 + b1.GetInertiaInv() * c1 * c1;
}

// Applies -p to b0 at r0 and +p to b1 at r1, as velocity changes.
template <class B>
inline void ApplyImpulsePair(B& b0, B& b1, math::Vec2 r0, math::Vec2 r1, math::Vec2 p) {
    const math::real w0 = b0.GetMassInv();
    const math::real w1 = b1.GetMassInv();
    const math::real turn0 = b0.GetInertiaInv() * math::Cross(r0, p);
    const math::real turn1 = b1.GetInertiaInv() * math::Cross(r1, p);
    b0.m_deltaVel -= p * w0;
    b0.m_deltaAngVel -= turn0;
    b1.m_deltaVel += p * w1;
    b1.m_deltaAngVel += turn1;
}

// Applies an angular impulse of -p to b0 and +p to b1.
template <class B>
inline void ApplyTurnPair(B& b0, B& b1, math::real p) {
    b0.m_deltaAngVel -= b0.GetInertiaInv() * p;
    b1.m_deltaAngVel += b1.GetInertiaInv() * p;
}

}  // namespace physics
