#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/ContactRow.h"

namespace physics {

// Eight hinges without motors that no movable body has in common, turned so that their numbers lie side by
// side. Names are those of Hinge; k is the inverse of the effective mass matrix.
struct alignas(16) HingeRow8 {
    static constexpr uint32_t LANES = ContactRow8::LANES;

    uint32_t body0[LANES];
    uint32_t body1[LANES];
    math::real r0x[LANES];
    math::real r0y[LANES];
    math::real r1x[LANES];
    math::real r1y[LANES];
    math::real inertiaInv0[LANES];
    math::real inertiaInv1[LANES];
    math::real k00[LANES];
    math::real k01[LANES];
    math::real k10[LANES];
    math::real k11[LANES];
    math::real targetX[LANES];
    math::real targetY[LANES];
    math::real impulseX[LANES];
    math::real impulseY[LANES];

    bool IsUnused(uint32_t lane) const { return body0[lane] == body1[lane]; }  // see ContactRow8
};

// Of eight hinges the last sweep's changes of their impulses, and the way that these have been going.
struct alignas(16) HingeTrend8 {
    math::real deltaX[HingeRow8::LANES];
    math::real deltaY[HingeRow8::LANES];
    math::real trendX[HingeRow8::LANES];
    math::real trendY[HingeRow8::LANES];
};

}  // namespace physics
