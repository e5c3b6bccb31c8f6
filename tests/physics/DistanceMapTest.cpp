#include "physics/DistanceMap.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "DistanceReference.h"
#include "Shapes.h"

namespace physics {
namespace {

using math::Vec2;

// Made once: building maps is most of what these tests take.
const std::vector<PolygonPtr>& GetSamples() {
    static std::vector<PolygonPtr> samples;
    if (!samples.empty()) return samples;
    test::Random random(7);
    for (const int vertices : {5, 16, 100}) {
        for (const float size : {0.05f, 0.5f, 40.0f}) {
            samples.push_back(new Polygon(test::MakeStar(random, vertices, size, {2, -3})));
        }
    }
    for (const float angle : {0.0f, 0.4f, 1.9f}) {
        samples.push_back(new Polygon(test::MakeRectangle(1, 1, angle, {0, 0})));
        samples.push_back(new Polygon(test::MakeRectangle(10, 1, angle, {0, 0})));
        samples.push_back(new Polygon(test::MakeRectangle(5, 0.05f, angle, {0, 0})));
    }
    samples.push_back(MakeBoxPolygon(0, 0, 2, 1));
    return samples;
}

// Width of a cell, along the wider side.
float GetCellWidth(const Polygon& polygon) {
    const Vec2 half = polygon.GetMapOBB().halfSize;
    return 2 * std::max(half.x, half.y) / DistanceMap::SIZE;
}

TEST(DistanceMap, EqualsTheSpreadWithAnOrderedSet) {
    for (const PolygonPtr& polygon : GetSamples()) {
        const std::vector<float> expected = test::SpreadBySet(*polygon);
        const auto& cells = polygon->GetDistMap().GetData();
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), cells.begin()));
    }
}

TEST(DistanceMap, IsNearTheTrueDistance) {
    for (const PolygonPtr& polygon : GetSamples()) {
        const float cell = GetCellWidth(*polygon);
        double worst = 0, sum = 0;
        int wrongSide = 0;
        for (int j = 0; j < DistanceMap::SIZE; ++j) {
            for (int i = 0; i < DistanceMap::SIZE; ++i) {
                const Vec2 p = polygon->GetMapToLocal()(Vec2(static_cast<float>(i), static_cast<float>(j)));
                const double truth = test::TrueDistance(*polygon, p);
                const double found = polygon->GetDistMap()(i, j);
                worst = std::max(worst, std::fabs(std::fabs(found) - std::fabs(truth)));
                sum += std::fabs(std::fabs(found) - std::fabs(truth));
                if (found * truth < 0 && std::fabs(truth) > 1e-3 * cell) ++wrongSide;
            }
        }
        const int cells = DistanceMap::SIZE * DistanceMap::SIZE;
        EXPECT_LT(worst, 1.5 * cell) << polygon->GetVertices().size() << " vertices";
        EXPECT_LT(sum / cells, 0.002 * cell) << polygon->GetVertices().size() << " vertices";
        EXPECT_LT(wrongSide, cells / 200) << polygon->GetVertices().size() << " vertices";
    }
}

TEST(DistanceMap, SamplesAreWithinACellOfTheTruth) {
    test::Random random(11);
    for (const PolygonPtr& polygon : GetSamples()) {
        const float cell = GetCellWidth(*polygon);
        const math::OBB2D box = polygon->GetLocalOBB();
        double sum = 0;
        for (int i = 0; i < 1000; ++i) {
            const Vec2 p = box.center +
                           box.axis[0] * (box.halfSize.x * test::Uniform(random, -0.99f, 0.99f)) +
                           box.axis[1] * (box.halfSize.y * test::Uniform(random, -0.99f, 0.99f));
            sum +=
                std::fabs(polygon->GetDistance(polygon->GetTransform()(p)) - test::TrueDistance(*polygon, p));
        }
        EXPECT_LT(sum / 1000, 0.15 * cell) << polygon->GetVertices().size() << " vertices";
    }
}

TEST(DistanceMap, GradientPointsAwayFromTheOutline) {
    const PolygonPtr box = new Polygon(test::MakeRectangle(2, 1, 0.6f, {4, 5}));
    const math::RigidTransform place(0.6f, Vec2(4, 5));
    const struct {
        Vec2 local, normal;
    } cases[] = {
        {{0.9f, 0}, {1, 0}}, {{-0.95f, 0.1f}, {-1, 0}}, {{0.2f, 0.45f}, {0, 1}}, {{0, -0.4f}, {0, -1}}};
    for (const auto& c : cases) {
        const Vec2 normal = box->GetNormal(place(c.local));
        const Vec2 expected = place.Rotate(c.normal);
        EXPECT_NEAR(normal.x, expected.x, 0.01f);
        EXPECT_NEAR(normal.y, expected.y, 0.01f);
    }
}

TEST(DistanceMap, ArcLengthRunsRoundTheOutline) {
    const PolygonPtr box = new Polygon(test::MakeRectangle(4, 2, 0, {0, 0}));
    EXPECT_FLOAT_EQ(box->GetPerimeter(), 12);
    const auto arcAt = [&](Vec2 local) {
        const Vec2 cell = box->GetLocalToMap()(local);
        return box->GetPerimeterMap()(static_cast<size_t>(cell.x + 0.5f), static_cast<size_t>(cell.y + 0.5f));
    };
    EXPECT_NEAR(arcAt({0, -1}), 2, 0.04f);   // half-way along the bottom
    EXPECT_NEAR(arcAt({2, 0}), 5, 0.04f);    // half-way up the right side
    EXPECT_NEAR(arcAt({-2, 0}), 11, 0.04f);  // half-way down the left side
}

TEST(DistanceMap, SmallPolygonsKeepTheirMargin) {
    const PolygonPtr tiny = new Polygon(test::MakeRectangle(0.01f, 0.01f, 0, {0, 0}));
    EXPECT_FLOAT_EQ(tiny->GetMapOBB().halfSize.x, 0.205f);
    const PolygonPtr wide = new Polygon(test::MakeRectangle(128, 64, 0, {0, 0}));
    EXPECT_FLOAT_EQ(wide->GetMapOBB().halfSize.x, 66);
    EXPECT_FLOAT_EQ(wide->GetMapOBB().halfSize.y, 33);
}

}  // namespace
}  // namespace physics
