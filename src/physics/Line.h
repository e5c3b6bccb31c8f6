#pragma once

#include "math/Vector.h"
#include "util/VectorPOD.h"

namespace physics {

// A segment with a direction: an edge of an outline, a piece of a stroke.
struct Line {
    math::Vec2 start;
    math::Vec2 end;
};

using LineList = util::VectorPOD<Line>;

}  // namespace physics
