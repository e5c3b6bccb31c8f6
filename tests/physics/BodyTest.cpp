#include "physics/Body.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Shapes.h"
#include "support/LogCapture.h"
#include "util/WeakPtr.h"

namespace physics {
namespace {

using math::Vec2;

constexpr float INF = std::numeric_limits<float>::infinity();

GeomPtr CircleAt(Vec2 pos, float radius, float density = 2) {
    GeomPtr circle = new Circle(radius, pos);
    circle->m_density = density;
    return circle;
}

TEST(Body, WithoutMassIsImmovable) {
    const BodyPtr body = new Body;
    EXPECT_EQ(body->m_mass, INF);
    EXPECT_EQ(body->m_inertia, INF);
    EXPECT_EQ(body->m_massInv, 0);
    EXPECT_TRUE(body->IsImmovable());
}

TEST(Body, IDsCountUpAndCopiesGetTheirOwn) {
    const BodyPtr first = new Body, second = new Body, copy = new Body(*first);
    EXPECT_EQ(second->GetID(), first->GetID() + 1);
    EXPECT_EQ(copy->GetID(), first->GetID() + 2);
}

TEST(Body, CopyTakesPlaceAndMotionButNoGeoms) {
    const BodyPtr body = test::MakeBody(CircleAt({3, 4}, 1));
    body->m_vel = {1, 2};
    body->m_angVel = 3;
    body->m_force = {4, 5};
    body->m_torque = 6;
    body->m_angle = 0.5f;
    body->UpdateGeoms();
    body->m_held = true;
    const BodyPtr copy = new Body(*body);
    EXPECT_EQ(copy->m_pos, Vec2(3, 4));
    EXPECT_EQ(copy->m_vel, Vec2(1, 2));
    EXPECT_EQ(copy->m_force, Vec2(4, 5));
    EXPECT_EQ(copy->m_angVel, 3);
    EXPECT_EQ(copy->m_torque, 6);
    EXPECT_EQ(copy->m_angle, 0.5f);
    EXPECT_EQ(copy->GetTransform().cos, body->GetTransform().cos);
    EXPECT_EQ(copy->GetInvTransform().x, body->GetInvTransform().x);
    EXPECT_FALSE(copy->m_held);
    EXPECT_TRUE(copy->GetGeoms().empty());
    EXPECT_TRUE(copy->IsImmovable());
}

TEST(Body, MassOfACircle) {
    const BodyPtr body = test::MakeBody(CircleAt({-3, 7}, 0.5f));
    const float mass = 2 * math::PI * 0.25f;
    EXPECT_FLOAT_EQ(body->m_mass, mass);
    EXPECT_FLOAT_EQ(body->m_inertia, mass * 0.125f);
    EXPECT_FLOAT_EQ(body->m_massInv * body->m_mass, 1);
    EXPECT_FLOAT_EQ(body->m_inertiaInv * body->m_inertia, 1);
    EXPECT_EQ(body->m_pos, Vec2(-3, 7));
}

TEST(Body, TwoCirclesAddUpBySteiner) {
    const float r = 0.5f;
    const BodyPtr body = new Body;
    body->SetGeoms({CircleAt({-1, 0}, r), CircleAt({1, 0}, r)});
    const float m = 2 * math::PI * r * r;
    EXPECT_EQ(body->m_pos, Vec2(0, 0));
    EXPECT_FLOAT_EQ(body->m_mass, 2 * m);
    EXPECT_FLOAT_EQ(body->m_area, m);
    EXPECT_FLOAT_EQ(body->m_inertia, 2 * (r * r / 2 + 1) * m);
}

TEST(Body, DensitiesMoveTheCentreOfMass) {
    const BodyPtr body = new Body;
    body->SetGeoms({CircleAt({0, 0}, 1, 1), CircleAt({4, 0}, 1, 3)});
    EXPECT_FLOAT_EQ(body->m_pos.x, 3);
    EXPECT_FLOAT_EQ(body->m_pos.y, 0);
}

TEST(Body, SetGeomsStraightensTheFrameAndLeavesGeomsWhereTheyAre) {
    const GeomPtr box = MakeBoxPolygon(1, 2, 3, 6).Get();
    const BodyPtr body = test::MakeBody(box);
    body->m_vel = {5, 6};
    body->m_angle = 1;
    body->UpdateGeoms();
    const Vec2 corner = util::DynamicCast<Polygon>(box)->GetWorldVertices()[0];
    body->RefreshGeoms();
    EXPECT_EQ(body->m_angle, 0);
    EXPECT_EQ(body->m_vel, Vec2(5, 6));
    body->UpdateGeoms();
    const Vec2 after = util::DynamicCast<Polygon>(box)->GetWorldVertices()[0];
    EXPECT_NEAR(after.x, corner.x, 1e-5f);
    EXPECT_NEAR(after.y, corner.y, 1e-5f);
}

TEST(Body, CarriesItsGeomsRigidly) {
    const GeomPtr left = CircleAt({-1, 0}, 0.5f), right = CircleAt({1, 0}, 0.5f);
    const BodyPtr body = new Body;
    body->SetGeoms({left, right});
    body->m_pos = {10, 20};
    body->m_angle = math::PI / 2;
    body->UpdateGeoms();
    EXPECT_NEAR(left->GetPos().x, 10, 1e-5f);
    EXPECT_NEAR(left->GetPos().y, 19, 1e-5f);
    EXPECT_NEAR(right->GetPos().y, 21, 1e-5f);
    const Vec2 local = right->GetInvTransform()(right->GetPos());
    EXPECT_NEAR(math::Length(local), 0, 1e-5f);
}

TEST(Body, UpdateGeomsWrapsTheAngle) {
    const BodyPtr body = test::MakeBody(CircleAt({0, 0}, 1));
    body->m_angle = 4;
    body->UpdateGeoms();
    EXPECT_NEAR(body->m_angle, -2.2832f, 1e-4f);
}

TEST(Body, EmptySetLeavesAUnitMassInPlace) {
    const GeomPtr circle = CircleAt({2, 3}, 1);
    const BodyPtr body = test::MakeBody(circle);
    body->SetGeoms(GeomSet());
    EXPECT_EQ(body->m_mass, 1);
    EXPECT_EQ(body->m_massInv, 1);
    EXPECT_EQ(body->m_inertia, 1);
    EXPECT_EQ(body->m_inertiaInv, 1);
    EXPECT_EQ(body->m_pos, Vec2(2, 3));
    EXPECT_EQ(circle->GetBodyPtr(), nullptr);
    EXPECT_TRUE(body->IsBad());
}

TEST(Body, LeavesOutBadGeomsWithAWarning) {
    const GeomPtr good = CircleAt({1, 1}, 1), massless = CircleAt({5, 5}, 1, 0), lost = CircleAt({INF, 0}, 1);
    const BodyPtr body = new Body;
    test::LogCapture log;
    body->SetGeoms({massless, good, lost, GeomPtr()});
    EXPECT_EQ(log.Count("Bad geometry in Body::AddGeoms"), 1) << "equal warnings of a frame are filtered";
    EXPECT_EQ(body->GetGeoms(), GeomSet{good});
    EXPECT_EQ(body->m_pos, Vec2(1, 1));
    EXPECT_EQ(massless->GetBodyPtr(), nullptr);

    body->SetGeoms({massless});
    EXPECT_EQ(body->m_mass, 1);
    EXPECT_TRUE(body->GetParts().empty());
}

TEST(Body, PlaneMakesItImmovableWithItsFrameAtTheOrigin) {
    const BodyPtr body = new Body;
    body->SetGeoms({GeomPtr(new Plane({0, 1}, -3)), CircleAt({4, 4}, 1)});
    EXPECT_EQ(body->m_mass, INF);
    EXPECT_EQ(body->m_inertia, INF);
    EXPECT_EQ(body->m_massInv, 0);
    EXPECT_EQ(body->m_inertiaInv, 0);
    EXPECT_EQ(body->m_pos, Vec2(0, 0));
    EXPECT_TRUE(body->IsImmovable());
    EXPECT_EQ(body->GetParts().size(), 2u);
}

TEST(Body, ItsOwnSetMayBeTheArgument) {
    const BodyPtr body = test::MakeBody(CircleAt({0, 0}, 1));
    body->AddGeom(CircleAt({2, 0}, 1));
    body->SetGeoms(body->GetGeoms());
    EXPECT_EQ(body->GetParts().size(), 2u);
    EXPECT_FLOAT_EQ(body->m_pos.x, 1);
}

TEST(Body, ChangedDensityReachesTheMass) {
    const GeomPtr circle = CircleAt({0, 0}, 1);
    const BodyPtr body = test::MakeBody(circle);
    const float mass = body->m_mass;
    circle->m_density *= 3;
    circle->UpdateBody();
    EXPECT_FLOAT_EQ(body->m_mass, 3 * mass);
}

TEST(Body, EmptySetFreesBodyAndGeoms) {
    const int before = util::Pointee::GetCount();
    util::WeakPtr<Body> weak;
    {
        const BodyPtr body = test::MakeBody(CircleAt({0, 0}, 1));
        weak = body;
        body->AddGeom(CircleAt({1, 0}, 1));
    }
    ASSERT_TRUE(weak) << "the cycle keeps it";
    weak.Get()->SetGeoms(GeomSet());
    EXPECT_FALSE(weak);
    EXPECT_EQ(util::Pointee::GetCount(), before);
}

TEST(Body, HeldWeighsInfinitelyMuchAndStops) {
    const BodyPtr body = test::MakeBody(CircleAt({0, 0}, 1));
    body->m_vel = {1, 1};
    body->m_angVel = 1;
    body->SetHeld(true);
    EXPECT_TRUE(body->IsImmovable());
    EXPECT_EQ(body->GetMassInv(), 0);
    EXPECT_EQ(body->GetInertiaInv(), 0);
    EXPECT_EQ(body->m_vel, Vec2());
    EXPECT_EQ(body->m_angVel, 0);
    body->SetHeld(false);
    EXPECT_EQ(body->GetMassInv(), body->m_massInv);
    EXPECT_FALSE(body->IsImmovable());
}

TEST(Body, BadBeyondTheLimitsOnly) {
    const BodyPtr body = test::MakeBody(CircleAt({0, 0}, 1));
    body->m_pos = {100000, 0};
    EXPECT_FALSE(body->IsBad());
    body->m_pos = {100000.5f, 0};
    EXPECT_TRUE(body->IsBad());
    body->m_pos = {0, 0};
    body->m_vel = {0, -100001};
    EXPECT_TRUE(body->IsBad());
    body->m_vel = {0, 0};
    body->m_angVel = -100001;
    EXPECT_TRUE(body->IsBad());
    body->m_angVel = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(body->IsBad()) << "strict comparisons let a NaN pass";
}

// ---- motion of parts

static BodyPtr SpinningPair(const GeomPtr& left, const GeomPtr& right) {
    const BodyPtr pair = new Body;
    pair->SetGeoms({left, right});
    pair->m_vel = {1, 2};
    pair->m_angVel = 3;
    return pair;
}

TEST(Body, HalfOfASpinningPairFliesOn) {
    const GeomPtr left = CircleAt({-1, 0}, 0.5f), right = CircleAt({1, 0}, 0.5f);
    const BodyPtr pair = SpinningPair(left, right);
    pair->SetGeoms({right});
    EXPECT_FLOAT_EQ(pair->m_vel.x, 1);
    EXPECT_FLOAT_EQ(pair->m_vel.y, 5);
    EXPECT_EQ(pair->m_angVel, 3);
}

TEST(Body, WhatImmovableOnesAbsorbRests) {
    const BodyPtr ground = test::MakeBody(new Plane(Vec2(0, 1), 0));
    const BodyPtr stone = test::MakeBody(CircleAt({0, 1}, 1));
    stone->m_vel = {2, 0};
    ground->Absorb(*stone);
    EXPECT_EQ(ground->m_vel, Vec2());
    EXPECT_TRUE(ground->IsImmovable());
}

static void ExpectSameBits(const GeomPlace& a, const GeomPlace& b) {
    EXPECT_EQ(a.transform.cos, b.transform.cos);
    EXPECT_EQ(a.transform.sin, b.transform.sin);
    EXPECT_EQ(a.transform.x, b.transform.x);
    EXPECT_EQ(a.transform.y, b.transform.y);
    EXPECT_EQ(a.angle, b.angle);
}

TEST(Body, StateComesBackToTheBit) {
    const GeomPtr left = CircleAt({-1.1f, 0.3f}, 0.5f), right = CircleAt({1.7f, 2.9f}, 0.8f);
    const BodyPtr pair = SpinningPair(left, right);
    pair->m_angle = 0.7f;
    pair->m_pos += Vec2(0.1f, 0.7f);
    pair->UpdateGeoms();
    const Body::State state = pair->GetState();
    pair->SetGeoms(GeomSet());
    right->SetTransform({});
    pair->m_vel = Vec2();
    pair->m_angVel = 0;
    pair->SetState(state);
    const Body::State again = pair->GetState();
    ExpectSameBits(again.places[0], state.places[0]);
    ExpectSameBits(again.places[1], state.places[1]);
    EXPECT_EQ(again.pos, state.pos);
    EXPECT_EQ(again.angle, 0.7f);
    EXPECT_EQ(again.vel, Vec2(1, 2));
    EXPECT_EQ(again.angVel, 3);
    EXPECT_EQ(again.mass, state.mass);
    EXPECT_EQ(again.inertiaInv, state.inertiaInv);
    EXPECT_EQ(right->GetBodyPtr(), pair.Get());
    EXPECT_EQ(pair->GetGeoms().size(), 2u);
}

// A body whose frame has turned, and one made from the places of its geoms, are the same after Settle.
TEST(Body, SettledIsAsMadeFromThePlaces) {
    const GeomPtr left = CircleAt({-1.1f, 0.3f}, 0.5f), right = CircleAt({1.7f, 2.9f}, 0.8f);
    const BodyPtr pair = SpinningPair(left, right);
    pair->m_angle = 0.7f;
    pair->UpdateGeoms();
    pair->Settle();
    const GeomPtr left2 = CircleAt({}, 0.5f), right2 = CircleAt({}, 0.8f);
    left2->SetAngleAndPos(left->GetAngle(), left->GetPos());
    right2->SetAngleAndPos(right->GetAngle(), right->GetPos());
    const BodyPtr copy = new Body;
    copy->SetGeoms({left2, right2});
    ExpectSameBits(copy->GetState().places[1], pair->GetState().places[1]);
    EXPECT_EQ(copy->m_pos, pair->m_pos);
    EXPECT_EQ(copy->m_angle, pair->m_angle);
    EXPECT_EQ(copy->m_inertia, pair->m_inertia);
    EXPECT_NEAR(left->GetAngle(), 0.7, 1e-6);
}

TEST(GeomSet, OrderedByCreation) {
    std::vector<GeomPtr> made;
    for (int i = 0; i < 20; ++i) made.push_back(CircleAt({0, 0}, 1));
    GeomSet set(made.rbegin(), made.rend());
    size_t i = 0;
    for (const GeomPtr& geom : set) EXPECT_EQ(geom, made[i++]);
}

}  // namespace
}  // namespace physics
