#pragma once

#include "math/Vector.h"

namespace physics {

// The settings that one step obeys, as values: who steps a world hands them down. Meanings and defaults
// stand at the attributes of Simulation.
struct StepSettings {
    math::real timeDelta;  // s
    bool leapFrog;
    math::real springForce;  // N/m per strength

    int sweeps;
    bool conjugate;
    bool prioritized;
    bool preSort;
    bool adHoc;
    math::real stiffness;
    math::real contactDamping;  // damping numbers
    math::real hingeDamping;
    math::real distFactor;  // multiply the row weights below
    math::real velFactor;
    math::real accFactor;
    math::real epsFactor;
    math::real targetPenetration;      // m
    math::real maxPositionCorrection;  // m, may be infinite
    math::real warmStartShare;         // of the last step's impulses; 0 for no warm start
};

// How a row of the solver weighs its errors. The equations stand in StepSettings.cpp.
struct RowWeights {
    math::real eps;   // 1/kg, softness added to the diagonal
    math::real vel;   // of the velocity error
    math::real slip;  // of the velocity error of friction
    math::real dist;  // 1/s, of the position error
    math::real acc;   // s, of the acceleration
};

// What all constraints of a solve have in common.
struct SolveConstants {
    explicit SolveConstants(const StepSettings& settings);

    RowWeights contact;
    RowWeights hinge;
    math::real timeDelta;              // s
    math::real targetPenetration;      // m
    math::real maxPositionCorrection;  // m
    math::real warmStartShare;
};

}  // namespace physics
