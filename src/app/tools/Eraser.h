#pragma once

#include "app/Fwd.h"
#include "math/Vector.h"

namespace app {

// What an eraser's stroke takes with it, so that a slip of the hand costs nothing. World coordinates.
//
// An entity has to be crossed (Entity::CrossesLines), and a shape clearly: the stroke enters and leaves it
// with room to spare on both sides, and between goes either right through, from one side to the opposite
// one, or deep enough. Touching a corner or running along an edge is no crossing. Planes, and shapes that
// fill much of the view, ask for a stroke that goes deep.
//
// Erasing one selected entity erases all that are selected; a plane goes only alone.
EntitySet FindErased(const Scene& scene, const View& view, const math::Vec2List& stroke);

}  // namespace app
