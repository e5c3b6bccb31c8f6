#include "physics/DistanceMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Shapes.h"

namespace physics {
namespace {

using math::Vec2;

double TrueDistance(const Polygon& polygon, Vec2 p) {
    double least = std::numeric_limits<double>::infinity();
    bool inside = false;
    for (const Line& line : polygon.GetLines()) {
        const double ax = line.start.x, ay = line.start.y, bx = line.end.x, by = line.end.y;
        const double dx = bx - ax, dy = by - ay;
        const double t = std::clamp(((p.x - ax) * dx + (p.y - ay) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
        least = std::min(least, std::hypot(p.x - ax - t * dx, p.y - ay - t * dy));
        if ((ay > p.y) != (by > p.y) && p.x < ax + (p.y - ay) / dy * dx) inside = !inside;
    }
    return inside ? -least : least;
}

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

TEST(DistanceMap, IsTheTrueDistanceAtEachCell) {
    for (const PolygonPtr& polygon : GetSamples()) {
        // The map knows the outline to one part in 4096 of its box.
        const math::Vec2 half = polygon->GetLocalOBB().halfSize;
        const double raster = std::max(half.x, half.y) / 4096 + 1e-6;
        int wrong = 0;
        for (int j = 0; j < DistanceMap::SIZE; ++j) {
            for (int i = 0; i < DistanceMap::SIZE; ++i) {
                const Vec2 p = polygon->GetMapToLocal()(Vec2(static_cast<float>(i), static_cast<float>(j)));
                const double truth = TrueDistance(*polygon, p);
                if (std::fabs(polygon->GetDistMap()(i, j) - truth) > 3 * raster) ++wrong;
            }
        }
        EXPECT_EQ(wrong, 0) << polygon->GetVertices().size() << " vertices";
    }
}

// Wherever they stand: the coordinates relative to the middle differ by rounding then.
TEST(DistanceMap, CongruentOutlinesShareOneField) {
    math::Vec2List outline = {{0, 0}, {1, 0}, {2, 0}, {2, 0.5f}, {0, 0.5f}};
    const PolygonPtr first = new Polygon(outline);
    const Vec2 way(31.3f, -17.1f);
    for (Vec2& v : outline) v += way;
    const PolygonPtr second = new Polygon(outline);
    outline[0] += Vec2(0.01f, 0);
    const PolygonPtr other = new Polygon(outline);
    const Vec2 inside(0.6f, 0.2f);
    EXPECT_NEAR(first->GetDistance(inside), second->GetDistance(inside + way), 1e-5f);
    EXPECT_EQ(&first->GetDistMap(), &second->GetDistMap());
    EXPECT_NE(&first->GetDistMap(), &other->GetDistMap());
}

// More shapes than maps are kept: those not asked for the longest give theirs up, and make the same again.
TEST(DistanceMap, KeptMapsAreBounded) {
    constexpr size_t MOST = 16, SHAPES = 40;
    const size_t before = DistanceField::GetMostKept();
    DistanceField::SetMostKept(MOST);
    const Vec2 inside(0.3f, 0.1f);
    std::vector<PolygonPtr> shapes;
    std::vector<float> distances;
    for (size_t i = 0; i < SHAPES; ++i) {
        const float height = 0.5f + 0.1f * static_cast<float>(i);
        shapes.push_back(new Polygon({{0, 0}, {1, 0}, {1, height}, {0, height / 2}}));
        distances.push_back(shapes.back()->GetDistance(inside));
        EXPECT_LE(DistanceField::GetKeptCount(), MOST);
        // What is always in use is never given up.
        const float* const cells = shapes.front()->GetDistMap().GetData().data();
        shapes.back()->GetDistMap();
        EXPECT_EQ(shapes.front()->GetDistMap().GetData().data(), cells);
    }
    for (size_t i = 0; i < SHAPES; ++i) EXPECT_EQ(shapes[i]->GetDistance(inside), distances[i]);
    DistanceField::SetMostKept(3);
    EXPECT_LE(DistanceField::GetKeptCount(), 3u);
    DistanceField::SetMostKept(before);
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
            sum += std::fabs(polygon->GetDistance(polygon->GetTransform()(p)) - TrueDistance(*polygon, p));
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

TEST(DistanceMap, SmallPolygonsKeepTheirMargin) {
    const PolygonPtr tiny = new Polygon(test::MakeRectangle(0.01f, 0.01f, 0, {0, 0}));
    EXPECT_NEAR(tiny->GetMapOBB().halfSize.x, 0.205f, 1e-5f);
    const PolygonPtr wide = new Polygon(test::MakeRectangle(128, 64, 0, {0, 0}));
    EXPECT_FLOAT_EQ(wide->GetMapOBB().halfSize.x, 66);
    EXPECT_FLOAT_EQ(wide->GetMapOBB().halfSize.y, 33);
}

}  // namespace
}  // namespace physics
