#include "math/Geometry.h"

#include <gtest/gtest.h>

#include <limits>

#include "math/BoundingBox.h"
#include "math/Color.h"
#include "math/Matrix2.h"
#include "math/Matrix3.h"
#include "math/OBB2D.h"
#include "support/LogCapture.h"
#include "util/Random.h"

using math::Vec2;

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();

float FromBits(uint32_t bits) {
    float x;
    std::memcpy(&x, &bits, sizeof(x));
    return x;
}

Vec2 RandomPoint(util::Random& random, float size = 10) {
    return {random.GetUniform(-size, size), random.GetUniform(-size, size)};
}

}  // namespace

TEST(Geometry, IsFiniteKnowsExactlyTwoNaNs) {
    EXPECT_FALSE(IsFinite(INF));
    EXPECT_FALSE(IsFinite(-INF));
    EXPECT_FALSE(IsFinite(FromBits(0x7FC00000)));
    EXPECT_FALSE(IsFinite(FromBits(0x7FA00000)));
    EXPECT_TRUE(IsFinite(FromBits(0xFFC00000)));
    EXPECT_TRUE(IsFinite(FromBits(0x7FC00001)));
    EXPECT_TRUE(IsFinite(std::numeric_limits<float>::max()));
    EXPECT_FALSE(IsFinite(Vec2(0, INF)));
}

TEST(Geometry, NormalizedNeverDividesByNothing) {
    EXPECT_EQ(math::Normalized({9e-8f, 0}), Vec2());
    EXPECT_NEAR(math::Length(math::Normalized({0, 2e-7f})), 1, 1e-6);
    EXPECT_TRUE(math::IsZero(9.9e-8f));
    EXPECT_FALSE(math::IsZero(FromBits(0x33D6BF95)));
}

TEST(Geometry, WrapAngleGivesTheHalfOpenTurn) {
    EXPECT_EQ(math::WrapAngle(math::PI), math::PI);
    EXPECT_NEAR(math::WrapAngle(-math::PI), math::PI, 1e-6);
    EXPECT_NEAR(math::WrapAngle(4), -2.2832f, 1e-4);
    EXPECT_EQ(math::WrapAngle(INF), 0);
    for (float a = -100; a < 100; a += 0.37f) {
        const float wrapped = math::WrapAngle(a);
        EXPECT_GT(wrapped, -math::PI);
        EXPECT_LE(wrapped, math::PI);
        EXPECT_NEAR(std::sin(wrapped), std::sin(a), 2e-5);
    }
}

TEST(Geometry, ClosestPointOnASegmentIsNoFartherThanAnyOther) {
    const Vec2 a(1, 2), b(5, -1);
    EXPECT_EQ(math::ClosestPointOnSegment(a, b, {-3, 4}), a);
    EXPECT_EQ(math::ClosestPointOnSegment(a, b, {9, -3}), b);
    EXPECT_EQ(math::ClosestPointOnSegment(a, a, {7, 7}), Vec2(7, 7));
    util::Random random;
    for (int i = 0; i < 200; ++i) {
        const Vec2 p = RandomPoint(random);
        const float best = math::Length(p - math::ClosestPointOnSegment(a, b, p));
        for (float t = 0; t <= 1; t += 0.01f) EXPECT_LE(best, math::Length(p - (a + t * (b - a))) + 1e-5f);
    }
}

TEST(Geometry, SegmentsIntersectInTheStatedOrderOfRules) {
    const struct {
        Vec2 a1, a2, b1, b2;
        bool hit;
        const char* what;
    } rows[] = {
        {{0, 0}, {2, 2}, {0, 2}, {2, 0}, true, "a cross"},
        {{0, 0}, {1, 0}, {0, 0}, {5, 5}, true, "equal heads"},
        {{0, 0}, {1, 0}, {1, 0}, {0.5f, 0}, false, "consecutive edges, even when they overlap"},
        {{1, 0}, {2, 0}, {0, 0}, {1, 0}, false, "consecutive the other way round"},
        {{0, 0}, {1, 0}, {0, 1}, {1, 1}, false, "parallel"},
        {{0, 0}, {1, 0}, {0.5f, 0}, {3, 0}, false, "collinear overlap"},
        {{0, 0}, {2, 0}, {1, 0}, {1, 5}, true, "an end on the other"},
        {{0, 0}, {2, 0}, {3, -1}, {3, 1}, false, "beyond the end"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(math::SegmentsIntersect(row.a1, row.a2, row.b1, row.b2), row.hit) << row.what;
    }
    Vec2 out;
    math::SegmentsIntersect({0, 0}, {4, 4}, {0, 2}, {2, 0}, &out);
    EXPECT_NEAR(out.x, 1, 1e-6);
    EXPECT_NEAR(out.y, 1, 1e-6);
}

TEST(Geometry, MainAxisTakesTheFirstOfEqualPairs) {
    const Vec2 square[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    EXPECT_EQ(math::FindMainAxisSimple(square, 4), math::Normalized({1, 1}));
    const Vec2 same[] = {{3, 3}, {3, 3}};
    EXPECT_EQ(math::FindMainAxisSimple(same, 2), Vec2());
}

TEST(OBB2D, ContainsItsPointsAndFindsTheAlignedSquare) {
    const Vec2 square[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    EXPECT_NEAR(math::OBB2D::BuildBest(square, 4).GetArea(), 4, 1e-5);
    util::Random random;
    for (int round = 0; round < 50; ++round) {
        Vec2 points[12];
        for (Vec2& p : points) p = RandomPoint(random);
        const math::OBB2D box = math::OBB2D::BuildBest(points, 12);
        for (const Vec2 p : points) {
            EXPECT_LE(std::fabs(math::Dot(p - box.center, box.axis[0])), box.halfSize.x + 1e-4f);
            EXPECT_LE(std::fabs(math::Dot(p - box.center, box.axis[1])), box.halfSize.y + 1e-4f);
        }
        EXPECT_LE(box.GetArea(), math::OBB2D::Build(points, 12, {1, 0}).GetArea());
        EXPECT_NEAR(math::Dot(box.axis[0], box.axis[1]), 0, 1e-6);
    }
}

TEST(Transforms, InversesUndoAndProductsCompose) {
    util::Random random;
    for (int i = 0; i < 100; ++i) {
        const math::RigidTransform a(random.GetUniform(-3, 3), RandomPoint(random));
        const math::RigidTransform b(random.GetUniform(-3, 3), RandomPoint(random));
        const Vec2 p = RandomPoint(random);
        EXPECT_LT(math::Length(a.Inverse()(a(p)) - p), 1e-4f);
        EXPECT_LT(math::Length((a * b)(p)-a(b(p))), 1e-4f);
        const math::TMatrix3<float> m = math::TMatrix3<float>(a) * math::TMatrix3<float>::Scale(2, 3);
        EXPECT_LT(math::Length(math::Inverted(m)(m(p)) - p), 1e-4f);
    }
}

TEST(Transforms, ASingularMatrixIsReportedAndTheCalculationGoesOn) {
    test::LogCapture log(logging::DataError);
    math::TMatrix2<float> singular;
    singular.m[1][1] = 0;
    EXPECT_FALSE(IsFinite(math::Inverted(singular).m[1][1]));
    EXPECT_TRUE(log.Contains("Data check failed: \"det != 0\""));
}

TEST(Color, HSLRoundTripsAndKnowsThePrimaries) {
    EXPECT_EQ(math::HSLtoRGB({0, 1, 0.5f}), math::Vec3(1, 0, 0));
    EXPECT_EQ(math::RGBtoHSL({0, 0, 1}), math::Vec3(240, 1, 0.5f));
    util::Random random;
    for (int i = 0; i < 200; ++i) {
        const math::Vec3 rgb(random.GetUniform(0, 1), random.GetUniform(0, 1), random.GetUniform(0, 1));
        const math::Vec3 back = math::HSLtoRGB(math::RGBtoHSL(rgb));
        EXPECT_NEAR(back.x, rgb.x, 1e-4);
        EXPECT_NEAR(back.y, rgb.y, 1e-4);
        EXPECT_NEAR(back.z, rgb.z, 1e-4);
    }
}
