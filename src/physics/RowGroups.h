#pragma once

#include <cstdint>

#include "math/Vector.h"

// Constraints in groups of eight that have no movable body in common, turned so that their numbers lie side
// by side; and the trends of their impulses.
namespace physics {

constexpr uint32_t LANES = 8;
using Lanes = math::real[LANES];

// The ends of eight constraints. Lanes are used from the first on; what is left over joins a body that never
// moves to itself.
struct alignas(32) EndsRow8 {
    static constexpr uint32_t STRIDE = 4;  // numbers of a body's motion

    uint32_t body0[LANES];  // where the motions of the bodies begin
    uint32_t body1[LANES];
    Lanes r0x, r0y, r1x, r1y;
    Lanes inertiaInv0, inertiaInv1;

    bool IsUnused(uint32_t lane) const { return body0[lane] == body1[lane]; }
};

// Eight contacts. Names are those of Contact.
struct ContactRow8 : EndsRow8 {
    Lanes normalX, normalY;
    Lanes friction;
    Lanes normalMass, tangentMass;
    Lanes normalTarget, tangentTarget;
    Lanes normalImpulse, tangentImpulse;
};

// Eight hinges without motors. Names are those of Hinge; k is the inverse of the effective mass matrix.
struct HingeRow8 : EndsRow8 {
    Lanes k00, k01, k10, k11;
    Lanes targetX, targetY;
    Lanes impulseX, impulseY;
};

// The last sweep's changes of the impulses, and the way that these have been going.
struct alignas(32) ContactTrend8 {
    Lanes normalDelta, tangentDelta;
    Lanes normalTrend, tangentTrend;
};
struct alignas(32) HingeTrend8 {
    Lanes deltaX, deltaY;
    Lanes trendX, trendY;
};

}  // namespace physics
