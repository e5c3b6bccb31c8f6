#include "physics/Hinge.h"

#include <cmath>
#include <limits>

#include "physics/World.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;
using physics::HingePtr;

class HingeTest : public World {};

TEST_F(HingeTest, AnchorsAreTheGeomsOwn) {
    const BodyPtr box = AddBox({2, 1}, 1, 1);
    box->m_angle = math::PI / 2;
    box->UpdateGeoms();
    const HingePtr hinge = AddHinge(sim.GetWorldBody(), box, {2.5f, 1});
    EXPECT_LT(math::Length(hinge->GetAnchor(0) - Vec2(2.5f, 1)), 1e-6f);
    EXPECT_LT(math::Length(hinge->GetAnchor(1) - Vec2(0, -0.5f)), 1e-6f);
    EXPECT_LT(math::Length(hinge->GetWorldAnchor(1) - Vec2(2.5f, 1)), 1e-6f);
}

TEST_F(HingeTest, JoinedGeomsDoNotCollide) {
    const BodyPtr a = AddCircle({0, 0}, 1);
    const BodyPtr b = AddCircle({0.5f, 0}, 1);
    const HingePtr hinge = AddHinge(a, b, {0.2f, 0});
    EXPECT_EQ(GeomOf(a)->m_noCollide.count(GeomOf(b).Get()), 1u);
    EXPECT_EQ(GeomOf(b)->m_noCollide.count(GeomOf(a).Get()), 1u);
    sim.Step(false);
    EXPECT_EQ(sim.GetContacts().size(), 0u);
    // Two hinges share the entry: without one of them the pair collides.
    AddHinge(a, b, {0.3f, 0});
    sim.RemoveConstraint(hinge);
    sim.Step(false);
    EXPECT_EQ(sim.GetContacts().size(), 1u);
}

TEST_F(HingeTest, ClearTakesTheEntriesOut) {
    const BodyPtr a = AddCircle({0, 0}, 1);
    const BodyPtr b = AddCircle({3, 0}, 1);
    const physics::GeomPtr geom = GeomOf(a);
    AddHinge(a, b, {1, 0});
    sim.Clear();
    EXPECT_TRUE(geom->m_noCollide.empty());
    EXPECT_TRUE(sim.GetHinges().empty());
}

TEST_F(HingeTest, RefusesWhatCannotMove) {
    const BodyPtr a = AddCircle({0, 0}, 1);
    const BodyPtr b = AddCircle({3, 0}, 1);
    const HingePtr hinge = AddHinge(a, b, {1, 0});
    EXPECT_TRUE(hinge->SolveInit(Constants()));
    a->m_held = true;
    EXPECT_TRUE(hinge->SolveInit(Constants()));
    b->m_held = true;
    EXPECT_FALSE(hinge->SolveInit(Constants()));
    const HingePtr onOneBody = new physics::Hinge(GeomOf(a), GeomOf(a), Vec2(0, 0));
    a->m_held = false;
    EXPECT_FALSE(onOneBody->SolveInit(Constants()));
}

TEST_F(HingeTest, RetiresWithItsBodies) {
    const BodyPtr a = AddCircle({0, 0}, 1);
    const BodyPtr b = AddCircle({3, 0}, 1);
    const HingePtr hinge = AddHinge(a, b, {1, 0});
    EXPECT_TRUE(hinge->AreBodiesValid());
    sim.RemoveBody(b);
    EXPECT_FALSE(hinge->AreBodiesValid());
    sim.Step(true);
    EXPECT_FALSE(sim.HasConstraint(hinge));
    EXPECT_TRUE(GeomOf(a)->m_noCollide.empty());
}

// The slider of the motor goes up to infinity at both ends.
TEST_F(HingeTest, EndlessMotorStaysFinite) {
    const float infinity = std::numeric_limits<float>::infinity();
    const BodyPtr wheel = AddCircle({0, 5}, 0.5f);
    const HingePtr hinge = AddHinge(sim.GetWorldBody(), wheel, {0, 5});
    hinge->SetMotor(true);
    hinge->SetMotorSpeed(-infinity);
    hinge->SetMotorTorque(infinity);
    Run(0.5f);
    EXPECT_TRUE(std::isfinite(wheel->m_pos.x) && std::isfinite(wheel->m_angVel));
    EXPECT_NEAR(wheel->m_angVel, -1e4f, 100);
    EXPECT_TRUE(sim.HasBody(wheel));
}

// maxPositionCorrection bounds how far anchors are pulled together in a step.
TEST_F(HingeTest, PullIsBoundedByMaxPositionCorrection) {
    sim.m_gravitySwitch->Set(false);
    ClearAir();
    sim.m_maxPositionCorrection->Set(0.01f);
    const BodyPtr body = AddCircle({0, 0}, 0.5f);
    const HingePtr hinge = new physics::Hinge(sim.GetWorldGeom(), GeomOf(body), Vec2(3, 0), Vec2(0, 0));
    sim.AddConstraint(hinge);
    sim.Step(true);
    EXPECT_NEAR(body->m_vel.x, 19.047619f * 0.01f, 2e-3f);
}

}  // namespace test
