#pragma once

#include <cmath>

#include "math/BoundingBox.h"
#include "math/OBB2D.h"
#include "math/Vector.h"

// Fat bounding boxes: axis-aligned, for quick rejection in front of exact tests. They are drawn larger than
// the shapes by a small share of their coordinates, since the exact tests round, and nothing may be rejected
// that they would accept.
namespace physics {

inline math::real GetSlack(math::Vec2 center, math::Vec2 halfSize) {
    constexpr math::real SLACK = 4e-6f;
    return SLACK * (std::fabs(center.x) + std::fabs(center.y) + halfSize.x + halfSize.y);
}

inline math::BoundingBox2f LooseBox(math::Vec2 center, math::Vec2 halfSize) {
    const math::real slack = GetSlack(center, halfSize);
    const math::Vec2 half(halfSize.x + slack, halfSize.y + slack);
    return {center - half, center + half};
}

inline math::BoundingBox2f LooseBox(const math::OBB2D& box) {
    const math::Vec2 a = box.axis[0], b = box.axis[1], half = box.halfSize;
    return LooseBox(box.center, math::Vec2(std::fabs(a.x) * half.x + std::fabs(b.x) * half.y,
                                           std::fabs(a.y) * half.x + std::fabs(b.y) * half.y));
}

}  // namespace physics
