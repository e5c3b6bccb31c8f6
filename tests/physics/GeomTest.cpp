#include "physics/Geom.h"

#include <gtest/gtest.h>

#include <limits>

#include "Shapes.h"

namespace physics {
namespace {

using math::RigidTransform;
using math::Vec2;

constexpr float INF = std::numeric_limits<float>::infinity();

TEST(Circle, AnswersAboutItsSurface) {
    const CirclePtr circle = new Circle(2, {1, 1});
    EXPECT_FLOAT_EQ(circle->GetDistance({1, 5}), 2);
    EXPECT_FLOAT_EQ(circle->GetDistance({1, 1}), -2);
    EXPECT_EQ(circle->GetNormal({1, 5}), Vec2(0, 1));
    EXPECT_EQ(circle->GetNormal({1, 1}), Vec2());
    EXPECT_FLOAT_EQ(circle->GetArea(), 4 * math::PI);
    EXPECT_FLOAT_EQ(circle->GetInertiaSansMass(), 2);
    EXPECT_EQ(circle->GetBoundingBox(), math::BoundingBox2f({-1, -1}, {3, 3}));
    EXPECT_EQ(circle->GetOBB().center, Vec2(1, 1));
    EXPECT_EQ(circle->GetOBB().halfSize, Vec2(2, 2));
    EXPECT_EQ(circle->GetBoundingCircle(), math::Vec3(1, 1, 2));
}

TEST(Plane, MovesWithItsTransform) {
    const PlanePtr plane = new Plane({0, 1}, 0);
    plane->SetTransform(RigidTransform(math::PI / 2, Vec2(5, 3)));
    // The free side, once up, is now to the left of x = 5.
    EXPECT_NEAR(plane->GetDistance({3, 100}), 2, 1e-4f);
    EXPECT_NEAR(plane->GetDistance({6, -7}), -1, 1e-5f);
    EXPECT_NEAR(plane->GetNormal({0, 0}).x, -1, 1e-6f);
}

TEST(WorldGeom, IsEverywhereAndEmpty) {
    const WorldGeomPtr world = new WorldGeom;
    EXPECT_EQ(world->GetDistance({1e6f, 0}), -1);
    EXPECT_EQ(world->GetNormal({1, 2}), Vec2());
    EXPECT_EQ(world->GetBoundingBox(), math::BoundingBox2f());
    EXPECT_EQ(world->GetBoundingCircle(), math::Vec3(0, 0, -INF));
    EXPECT_EQ(world->GetOBB().halfSize, Vec2(-INF, -INF));
    EXPECT_EQ(world->GetArea(), INF);
}

TEST(Geom, CopyKeepsShapePlaceAndSurfaceOnly) {
    const CirclePtr circle = new Circle(2, {1, 1});
    const BodyPtr body = new Body(circle);
    circle->m_density = 7;
    circle->m_friction = 0.1f;
    circle->m_restitution = 0.2f;
    circle->m_collideWater = false;
    circle->m_collideSet = 6;
    circle->m_noCollide.insert(circle.Get());
    const CirclePtr copy = new Circle(*circle);
    EXPECT_GT(copy->GetID(), circle->GetID());
    EXPECT_EQ(copy->GetBodyPtr(), nullptr);
    EXPECT_TRUE(copy->m_noCollide.empty());
    EXPECT_EQ(copy->m_radius, 2);
    EXPECT_EQ(copy->GetPos(), Vec2(1, 1));
    EXPECT_EQ(copy->m_density, 7);
    EXPECT_EQ(copy->m_friction, 0.1f);
    EXPECT_EQ(copy->m_restitution, 0.2f);
    EXPECT_FALSE(copy->m_collideWater);
    EXPECT_EQ(copy->m_collideSet, 6u);
    body->SetGeoms(GeomSet());
}

TEST(Geom, RemembersTheAngleThatItWasGiven) {
    const physics::CirclePtr circle = new Circle(1);
    for (const double angle : {0.0, 0.1, -2.123456789012345, 3.0, 7.5}) {
        circle->SetAngleAndPos(angle, {1, 2});
        EXPECT_EQ(circle->GetAngle(), angle);
    }
    circle->SetTransform(RigidTransform(0.25f, Vec2(1, 2)));
    EXPECT_NEAR(circle->GetAngle(), 0.25, 1e-6);
}

}  // namespace
}  // namespace physics
