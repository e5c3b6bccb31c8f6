#pragma once

#include "math/Vector.h"

namespace physics {

// What a shape is made of. These are the defaults of a world that nobody has changed; the program hands the
// user's own (Simulation::GetDefaultSurface) to each shape that it makes.
struct Surface {
    math::real density = 2;  // kg/m^2, above 0
    math::real friction = 0.5f;
    math::real restitution = 0.5f;
};

}  // namespace physics
