#pragma once

#include <cmath>

#include "math/Vector.h"

namespace math {

// A rotation followed by a translation: p -> (cos*p.x - sin*p.y + x, sin*p.x + cos*p.y + y). The angle
// itself is not stored.
struct RigidTransform {
    real cos = 1;
    real sin = 0;
    real x = 0;
    real y = 0;

    constexpr RigidTransform() = default;
    constexpr RigidTransform(real cos_, real sin_, real x_, real y_) : cos(cos_), sin(sin_), x(x_), y(y_) {}
    RigidTransform(real angle, Vec2 translation)
        : cos(std::cos(angle)), sin(std::sin(angle)), x(translation.x), y(translation.y) {}

    Vec2 GetTranslation() const { return {x, y}; }
    real GetAngle() const { return std::atan2(sin, cos); }

    Vec2 Rotate(Vec2 v) const { return {cos * v.x - sin * v.y, sin * v.x + cos * v.y}; }
    Vec2 operator()(Vec2 p) const { return {cos * p.x - sin * p.y + x, sin * p.x + cos * p.y + y}; }

    RigidTransform Inverse() const { return {cos, -sin, -sin * y - cos * x, sin * x - cos * y}; }

    friend constexpr bool operator==(const RigidTransform& a, const RigidTransform& b) {
        return a.cos == b.cos && a.sin == b.sin && a.x == b.x && a.y == b.y;
    }

    // (a * b)(p) = a(b(p)): b acts first.
    friend RigidTransform operator*(const RigidTransform& a, const RigidTransform& b) {
        const Vec2 t = a(b.GetTranslation());
        return {a.cos * b.cos - a.sin * b.sin, a.sin * b.cos + a.cos * b.sin, t.x, t.y};
    }
};

}  // namespace math
