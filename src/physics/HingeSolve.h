#pragma once

#include <algorithm>
#include <cmath>

#include "physics/Hinge.h"
#include "physics/SolverBody.h"
#include "physics/StepSettings.h"

// The inner operations of a hinge, for bodies and for the solver's packed copies of them.
namespace physics {

template <class B>
void Hinge::WarmStart(const SolveConstants& constants, B& b0, B& b1) {
    const math::real share = constants.warmStartShare * m_warmFactor;
    if (share == 0) {
        m_impulse = math::Vec2();
        m_motorImpulse = 0;
        return;
    }
    m_impulse *= share;
    ApplyImpulsePair(b0, b1, m_r[0], m_r[1], m_impulse);
    if (!m_motor || m_motorImpulse == 0) return;
    m_motorImpulse *= share;
    ApplyTurnPair(b0, b1, m_motorImpulse);
}

template <class B>
void Hinge::Calc(const B& b0, const B& b1) {
    const math::Vec2 c = DeltaVelocityAt(b1, m_r[1]) - DeltaVelocityAt(b0, m_r[0]);
    m_delta = m_invK * (m_target - c);
    m_residual = math::LengthSquared(m_delta);
    if (!m_motor) return;
    const math::real limit = std::fabs(m_motorLimit);
    const math::real turn = b1.m_deltaAngVel - b0.m_deltaAngVel;
    const math::real total = (m_motorTarget - turn) * m_motorMass + m_motorImpulse;
    m_motorDelta = std::min(std::max(total, -limit), limit) - m_motorImpulse;
    m_residual += m_motorDelta * m_motorDelta;
}

template <class B>
void Hinge::Apply(B& b0, B& b1) {
    ApplyImpulsePair(b0, b1, m_r[0], m_r[1], m_delta);
    m_impulse += m_delta;
    if (!m_motor || m_motorDelta == 0) return;
    ApplyTurnPair(b0, b1, m_motorDelta);
    m_motorImpulse += m_motorDelta;
}

}  // namespace physics
