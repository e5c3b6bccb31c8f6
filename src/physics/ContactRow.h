#pragma once

#include <algorithm>
#include <cstdint>

#include "math/Vector.h"

namespace physics {

// What the sweeps need of a contact. Member names are those of Contact.
struct ContactRow {
    uint32_t body0;  // indices of the packed bodies
    uint32_t body1;
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

// Eight contacts that no movable body has in common, turned so that their numbers lie side by side.
struct alignas(16) ContactRow8 {
    static constexpr uint32_t LANES = 8;

    uint32_t body0[LANES];
    uint32_t body1[LANES];
    math::real normalX[LANES];
    math::real normalY[LANES];
    math::real r0x[LANES];
    math::real r0y[LANES];
    math::real r1x[LANES];
    math::real r1y[LANES];
    math::real inertiaInv0[LANES];
    math::real inertiaInv1[LANES];
    math::real friction[LANES];
    math::real normalMass[LANES];
    math::real tangentMass[LANES];
    math::real normalTarget[LANES];
    math::real tangentTarget[LANES];
    math::real normalImpulse[LANES];
    math::real tangentImpulse[LANES];

    // Lanes are used from the first on; what is left over joins a body that never moves to itself.
    bool IsUnused(uint32_t lane) const { return body0[lane] == body1[lane]; }
};

// Of eight contacts the last sweep's changes of their impulses, and the way that these have been going.
struct alignas(16) ContactTrend8 {
    math::real normalDelta[ContactRow8::LANES];
    math::real tangentDelta[ContactRow8::LANES];
    math::real normalTrend[ContactRow8::LANES];
    math::real tangentTrend[ContactRow8::LANES];
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
