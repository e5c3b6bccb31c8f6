#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "math/Vector.h"

// The float predicates and segment helpers whose exact meanings the physics relies on.
namespace math {

// False for the two infinities and for exactly two NaN patterns, the quiet 0x7FC00000 and the signalling
// 0x7FA00000; any other NaN passes. Stored scenes and the solver's recovery depend on this very test.
inline bool IsFinite(real x) {
    uint32_t bits;
    std::memcpy(&bits, &x, sizeof(bits));
    return (bits & 0x7FFFFFFFu) != 0x7F800000u && bits != 0x7FC00000u && bits != 0x7FA00000u;
}
inline bool IsFinite(Vec2 v) {
    return IsFinite(v.x) && IsFinite(v.y);
}

// |x| strictly below 1e-7, whatever the scale of the numbers around it.
inline bool IsZero(real x) {
    constexpr real LIMIT = 1e-07f;
    return std::fabs(x) < LIMIT;
}

// A unit vector along v, or the zero vector when v's length IsZero. Never NaN from a zero vector.
inline Vec2 Normalized(Vec2 v) {
    const real length = Length(v);
    return IsZero(length) ? Vec2() : v * (1 / length);
}

// The angle in (-pi, pi]; 0 for one that is not IsFinite. A NaN that passes IsFinite passes through.
real WrapAngle(real angle);

// The point of the segment from a to b nearest to p: exactly a or exactly b at and beyond the ends, and p
// itself for a segment without length.
Vec2 ClosestPointOnSegment(Vec2 a, Vec2 b, Vec2 p);

// Whether two edges cross. Equal heads or equal tails count as crossing, a head on a tail (consecutive
// edges of an outline) does not; parallel edges never do. Ends are included. `out`, when given, receives
// the point for edges that really cross.
bool SegmentsIntersect(Vec2 a1, Vec2 a2, Vec2 b1, Vec2 b2, Vec2* out = nullptr);

// The unit direction between the two points that lie farthest apart (of equal pairs the first in order);
// zero when all points are equal. At least two points are expected (checked).
Vec2 FindMainAxisSimple(const Vec2* points, size_t nPoints);

}  // namespace math

using math::IsFinite;
