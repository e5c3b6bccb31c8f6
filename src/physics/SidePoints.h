#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "util/VectorPOD.h"

namespace physics {

// Points of an outline beside its vertices at which contacts are looked for as well: where a straight side is
// long and bare, one near each sharp corner and one in the middle.
//
// A contact of two outlines is a point of one found inside the other. Of two sides that lie flat on each
// other the overlap ends at a corner on either side, and where two corners meet there, both lie on the other
// outline, neither in nor out: shapes that stand flush would sink into each other.
//
// They count where two sides lie along each other, and nowhere else.
struct SidePoint {
    math::Vec2 place;
    uint32_t edge;  // that it lies on
};

// `vertices` counter-clockwise; the points come in their order.
util::VectorPOD<SidePoint> FindSidePoints(const math::Vec2List& vertices);

}  // namespace physics
