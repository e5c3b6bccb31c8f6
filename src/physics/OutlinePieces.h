#pragma once

#include "math/Vector.h"
#include "util/VectorPOD.h"

namespace physics {

// A straight piece of an outline.
struct OutlinePiece {
    math::Vec2 pos;     // its middle
    math::Vec2 normal;  // unit, outward
    math::real length;  // m
};
using OutlinePieces = util::VectorPOD<OutlinePiece>;

// An outline in pieces about as long as `length`, in the order round it; edges that go on nearly straight are
// cut as one. Where there would be too many, the pieces are longer.
OutlinePieces CutPolygon(const math::Vec2List& vertices, math::real length);
OutlinePieces CutCircle(math::Vec2 center, math::real radius, math::real length);

}  // namespace physics
