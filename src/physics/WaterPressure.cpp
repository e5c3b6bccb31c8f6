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

namespace physics {

using math::real;
using math::Vec2;

namespace {

constexpr real RELAXATION = 0.9f;
constexpr real MEMORY = 0.4f;

Vec2 AtArm(Vec2 linear, real angular, Vec2 arm) {
    return {linear.x - angular * arm.y, linear.y + angular * arm.x};
}

// Walks the pairs, those of one first drop in one go: visit(pair, first, second, sum of the first), where
// the sum starts from nothing and is added to `sums` at the end.
template <class Sum, class Visit>
void VisitPairs(const WaterPressure::Pairs& pairs, Sum* sums, Visit visit) {
    for (size_t p = 0; p < pairs.count;) {
        const uint32_t i = pairs.first[p];
        Sum own = Sum();
        for (; p < pairs.count && pairs.first[p] == i; ++p) visit(p, i, pairs.second[p], own);
        sums[i] += own;
    }
}

}  // namespace

void WaterPressure::Solve(const Settings& settings, const Pairs& pairs, const Touches& touches,
                          const BodyList& bodies, const real* perPressure, Drops& drops) {
    TakeBodies(settings, bodies);
    Predict(settings, pairs, touches, drops);
    CalcResponses(settings, pairs, touches, perPressure);
    AddBodyResponses(settings, touches, perPressure);
    m_previous.resize(drops.size());
    for (size_t i = 0; i < drops.size(); ++i) m_previous[i] = drops[i].pressure;
    for (int sweep = 0; sweep < settings.sweeps; ++sweep) {
        Push(settings, pairs, touches, perPressure, drops);
        CalcChanges(pairs, touches, drops);
        Correct(settings, drops);
    }
    Push(settings, pairs, touches, perPressure, drops);
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

void WaterPressure::Predict(const Settings& settings, const Pairs& pairs, const Touches& touches,
                            const Drops& drops) {
    m_expected.resize(drops.size());
    for (size_t i = 0; i < drops.size(); ++i) m_expected[i] = drops[i].density;
    real* const expected = m_expected.data();
    VisitPairs(pairs, expected, [&](size_t p, uint32_t i, uint32_t j, real& own) {
        const real change = settings.dt * math::Dot(pairs.gradient[p], drops[i].vel - drops[j].vel);
        own += change;
        expected[j] += change;
    });
    for (const Touch& touch : touches) {
        const BodyState& body = m_bodies[touch.body];
        const Vec2 vel = drops[touch.drop].vel - AtArm(body.vel, body.angVel, touch.arm);
        expected[touch.drop] -= settings.dt * math::Dot(touch.gradient, vel);
    }
}

// k_i = h^2 w_i (sum g . sum f + sum over pairs of g.f)
void WaterPressure::CalcResponses(const Settings& settings, const Pairs& pairs, const Touches& touches,
                                  const real* perPressure) {
    const size_t count = m_expected.size();
    m_responses.clear();
    m_gradients.clear();
    m_pushes.clear();
    m_responses.resize(count, 0);
    m_gradients.resize(count);
    m_pushes.resize(count);
    Vec2* const gradients = m_gradients.data();
    Vec2* const pushes = m_pushes.data();
    real* const responses = m_responses.data();
    for (size_t p = 0; p < pairs.count; ++p) {
        const uint32_t i = pairs.first[p], j = pairs.second[p];
        const Vec2 g = pairs.gradient[p], f = pairs.push[p];
        const real both = math::Dot(g, f);
        gradients[i] += g;
        gradients[j] -= g;
        pushes[i] += f;
        pushes[j] -= f;
        responses[i] += both;
        responses[j] += both;
    }
    for (const Touch& touch : touches) {
        gradients[touch.drop] -= touch.gradient;
        pushes[touch.drop] -= touch.push;
    }
    for (size_t i = 0; i < count; ++i) {
        responses[i] = settings.dt * settings.dt * perPressure[i] *
                       (std::max(math::Dot(gradients[i], pushes[i]), 0.0f) + responses[i]);
    }
}

void WaterPressure::AddBodyResponses(const Settings& settings, const Touches& touches,
                                     const real* perPressure) {
    for (const Touch& touch : touches) {
        BodyState& body = m_bodies[touch.body];
        const real push = perPressure[touch.drop] * math::Length(touch.push);
        body.pushes += push;
        body.torques += perPressure[touch.drop] * std::fabs(math::Cross(touch.arm, touch.push));
    }
    for (const Touch& touch : touches) {
        const BodyState& body = m_bodies[touch.body];
        const real moved = math::Length(touch.gradient) * body.massInv * body.pushes;
        const real turned =
            std::fabs(math::Cross(touch.arm, touch.gradient)) * body.inertiaInv * body.torques;
        m_responses[touch.drop] += settings.dt * settings.dt * settings.mass * (moved + turned);
    }
}

void WaterPressure::Push(const Settings& settings, const Pairs& pairs, const Touches& touches,
                         const real* perPressure, Drops& drops) {
    const size_t count = drops.size();
    m_weights.resize(count);
    real* const weights = m_weights.data();
    for (size_t i = 0; i < count; ++i) {
        weights[i] = settings.dt * settings.dt * perPressure[i] * drops[i].pressure;
    }
    m_pushes.clear();
    m_pushes.resize(count);
    Vec2* const shifts = m_pushes.data();
    VisitPairs(pairs, shifts, [&](size_t p, uint32_t i, uint32_t j, Vec2& own) {
        const Vec2 push = pairs.push[p] * (weights[i] + weights[j]);
        own -= push;
        shifts[j] += push;
    });
    for (BodyState& body : m_bodies) {
        body.shift = Vec2();
        body.turn = 0;
    }
    for (const Touch& touch : touches) {
        BodyState& body = m_bodies[touch.body];
        const Vec2 push = touch.push * weights[touch.drop];
        shifts[touch.drop] += push;
        body.shift -= push * (settings.mass * body.massInv);
        body.turn -= math::Cross(touch.arm, push) * settings.mass * body.inertiaInv;
    }
    for (size_t i = 0; i < count; ++i) drops[i].shift = shifts[i];
}

void WaterPressure::CalcChanges(const Pairs& pairs, const Touches& touches, const Drops& drops) {
    m_changes.clear();
    m_changes.resize(drops.size(), 0);
    real* const changes = m_changes.data();
    const Vec2* const shifts = m_pushes.data();
    VisitPairs(pairs, changes, [&](size_t p, uint32_t i, uint32_t j, real& own) {
        const real change = math::Dot(pairs.gradient[p], shifts[i] - shifts[j]);
        own += change;
        changes[j] += change;
    });
    for (const Touch& touch : touches) {
        const BodyState& body = m_bodies[touch.body];
        const Vec2 apart = shifts[touch.drop] - AtArm(body.shift, body.turn, touch.arm);
        changes[touch.drop] -= math::Dot(touch.gradient, apart);
    }
}

void WaterPressure::Correct(const Settings& settings, Drops& drops) {
    const real softness = 1 / settings.stiffness;
    for (size_t i = 0; i < drops.size(); ++i) {
        const real p = drops[i].pressure;
        const real missing = m_expected[i] + m_changes[i] - settings.density - p * softness;
        const real next =
            p + RELAXATION * missing / (softness + m_responses[i]) + MEMORY * (p - m_previous[i]);
        m_previous[i] = p;
        drops[i].pressure = std::max(next, 0.0f);
    }
}

// Drops poured into each other would leave like shots: no step moves one further than `longest`.
void WaterPressure::Finish(const Settings& settings, const BodyList& bodies, Drops& drops) const {
    for (Drop& drop : drops) {
        const real way = math::Length(drop.shift);
        if (way > settings.longest) drop.shift *= settings.longest / way;
    }
    const real forcePerShift = 1 / (settings.dt * settings.dt);
    for (size_t b = 0; b < bodies.size(); ++b) {
        const BodyState& body = m_bodies[b];
        if (body.massInv > 0) bodies[b]->m_force += body.shift * (forcePerShift / body.massInv);
        if (body.inertiaInv > 0) bodies[b]->m_torque += body.turn * (forcePerShift / body.inertiaInv);
    }
}

}  // namespace physics
