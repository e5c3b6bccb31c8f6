#pragma once

#include <cstdint>

#include "physics/Constraint.h"
#include "physics/ContactID.h"

namespace physics {

// One point where two geoms overlap: a row along the normal that only pushes, and a friction row along the
// tangent that is bounded by it. Lives for one step; the next step's contact of the same ID inherits its
// impulses.
//
// A contact without a predecessor (m_new) is an impact: it answers the approach speed by restitution and
// has no position term. Only from its second step on does it behave as a stiff damped spring that rests at
// Sim's targetPenetration of overlap. The equations stand in Contact.cpp.
class Contact final : public Constraint {
  public:
    // `normal` is a unit vector from A to B, `point` lies in the world, `penetration` is positive. Both
    // geoms must have bodies.
    Contact(Geom* geomA, Geom* geomB, uint32_t index, math::Vec2 point, math::Vec2 normal,
            math::real penetration);

    // Makes this object another contact, as the constructor would: steps use the objects again.
    void Reset(Geom* geomA, Geom* geomB, uint32_t index, math::Vec2 point, math::Vec2 normal,
               math::real penetration);

    bool SolveInit(const SolveConstants& constants) override;
    void SolveCalc() override;
    void SolveApply() override;

    math::Vec2 m_point;
    math::Vec2 m_normal;           // unit, from body 0 to body 1; zero for a contact that pushes nothing
    math::real m_penetration = 0;  // m, positive when overlapping
    math::real m_friction = 0;     // geometric mean of the two geoms
    math::real m_restitution = 0;  // geometric mean of the two geoms
    math::real m_rollArm = 0;  // m, radius of what rolls here, set by who makes the contact; 0 for nothing
    bool m_new = true;         // until matched with a contact of the previous step
    bool m_implied = false;    // held by others, see ContactReduction.h
    math::real m_normalImpulse = 0;  // N s, accumulated; never negative after a solve
    math::real m_tangentImpulse = 0;
    ContactID m_id;

    // Of a solve through SolveInit; the packed sweeps have their own (ContactRow).
    math::real m_useNormalMass = 0;  // kg, effective mass of the normal row
    math::real m_useTangentMass = 0;
    math::real m_normalTarget = 0;   // N s, right-hand side of the normal row
    math::real m_tangentTarget = 0;  // N s, of the friction row
    math::real m_normalDelta = 0;    // N s, pending between SolveCalc and SolveApply
    math::real m_tangentDelta = 0;
};

}  // namespace physics
