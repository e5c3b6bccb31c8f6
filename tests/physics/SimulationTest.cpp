#include "physics/Simulation.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "physics/ContactSolve.h"
#include "physics/World.h"
#include "support/LogCapture.h"
#include "util/Clock.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;

// Time that stands still but for what each reading of the clock costs.
static double s_now = 0;
static double s_perReading = 0;
static double ReadClock() {
    return s_now += s_perReading;
}

class SimulationTest : public World {
  protected:
    SimulationTest() {
        s_now = s_perReading = 0;
        util::Clock::SetSource(ReadClock);
        sim.SetMaxUpdateTime(0.1f);
    }
    ~SimulationTest() override { util::Clock::SetSource(nullptr); }

    // Steps made by an Update, told by a body in free flight.
    int CountSteps(double dt) {
        const BodyPtr probe = AddCircle({0, 0}, 0.1f);
        sim.m_gravitySwitch->Set(false);
        probe->m_vel = {1, 0};
        sim.Update(dt);
        const float steps = probe->m_pos.x / sim.m_timeDelta->Get();
        sim.RemoveBody(probe);
        return static_cast<int>(std::lround(steps));
    }
    bool HasLine(const String& line) const {
        return ("\n" + sim.GetStats()).find("\n" + line + "\n") != String::npos;
    }
};

TEST_F(SimulationTest, WorldBodyIsTheFirstOfAll) {
    EXPECT_EQ(sim.GetWorldBody()->GetID(), 0u);
    EXPECT_EQ(sim.GetWorldGeom()->GetID(), 0u);
    EXPECT_TRUE(sim.GetWorldBody()->IsImmovable());
    sim.RemoveBody(sim.GetWorldBody());
    EXPECT_TRUE(sim.HasBody(sim.GetWorldBody()));
    sim.GetWorldBody()->AddGeom(new physics::Plane({0, 1}, 0));
    AddCircle({0, 5}, 1);
    sim.Clear();
    ASSERT_EQ(sim.GetBodies().size(), 1u);
    EXPECT_EQ(sim.GetWorldBody()->GetGeoms().size(), 1u);
}

// A frame at (7.3, 0.1) plus the way from there to the geom is not the geom's place in floats.
TEST_F(SimulationTest, JoiningTheWorldMovesNoGeom) {
    const physics::GeomPtr left = new physics::Circle(0.3f, Vec2(0.1f, 0.1f));
    const physics::GeomPtr right = new physics::Circle(0.7f, Vec2(12.7f, 0.1f));
    left->SetAngleAndPos(1.234567, left->GetPos());
    const physics::GeomPlace before = left->GetPlace();
    const physics::BodyPtr body = new physics::Body;
    body->SetGeoms({left, right});
    sim.AddBody(body);
    EXPECT_EQ(left->GetPlace().transform.cos, before.transform.cos);
    EXPECT_EQ(left->GetPos(), Vec2(0.1f, 0.1f));
    EXPECT_EQ(right->GetPos(), Vec2(12.7f, 0.1f));
    EXPECT_EQ(left->GetAngle(), 1.234567);
}

TEST_F(SimulationTest, StepsFollowTheTimeDebt) {
    ClearAir();
    int steps[6];
    for (int& count : steps) count = CountSteps(0.016);
    EXPECT_EQ(steps[0] + steps[1] + steps[2] + steps[3] + steps[4] + steps[5], 10);
    EXPECT_EQ(steps[0], 2);
    EXPECT_EQ(steps[1], 2);
    EXPECT_EQ(steps[2], 1);
    EXPECT_TRUE(HasLine("100% realtime."));
    EXPECT_EQ(sim.GetRealtimeFraction(), 1);
    sim.m_timeFactor->Set(2);
    sim.Clear();
    EXPECT_EQ(CountSteps(0.0499), 10);
}

// A step that takes 20 ms: two fit into the budget of 0.1 s behind a frame of 0.04 s.
TEST_F(SimulationTest, DebtBeyondTheBudgetIsForgiven) {
    ClearAir();
    s_perReading = 0.02;
    EXPECT_EQ(CountSteps(0.04), 2);
    EXPECT_TRUE(HasLine(" 50% realtime")) << sim.GetStats();
    EXPECT_NEAR(sim.GetRealtimeFraction(), 0.5f, 1e-6f);
    s_perReading = 0;
    EXPECT_EQ(CountSteps(0.0099), 1) << "the debt must be gone";
    EXPECT_EQ(CountSteps(0.2), 1) << "a frame as long as the budget runs one step";
}

TEST_F(SimulationTest, FrozenWorldFindsContactsAndKeepsForces) {
    AddGround();
    const BodyPtr ball = AddCircle({0, 0.499f}, 0.5f);
    ball->m_force = {7, 0};
    for (const char* const how : {"stopped", "timeFactor 1e-8", "timeFactor -1"}) {
        SCOPED_TRACE(how);
        sim.m_running->Set(String(how) != "stopped");
        sim.m_timeFactor->Set(String(how) == "timeFactor -1" ? -1 : 1e-8f);
        if (String(how) == "stopped") sim.m_timeFactor->Set(1);
        sim.Update(0.1);
        EXPECT_EQ(sim.GetStats().rfind("Frozen\n", 0), 0u);
        EXPECT_EQ(sim.GetContacts().size(), 1u);
        EXPECT_EQ(ball->m_pos.y, 0.499f);
        EXPECT_EQ(ball->m_force.x, sim.m_running->Get() ? 0 : 7);
    }
    EXPECT_EQ(sim.m_timeFactor->Get(), 0);
}

TEST_F(SimulationTest, StepWithoutLengthEndsTheLoop) {
    for (const float h : {0.0f, -0.01f}) {
        sim.m_timeDelta->Set(h);
        const BodyPtr ball = AddCircle({0, 5}, 0.5f);
        sim.Update(0.05);
        EXPECT_EQ(ball->m_pos, Vec2(0, 5));
        EXPECT_EQ(ball->m_vel, Vec2(0, 0));
    }
    sim.m_timeDelta->Set(0);
    sim.Update(0.05);
    EXPECT_TRUE(HasLine("Running at +inf Hz"));
}

TEST_F(SimulationTest, StatisticsCountTheUsersThings) {
    AddGround();
    const BodyPtr a = AddCircle({0, 0.499f}, 0.5f);
    const BodyPtr b = AddCircle({3, 5}, 0.5f);
    AddHinge(a, b, {2, 2});
    sim.AddJoint(new physics::SpringJoint(GeomOf(a), GeomOf(b), {}, {}, 1, 0.1f, 0.1f));
    AddParticle({10, 10});
    sim.m_running->Set(false);
    sim.Update(0.01);
    EXPECT_EQ(sim.GetStats(),
              "Frozen\n3 bodies\n3 geometries\n1 particles\n1 contacts\n1 springs\n1 hinges\n"
              "Running at 100 Hz\n");
}

TEST_F(SimulationTest, ObjectsLeaveTheWorld) {
    LogCapture log(logging::Trace);
    const BodyPtr fallen = AddCircle({0, -1001}, 0.5f);
    const BodyPtr sideways = AddCircle({2000, 0}, 0.5f);
    const BodyPtr flown = AddCircle({100001, 0}, 0.5f);
    const BodyPtr empty = AddCircle({5, 0}, 0.5f);
    empty->SetGeoms({});
    const physics::GeomPtr geom = GeomOf(fallen);
    sim.Step(false);
    EXPECT_FALSE(sim.HasBody(fallen));
    EXPECT_EQ(geom->GetBodyPtr(), nullptr);
    EXPECT_TRUE(sim.HasBody(sideways));
    EXPECT_FALSE(sim.HasBody(flown));
    EXPECT_FALSE(sim.HasBody(empty));
    EXPECT_EQ(log.Count("Removing bad object"), 3);
    // Without gravity there is no down.
    sim.m_gravitySwitch->Set(false);
    const BodyPtr low = AddCircle({0, -5000}, 0.5f);
    sim.Step(false);
    EXPECT_TRUE(sim.HasBody(low));
}

TEST_F(SimulationTest, ParticlesAreReleasedWithTheirGeoms) {
    const int32_t pointees = util::Pointee::GetCount();
    for (int i = 0; i < 10; ++i) AddParticle({static_cast<float>(i), i == 3 ? -2000.0f : 0});
    EXPECT_EQ(util::Pointee::GetCount(), pointees + 20);
    sim.Step(false);
    EXPECT_EQ(sim.GetParticles().size(), 9u);
    sim.ClearParticles();
    EXPECT_EQ(util::Pointee::GetCount(), pointees);
}

// Drag is 2 r (linear + quadratic v) v on a circle, and can stop the motion but not reverse it.
TEST_F(SimulationTest, AirDragOnACircle) {
    sim.m_gravitySwitch->Set(false);
    sim.m_airFrictionQuadratic->Set(0.02f);
    const BodyPtr ball = AddCircle({0, 0}, 0.5f);
    ball->m_vel = {0, 5};
    sim.Step(true);
    const float expected = 5 - 0.01f / ball->m_mass * 1 * (0.01f + 0.02f * 5) * 5;
    EXPECT_NEAR(math::Length(ball->m_vel), expected, 1e-5f);
    sim.m_airFrictionLinear->Set(1e6f);
    sim.Step(true);
    EXPECT_NEAR(math::Length(ball->m_vel), 0, 1e-5f);
}

TEST_F(SimulationTest, SpinIsDraggedOnlyInMotion) {
    sim.m_gravitySwitch->Set(false);
    sim.m_rotFrictionLinear->Set(0.5f);
    const BodyPtr ball = AddCircle({0, 0}, 0.5f);
    ball->m_angVel = 10;
    sim.Step(true);
    EXPECT_EQ(ball->m_angVel, 10);
    ball->m_vel = {1, 0};
    sim.Step(true);
    EXPECT_NEAR(ball->m_angVel, 10 - 0.01f * ball->m_mass * 0.5f * 10 / ball->m_inertia, 1e-4f);
    sim.m_rotFrictionLinear->Set(1e6f);
    sim.Step(true);
    EXPECT_NEAR(ball->m_angVel, 0, 1e-5f);
}

TEST_F(SimulationTest, LightBodiesRiseInHeavyAir) {
    sim.m_airFrictionOn->Set(false);
    sim.m_airDensity->Set(4);
    const BodyPtr ball = AddCircle({0, 0}, 0.5f);  // of density 2
    Run(1);
    EXPECT_NEAR(ball->m_vel.y, 9.8f, 0.01f);
    EXPECT_NEAR(ball->m_angVel, 0, 1e-5f);
}

TEST_F(SimulationTest, OrdersOfIntegrationBothStand) {
    for (const bool leapFrog : {true, false}) {
        sim.Clear();
        sim.m_leapFrog->Set(leapFrog);
        SetSurface(0.5f, 0);
        AddGround();
        AddStack(4);
        Run(3);
        // Behind the solve the weight of one step is still in the velocities.
        EXPECT_LT(GetFastestBody(), leapFrog ? 0.02f : 0.12f);
        EXPECT_LT(GetDeepestContact(), 0.002f) << "leapfrog " << leapFrog;
    }
}

// A setting takes no value that makes what is not a number, and reads back as what it took.
TEST_F(SimulationTest, SettingsKeepToTheirRanges) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    sim.m_solveDcontacts->Set(-0.25f);
    EXPECT_EQ(sim.m_solveDcontacts->Get(), 0);
    sim.m_airDensity->Set(infinity);
    EXPECT_EQ(sim.m_airDensity->Get(), 1e6f);
    sim.m_solveConstant->Set(0);
    EXPECT_EQ(sim.m_solveConstant->Get(), 1);
    sim.m_solveIter->Set(2147483647);
    EXPECT_EQ(sim.m_solveIter->Get(), 10000);
    sim.m_solveIter->Set(5);
    sim.m_warmStartFactor->Set(nan);
    EXPECT_EQ(sim.m_warmStartFactor->Get(), sim.m_warmStartFactor->GetDefault());
    sim.m_gravity->Set({nan, -infinity});
    EXPECT_EQ(sim.m_gravity->Get(), Vec2(0, -1e6f));
    AddGround();
    AddHinge(AddBox({0, 1}, 1, 1), AddBox({1, 1}, 1, 1), {0.5f, 1});
    Run(0.1f);
    for (const BodyPtr& body : sim.GetBodies()) EXPECT_TRUE(IsFinite(body->m_pos));
}

// What is not a number stays with its body, which goes on from where it last was.
TEST_F(SimulationTest, BodiesBeyondNumbersArePutBack) {
    using physics::AbstractBody;
    ClearAir();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const struct {
        float AbstractBody::*member;
        float value;
    } cases[] = {{&AbstractBody::m_angVel, nan},
                 {&AbstractBody::m_angle, nan},
                 {&AbstractBody::m_angle, infinity},
                 {&AbstractBody::m_torque, nan},
                 {&AbstractBody::m_torque, infinity}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        sim.Clear();
        const BodyPtr body = AddBox({1, 2}, 0.4f, 0.4f);
        Run(0.1f);
        const Vec2 place = body->m_pos;
        const LogCapture log(logging::Warning);
        (*body).*c.member = c.value;
        sim.Step(true);
        EXPECT_EQ(log.GetLines().size(), 1u);
        EXPECT_EQ(body->m_pos, place);
        EXPECT_EQ(body->m_vel, Vec2());
        EXPECT_EQ(body->m_angVel, 0);
        sim.Step(true);
        EXPECT_LT(body->m_pos.y, place.y);
        EXPECT_EQ(log.GetLines().size(), 1u) << "told once";
    }
}

TEST_F(SimulationTest, PiledUpInOnePlaceTheWorldGoesOn) {
    for (int i = 0; i < 600; ++i) AddCircle({0.0001f * static_cast<float>(i), 0}, 0.5f);
    LogCapture log(logging::Warning);
    sim.m_solveIter->Set(1);
    Run(0.03f);
    EXPECT_EQ(sim.GetContacts().size(), physics::ContactPool::MOST_CONTACTS);
    EXPECT_EQ(log.GetLines().size(), 1u);
}

// Drawn into the ground or into each other, shapes come out without being shot away.
TEST_F(SimulationTest, WhatStartsInsideSomethingComesOutGently) {
    AddGround();
    const BodyPtr box = AddBox({0, 0}, 1, 1), left = AddCircle({5, 0.5f}, 0.5f),
                  right = AddCircle({5.4f, 0.5f}, 0.5f);
    float fastest = 0;
    for (int step = 0; step < 100; ++step) {
        Run(0.01f);
        fastest = std::max(fastest, GetFastestBody());
    }
    EXPECT_LE(fastest, 1.1f * physics::MAX_PUSH_OUT);
    EXPECT_GT(box->m_pos.y, 0.45f);
    EXPECT_GT(right->m_pos.x - left->m_pos.x, 0.99f);
}

// The caller's arithmetic is as it was; within the step what is too small counts as nothing.
TEST_F(SimulationTest, TinyMotionsEndInTheStepOnly) {
    sim.m_gravitySwitch->Set(false);
    const BodyPtr body = AddCircle({0, 0}, 0.5f);
    const volatile float tiny = 1e-39f;
    body->m_vel.x = tiny;
    sim.Step(true);
#if defined(__SSE2__)
    EXPECT_EQ(body->m_pos.x, 0);
#endif
    EXPECT_NE(tiny * 0.5f, 0);
}

}  // namespace test
