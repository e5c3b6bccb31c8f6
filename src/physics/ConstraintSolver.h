#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "util/VectorPOD.h"

namespace physics {

// Finds the velocity changes that satisfy all hinges and contacts of a step.
class ConstraintSolver {
  public:
    // Reads Simulation's settings. Every body of the constraints that can move must be in `bodies`.
    void Run(const AbstractBodyList& bodies, const HingeSet& hinges, const ContactPool& contacts);

  private:
};

}  // namespace physics
