#include <cmath>
#include <limits>

#include "SceneFixture.h"
#include "physics/SPH.h"
#include "script/Objects.h"
#include "util/Exception.h"

namespace app {
namespace {

using math::Vec2;

class EntityTest : public test::SceneFixture {
  protected:
    static physics::LineList Line(Vec2 a, Vec2 b) {
        physics::LineList lines;
        lines.push_back({a, b});
        return lines;
    }
    static physics::PolygonPtr Lasso(float half) { return physics::MakeBoxPolygon(-half, -half, half, half); }
};

TEST_F(EntityTest, PointsAndStrokesAndLassos) {
    const auto circle = AddCircle({0, 0}, 1);
    EXPECT_TRUE(circle->IsPointInside({0.9f, 0}));
    EXPECT_FALSE(circle->IsPointInside({1.1f, 0}));
    EXPECT_TRUE(circle->CrossesLines(Line({0, 0}, {3, 0}))) << "one end inside";
    EXPECT_TRUE(circle->CrossesLines(Line({-3, 0.5f}, {3, 0.5f}))) << "both outside, through it";
    EXPECT_FALSE(circle->CrossesLines(Line({-0.3f, 0}, {0.3f, 0}))) << "wholly inside";
    EXPECT_FALSE(circle->CrossesLines(Line({-3, 1.5f}, {3, 1.5f})));
    EXPECT_TRUE(circle->IsInsidePolygon(*Lasso(1.5f)));
    EXPECT_FALSE(circle->IsInsidePolygon(*Lasso(0.9f)));

    const auto box = AddBox({-1, -1}, {1, 1});
    EXPECT_TRUE(box->IsPointInside({0.5f, 0.5f}));
    EXPECT_TRUE(box->CrossesLines(Line({-3, 0.2f}, {3, 0.2f})));
    EXPECT_FALSE(box->CrossesLines(Line({0, 0.2f}, {3, 0.2f}))) << "crosses the outline only once";
    EXPECT_TRUE(box->IsInsidePolygon(*Lasso(2)));
    EXPECT_FALSE(box->IsInsidePolygon(*Lasso(0.5f)));

    const auto plane = AddPlane({0, 1}, 0);
    EXPECT_TRUE(plane->IsPointInside({100, -1}));
    EXPECT_TRUE(plane->CrossesLines(Line({0, 1}, {0, -1})));
    EXPECT_FALSE(plane->CrossesLines(Line({0, 1}, {5, 1})));
    EXPECT_FALSE(plane->IsInsidePolygon(*Lasso(1000)));
}

TEST_F(EntityTest, AttributesAreViewsOnTheGeom) {
    const auto circle = AddCircle({0, 0}, 1);
    circle->GetBody()->m_vel = {3, 4};
    circle->FindLocal("density")->SetValue(script::ValueToObject(6));
    EXPECT_EQ(circle->GetGeom()->m_density, 6);
    EXPECT_NEAR(circle->GetBody()->m_mass, 6 * math::PI, 1e-4);
    EXPECT_EQ(circle->GetBody()->m_vel, Vec2(3, 4));

    circle->FindLocal("friction")->SetValue(script::ValueToObject(0.25));
    circle->FindLocal("collideSet")->SetValue(script::ValueToObject(6));
    circle->FindLocal("collideWater")->SetValue(script::ValueToObject(false));
    EXPECT_EQ(circle->GetGeom()->m_friction, 0.25f);
    EXPECT_EQ(circle->GetGeom()->m_collideSet, 6u);
    EXPECT_FALSE(circle->GetGeom()->m_collideWater);

    circle->GetGeom()->m_restitution = 0.75f;
    EXPECT_EQ(script::ObjectToValue<float>(circle->FindLocal("restitution")->GetValue()), 0.75f);
}

TEST_F(EntityTest, ADensityWithoutMassIsIgnored) {
    const auto circle = AddCircle({0, 0}, 1);
    const float before = circle->m_density->Get();
    for (const double bad : {0.0, -1.0, std::numeric_limits<double>::infinity(), std::nan("")}) {
        circle->FindLocal("density")->SetValue(script::ValueToObject(bad));
        EXPECT_EQ(circle->m_density->Get(), before) << bad;
        EXPECT_TRUE(circle->IsInSimulation());
    }
}

TEST_F(EntityTest, TransformMovesBodiesAndPutsPlanesElsewhere) {
    const auto box = AddBox({1, -1}, {3, 1});
    box->Transform(math::RigidTransform(math::PI / 2, {0, 0}));
    EXPECT_NEAR(box->GetGeom()->GetPos().x, 0, 1e-5);
    EXPECT_NEAR(box->GetGeom()->GetPos().y, 2, 1e-5);
    EXPECT_NEAR(box->GetGeom()->GetTransform().GetAngle(), math::PI / 2, 1e-5);

    box->GetBody()->SetHeld(true);
    box->Transform(math::RigidTransform(0, {1, 1}));
    EXPECT_NEAR(box->GetGeom()->GetPos().x, 1, 1e-5) << "held by the tool that moves it";

    const auto plane = AddPlane({0, 1}, 0);
    plane->Transform(math::RigidTransform(0, {0, 5}));
    EXPECT_TRUE(plane->IsPointInside({0, 4.9f}));
    EXPECT_FALSE(plane->IsPointInside({0, 5.1f}));
}

TEST_F(EntityTest, ClonesShareNothingThatMoves) {
    const auto triangle = AddTriangle({2, 2});
    triangle->m_friction->Set(0.125f);
    triangle->SetGroup(3);
    triangle->SetColor({0.1f, 0.2f, 0.3f});
    triangle->Transform(math::RigidTransform(0.5f, {1, 0}));
    const auto clone = util::DynamicCast<PolyEntity>(triangle->Clone());
    ASSERT_TRUE(clone);
    EXPECT_NE(clone->GetGeom(), triangle->GetGeom());
    EXPECT_FALSE(clone->IsInSimulation());
    EXPECT_EQ(clone->GetGeom()->GetPos(), triangle->GetGeom()->GetPos());
    EXPECT_EQ(clone->GetGeom()->GetTransform().GetAngle(), triangle->GetGeom()->GetTransform().GetAngle());
    EXPECT_EQ(clone->m_friction->Get(), 0.125f);
    EXPECT_EQ(clone->GetColor(), triangle->GetColor());
    EXPECT_EQ(clone->GetGroup(), 3);
    EXPECT_EQ(&clone->GetPolygon()->GetDistMap(), &triangle->GetPolygon()->GetDistMap());
}

TEST_F(EntityTest, NewColoursAreBrightButNotGlaring) {
    math::Vec3 previous;
    for (int i = 0; i < 50; ++i) {
        const math::Vec3 color = GetScene().GetNextColor();
        EXPECT_NE(color, previous);
        previous = color;
        const float high = std::max({color.x, color.y, color.z}), low = std::min({color.x, color.y, color.z});
        EXPECT_GE((high + low) / 2, 0.449f);
        EXPECT_LE((high + low) / 2, 0.701f);
    }
}

TEST_F(EntityTest, WaterFillsAShapeEvenly) {
    const float r = physics::SPH::Instance().m_radius->Get();
    const auto tiny = AddCircle({3, 4}, r * 0.4f);
    ASSERT_EQ(tiny->GetWaterPoints(10000).size(), 1u);
    EXPECT_EQ(tiny->GetWaterPoints(10000)[0], Vec2(3, 4));

    const auto disc = AddCircle({0, 0}, 20 * r);
    const auto points = disc->GetWaterPoints(10000);
    // Its share of a grid of 20 by 20 over the square around it.
    EXPECT_NEAR(static_cast<double>(points.size()), 400 * math::PI / 4, 20);
    for (const Vec2 p : points) EXPECT_LE(math::Length(p), 19 * r + 1e-4f);

    EXPECT_LE(disc->GetWaterPoints(50).size(), 60u);
}

TEST_F(EntityTest, CircConverterIsATriangleWave) {
    EXPECT_EQ(CircConverter(0, 8), 0);
    EXPECT_EQ(CircConverter(2, 8), 0.5f);
    EXPECT_EQ(CircConverter(4, 8), 1);
    EXPECT_EQ(CircConverter(6, 8), 0.5f);
    EXPECT_EQ(CircConverter(8, 8), 0);
    EXPECT_THROW(CircConverter(8.1f, 8), BadDataException);
}

}  // namespace
}  // namespace app
