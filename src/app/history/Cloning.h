#pragma once

#include "app/Fwd.h"

namespace app {

// The entities in the order of the scene list; those outside the scene are left out.
EntityList SceneOrder(const Scene& scene, const EntitySet& entities);

// Copies entities of the scene into it, on top, in the order of their originals, and gives the copies.
// Shapes of one body share a copy of it, with its velocities; a copy of a shape that is fixed to the world
// is fixed as well. Copies of a group's or chain's members form a new one. A joint is copied when all shapes
// that it ties are.
EntitySet CloneIntoScene(Scene& scene, const EntitySet& originals);

}  // namespace app
