#pragma once

#include "math/Vector.h"
#include "physics/Fwd.h"

// The two halves of a step's motion, for all bodies that can move.
namespace physics {

enum class Forces { KEEP, CLEAR };  // afterwards; cleared are those of bodies that cannot move, too

void IntegrateVelocities(const AbstractBodyList& bodies, math::real dt, Forces forces);  // by their forces
void ClearForces(const AbstractBodyList& bodies);

// By their velocities. A body whose motion is not finite is put back to where it was after its last step that
// was, and stopped. Gives the number of such bodies.
int IntegratePlaces(const AbstractBodyList& bodies, math::real dt);

}  // namespace physics
