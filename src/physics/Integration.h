#pragma once

#include "math/Vector.h"
#include "physics/Fwd.h"

// The two halves of a step's motion, for all bodies that can move.
namespace physics {

void IntegrateVelocities(const AbstractBodyList& bodies, math::real dt);  // by their forces
void IntegratePlaces(const AbstractBodyList& bodies, math::real dt);      // by their velocities

}  // namespace physics
