#pragma once

#include <cstddef>

#include "math/Vector.h"

namespace math {

// An oriented box: unit, perpendicular axes and the half size along each.
struct OBB2D {
    Vec2 center;
    Vec2 axis[2] = {{1, 0}, {0, 1}};
    Vec2 halfSize;

    real GetArea() const { return 4 * halfSize.x * halfSize.y; }

    // The tightest box with its first axis along the unit vector `axis`. At least two points are expected
    // (checked).
    static OBB2D Build(const Vec2* points, size_t nPoints, Vec2 axis);

    // A small box: the smallest of nine candidates, one along the main axis of the points and eight along
    // directions 12 degrees apart, from 0 to 84 degrees. Of equal areas the first stays.
    static OBB2D BuildBest(const Vec2* points, size_t nPoints);
};

}  // namespace math
