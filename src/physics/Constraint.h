#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/Body.h"
#include "physics/Fwd.h"
#include "physics/SolverBody.h"
#include "util/Pointee.h"

namespace physics {

// A velocity constraint between two bodies, solved by impulses.
//
// One solve calls SolveInit once, then SolveCalc and SolveApply many times. The bodies' velocities stay as
// they are meanwhile: right-hand sides are taken from them in SolveInit, and impulses go into the bodies'
// velocity changes, which the solver adds at the end.
class Constraint : public util::Pointee {
  public:
    // Takes the right-hand sides and applies the warm start. False drops the constraint for this step.
    virtual bool SolveInit(const SolveConstants& constants) = 0;
    // Finds the impulse still missing, from the velocity changes so far, and its squared size.
    virtual void SolveCalc() = 0;
    // Applies the impulse that SolveCalc found.
    virtual void SolveApply() = 0;

    // Applies -p to body 0 and +p to body 1 at the attachment point, as velocity changes.
    void ApplyImpulse(math::Vec2 p) { ApplyImpulsePair(*m_bodies[0], *m_bodies[1], m_r[0], m_r[1], p); }

    math::real m_distFactor = 1;                     // multiplies the position term
    math::real m_warmFactor = 1;                     // multiplies the warm start; read by hinges only
    AbstractBody* m_bodies[2] = {nullptr, nullptr};  // not owned; both ends, valid during the step
    math::Vec2 m_r[2];                               // m, from each body's position to the attachment point
    math::real m_residual = 0;                       // squared size of the pending impulse
    uint32_t m_place = 0;                            // in the list of the prioritised solve

  protected:
    // The solve is pointless without two bodies or without a movable one.
    bool HasMovableBody() const {
        return m_bodies[0] != nullptr && m_bodies[1] != nullptr &&
               !(m_bodies[0]->IsImmovable() && m_bodies[1]->IsImmovable());
    }
};

}  // namespace physics
