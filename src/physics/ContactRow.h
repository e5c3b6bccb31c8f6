#pragma once

#include <algorithm>

#include "math/Vector.h"

namespace physics {

// What the sweeps need of a contact. Member names are those of Contact.
struct ContactRow {
    math::Vec2 m_normal;
    math::Vec2 m_r[2];
    math::real m_friction;
    math::real m_useNormalMass;
    math::real m_useTangentMass;
    math::real m_normalTarget;
    math::real m_tangentTarget;
    math::real m_normalImpulse;
    math::real m_tangentImpulse;
};

// The impulses still missing along the normal and the tangent.
struct ContactDelta {
    math::real normal;
    math::real tangent;
};

// Solves the two rows of a contact for the velocity changes c at its point (body 1 less body 0):
//   dn = normalTarget - useNormalMass (c . n),     with the total kept at or above 0,
//   dt = tangentTarget - useTangentMass (c . t),   with the total kept within friction times the new normal
//                                                  total.
// Row is a Contact or a ContactRow. Same operations in the same order for both, so the same bits.
template <class Row>
inline ContactDelta SolveContactRows(const Row& row, math::Vec2 c) {
    const math::Vec2 tangent = math::Perpendicular(row.m_normal);
    ContactDelta delta;
    delta.normal = row.m_normalTarget - math::Dot(c, row.m_normal) * row.m_useNormalMass;
    const math::real x = std::max(delta.normal + row.m_normalImpulse, 0.0f);
    delta.normal = x - row.m_normalImpulse;

    const math::real limit = std::max(row.m_friction * x, 0.0f);
    delta.tangent = row.m_tangentTarget - math::Dot(c, tangent) * row.m_useTangentMass;
    const math::real y = std::min(std::max(delta.tangent + row.m_tangentImpulse, -limit), limit);
    delta.tangent = y - row.m_tangentImpulse;
    return delta;
}

}  // namespace physics
