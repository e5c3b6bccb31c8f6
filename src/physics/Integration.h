#pragma once

#include <functional>

#include "physics/Fwd.h"
#include "physics/StepSettings.h"

namespace physics {

// Moves bodies through one step under their forces. `solve` changes their velocities so that constraints
// hold: half-way through the forces in leapfrog order, otherwise before them.
void Integrate(const AbstractBodyList& bodies, const StepSettings& settings,
               const std::function<void()>& solve);

}  // namespace physics
