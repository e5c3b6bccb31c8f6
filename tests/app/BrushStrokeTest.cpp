#include <gtest/gtest.h>

#include <cmath>

#include "app/tools/StrokeAnalysis.h"
#include "math/Geometry.h"
#include "util/Random.h"

namespace app {
namespace {

using math::Vec2;
using math::Vec2List;

// Part of a circle, `turns` long, in steps of a small chord.
Vec2List Arc(Vec2 center, float radius, float start, float turns, int steps = 60) {
    Vec2List points;
    for (int i = 0; i <= steps; ++i) {
        const float angle = start + turns * math::TWO_PI * i / steps;
        points.push_back(center + Vec2(std::cos(angle), std::sin(angle)) * radius);
    }
    return points;
}

void Append(Vec2List& points, const Vec2List& more) {
    for (const Vec2 p : more) {
        if (points.empty() || points.back() != p) points.push_back(p);
    }
}

// From the crossing in the middle round one lobe, back through it and round the other.
Vec2List FigureEight(float firstRadius, float secondRadius) {
    Vec2List points = Arc({-firstRadius, 0}, firstRadius, 0.3f, 0.93f);
    Append(points, Arc({secondRadius, 0}, secondRadius, math::PI + 0.3f, -1.1f));
    return points;
}

// Round and round and inwards, without crossing itself.
Vec2List Spiral(float turns) {
    constexpr int STEPS = 80;
    Vec2List points;
    for (int i = 0; i <= STEPS; ++i) {
        const float part = static_cast<float>(i) / STEPS, angle = turns * math::TWO_PI * part;
        points.push_back(Vec2(std::cos(angle), std::sin(angle)) * (1.05f - 0.1f * part));
    }
    return points;
}

// Once round, across the start and a quarter on.
Vec2List CrossingOvershoot() {
    Vec2List points = Arc({0, 0}, 1, 0.1f, 0.95f);
    Append(points, Arc({0.15f, 0}, 1, 0, 0.25f, 20));
    return points;
}

double SignedArea(const Vec2List& outline) {
    double area = 0;
    for (size_t i = 0; i < outline.size(); ++i) {
        const Vec2 a = outline[i], b = outline[(i + 1) % outline.size()];
        area += (double(a.x) * b.y - double(b.x) * a.y) / 2;
    }
    return area;
}

bool IsSimple(const Vec2List& outline) {
    const size_t n = outline.size();
    for (size_t i = 0; i < n; ++i) {
        for (size_t j = i + 1; j < n; ++j) {
            if (math::SegmentsIntersect(outline[i], outline[(i + 1) % n], outline[j], outline[(j + 1) % n])) {
                return false;
            }
        }
    }
    return true;
}

TEST(BrushStroke, LinesAreStraightWithinAFifthOfTheirLength) {
    const struct {
        const char* name;
        Vec2List stroke;
        bool line;
    } cases[] = {
        {"two points", {{0, 0}, {3, 1}}, true},
        {"just inside", {{0, 0}, {5, 1.999f}, {10, 0}}, true},
        {"just outside", {{0, 0}, {5, 2.001f}, {10, 0}}, false},
        {"overshoot beyond the end", {{0, 0}, {11.9f, 0}, {10, 0}}, true},
        {"too far beyond the end", {{0, 0}, {12.1f, 0}, {10, 0}}, false},
        {"too far before the start", {{0, 0}, {-2.1f, 0}, {10, 0}}, false},
        {"circle", Arc({0, 0}, 1, 0, 0.98f), false},
        {"circle closed to the point", {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}, false},
        {"half circle", Arc({0, 0}, 1, 0, 0.5f), false},
        {"flat arc", Arc({0, 0}, 1, 0, 0.1f), true},
    };
    for (const auto& c : cases) EXPECT_EQ(TestEraseLine(c.stroke), c.line) << c.name;
}

TEST(BrushStroke, ExtractLoopAnswers) {
    const struct {
        const char* name;
        Vec2List stroke;
        LoopResult result;
    } cases[] = {
        {"nothing", {}, LoopResult::Open},
        {"one point", {{1, 1}}, LoopResult::Open},
        {"half circle", Arc({0, 0}, 1, 0, 0.5f), LoopResult::Open},
        {"gap of an eighth", {{0, 0}, {3.5f, 0}, {3.5f, 1}, {1, 1}, {1, 0.02f}}, LoopResult::Open},
        {"an end on the first edge", {{0, 0}, {3.5f, 0}, {3.5f, 1}, {1, 1}, {1, 0}}, LoopResult::Loop},
        {"gap below an eighth", {{0, 0}, {3.5f, 0}, {3.5f, 1}, {0.9f, 1}, {0.9f, 0}}, LoopResult::Loop},
        {"five-pointed star", {{0, 0}, {1, 3}, {2, 0}, {-0.6f, 2}, {2.6f, 2}, {0, 0}}, LoopResult::Tangled},
        {"square", {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0.1f}}, LoopResult::Loop},
        {"hour glass of four points", {{0, 0}, {1, 1}, {1, 0}, {0, 1}, {0, 0.1f}}, LoopResult::Loop},
        {"circle", Arc({0, 0}, 1, 0, 0.98f), LoopResult::Loop},
        {"circle and a bit", Arc({0, 0}, 1, 0, 1.02f), LoopResult::Loop},
        {"figure eight", FigureEight(1, 2), LoopResult::Loop},
        {"spiral overshot by a quarter", Spiral(1.25f), LoopResult::Loop},
        {"circle overshot by a quarter, crossing itself", CrossingOvershoot(), LoopResult::Loop},
    };
    for (const auto& c : cases) {
        Vec2List points = c.stroke;
        EXPECT_EQ(ExtractLoop(points), c.result) << c.name;
    }
}

TEST(BrushStroke, OpenStrokeIsLeftAlone) {
    const Vec2List stroke = Arc({0, 0}, 1, 0, 0.5f);
    Vec2List points = stroke;
    ASSERT_EQ(ExtractLoop(points), LoopResult::Open);
    ASSERT_EQ(points.size(), stroke.size());
    for (size_t i = 0; i < points.size(); ++i) EXPECT_EQ(points[i], stroke[i]);
}

// A stroke that runs past its start is cut at the crossing: no tails stick out.
TEST(BrushStroke, OvershootIsCutAtTheCrossing) {
    Vec2List points = {{0, -1}, {0, 0}, {0, 4}, {4, 4}, {4, 0}, {1, 0}, {-0.5f, 0.5f}};
    ASSERT_EQ(ExtractLoop(points), LoopResult::Loop);
    ASSERT_EQ(points.size(), 5u);
    EXPECT_EQ(points[0], Vec2(0, 4));
    EXPECT_EQ(points[3], Vec2(1, 0));
    EXPECT_FLOAT_EQ(points[4].x, 0);
    EXPECT_NEAR(points[4].y, 1.0f / 3, 1e-6);
}

TEST(BrushStroke, LoopWithoutCrossingKeepsAllItsPoints) {
    Vec2List points = Arc({3, -2}, 1, 1, 0.97f);
    const size_t numPoints = points.size();
    ASSERT_EQ(ExtractLoop(points), LoopResult::Loop);
    EXPECT_EQ(points.size(), numPoints);
    EXPECT_NEAR(SignedArea(points), 3.13, 0.02);
}

// Of two lobes the one round the half-length of the stroke is kept, whole and cut at the crossing.
TEST(BrushStroke, WhatRunsPastItsStartIsCutThere) {
    for (const Vec2List& stroke : {Spiral(1.05f), Spiral(1.25f), CrossingOvershoot()}) {
        Vec2List points = stroke;
        ASSERT_EQ(ExtractLoop(points), LoopResult::Loop);
        EXPECT_TRUE(IsSimple(points));
        EXPECT_NEAR(std::fabs(SignedArea(points)), math::PI, 0.4);
    }
}

TEST(BrushStroke, FlaredLipsStay) {
    const Vec2List vase = {{-14, 160}, {-11, 156}, {-7, 150}, {-7, 140}, {-30, 110}, {-60, 60}, {-30, 0},
                           {30, 0},    {60, 60},   {30, 110}, {7, 140},  {7, 150},   {11, 156}, {14, 160}};
    Vec2List points = vase;
    ASSERT_EQ(ExtractLoop(points), LoopResult::Loop);
    ASSERT_EQ(points.size(), vase.size());
    for (size_t i = 0; i < points.size(); ++i) EXPECT_EQ(points[i], vase[i]) << i;
}

// Wherever on the eight the hand began.
TEST(BrushStroke, FigureEightKeepsItsBiggerLobe) {
    for (const float greater : {2.0f, 4.0f}) {
        const Vec2List eight = FigureEight(1, greater);
        for (size_t start = 0; start < eight.size(); start += 7) {
            SCOPED_TRACE(testing::Message() << greater << ", from point " << start);
            Vec2List points;
            for (size_t k = 0; k < eight.size(); ++k) points.push_back(eight[(start + k) % eight.size()]);
            ASSERT_EQ(ExtractLoop(points), LoopResult::Loop);
            EXPECT_TRUE(IsSimple(points));
            EXPECT_NEAR(std::fabs(SignedArea(points)), math::PI * greater * greater, 0.1 * greater * greater);
        }
    }
}

// Crossing lines through the first and the last segment meet far away here; the outline must not.
TEST(BrushStroke, NearlyClosedLoopGetsNoSpike) {
    Vec2List points = {{0, 0}, {1, 0.01f}, {2, 0}, {2, 2}, {1, 2}, {0, 2}, {0.01f, 1}, {0, 0.2f}};
    ASSERT_EQ(ExtractLoop(points), LoopResult::Loop);
    for (const Vec2 p : points) {
        EXPECT_LE(std::fabs(p.x), 2.01f);
        EXPECT_LE(std::fabs(p.y), 2.01f);
    }
}

// A hand that runs past its start without crossing it leaves a spiral, whose ends overlap.
TEST(BrushStroke, SpiralClosesWithoutCrossing) {
    for (const float drift : {-0.1f, -0.03f, 0.03f, 0.1f}) {
        for (const float turns : {1.02f, 1.06f, 1.1f}) {
            Vec2List points;
            for (int i = 0; i <= 100; ++i) {
                const float t = i / 100.0f, angle = math::TWO_PI * turns * t;
                points.push_back(Vec2(std::cos(angle), std::sin(angle)) * (1 + drift * t));
            }
            ASSERT_EQ(ExtractLoop(points), LoopResult::Loop);
            EXPECT_TRUE(IsSimple(points)) << drift << " " << turns;
            EXPECT_LT(math::Length(points.front() - points.back()), 0.15f) << "a barb is left";
            EXPECT_NEAR(std::fabs(SignedArea(points)), math::PI, 0.4) << drift << " " << turns;
        }
    }
}

TEST(BrushStroke, LoopAtAnySizeAndPlace) {
    for (const float size : {0.02f, 1.0f, 300.0f}) {
        Vec2List points = Arc({5 * size, -3 * size}, size, 0.4f, 1.05f, 80);
        ASSERT_EQ(ExtractLoop(points), LoopResult::Loop) << size;
        EXPECT_NEAR(std::fabs(SignedArea(points)) / (math::PI * size * size), 1, 0.02) << size;
        EXPECT_TRUE(IsSimple(points)) << size;
    }
}

// Whatever is scribbled: an answer, no neighbour equal to the next, and never a longer outline than the
// stroke itself.
TEST(BrushStroke, RandomScribblesGiveSoundOutlines) {
    util::Random random;
    int loops = 0;
    for (int round = 0; round < 2000; ++round) {
        Vec2List stroke;
        const int numPoints = random.GetUniformInt(0, 40);
        Vec2 p, step;
        for (int i = 0; i < numPoints; ++i) {
            step = step * 0.7f + Vec2(random.GetUniform(-1, 1), random.GetUniform(-1, 1));
            p = round % 3 == 0 ? Vec2(std::floor(p.x + 2 * step.x), std::floor(p.y + 2 * step.y)) : p + step;
            if (stroke.empty() || stroke.back() != p) stroke.push_back(p);
        }
        if (round % 2 == 0 && stroke.size() > 2) stroke.push_back(stroke.front() + Vec2(0.01f, 0));
        Vec2List points = stroke;
        const LoopResult result = ExtractLoop(points);
        if (result != LoopResult::Loop) continue;
        ++loops;
        EXPECT_LE(PathLength(points), ClosedLength(stroke) * 1.0001f);
        for (size_t i = 1; i < points.size(); ++i) EXPECT_NE(points[i], points[i - 1]);
        EXPECT_TRUE(IsSimple(points)) << round;
    }
    EXPECT_GT(loops, 50);
}

}  // namespace
}  // namespace app
