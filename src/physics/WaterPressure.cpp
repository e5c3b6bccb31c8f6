// The density solve.
//
// Letters: i a drop, j a neighbour, b a body it touches; rho density, rho0 that at rest, p pressure, m the
// mass of a drop, h the length of the step, c^2 the stiffness, s what the pressures add to the way of a drop
// (or of a body's point) within the step. With g the gradient of a pair (or touch) and f its push, which is
// the same but for a factor of the drops' densities:
//   p_i   = c^2 (rho_i' - rho0), or 0 where that is negative: water does not pull
//   rho_i' = rho_i + h sum g.(v_i - v_j) + sum g.(s_i - s_j)       density at the end of the step
//   s_i   = -h^2 sum f (w_i p_i + w_j p_j) + h^2 sum_b f w_i p_i,  w the share per pressure, 1 / rho^2
//   s_b   = what the opposite of m times these does to the body
// v are velocities at the end of the step without pressure. s follows from the gradient of the energy of the
// compressed drops, touches included, so a pool at rest does not simmer.
//
// This is a linear system in p with bounds, solved by Jacobi's iteration with a memory of its last change:
//   p += RELAXATION (rho' - rho0 - p / c^2) / (1 / c^2 + k) + MEMORY (last change), cut at 0,
// k what a drop's pressure takes from its own density. Over a body all touches act on each other; the sum of
// that, which bounds it, is part of k, so that bodies as light as a feather are safe. It starts from the
// pressures of the last step: a pool at rest is solved over many steps.

#include "physics/WaterPressure.h"

#include <algorithm>
#include <cmath>

#include "physics/Body.h"
#include "physics/WaterSums.h"

namespace physics {

using math::real;
using math::Vec2;

namespace {

constexpr real RELAXATION = 0.9f;
constexpr real MEMORY = 0.4f;

Vec2 AtArm(Vec2 linear, real angular, Vec2 arm) {
    return {linear.x - angular * arm.y, linear.y + angular * arm.x};
}

}  // namespace

void WaterPressure::Solve(const Settings& settings, const Pairs& pairs, const Touches& touches,
                          const BodyList& bodies, const real* perPressure, Drops& drops) {
    TakeBodies(settings, bodies);
    TakeMovingTouches(touches);
    Predict(settings, pairs, touches, drops);
    CalcResponses(settings, touches, perPressure);
    AddBodyResponses(settings, perPressure);
    const size_t count = m_expected.size();
    m_previous = drops.pressures;
    m_weights.resize(count);
    for (size_t i = 0; i < count; ++i) m_weights[i] = m_shares[i] * drops.pressures[i];
    drops.shifts.resize(count);
    const PressureSums sums = {pairs.gradients, pairs.pushes,        m_weights.data(), m_gradients.data(),
                               m_pushes.data(), drops.shifts.data(), m_changes.data()};
    for (int sweep = 0; sweep < settings.sweeps; ++sweep) {
        GetWaterSums().addChanges(pairs.lists, sums);
        PushBodies(settings);
        AddBodyChanges();
        Correct(settings, drops);
    }
    GetWaterSums().addShifts(pairs.lists, sums);
    PushBodies(settings);
    Finish(settings, bodies, drops);
}

void WaterPressure::TakeBodies(const Settings& settings, const BodyList& bodies) {
    m_bodies.clear();
    m_bodies.reserve(bodies.size());
    for (const BodyPtr& pointer : bodies) {
        const Body& body = *pointer.Get();
        const real massInv = body.GetMassInv(), inertiaInv = body.GetInertiaInv();
        m_bodies.push_back({body.m_vel + settings.dt * massInv * body.m_force,
                            body.m_angVel + settings.dt * inertiaInv * body.m_torque, massInv, inertiaInv,
                            Vec2(), 0, 0, 0});
    }
}

void WaterPressure::TakeMovingTouches(const Touches& touches) {
    m_movingTouches.clear();
    for (const Touch& touch : touches) {
        const BodyState& body = m_bodies[touch.body];
        if (body.massInv > 0 || body.inertiaInv > 0) m_movingTouches.push_back(touch);
    }
}

void WaterPressure::Predict(const Settings& settings, const Pairs& pairs, const Touches& touches,
                            const Drops& drops) {
    const size_t count = drops.densities.size();
    m_changes.resize(count);
    m_responses.resize(count);
    m_gradients.resize(count);
    m_pushes.resize(count);
    GetWaterSums().addMotion(pairs.lists, {pairs.gradients, pairs.pushes, drops.vels.data(), m_changes.data(),
                                           m_responses.data(), m_gradients.data(), m_pushes.data()});
    m_expected.resize(count);
    for (size_t i = 0; i < count; ++i) m_expected[i] = drops.densities[i] + settings.dt * m_changes[i];
    for (const Touch& touch : touches) {
        const BodyState& body = m_bodies[touch.body];
        const Vec2 vel = drops.vels[touch.drop] - AtArm(body.vel, body.angVel, touch.arm);
        m_expected[touch.drop] -= settings.dt * math::Dot(touch.gradient, vel);
    }
}

// k_i = h^2 w_i (sum g . sum f + sum over pairs of g.f), of which the last sum is there already
void WaterPressure::CalcResponses(const Settings& settings, const Touches& touches, const real* perPressure) {
    for (const Touch& touch : touches) {
        m_gradients[touch.drop] -= touch.gradient;
        m_pushes[touch.drop] -= touch.push;
    }
    const size_t count = m_responses.size();
    m_shares.resize(count);
    for (size_t i = 0; i < count; ++i) {
        m_shares[i] = settings.dt * settings.dt * perPressure[i];
        m_responses[i] =
            m_shares[i] * (std::max(math::Dot(m_gradients[i], m_pushes[i]), 0.0f) + m_responses[i]);
    }
}

void WaterPressure::AddBodyResponses(const Settings& settings, const real* perPressure) {
    for (const Touch& touch : m_movingTouches) {
        BodyState& body = m_bodies[touch.body];
        const real push = perPressure[touch.drop] * math::Length(touch.push);
        body.pushes += push;
        body.torques += perPressure[touch.drop] * std::fabs(math::Cross(touch.arm, touch.push));
    }
    for (const Touch& touch : m_movingTouches) {
        const BodyState& body = m_bodies[touch.body];
        const real moved = math::Length(touch.gradient) * body.massInv * body.pushes;
        const real turned =
            std::fabs(math::Cross(touch.arm, touch.gradient)) * body.inertiaInv * body.torques;
        m_responses[touch.drop] += settings.dt * settings.dt * settings.mass * (moved + turned);
    }
}

void WaterPressure::PushBodies(const Settings& settings) {
    for (BodyState& body : m_bodies) {
        body.shift = Vec2();
        body.turn = 0;
    }
    for (const Touch& touch : m_movingTouches) {
        BodyState& body = m_bodies[touch.body];
        const Vec2 push = touch.push * m_weights[touch.drop];
        body.shift -= push * (settings.mass * body.massInv);
        body.turn -= math::Cross(touch.arm, push) * settings.mass * body.inertiaInv;
    }
}

// Of the touches, what the drops' own shifts do stands in the sums over pairs.
void WaterPressure::AddBodyChanges() {
    for (const Touch& touch : m_movingTouches) {
        const BodyState& body = m_bodies[touch.body];
        m_changes[touch.drop] += math::Dot(touch.gradient, AtArm(body.shift, body.turn, touch.arm));
    }
}

void WaterPressure::Correct(const Settings& settings, Drops& drops) {
    const real softness = 1 / settings.stiffness;
    real* const pressures = drops.pressures.data();
    real* const previous = m_previous.data();
    real* const weights = m_weights.data();
    for (size_t i = 0; i < m_expected.size(); ++i) {
        const real p = pressures[i];
        const real missing = m_expected[i] + m_changes[i] - settings.density - p * softness;
        const real next = p + RELAXATION * missing / (softness + m_responses[i]) + MEMORY * (p - previous[i]);
        previous[i] = p;
        pressures[i] = std::max(next, 0.0f);
        weights[i] = m_shares[i] * pressures[i];
    }
}

// Drops poured into each other would leave like shots: no step moves one further than `longest`.
void WaterPressure::Finish(const Settings& settings, const BodyList& bodies, Drops& drops) const {
    for (Vec2& shift : drops.shifts) {
        const real way = math::Length(shift);
        if (way > settings.longest) shift *= settings.longest / way;
    }
    const real forcePerShift = 1 / (settings.dt * settings.dt);
    for (size_t b = 0; b < bodies.size(); ++b) {
        const BodyState& body = m_bodies[b];
        if (body.massInv > 0) bodies[b]->m_force += body.shift * (forcePerShift / body.massInv);
        if (body.inertiaInv > 0) bodies[b]->m_torque += body.turn * (forcePerShift / body.inertiaInv);
    }
}

}  // namespace physics
