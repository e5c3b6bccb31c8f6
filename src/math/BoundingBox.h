#pragma once

#include <algorithm>
#include <limits>

#include "math/Geometry.h"
#include "math/Vector.h"

namespace math {

// An axis-aligned box. The empty box, also the default, has its min at plus and its max at minus infinity.
struct BoundingBox2f {
    Vec2 min{std::numeric_limits<real>::infinity(), std::numeric_limits<real>::infinity()};
    Vec2 max{-std::numeric_limits<real>::infinity(), -std::numeric_limits<real>::infinity()};

    BoundingBox2f() = default;
    BoundingBox2f(Vec2 min_, Vec2 max_) : min(min_), max(max_) {}

    void Extend(Vec2 p) {
        min = {std::min(min.x, p.x), std::min(min.y, p.y)};
        max = {std::max(max.x, p.x), std::max(max.y, p.y)};
    }
    void Extend(const BoundingBox2f& box) {
        Extend(box.min);
        Extend(box.max);
    }
    void Grow(real margin) {
        min -= Vec2(margin, margin);
        max += Vec2(margin, margin);
    }

    bool IsFinite() const { return math::IsFinite(min) && math::IsFinite(max); }
    Vec2 GetCenter() const { return (min + max) * 0.5f; }
    Vec2 GetSize() const { return max - min; }
    bool Contains(Vec2 p) const { return p.x >= min.x && p.x <= max.x && p.y >= min.y && p.y <= max.y; }
    bool Overlaps(const BoundingBox2f& b) const {
        return min.x <= b.max.x && b.min.x <= max.x && min.y <= b.max.y && b.min.y <= max.y;
    }

    friend bool operator==(const BoundingBox2f& a, const BoundingBox2f& b) {
        return a.min == b.min && a.max == b.max;
    }
};

}  // namespace math
