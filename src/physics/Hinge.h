#pragma once

#include <cstdint>

#include "math/Matrix2.h"
#include "physics/Constraint.h"

namespace physics {

struct HingeRow8;

// A pin through two geoms: two rows that hold the anchors together and, with the motor on, one that drives
// the relative angular velocity. Geoms joined by a hinge do not collide.
//
// The first geom ought to be the driven one: the motor's speed is that of geom 1 against geom 0. The bodies
// are taken from the geoms anew at each step, so geoms may change bodies under a hinge.
class Hinge final : public Constraint {
  public:
    Hinge(const GeomPtr& geom0, const GeomPtr& geom1, math::Vec2 point);  // point in the world
    Hinge(const GeomPtr& geom0, const GeomPtr& geom1, math::Vec2 anchor0,
          math::Vec2 anchor1);  // in each geom's frame
    ~Hinge() noexcept(false) override;

    uint32_t GetID() const { return m_id; }
    const GeomPtr& GetGeom(int end) const { return m_geoms[end]; }
    math::Vec2 GetAnchor(int end) const { return m_anchors[end]; }
    void SetAnchor(int end, math::Vec2 anchor) { m_anchors[end] = anchor; }
    math::Vec2 GetWorldAnchor(int end) const;

    bool GetMotor() const { return m_motor; }
    void SetMotor(bool on) { m_motor = on; }
    math::real GetMotorSpeed() const { return m_motorSpeed; }
    void SetMotorSpeed(math::real speed) { m_motorSpeed = speed; }
    math::real GetMotorTorque() const { return m_motorTorque; }
    void SetMotorTorque(math::real torque) { m_motorTorque = torque; }

    // Enters the geoms as partners that must not collide, and takes them out again. Two hinges between
    // the same geoms share the entry, so removing one of them lets the pair collide.
    void OnAdd();
    void OnRemove();

    // Whether the bodies of both geoms are in the simulation.
    bool AreBodiesValid() const;

    void FindBodies();  // for a step; null for a geom without one
    // SolveInit in two parts. False drops the hinge for this step.
    bool Prepare(const SolveConstants& constants);
    template <class B>
    void WarmStart(const SolveConstants& constants, B& b0, B& b1);

    bool SolveInit(const SolveConstants& constants) override;
    void SolveCalc() override;
    void SolveApply() override;

    // SolveCalc and SolveApply on any record with a body's velocity changes and inverse masses, so that the
    // solver's packed sweeps can use their own. Defined in HingeSolve.h, as is WarmStart.
    template <class B>
    void Calc(const B& b0, const B& b1);
    template <class B>
    void Apply(B& b0, B& b1);

    // To and from a group of the solver, for a hinge without motor: all but the bodies, and the impulse.
    void Pack(HingeRow8& group, uint32_t lane) const;
    void Unpack(const HingeRow8& group, uint32_t lane);

    // For the solver's conjugate gradients, of a hinge with a motor: the squared size of what Apply has just
    // added, and the step along the trend of such additions.
    math::real GetSquaredDelta() const;
    void FollowTrend(math::real share);
    void ForgetTrend();

  private:
    void PreparePoint(const SolveConstants& constants);
    void CalcEffectiveMass(math::real eps);
    void PrepareMotor(const SolveConstants& constants);

    uint32_t m_id;  // creation number
    GeomPtr m_geoms[2];
    math::Vec2 m_anchors[2];  // m, the hinge point in each geom's local frame
    bool m_motor = false;
    math::real m_motorSpeed = 0;    // rad/s, geom 1 against geom 0
    math::real m_motorTorque = 1;   // greatest torque per effective inertia, rad/s^2
    math::TMatrix2<float> m_invK;   // kg, inverse of the effective mass matrix
    math::real m_motorMass = 0;     // kg m^2, effective inertia of the motor row
    math::real m_motorLimit = 0;    // N m s, greatest motor impulse per step
    math::Vec2 m_target;            // m/s, right-hand side of the point rows
    math::Vec2 m_delta;             // N s, pending
    math::Vec2 m_trend;             // N s, see FollowTrend
    math::Vec2 m_impulse;           // N s, accumulated; carries over between steps
    math::real m_motorTarget = 0;   // rad/s, right-hand side of the motor row
    math::real m_motorDelta = 0;    // N m s, pending
    math::real m_motorTrend = 0;    // N m s
    math::real m_motorImpulse = 0;  // N m s, accumulated; carries over between steps

    static uint32_t s_nextID;
};

}  // namespace physics
