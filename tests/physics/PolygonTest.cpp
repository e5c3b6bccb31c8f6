#include "physics/Polygon.h"

#include <gtest/gtest.h>

#include <cmath>

#include <algorithm>
#include <limits>

#include "Shapes.h"
#include "math/Geometry.h"
#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "util/Exception.h"

namespace physics {
namespace {

using math::Vec2;
using math::Vec2List;

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

const Vec2List SQUARE = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
// Open to the upper right.
const Vec2List L_SHAPE = {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};

TEST(Polygon, MassPropertiesFollowTheFormulas) {
    const float w = 3, h = 0.5f, angle = 0.7f;
    const PolygonPtr box = new Polygon(test::MakeRectangle(w, h, angle, {5, -2}));
    EXPECT_NEAR(box->GetArea(), w * h, 1e-5f);
    EXPECT_NEAR(box->GetInertiaSansMass(), (w * w + h * h) / 12, 1e-5f);
    EXPECT_NEAR(box->GetPos().x, 5, 1e-5f);
    EXPECT_NEAR(box->GetPos().y, -2, 1e-5f);

    // Three unit squares; their centroid and, by Steiner, their inertia.
    const PolygonPtr ell = new Polygon(L_SHAPE);
    EXPECT_FLOAT_EQ(ell->GetArea(), 3);
    EXPECT_NEAR(ell->GetPos().x, 5.0f / 6, 1e-6f);
    EXPECT_NEAR(ell->GetPos().y, 5.0f / 6, 1e-6f);
    const float steiner = (2.0f / 9 + 5.0f / 9 + 5.0f / 9) / 3;
    EXPECT_NEAR(ell->GetInertiaSansMass(), 1.0f / 6 + steiner, 1e-5f);
}

TEST(Polygon, FarFromTheOriginIsTheSameShape) {
    for (const float distance : {10.0f, 100.0f, 300.0f, 900.0f}) {
        const Vec2 center(distance, -distance);
        const Vec2List outline = test::MakeRectangle(0.1f, 0.1f, 0, center);
        const PolygonPtr box = new Polygon(outline);
        EXPECT_NEAR(box->GetPos().x, center.x, 1e-3f);
        EXPECT_NEAR(box->GetPos().y, center.y, 1e-3f);
        EXPECT_NEAR(box->GetArea(), 0.01f, 0.01f * 0.005f);
        EXPECT_NEAR(box->GetInertiaSansMass(), 0.02f / 12, 0.02f / 12 * 0.01f);
        for (const Vec2 v : outline) {
            const Vec2List& world = box->GetWorldVertices();
            EXPECT_TRUE(std::any_of(world.begin(), world.end(),
                                    [v](Vec2 corner) { return math::Length(corner - v) < 2e-4f; }));
        }
    }
}

TEST(Polygon, StoredCounterClockwiseAboutItsCentroid) {
    for (const bool reversed : {false, true}) {
        Vec2List outline = SQUARE;
        if (reversed) std::reverse(outline.begin(), outline.end());
        const PolygonPtr square = new Polygon(outline);
        float doubleArea = 0;
        for (const Line& line : square->GetLines()) doubleArea += math::Cross(line.start, line.end);
        EXPECT_FLOAT_EQ(doubleArea, 2);
        EXPECT_FLOAT_EQ(square->GetArea(), 1);
        EXPECT_EQ(square->GetPos(), Vec2(0.5f, 0.5f));
        EXPECT_LT(square->GetDistance({0.5f, 0.5f}), -0.45f);
    }
}

// Whatever the outline and its sense, the shape made from the kept vertices is the same to the bit.
TEST(Polygon, CentredVerticesMakeTheSameShape) {
    test::Random random(5);
    for (int round = 0; round < 200; ++round) {
        Vec2List outline = test::MakeStar(random, 5 + round % 40, 1.5f, {12.3f, -400});
        if (round % 2) std::reverse(outline.begin(), outline.end());
        const PolygonPtr first = new Polygon(outline), again = new Polygon(first->GetVertices());
        const Vec2List &a = first->GetVertices(), &b = again->GetVertices();
        ASSERT_TRUE(std::equal(a.begin(), a.end(), b.begin(), b.end())) << round;
        EXPECT_EQ(again->GetPos(), Vec2());
        EXPECT_EQ(again->GetArea(), first->GetArea());
        EXPECT_EQ(again->GetInertiaSansMass(), first->GetInertiaSansMass());
    }
}

TEST(Polygon, DropsRepeatedAndClosingVertices) {
    const PolygonPtr square = new Polygon({{0, 0}, {1, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}, {0, 0}});
    EXPECT_EQ(square->GetVertices().size(), 4u);
    EXPECT_EQ(square->GetLines().size(), 4u);
}

String GetFailure(const Vec2List& outline) {
    return test::FailureOf<BadDataException>([&] { PolygonPtr(new Polygon(outline)); });
}

TEST(Polygon, RefusesWhatIsNoPolygon) {
    const struct {
        const char* failure;
        Vec2List outline;
    } cases[] = {
        {"Bad polygon", {}},
        {"Bad polygon", {{0, 0}, {1, 0}}},
        {"Bad polygon", {{0, 0}, {1, 0}, {1, 0}, {0, 0}}},
        {"Bad polygon", {{0, 0}, {1, 0}, {2, 0}}},
        {"Bad polygon", {{3, 3}, {3, 3}, {3, 3}, {3, 3}}},
        {"Bad polygon", {{0, 0}, {1, 0}, {1, INF}}},
        {"Bad polygon", {{0, 0}, {1, 0}, {1, NOT_A_NUMBER}}},
        {"Bad polygon", {{0, 0}, {3e38f, 0}, {0, 3e38f}}},
        {"Bad polygon", {{0, 4e19f}, {4e19f, 0}, {0, -2e17f}, {0, 0}}},
        {"Self-intersecting polygon", {{0, 0}, {2, 2}, {2, 0}, {0, 1}}},
        {"Self-intersecting polygon", {{0, 0}, {1, 1}, {1, 0}, {0, 1}}},
        {"Self-intersecting polygon", {{0, 0}, {4, 0}, {4, 4}, {2, -1}, {0, 4}}},
        {"Too many vertices", test::MakeRectangle(1, 1, 0, {0, 0})},
        {"", SQUARE},
    };
    for (const auto& c : cases) {
        Vec2List outline = c.outline;
        if (String(c.failure) == "Too many vertices") {
            test::Random random(1);
            outline = test::MakeStar(random, 20001, 100, {0, 0});
        }
        EXPECT_EQ(GetFailure(outline), c.failure);
    }
}

TEST(Polygon, ReportsAnOutlineWithoutArea) {
    test::LogCapture log;
    EXPECT_EQ(GetFailure({{0, 0}, {1, 1}, {2, 2}}), "Bad polygon");
    EXPECT_TRUE(log.Contains("m_inertiaSansMass > 0"));
}

// Points put into slanted sides are collinear but for rounding, and must not be taken for crossings.
TEST(Polygon, AcceptsSlantedSidesWithManyPoints) {
    test::Random random(3);
    for (int i = 0; i < 60; ++i) {
        const float size = test::Uniform(random, 1, 60);
        const Vec2List corners = test::MakeRectangle(size, size / 2, test::Uniform(random, 0, 6), {-7, 30});
        EXPECT_EQ(GetFailure(AssertMaxDist(corners, size / 15)), "");
    }
}

TEST(Polygon, FollowsItsTransform) {
    const PolygonPtr ell = new Polygon(L_SHAPE);
    const math::RigidTransform transform(2.1f, Vec2(-4, 9));
    ell->SetTransform(transform);
    const math::BoundingBox2f box = ell->GetBoundingBox();
    for (size_t i = 0; i < ell->GetVertices().size(); ++i) {
        const Vec2 v = ell->GetWorldVertices()[i];
        EXPECT_EQ(v, transform(ell->GetVertices()[i]));
        EXPECT_EQ(ell->GetWorldLines()[i].start, v);
        EXPECT_TRUE(box.Contains(v));
        const math::Vec3 circle = ell->GetBoundingCircle();
        EXPECT_LE(math::Length(v - Vec2(circle.x, circle.y)), circle.z * 1.00001f);
        for (const Vec2 axis : {ell->GetOBB().axis[0], ell->GetOBB().axis[1]}) {
            EXPECT_LE(std::fabs(math::Dot(axis, v - ell->GetOBB().center)),
                      GetReach(ell->GetOBB(), axis) + 1e-5f);
        }
    }
    const Vec2List before = ell->GetWorldVertices();
    ell->SetTransform(math::RigidTransform(0, Vec2(1, 1)));
    EXPECT_NE(ell->GetWorldLines()[0].start, before[0]);
}

TEST(Polygon, DistanceIsABoundOutsideTheBoxAndTheMapInside) {
    const PolygonPtr square = new Polygon(SQUARE);
    EXPECT_NEAR(square->GetDistance({3, 0.5f}), 2, 1e-5f);
    EXPECT_NEAR(square->GetDistance({0.5f, -1}), 1, 1e-5f);
    EXPECT_NEAR(square->GetDistance({4, 5}), 5, 1e-5f);
    EXPECT_NEAR(square->GetDistance({0.5f, 0.9f}), -0.1f, 0.004f);
    EXPECT_EQ(square->GetNormal({1.01f, 0.5f}), Vec2());
    EXPECT_NEAR(square->GetNormal({0.95f, 0.5f}).x, 1, 0.01f);
}

TEST(Polygon, NumbersThatAreNoneAreOutside) {
    const PolygonPtr square = new Polygon(SQUARE);
    EXPECT_FALSE(square->GetDistance({NOT_A_NUMBER, 0.5f}) < 0);
    square->SetTransform(math::RigidTransform(NOT_A_NUMBER, 0, NOT_A_NUMBER, 0));
    EXPECT_FALSE(square->GetDistance({0.5f, 0.5f}) < 0);
}

// The width is less than the least number that does not count as 0.
TEST(Polygon, AnOutlineWithoutWidthHasADistance) {
    const PolygonPtr needle = new Polygon({{0, 4.4e19f}, {8.5e-40f, 3}, {0, 0}});
    EXPECT_FALSE(std::isnan(needle->GetDistance({0, 1})));
}

TEST(Polygon, EnclosesWhatLiesWhollyInside) {
    const PolygonPtr big = MakeBoxPolygon(0, 0, 10, 10), small = MakeBoxPolygon(4, 4, 5, 5);
    const PolygonPtr crossing = MakeBoxPolygon(9, 4, 11, 5), apart = MakeBoxPolygon(20, 0, 21, 1);
    EXPECT_TRUE(big->Encloses(*small));
    EXPECT_FALSE(small->Encloses(*big));
    EXPECT_FALSE(big->Encloses(*crossing));
    EXPECT_FALSE(big->Encloses(*apart));
}

// Beside an L, within its map and beyond it, and a rectangle: the bits of one point at a time, and the way
// up.
TEST(Polygon, FourPointsAtATime) {
    constexpr uint32_t FEW = Polygon::FEW;
    constexpr float LIMIT = 0.4f, STEP = 0.004f;
    test::Random random(5);
    for (const PolygonPtr& shape :
         {PolygonPtr(new Polygon(L_SHAPE)), PolygonPtr(new Polygon(test::MakeRectangle(3, 1, 0, {})))}) {
        shape->SetTransform(math::RigidTransform(0.7f, Vec2(30, -4)));
        int near = 0, rising = 0;
        for (int i = 0; i < 500; ++i) {
            Vec2 points[FEW], normals[FEW];
            float distances[FEW];
            for (Vec2& p : points)
                p = Vec2(30, -4) + Vec2(test::Uniform(random, -3, 3), test::Uniform(random, -3, 3));
            const uint32_t isNear = shape->FindNear(points, LIMIT, distances, normals);
            for (uint32_t k = 0; k < FEW; ++k) {
                const float distance = shape->GetFieldDistance(points[k]);
                ASSERT_EQ((isNear >> k & 1) != 0, distance < LIMIT);
                if (!(distance < LIMIT)) continue;
                EXPECT_EQ(distances[k], distance);
                const float ahead = shape->GetFieldDistance(points[k] + normals[k] * STEP);
                ++near;
                if (ahead - distance > 0.7f * STEP) ++rising;
            }
        }
        EXPECT_GT(near, 300);
        EXPECT_GT(rising, near * 9 / 10) << "but on ridges, where there is no way up";
    }
}

TEST(Polygon, RectanglesKnowTheirDistanceExactly) {
    Polygon plank(test::MakeRectangle(3, 0.2f, 0, {}));
    plank.SetTransform(math::RigidTransform(0.2f, Vec2(1, 2)));
    test::Random random(6);
    for (int i = 0; i < 300; ++i) {
        const Vec2 p = Vec2(1, 2) + Vec2(test::Uniform(random, -2, 2), test::Uniform(random, -0.5f, 0.5f));
        float truth = 1e9f;
        for (const Line& line : plank.GetWorldLines()) {
            truth = std::min(truth, math::Length(math::ClosestPointOnSegment(line.start, line.end, p) - p));
        }
        EXPECT_NEAR(std::fabs(plank.GetFieldDistance(p)), truth, 1e-5f);
    }
}

// What is before a point, and nearer than so far; not what stands beside it or behind.
TEST(Polygon, FindsGapsBeforeAPoint) {
    const PolygonPtr box = MakeBoxPolygon(0, 0, 2, 1);
    const Vec2 points[] = {{1, 1.2f}, {1, 1.2f}, {1, 1.2f}, {1, 1.5f}};
    const Vec2 normals[] = {{0, -1}, {0, 1}, {1, 0}, {0, -1}};
    float gaps[Polygon::FEW];
    EXPECT_EQ(box->FindGaps(points, normals, 0.3f, gaps), 1u);
    EXPECT_NEAR(gaps[0], 0.2f, 1e-5f);
}

// Apart and near along each of the four axes in turn.
TEST(BoxesOverlap, LooksAlongAllAxes) {
    math::OBB2D a;
    a.halfSize = {2, 1};
    for (const float angle : {0.0f, 0.5f, 1.3f}) {
        math::OBB2D b = a;
        b.axis[0] = {std::cos(angle), std::sin(angle)};
        b.axis[1] = math::Perpendicular(b.axis[0]);
        for (const Vec2 axis : {a.axis[0], a.axis[1], b.axis[0], b.axis[1]}) {
            const float touch = GetReach(a, axis) + GetReach(b, axis);
            b.center = axis * (touch * 1.001f);
            EXPECT_FALSE(BoxesOverlap(a, b));
            b.center = axis * (touch * 0.5f);
            EXPECT_TRUE(BoxesOverlap(a, b));
            EXPECT_TRUE(BoxesOverlap(b, a));
        }
    }
    math::OBB2D beside = a;
    beside.center = {4, 0};
    EXPECT_TRUE(BoxesOverlap(a, beside)) << "touching counts";
}

TEST(BoundsOverlap, CirclesThatTouchAreApart) {
    const PolygonPtr a = MakeBoxPolygon(0, 0, 1, 1), b = MakeBoxPolygon(0.5f, 0.5f, 1.5f, 1.5f);
    EXPECT_TRUE(BoundsOverlap(*a, *b));
    const float apart = 2 * a->GetBoundingCircle().z;
    b->SetTransform(math::RigidTransform(0, a->GetPos() + Vec2(apart, 0)));
    EXPECT_FALSE(BoundsOverlap(*a, *b));
}

TEST(AssertMaxDist, PutsPointsIntoLongEdges) {
    const Vec2List split = AssertMaxDist(SQUARE, 0.4f);
    EXPECT_EQ(split.size(), 12u);
    EXPECT_EQ(split[0], Vec2(0, 0));
    EXPECT_NEAR(split[1].x, 1.0f / 3, 1e-6f);
    EXPECT_EQ(split[3], Vec2(1, 0));
    for (size_t i = 0; i < split.size(); ++i) {
        EXPECT_LE(math::Length(split[(i + 1) % split.size()] - split[i]), 0.4f);
    }
    EXPECT_EQ(AssertMaxDist({{0, 0}, {1, 0}, {1, 0}, {1, 1}}, 5).size(), 3u);
    EXPECT_TRUE(AssertMaxDist({}, 1).empty());
}

TEST(AssertMaxDist, RefusesWhatWouldNotEnd) {
    EXPECT_THROW(AssertMaxDist(SQUARE, 0), BadDataException);
    EXPECT_THROW(AssertMaxDist(SQUARE, NOT_A_NUMBER), BadDataException);
    EXPECT_THROW(AssertMaxDist(SQUARE, 1e-9f), BadDataException);
    EXPECT_THROW(AssertMaxDist({{0, 0}, {INF, 0}, {1, 1}}, 1), BadDataException);
}

TEST(MakeBoxPolygon, HasPointsBesideItsCorners) {
    const PolygonPtr box = MakeBoxPolygon(0, 0, 4, 2);
    ASSERT_EQ(box->GetVertices().size(), 16u);
    const Vec2 expected[] = {{0, 0}, {0.125f, 0}, {2, 0}, {3.875f, 0}, {4, 0}, {4, 0.0625f}};
    for (size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(box->GetWorldVertices()[i], expected[i]);
    EXPECT_FLOAT_EQ(box->GetArea(), 8);
    EXPECT_FLOAT_EQ(box->GetInertiaSansMass(), (16.0f + 4) / 12);
    EXPECT_THROW(MakeBoxPolygon(1, 0, 1, 5), BadDataException);
}

}  // namespace
}  // namespace physics
