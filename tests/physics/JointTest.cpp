#include <cmath>

#include "physics/World.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;
using physics::SpringJoint;
using physics::SpringJointPtr;

class JointTest : public World {
  protected:
    JointTest() {
        ClearAir();
        sim.m_gravitySwitch->Set(false);
    }
    SpringJointPtr AddSpring(const BodyPtr& a, const BodyPtr& b, Vec2 anchorA, Vec2 anchorB, float length,
                             float strength, float damping) {
        const SpringJointPtr spring =
            new SpringJoint(GeomOf(a), GeomOf(b), anchorA, anchorB, length, strength, damping);
        sim.AddJoint(spring);
        return spring;
    }
};

// angular frequency = sqrt(springForce * strength), whatever the masses.
TEST_F(JointTest, FrequencyDoesNotDependOnMass) {
    for (const float radius : {0.1f, 1.0f}) {
        sim.Clear();
        const BodyPtr ball = AddCircle({0, 0}, radius);
        AddSpring(sim.GetWorldBody(), ball, {-3, 0}, {0, 0}, 2.5f, 0.05f, 0);
        int crossings = 0;
        float last = ball->m_pos.x + 0.5f;
        for (int i = 0; i < 1000; ++i) {
            sim.Step(true);
            const float now = ball->m_pos.x + 0.5f;
            if ((now > 0) != (last > 0)) ++crossings;
            last = now;
        }
        const float frequency = math::PI * static_cast<float>(crossings) / 10;
        EXPECT_NEAR(frequency, std::sqrt(50.0f), 0.3f) << "radius " << radius;
    }
}

TEST_F(JointTest, ForceIsEqualAndOppositeAndZeroAtRest) {
    const BodyPtr a = AddCircle({0, 0}, 0.3f);
    const BodyPtr b = AddBox({2, 0}, 0.4f, 0.8f);
    const SpringJointPtr spring = AddSpring(a, b, {0, 0.1f}, {0, 0.1f}, 1.5f, 0.1f, 0.1f);
    spring->ApplyForce(sim.GetStepSettings());
    EXPECT_GT(a->m_force.x, 0);
    EXPECT_EQ(a->m_force, -b->m_force);
    // e from the local anchors: both arms stand across the spring.
    const float arm = 0.1f * 0.1f;
    const float e = 1 / (a->m_massInv + b->m_massInv + (a->m_inertiaInv + b->m_inertiaInv) * arm);
    EXPECT_NEAR(a->m_force.x, 1000 * e * 0.1f * 0.5f, 1e-3f);
    EXPECT_NEAR(a->m_torque, -0.1f * a->m_force.x, 1e-4f);

    a->m_force = b->m_force = Vec2();
    spring->SetLength(2);
    spring->ApplyForce(sim.GetStepSettings());
    EXPECT_EQ(a->m_force, Vec2());
    EXPECT_EQ(b->m_force, Vec2());
}

// At rest k stretch = m g, and k = springForce e strength with e = m for a ball that hangs by its centre.
TEST_F(JointTest, StretchUnderAWeightDoesNotDependOnMass) {
    sim.m_gravitySwitch->Set(true);
    for (const float radius : {0.05f, 0.5f, 5.0f}) {
        sim.Clear();
        const BodyPtr ball = AddCircle({0, -2}, radius);
        AddSpring(sim.GetWorldBody(), ball, {0, 0}, {0, 0}, 2, 0.05f, 1);
        Run(5);
        const float stretch = 9.8f / (1000 * 0.05f);
        EXPECT_NEAR(-2 - ball->m_pos.y, stretch, 0.01f * stretch) << "radius " << radius;
    }
}

TEST_F(JointTest, CriticalDampingDoesNotOvershoot) {
    const BodyPtr ball = AddCircle({0, 0}, 0.3f);
    AddSpring(sim.GetWorldBody(), ball, {-3, 0}, {0, 0}, 2, 0.05f, 1);
    float farthest = 0;
    for (int i = 0; i < 300; ++i) {
        sim.Step(true);
        farthest = std::min(farthest, ball->m_pos.x + 1);
    }
    EXPECT_GT(farthest, -0.02f);
    EXPECT_NEAR(ball->m_pos.x, -1, 0.01f);
}

TEST_F(JointTest, CoincidentAnchorsPullAlongX) {
    const BodyPtr a = AddCircle({0, 0}, 0.3f);
    const BodyPtr b = AddCircle({0, 0}, 0.3f);
    const SpringJointPtr spring = AddSpring(a, b, {0, 0}, {0, 0}, 1, 0.05f, 0);
    spring->ApplyForce(sim.GetStepSettings());
    EXPECT_LT(a->m_force.x, 0);
    EXPECT_EQ(a->m_force.y, 0);
}

TEST_F(JointTest, ImmovableEndsTakeNothing) {
    const BodyPtr a = AddCircle({0, 0}, 0.3f);
    const BodyPtr b = AddCircle({2, 0}, 0.3f);
    const SpringJointPtr spring = AddSpring(a, b, {0, 0}, {0, 0}, 1, 0.05f, 0);
    a->m_held = b->m_held = true;
    spring->ApplyForce(sim.GetStepSettings());
    EXPECT_EQ(a->m_force, Vec2());
    EXPECT_EQ(b->m_force, Vec2());
}

TEST_F(JointTest, InvalidOnesRetire) {
    const BodyPtr a = AddCircle({0, 0}, 0.3f);
    const BodyPtr b = AddCircle({2, 0}, 0.3f);
    const SpringJointPtr lost = AddSpring(a, b, {0, 0}, {0, 0}, 1, 0.05f, 0);
    const SpringJointPtr onOneGeom = AddSpring(a, a, {0, 0}, {0, 0}, 1, 0.05f, 0);
    const SpringJointPtr toWorld = AddSpring(sim.GetWorldBody(), a, {0, 0}, {0, 0}, 1, 0.05f, 0);
    sim.RemoveBody(b);
    sim.Step(true);
    EXPECT_FALSE(sim.HasJoint(lost));
    EXPECT_FALSE(sim.HasJoint(onOneGeom));
    EXPECT_TRUE(sim.HasJoint(toWorld));
}

}  // namespace test
