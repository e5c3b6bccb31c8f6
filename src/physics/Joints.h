#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/Geom.h"
#include "util/Pointee.h"

namespace physics {

// A force element between two geoms: it pushes their bodies once per step, before the solver runs.
class Joint : public util::Pointee {
  public:
    Joint() : m_id(s_nextID++) {}
    Joint(const GeomPtr& geom0, const GeomPtr& geom1);
    ~Joint() noexcept(false) override;

    uint32_t GetID() const { return m_id; }

    virtual void OnAdd() {}
    virtual void OnRemove() {}
    virtual void ApplyForce(const StepSettings& settings) = 0;
    // False when the ends are one geom or one body, or when a body is not in the simulation.
    virtual bool IsValid() const;

    // The geoms' rigid bodies; null for an end that has none (a particle, say).
    void GetBodies(BodyPtr& body0, BodyPtr& body1) const;

    GeomPtr m_geoms[2];  // either may be null until the joint is fully attached

  private:
    uint32_t m_id;  // creation number

    static uint32_t s_nextID;
};

// A damped spring. Its stiffness follows the effective mass of what it pulls, so that a spring of a given
// strength swings alike on a pebble and on a boulder.
class SpringJoint : public Joint {
  public:
    // Anchors in each geom's local frame.
    SpringJoint(const GeomPtr& geom0, const GeomPtr& geom1, math::Vec2 anchor0, math::Vec2 anchor1,
                math::real length, math::real strength, math::real damping);

    void ApplyForce(const StepSettings& settings) override;

    math::real GetLength() const { return m_length; }
    void SetLength(math::real length) { m_length = length; }
    math::real GetStrength() const { return m_strength; }
    void SetStrength(math::real strength) { m_strength = strength; }
    void SetDamping(math::real damping) { m_damping = damping; }
    math::Vec2 GetWorldAnchor(int end) const;

  private:
    math::Vec2 m_anchors[2];    // m, in each geom's local frame
    math::real m_length = 0;    // m, at rest
    math::real m_strength = 0;  // multiplies Simulation's springForce
    math::real m_damping = 0;   // fraction of critical damping
};

}  // namespace physics
