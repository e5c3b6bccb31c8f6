#include "math/Geometry.h"

#include "util/Assert.h"

namespace math {

real WrapAngle(real angle) {
    if (angle > -PI && angle <= PI) return angle;  // the usual case: nothing below would change it
    if (!IsFinite(angle)) return 0;
    real wrapped = std::fmod(angle, TWO_PI);
    while (wrapped <= -PI) wrapped += TWO_PI;
    while (wrapped > PI) wrapped -= TWO_PI;
    return wrapped;
}

// t = (p - a).(b - a) / |b - a|^2. A zero length gives 0/0, whose bit pattern passes IsFinite on common
// processors, hence the second test.
Vec2 ClosestPointOnSegment(Vec2 a, Vec2 b, Vec2 p) {
    const Vec2 edge = b - a;
    const real t = Dot(p - a, edge) / LengthSquared(edge);
    if (!IsFinite(t) || t != t) return p;
    if (t <= 0) return a;
    if (t >= 1) return b;
    return a + t * edge;
}

bool SegmentsIntersect(Vec2 a1, Vec2 a2, Vec2 b1, Vec2 b2, Vec2* out) {
    if (a1 == b1 || a2 == b2) return true;
    if (a1 == b2 || b1 == a2) return false;
    const real d = (b1.y - b2.y) * (a2.x - a1.x) - (a2.y - a1.y) * (b1.x - b2.x);
    if (IsZero(d)) return false;
    const real s = ((b1.y - b2.y) * (b1.x - a1.x) - (b1.x - b2.x) * (b1.y - a1.y)) / d;
    const real u = ((b1.y - a1.y) * (a2.x - a1.x) - (b1.x - a1.x) * (a2.y - a1.y)) / d;
    if (!(s >= 0 && s <= 1 && u >= 0 && u <= 1)) return false;
    if (out != nullptr) *out = a1 + s * (a2 - a1);
    return true;
}

Vec2 FindMainAxisSimple(const Vec2* points, size_t nPoints) {
    DATA_CHECK(nPoints > 1);
    Vec2 axis;
    real greatest = 0;
    for (size_t i = 0; i < nPoints; ++i) {
        for (size_t j = i + 1; j < nPoints; ++j) {
            const Vec2 d = points[j] - points[i];
            if (!(LengthSquared(d) > greatest)) continue;
            greatest = LengthSquared(d);
            axis = d;
        }
    }
    return Normalized(axis);
}

}  // namespace math
