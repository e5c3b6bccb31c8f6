#pragma once

#include "math/Vector.h"
#include "physics/Fwd.h"

// The two halves of a step's motion, for all bodies that can move.
namespace physics {

void IntegrateVelocities(const AbstractBodyList& bodies, math::real dt);  // by their forces

// By their velocities. A body whose motion is not finite is put back to where it was after its last step that
// was, and stopped. Gives the number of such bodies.
int IntegratePlaces(const AbstractBodyList& bodies, math::real dt);

}  // namespace physics
