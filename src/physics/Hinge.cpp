// The rows of a hinge.
//
// Letters: a, b the anchors of geoms 0 and 1 in the world, r0 = a - x0, r1 = b - x1 their arms, W and I a
// body's inverse mass and inertia (0 while it cannot move), w its angular velocity, T its torque. Relative
// values are end 1 less end 0:
//   e = b - a, shortened to maxPositionCorrection,
//   u = velocity at the anchors, q = acceleration (W F, turned by I T) at the anchors.
// The effective mass matrix is the inverse of
//   K = [ W0 + W1 + I0 r0y^2 + I1 r1y^2 + eps      -I0 r0x r0y - I1 r1x r1y             ]
//       [ -I0 r0x r0y - I1 r1x r1y                 W0 + W1 + I0 r0x^2 + I1 r1x^2 + eps  ].
// Right-hand sides, as for a very stiff damped spring over one step (constants: StepSettings.cpp):
//   target      = -(dist e + vel u + acc q)
//   motorTarget = vel (motorSpeed - (w1 - w0)) - acc (I1 T1 - I0 T0)
// and in each sweep, with c the velocity change at the anchors so far,
//   delta      = K^-1 (target - c)
//   motorDelta = motorMass (motorTarget - (dw1 - dw0)), its total kept within the limit.
// The limit is h torque motorMass, so the torque acts as a bound of the angular acceleration, alike on
// light and heavy wheels; scenes are tuned to that.

#include "physics/Hinge.h"

#include <algorithm>
#include <cmath>

#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/HingeSolve.h"
#include "physics/RowGroups.h"
#include "physics/SolverBody.h"
#include "physics/StepSettings.h"

namespace physics {

uint32_t Hinge::s_nextID = 0;

Hinge::Hinge(const GeomPtr& geom0, const GeomPtr& geom1, math::Vec2 point)
    : Hinge(geom0, geom1, geom0->GetInvTransform()(point), geom1->GetInvTransform()(point)) {}

Hinge::Hinge(const GeomPtr& geom0, const GeomPtr& geom1, math::Vec2 anchor0, math::Vec2 anchor1)
    : m_id(s_nextID++), m_geoms{geom0, geom1}, m_anchors{anchor0, anchor1} {}

Hinge::~Hinge() noexcept(false) = default;

math::Vec2 Hinge::GetWorldAnchor(int end) const {
    return m_geoms[end]->GetTransform()(m_anchors[end]);
}

void Hinge::OnAdd() {
    m_geoms[0]->m_noCollide.insert(m_geoms[1].Get());
    m_geoms[1]->m_noCollide.insert(m_geoms[0].Get());
}

void Hinge::OnRemove() {
    m_geoms[0]->m_noCollide.erase(m_geoms[1].Get());
    m_geoms[1]->m_noCollide.erase(m_geoms[0].Get());
}

// Drops of water are in no list that would know them.
static bool IsInWorld(const GeomPtr& geom) {
    const Body* const body = dynamic_cast<const Body*>(geom->GetBodyPtr());
    return body != nullptr && body->m_inWorld;
}

bool Hinge::AreBodiesValid() const {
    return IsInWorld(m_geoms[0]) && IsInWorld(m_geoms[1]);
}

void Hinge::FindBodies() {
    for (int end = 0; end < 2; ++end) m_bodies[end] = m_geoms[end]->GetBodyPtr();
}

bool Hinge::Prepare(const SolveConstants& constants) {
    FindBodies();
    if (m_bodies[0] == m_bodies[1] || !HasMovableBody()) return false;
    PreparePoint(constants);
    if (m_motor) PrepareMotor(constants);
    return true;
}

bool Hinge::SolveInit(const SolveConstants& constants) {
    if (!Prepare(constants)) return false;
    WarmStart(constants, *m_bodies[0], *m_bodies[1]);
    return true;
}

void Hinge::CalcEffectiveMass(math::real eps) {
    const math::real massInv = m_bodies[0]->GetMassInv() + m_bodies[1]->GetMassInv();
    const math::real i0 = m_bodies[0]->GetInertiaInv();
    const math::real i1 = m_bodies[1]->GetInertiaInv();
    const math::Vec2 r0 = m_r[0];
    const math::Vec2 r1 = m_r[1];
    math::TMatrix2<math::real> k;
    k.m[0][0] = massInv + i0 * r0.y * r0.y + i1 * r1.y * r1.y + eps;
    k.m[0][1] = k.m[1][0] = -i0 * r0.x * r0.y - i1 * r1.x * r1.y;
    k.m[1][1] = massInv + i0 * r0.x * r0.x + i1 * r1.x * r1.x + eps;
    m_invK = math::Inverted(k);
}

void Hinge::PreparePoint(const SolveConstants& constants) {
    const RowWeights& w = constants.hinge;
    const AbstractBody& b0 = *m_bodies[0];
    const AbstractBody& b1 = *m_bodies[1];
    const math::Vec2 a = GetWorldAnchor(0);
    const math::Vec2 b = GetWorldAnchor(1);
    m_r[0] = a - b0.m_pos;
    m_r[1] = b - b1.m_pos;
    CalcEffectiveMass(w.eps);

    math::Vec2 e = b - a;
    const math::real length = math::Length(e);
    if (length > 0) e *= std::min(constants.maxPositionCorrection, length) / length;
    const math::Vec2 u =
        VelocityAt(b1.m_vel, b1.m_angVel, m_r[1]) - VelocityAt(b0.m_vel, b0.m_angVel, m_r[0]);
    const math::Vec2 q = AccelerationAt(b1, m_r[1]) - AccelerationAt(b0, m_r[0]);
    m_target = -(e * (w.dist * m_distFactor) + u * w.vel + q * w.acc);
}

// A speed beyond all numbers (the end of the motor's slider) still has to be a number here; it stays well
// below what counts as a body flying out of the world.
static math::real FiniteSpeed(math::real speed) {
    constexpr math::real FASTEST = 1e4f;  // rad/s
    return std::isfinite(speed) ? speed : std::copysign(FASTEST, speed);
}

void Hinge::PrepareMotor(const SolveConstants& constants) {
    const RowWeights& w = constants.hinge;
    const AbstractBody& b0 = *m_bodies[0];
    const AbstractBody& b1 = *m_bodies[1];
    const math::real i0 = b0.GetInertiaInv();
    const math::real i1 = b1.GetInertiaInv();
    m_motorMass = 1 / (i0 + i1 + w.eps);
    m_motorLimit = constants.timeDelta * m_motorTorque * m_motorMass;
    m_motorTarget = (FiniteSpeed(m_motorSpeed) - (b1.m_angVel - b0.m_angVel)) * w.vel -
                    (i1 * b1.m_torque - i0 * b0.m_torque) * w.acc;
}

void Hinge::Pack(HingeRow8& group, uint32_t lane) const {
    group.r0x[lane] = m_r[0].x;
    group.r0y[lane] = m_r[0].y;
    group.r1x[lane] = m_r[1].x;
    group.r1y[lane] = m_r[1].y;
    group.k00[lane] = m_invK.m[0][0];
    group.k01[lane] = m_invK.m[0][1];
    group.k10[lane] = m_invK.m[1][0];
    group.k11[lane] = m_invK.m[1][1];
    group.targetX[lane] = m_target.x;
    group.targetY[lane] = m_target.y;
    group.impulseX[lane] = m_impulse.x;
    group.impulseY[lane] = m_impulse.y;
}

void Hinge::Unpack(const HingeRow8& group, uint32_t lane) {
    m_impulse = {group.impulseX[lane], group.impulseY[lane]};
}

math::real Hinge::GetSquaredDelta() const {
    return math::LengthSquared(m_delta) + (m_motor ? m_motorDelta * m_motorDelta : 0);
}

void Hinge::FollowTrend(math::real share) {
    m_impulse += m_trend * share;
    m_trend = m_trend * share + m_delta;
    if (!m_motor) return;
    m_motorImpulse += m_motorTrend * share;
    m_motorTrend = m_motorTrend * share + m_motorDelta;
}

void Hinge::ForgetTrend() {
    m_trend = math::Vec2();
    m_motorTrend = 0;
}

void Hinge::SolveCalc() {
    Calc(*m_bodies[0], *m_bodies[1]);
}

void Hinge::SolveApply() {
    Apply(*m_bodies[0], *m_bodies[1]);
}

}  // namespace physics
