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
// Right-hand sides, as for a very stiff damped spring over one step (constants: ConstraintSolver.cpp):
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
#include "physics/PointMotion.h"
#include "physics/Simulation.h"

namespace physics {

math::real Hinge::s_hingeDist = 0;
math::real Hinge::s_hingeVel = 0;
math::real Hinge::s_hingeAcc = 0;
math::real Hinge::s_hingeEps = 0;
math::real Hinge::s_timeDelta = 0;
math::real Hinge::s_maxPositionCorrection = 0;
bool Hinge::s_warmStart = false;
math::real Hinge::s_warmStartFactor = 0;
uint32_t Hinge::s_nextID = 0;

Hinge::Hinge(GeomPtr geom0, GeomPtr geom1, math::Vec2 point)
    : Hinge(geom0, geom1, geom0->GetInvTransform()(point), geom1->GetInvTransform()(point)) {}

Hinge::Hinge(GeomPtr geom0, GeomPtr geom1, math::Vec2 anchor0, math::Vec2 anchor1)
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

bool Hinge::AreBodiesValid() const {
    const Simulation& simulation = Simulation::Instance();
    const auto isIn = [&](const GeomPtr& geom) {
        return simulation.HasBody(util::DynamicCast<Body>(geom->GetBody()));
    };
    return isIn(m_geoms[0]) && isIn(m_geoms[1]);
}

bool Hinge::SolveInit() {
    m_bodies[0] = m_geoms[0]->GetBodyPtr();
    m_bodies[1] = m_geoms[1]->GetBodyPtr();
    if (m_bodies[0] == m_bodies[1] || !HasMovableBody()) return false;
    PreparePoint();
    if (m_motor) PrepareMotor();
    WarmStart();
    return true;
}

void Hinge::CalcEffectiveMass() {
    const math::real massInv = m_bodies[0]->GetMassInv() + m_bodies[1]->GetMassInv();
    const math::real i0 = m_bodies[0]->GetInertiaInv();
    const math::real i1 = m_bodies[1]->GetInertiaInv();
    const math::Vec2 r0 = m_r[0];
    const math::Vec2 r1 = m_r[1];
    math::TMatrix2<math::real> k;
    k.m[0][0] = massInv + i0 * r0.y * r0.y + i1 * r1.y * r1.y + s_hingeEps;
    k.m[0][1] = k.m[1][0] = -i0 * r0.x * r0.y - i1 * r1.x * r1.y;
    k.m[1][1] = massInv + i0 * r0.x * r0.x + i1 * r1.x * r1.x + s_hingeEps;
    m_invK = math::Inverted(k);
}

void Hinge::PreparePoint() {
    const AbstractBody& b0 = *m_bodies[0];
    const AbstractBody& b1 = *m_bodies[1];
    const math::Vec2 a = GetWorldAnchor(0);
    const math::Vec2 b = GetWorldAnchor(1);
    m_r[0] = a - b0.m_pos;
    m_r[1] = b - b1.m_pos;
    CalcEffectiveMass();

    math::Vec2 e = b - a;
    const math::real length = math::Length(e);
    if (length > 0) e *= std::min(s_maxPositionCorrection, length) / length;
    const math::Vec2 u =
        VelocityAt(b1.m_vel, b1.m_angVel, m_r[1]) - VelocityAt(b0.m_vel, b0.m_angVel, m_r[0]);
    const math::Vec2 q = AccelerationAt(b1, m_r[1]) - AccelerationAt(b0, m_r[0]);
    m_target = -(e * (s_hingeDist * m_distFactor) + u * s_hingeVel + q * s_hingeAcc);
}

// A speed beyond all numbers (the end of the motor's slider) still has to be a number here; it stays well
// below what counts as a body flying out of the world.
static math::real FiniteSpeed(math::real speed) {
    constexpr math::real FASTEST = 1e4f;  // rad/s
    return std::isfinite(speed) ? speed : std::copysign(FASTEST, speed);
}

void Hinge::PrepareMotor() {
    const AbstractBody& b0 = *m_bodies[0];
    const AbstractBody& b1 = *m_bodies[1];
    const math::real i0 = b0.GetInertiaInv();
    const math::real i1 = b1.GetInertiaInv();
    m_motorMass = 1 / (i0 + i1 + s_hingeEps);
    m_motorLimit = s_timeDelta * m_motorTorque * m_motorMass;
    m_motorTarget = (FiniteSpeed(m_motorSpeed) - (b1.m_angVel - b0.m_angVel)) * s_hingeVel -
                    (i1 * b1.m_torque - i0 * b0.m_torque) * s_hingeAcc;
}

void Hinge::WarmStart() {
    if (!s_warmStart) {
        m_impulse = math::Vec2();
        m_motorImpulse = 0;
        return;
    }
    const math::real f = s_warmStartFactor * m_warmFactor;
    m_impulse *= f;
    ApplyImpulse(m_impulse);
    if (!m_motor || m_motorImpulse == 0) return;
    m_motorImpulse *= f;
    ApplyTurnPair(*m_bodies[0], *m_bodies[1], m_motorImpulse);
}

void Hinge::SolveCalc() {
    Calc(*m_bodies[0], *m_bodies[1]);
}

void Hinge::SolveApply() {
    Apply(*m_bodies[0], *m_bodies[1]);
}

}  // namespace physics
