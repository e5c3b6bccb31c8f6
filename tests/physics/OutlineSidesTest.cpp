// Against the straight way: each edge measured, and crossings counted.

#include "physics/OutlineSides.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Shapes.h"
#include "math/Geometry.h"
#include "physics/Polygon.h"

namespace physics {
namespace {

using math::Vec2;
using math::Vec2List;

struct Truth {
    float distance = 1e9f;  // from the outline, above 0
    bool isInside = false;
};

Truth Measure(const Vec2List& outline, Vec2 p) {
    Truth truth;
    for (size_t i = 0; i < outline.size(); ++i) {
        const Vec2 a = outline[i], b = outline[(i + 1) % outline.size()];
        const Vec2 nearest = math::ClosestPointOnSegment(a, b, p);
        truth.distance = std::min(truth.distance, math::Length(p - nearest));
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
            truth.isInside = !truth.isInside;
    }
    return truth;
}

// Looks at points all over the outline's box; the share of those inside that was left to the map.
float ExpectTruth(test::Random& random, const Vec2List& outline, float size) {
    const OutlineSides sides(outline);
    math::BoundingBox2f box;
    for (const Vec2 v : outline) box.Extend(v);
    int inside = 0, deep = 0;
    for (int i = 0; i < 3000; ++i) {
        const Vec2 p(test::Uniform(random, box.min.x, box.max.x),
                     test::Uniform(random, box.min.y, box.max.y));
        const Truth truth = Measure(outline, p);
        inside += truth.isInside;
        float distance = 0;
        Vec2 normal;
        const OutlineSides::Place place = sides.Find(outline, p, distance, normal);
        if (place == OutlineSides::Place::DEEP) {
            deep += truth.isInside;
            EXPECT_GT(truth.distance, 0.005f * size);
            continue;
        }
        if (truth.distance < 1e-5f * size) continue;  // on the line
        EXPECT_EQ(place == OutlineSides::Place::INSIDE, truth.isInside) << p.x << ", " << p.y;
        if (place != OutlineSides::Place::INSIDE) continue;
        EXPECT_NEAR(distance, -truth.distance, 2e-5f * size);
        EXPECT_NEAR(math::Length(normal), 1, 1e-5f);
        EXPECT_LT(Measure(outline, p - normal * distance).distance, 3e-5f * size) << "the way out is there";
    }
    return static_cast<float>(deep) / static_cast<float>(inside);
}

TEST(OutlineSides, TellWhatMeasuringEachEdgeTells) {
    test::Random random(3);
    for (const int vertices : {3, 5, 8, 12, 13, 30, 100, 700}) {
        for (const float size : {0.01f, 1.0f, 300.0f}) {
            SCOPED_TRACE(testing::Message() << vertices << " vertices, size " << size);
            const float deep = ExpectTruth(random, test::MakeStar(random, vertices, size, {}), size);
            EXPECT_LE(deep, vertices <= 12 ? 0.0f : 0.9f);
        }
    }
}

// Thin ones, wide ones, and a comb whose gaps are as thin as its teeth.
TEST(OutlineSides, KnowNarrowShapesExactly) {
    test::Random random(4);
    ExpectTruth(random, test::MakeRectangle(6, 0.01f, 0.3f, {}), 1);
    ExpectTruth(random, test::MakeRectangle(0.1f, 20, 0, {}), 1);
    Vec2List comb = {{0, -0.1f}, {4, -0.1f}};
    for (int i = 20; i > 0; --i) {
        const float x = 0.2f * static_cast<float>(i);
        for (const Vec2 v : {Vec2(x, 1), Vec2(x - 0.1f, 1), Vec2(x - 0.1f, 0), Vec2(x - 0.2f, 0)})
            comb.push_back(v);
    }
    ExpectTruth(random, comb, 1);
}

TEST(OutlineSides, JoinEdgesThatStandInARow) {
    const auto count = [](const Vec2List& outline) { return OutlineSides(outline).GetSideCount(); };
    EXPECT_EQ(count(MakeBoxPolygon(3, 2, 3.4f, 7)->GetVertices()), 4u);
    EXPECT_EQ(count(AssertMaxDist(test::MakeRectangle(2, 1, 0.4f, {}), 0.1f)), 4u);
    EXPECT_EQ(count({{0, 0}, {1, 0.001f}, {2, 0}, {1, 2}}), 4u) << "a blunt corner is one";
}

TEST(OutlineSides, FindNothingForWhatIsNoPlace) {
    test::Random random(5);
    for (const int vertices : {3, 4, 60}) {
        const Vec2List outline = test::MakeStar(random, vertices, 1, {});
        const OutlineSides sides(outline);
        float distance;
        Vec2 normal;
        const float nan = std::numeric_limits<float>::quiet_NaN();
        EXPECT_NE(sides.Find(outline, {nan, 0}, distance, normal), OutlineSides::Place::INSIDE);
        EXPECT_NE(sides.Find(outline, {nan, nan}, distance, normal), OutlineSides::Place::INSIDE);
    }
}

}  // namespace
}  // namespace physics
