// Shapes that stand flush: corner beside corner, side on side, with no vertex of the one inside the other.

#include "physics/SidePoints.h"

#include <cmath>

#include "Shapes.h"
#include "math/Geometry.h"
#include "physics/Polygon.h"
#include "physics/World.h"

namespace test {

using math::Vec2;
using math::Vec2List;
using physics::BodyPtr;

namespace {

Vec2List Box(float x, float y, float width, float height) {
    return MakeRectangle(width, height, 0, {x, y});
}

Vec2List Scaled(Vec2List outline, float scale) {
    for (Vec2& v : outline) v *= scale;
    return outline;
}

Vec2List MakeRegular(int corners, float radius, Vec2 center) {
    Vec2List outline;
    for (int i = 0; i < corners; ++i) {
        const float angle = math::TWO_PI * static_cast<float>(i) / static_cast<float>(corners);
        outline.push_back(center + radius * Vec2(std::cos(angle), std::sin(angle)));
    }
    return outline;
}

void ExpectPoints(const Vec2List& outline, const std::vector<physics::SidePoint>& expected) {
    const auto found = physics::FindSidePoints(outline);
    ASSERT_GE(found.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_LT(math::Length(found[i].place - expected[i].place), 1e-6f) << "point " << i;
        EXPECT_EQ(found[i].edge, expected[i].edge) << "point " << i;
    }
}

}  // namespace

// ---- where the points lie ------------------------------------------------------------------------------

TEST(SidePoints, LieNearSharpCornersAndInTheMiddle) {
    ExpectPoints({{0, 0}, {3.2f, 0}, {0, 1.6f}}, {{{0.1f, 0}, 0},
                                                  {{1.6f, 0}, 0},
                                                  {{3.1f, 0}, 0},
                                                  {{3.1f, 0.05f}, 1},
                                                  {{1.6f, 0.8f}, 1},
                                                  {{0.1f, 1.55f}, 1},
                                                  {{0, 1.55f}, 2},
                                                  {{0, 0.8f}, 2},
                                                  {{0, 0.05f}, 2}});
}

TEST(SidePoints, KeepAwayFromTheCornersOfSmallShapes) {
    ExpectPoints(Box(0, 0, 0.04f, 0.008f),
                 {{{-0.017f, -0.004f}, 0}, {{0, -0.004f}, 0}, {{0.017f, -0.004f}, 0}, {{0.02f, -0.002f}, 1}});
}

TEST(SidePoints, AreFewWhereVerticesAre) {
    const auto count = [](const Vec2List& outline) { return physics::FindSidePoints(outline).size(); };
    EXPECT_EQ(count(physics::MakeBoxPolygon(-0.2f, -0.1f, 0.2f, 0.1f)->GetVertices()), 0u);
    EXPECT_EQ(count(MakeRegular(6, 1, {})), 6u * 3);
    EXPECT_EQ(count(MakeRegular(12, 1, {})), 12u) << "blunt corners need none beside them";
    EXPECT_EQ(count(MakeRegular(100, 1, {})), 0u) << "short sides need none";
    EXPECT_EQ(count(physics::AssertMaxDist(Box(0, 0, 1, 1), 0.3f)), 4u * 2) << "the middle is not bare";
    // The inner corner of an L is in nobody's way.
    EXPECT_EQ(count({{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}}), 6u * 3 - 2);
}

// ---- what stands on them -------------------------------------------------------------------------------

class FlushShapes : public World {
  protected:
    FlushShapes() {
        sim.m_timeDelta->Set(sim.m_timeDelta->GetDefault());
        AddGround();
    }
    void AddAll(const std::vector<Vec2List>& outlines) {
        for (const Vec2List& outline : outlines) {
            m_shapes.push_back(Add(new physics::Polygon(outline)));
            m_places.push_back(m_shapes.back()->m_pos);
        }
    }
    // Each sinks by targetPenetration into what it stands on, and by that of what stands below.
    void ExpectStanding(float seconds, float size, int layers) {
        Run(seconds);
        const float sunk = 1.3f * sim.m_targetPenetration->Get() * static_cast<float>(layers);
        for (size_t i = 0; i < m_shapes.size(); ++i) {
            const Vec2 move = m_shapes[i]->m_pos - m_places[i];
            EXPECT_LT(std::fabs(move.x), 0.002f * size + 0.0004f) << "shape " << i;
            EXPECT_LT(move.y, 0.0001f) << "shape " << i;
            EXPECT_GT(move.y, -sunk) << "shape " << i;
            EXPECT_LT(std::fabs(m_shapes[i]->m_angle), 0.01f) << "shape " << i;
        }
    }

    std::vector<BodyPtr> m_shapes;
    std::vector<Vec2> m_places;
};

class FlushStack : public FlushShapes, public testing::WithParamInterface<float> {};

TEST_P(FlushStack, OfBoxesOfFourCornersStands) {
    constexpr int BOXES = 5;
    std::vector<Vec2List> boxes;
    for (int i = 0; i < BOXES; ++i)
        boxes.push_back(Scaled(Box(0, static_cast<float>(i) + 0.5f, 1, 1), GetParam()));
    AddAll(boxes);
    EXPECT_EQ(static_cast<physics::Polygon&>(*GeomOf(m_shapes[0])).GetVertices().size(), 4u);
    ExpectStanding(20, GetParam(), BOXES);
}

INSTANTIATE_TEST_SUITE_P(Scales, FlushStack, testing::Values(0.01f, 0.03f, 0.1f, 0.3f, 1.0f, 10.0f, 100.0f));

// In metres at scale 1; all lie flat on each other, with corners beside corners.
struct Arrangement {
    const char* name;
    int layers;
    std::vector<Vec2List> outlines;
};

class FlushArrangement : public FlushShapes, public testing::WithParamInterface<Arrangement> {};

TEST_P(FlushArrangement, Stands) {
    for (const float scale : {0.1f, 1.0f, 10.0f}) {
        SCOPED_TRACE(scale);
        sim.Clear();
        m_shapes.clear();
        m_places.clear();
        AddGround();
        std::vector<Vec2List> outlines;
        for (const Vec2List& outline : GetParam().outlines) outlines.push_back(Scaled(outline, scale));
        AddAll(outlines);
        ExpectStanding(5, scale, GetParam().layers);
    }
}

const Arrangement ARRANGEMENTS[] = {
    {"OneOnTwiceAsWide", 2, {Box(0, 0.5f, 2, 1), Box(-0.5f, 1.5f, 1, 1)}},
    {"TwoOnOne", 2, {Box(0, 0.5f, 2, 1), Box(-0.5f, 1.5f, 1, 1), Box(0.5f, 1.5f, 1, 1)}},
    {"AMillimetreOff", 3, {Box(0, 0.5f, 1, 1), Box(0.001f, 1.5f, 1, 1), Box(0, 2.5f, 1, 1)}},
    {"PlankOverPost", 2, {Box(0, 0.5f, 0.2f, 1), Box(0, 1.05f, 6, 0.1f)}},
    {"PlankFlushWithPosts", 2, {Box(-2, 0.5f, 0.2f, 1), Box(2, 0.5f, 0.2f, 1), Box(0, 1.05f, 4.2f, 0.1f)}},
    {"PlankOnPlank", 3, {Box(0, 0.05f, 6, 0.1f), Box(0, 0.15f, 6, 0.1f), Box(0, 0.25f, 6, 0.1f)}},
    {"PoleOnPole", 2, {Box(0, 1, 0.1f, 2), Box(0, 3, 0.1f, 2)}},
    {"SmallOnPole", 2, {Box(0, 3, 0.1f, 6), Box(0, 6.025f, 0.05f, 0.05f)}},
    {"ThinPlankOverPosts", 2, {Box(-0.4f, 0.5f, 0.1f, 1), Box(0.4f, 0.5f, 0.1f, 1), Box(0, 1.03f, 1, 0.06f)}},
    {"TriangleOnTwo",
     2,
     {{{-1, 0}, {0, 0}, {-0.5f, 0.8f}}, {{0, 0}, {1, 0}, {0.5f, 0.8f}}, {{-1, 0.8f}, {1, 0.8f}, {0, 2}}}},
    {"TriangleOnBoxOfItsWidth", 2, {Box(0, 0.5f, 1, 1), {{-0.5f, 1}, {0.5f, 1}, {0, 2}}}},
    {"Wall",
     3,
     {Box(0, 0.5f, 1, 1), Box(1, 0.5f, 1, 1), Box(0, 1.5f, 1, 1), Box(1, 1.5f, 1, 1), Box(0, 2.5f, 1, 1),
      Box(1, 2.5f, 1, 1)}},
};

INSTANTIATE_TEST_SUITE_P(Cases, FlushArrangement, testing::ValuesIn(ARRANGEMENTS),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace test
