#pragma once

#include <cmath>
#include <random>

#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/Polygon.h"

namespace test {

using Random = std::mt19937;

inline float Uniform(Random& random, float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
}

// A simple polygon, mostly concave: rays from a middle at rising angles, of random lengths.
inline math::Vec2List MakeStar(Random& random, int vertices, float size, math::Vec2 center) {
    math::Vec2List outline;
    for (int i = 0; i < vertices; ++i) {
        const float turn =
            (static_cast<float>(i) + Uniform(random, 0.1f, 0.9f)) / static_cast<float>(vertices);
        const float length = size * Uniform(random, 0.35f, 1.0f);
        const float angle = math::TWO_PI * turn;
        outline.push_back(center + length * math::Vec2(std::cos(angle), std::sin(angle)));
    }
    return outline;
}

inline math::Vec2List MakeRectangle(float width, float height, float angle, math::Vec2 center) {
    const math::RigidTransform place(angle, center);
    const float x = width / 2, y = height / 2;
    math::Vec2List outline;
    for (const math::Vec2 v : {math::Vec2(-x, -y), {x, -y}, {x, y}, {-x, y}}) outline.push_back(place(v));
    return outline;
}

inline physics::BodyPtr MakeBody(const physics::GeomPtr& geom) {
    return new physics::Body(geom);
}

}  // namespace test
