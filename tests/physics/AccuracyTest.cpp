// Scenes whose outcome is known from formulas and laws.

#include <cmath>

#include "physics/World.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;

class Accuracy : public World {};

TEST_F(Accuracy, FreeFallFollowsTheParabola) {
    ClearAir();
    const BodyPtr body = AddCircle({0, 100}, 0.5f);
    body->m_vel = {3, 0};
    Run(2);
    EXPECT_NEAR(body->m_pos.x, 6, 1e-3);
    EXPECT_NEAR(body->m_pos.y, 100 - 0.5f * 9.8f * 2 * (2 + 0.01f), 2e-3);  // places follow the new velocity
    EXPECT_NEAR(body->m_vel.y, -19.6f, 1e-3);
}

TEST_F(Accuracy, RestingDepthIsAHairAboveTheTarget) {
    constexpr float DEPTH = 0.00112f;
    constexpr float TOLERANCE = 0.0002f;
    AddGround();
    const BodyPtr circle = AddCircle({0, 0.5f}, 0.5f);
    const BodyPtr box = AddBox({3, 0.25f}, 0.5f, 0.5f);
    Run(10);
    EXPECT_NEAR(0.5f - circle->m_pos.y, DEPTH, TOLERANCE);
    EXPECT_NEAR(0.25f - box->m_pos.y, DEPTH, TOLERANCE);
    EXPECT_NEAR(GetDeepestContact(), DEPTH, TOLERANCE);
    EXPECT_LT(GetFastestBody(), 1e-3);
    EXPECT_NEAR(box->m_angle, 0, 1e-3);
}

TEST_F(Accuracy, TiltedBoxLiesFlatInTheEnd) {
    AddGround();
    const BodyPtr box = AddBox({0, 1}, 0.8f, 0.4f);
    box->m_angle = math::PI / 6;
    box->UpdateGeoms();
    Run(10);
    EXPECT_LT(std::fabs(std::sin(box->m_angle)), 2e-3);
    EXPECT_NEAR(box->m_pos.y, 0.2f, 0.003f);
    EXPECT_LT(GetFastestBody(), 1e-3);
}

// The speed after each of a ball's impacts over the speed before, with restitution 0.5.
TEST_F(Accuracy, BounceRatioIsTheRestitution) {
    ClearAir();
    SetSurface(0.5f, 0.5f);
    AddGround();
    const BodyPtr ball = AddCircle({0, 2.5f}, 0.5f);
    float before = 0;
    int bounces = 0;
    for (int i = 0; i < 400 && bounces < 3; ++i) {
        const float last = ball->m_vel.y;
        sim.Step(true);
        if (last >= 0 || ball->m_vel.y <= 0) continue;
        before = -last;
        ++bounces;
        EXPECT_NEAR(ball->m_vel.y / before, 0.5f, bounces == 1 ? 0.02f : 0.05f) << "bounce " << bounces;
    }
    EXPECT_EQ(bounces, 3);
}

TEST_F(Accuracy, SlideDownASlopeFollowsFriction) {
    ClearAir();
    SetSurface(0.5f, 0);
    constexpr float ANGLE = 35 * math::PI / 180;
    const Vec2 normal(-std::sin(ANGLE), std::cos(ANGLE));
    AddGround(normal);
    const BodyPtr box = AddBox({0, 0}, 0.4f, 0.4f);
    box->m_angle = ANGLE;
    box->m_pos = normal * 0.199f;
    box->UpdateGeoms();
    Run(2);
    const float theory = 9.8f * (std::sin(ANGLE) - 0.5f * std::cos(ANGLE)) * 2;
    EXPECT_NEAR(math::Length(box->m_vel), theory, 0.01f * theory);
}

TEST_F(Accuracy, MotorReachesItsSpeed) {
    const BodyPtr wheel = AddCircle({0, 5}, 0.5f);
    const physics::HingePtr hinge = AddHinge(sim.GetWorldBody(), wheel, {0, 5});
    hinge->SetMotor(true);
    hinge->SetMotorSpeed(math::PI / 2);
    hinge->SetMotorTorque(100);
    Run(0.1f);
    EXPECT_NEAR(wheel->m_angVel, math::PI / 2, 0.01f * math::PI / 2);
    EXPECT_LT(math::Length(wheel->m_pos - Vec2(0, 5)), 0.005f);
}

// The torque bounds the angular acceleration, whatever the wheel's inertia.
TEST_F(Accuracy, MotorTorqueBoundsTheAcceleration) {
    ClearAir();
    for (const float radius : {0.2f, 1.0f}) {
        const BodyPtr wheel = AddCircle({radius * 10, 5}, radius);
        const physics::HingePtr hinge = AddHinge(sim.GetWorldBody(), wheel, wheel->m_pos);
        hinge->SetMotor(true);
        hinge->SetMotorSpeed(100);
        hinge->SetMotorTorque(-1);  // as its absolute value
        Run(0.5f);
        EXPECT_NEAR(wheel->m_angVel, 0.5f, 0.005f);
        hinge->SetMotorTorque(0);
        Run(0.5f);
        EXPECT_NEAR(wheel->m_angVel, 0.5f, 0.005f);
    }
}

TEST_F(Accuracy, PairKeepsItsMomentum) {
    ClearAir();
    sim.m_gravitySwitch->Set(false);
    const BodyPtr a = AddBox({-1, 0.1f}, 0.6f, 0.4f);
    const BodyPtr b = AddCircle({1, 0}, 0.3f);
    a->m_vel = {2, 0};
    b->m_vel = {-1, 0.2f};
    const auto momentum = [&] { return a->m_vel * a->m_mass + b->m_vel * b->m_mass; };
    const auto spin = [&] {
        return a->m_inertia * a->m_angVel + a->m_mass * math::Cross(a->m_pos, a->m_vel) +
               b->m_inertia * b->m_angVel + b->m_mass * math::Cross(b->m_pos, b->m_vel);
    };
    const Vec2 before = momentum();
    const float spinBefore = spin();
    Run(3);
    ASSERT_GT(std::fabs(a->m_vel.x - 2), 0.1f) << "they must have met";
    EXPECT_LT(math::Length(momentum() - before), 1e-4f);
    EXPECT_NEAR(spin(), spinBefore, 2e-3f);  // positions move between force and impulse
}

TEST_F(Accuracy, StacksStand) {
    struct Case {
        int boxes;
        bool prioritized;
        float seconds;
        float drift;
    };
    for (const Case& c : {Case{5, false, 5, 0.02f}, {10, false, 60, 0.02f}, {5, true, 3, 0.002f}}) {
        SCOPED_TRACE(testing::Message() << c.boxes << " boxes, prioritized " << c.prioritized);
        sim.Clear();
        sim.m_prioritizedSolver->Set(c.prioritized);
        SetSurface(0.5f, 0);
        AddGround();
        const std::vector<BodyPtr> boxes = AddStack(c.boxes);
        Run(c.seconds);
        for (size_t i = 0; i < boxes.size(); ++i) {
            EXPECT_LT(std::fabs(boxes[i]->m_pos.x), c.drift) << "box " << i;
            EXPECT_NEAR(boxes[i]->m_pos.y, (static_cast<float>(i) + 0.5f) * 0.4f, 0.02f) << "box " << i;
        }
        EXPECT_LT(GetFastestBody(), 0.05f);
        EXPECT_LT(GetDeepestContact(), 0.003f);
    }
}

TEST_F(Accuracy, PyramidStands) {
    SetSurface(0.5f, 0);
    AddGround();
    const std::vector<BodyPtr> boxes = AddPyramid(12);
    std::vector<float> heights;
    for (const BodyPtr& box : boxes) heights.push_back(box->m_pos.y);
    Run(10);
    for (size_t i = 0; i < boxes.size(); ++i) EXPECT_NEAR(boxes[i]->m_pos.y, heights[i], 0.03f);
    EXPECT_LT(GetKineticEnergy(), 1e-3f);
}

}  // namespace test
