// Short forms of bench/SteadyBench.cpp: what ought to stand, hang or stop does so at the settings that ship.

#include <cmath>
#include <random>

#include "physics/Polygon.h"
#include "physics/World.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;

class Steadiness : public World {
  protected:
    Steadiness() {
        sim.m_timeDelta->Set(sim.m_timeDelta->GetDefault());
        SetSurface(0.5f, 0);
    }

    // The greatest way sideways that any of the bodies is ever away from its start.
    float MeasureSway(const std::vector<BodyPtr>& bodies, float seconds) {
        std::vector<float> start;
        for (const BodyPtr& body : bodies) start.push_back(body->m_pos.x);
        float most = 0;
        for (float t = 0; t < seconds; t += sim.m_timeDelta->Get()) {
            sim.Step(true);
            for (size_t i = 0; i < bodies.size(); ++i) {
                most = std::max(most, std::fabs(bodies[i]->m_pos.x - start[i]));
            }
        }
        return most;
    }
    float GetWidestGap() const {
        float widest = 0;
        for (const physics::HingePtr& hinge : sim.GetHinges()) {
            widest = std::max(widest, math::Length(hinge->GetWorldAnchor(1) - hinge->GetWorldAnchor(0)));
        }
        return widest;
    }
};

TEST_F(Steadiness, TallStackStands) {
    AddGround();
    const std::vector<BodyPtr> boxes = AddStack(20);
    std::mt19937 random(1);
    for (const BodyPtr& box : boxes) {
        box->m_pos.x += std::uniform_real_distribution<float>(-0.0005f, 0.0005f)(random);
        box->UpdateGeoms();
    }
    EXPECT_LT(MeasureSway(boxes, 10), 0.01f);
    EXPECT_NEAR(boxes.back()->m_pos.y, 19.5f * 0.4f, 0.05f);
}

// A slope that is none to the eye holds a ball; from one that is seen it rolls by g sin(a) 2/3, as a full
// disc.
TEST_F(Steadiness, BallLiesOnWhatIsAlmostLevel) {
    for (const float slope : {0.00005f, 0.01f}) {
        SCOPED_TRACE(slope);
        sim.Clear();
        ClearAir();
        AddGround({slope, std::sqrt(1 - slope * slope)});
        const BodyPtr ball = AddCircle({0, 0.199f}, 0.2f);
        constexpr float SECONDS = 5;
        const float way = MeasureSway({ball}, SECONDS);
        const float free = 9.8f * slope * 2 / 3 * SECONDS * SECONDS / 2;
        if (slope < 0.001f)
            EXPECT_LT(way, 0.02f * free);
        else
            EXPECT_NEAR(way, free, 0.05f * free);
    }
}

TEST_F(Steadiness, HeavyBoxStandsOnLightOnes) {
    AddGround();
    const std::vector<BodyPtr> boxes = AddStack(5);
    GeomOf(boxes.back())->m_density *= 100;
    GeomOf(boxes.back())->UpdateBody();
    EXPECT_LT(MeasureSway(boxes, 10), 0.01f);
}

// 60 links of 0.2 m bear 100 times the weight of one, hanging and struck from the side.
TEST_F(Steadiness, LoadedChainHolds) {
    constexpr float LENGTH = 0.2f;
    constexpr int LINKS = 60;
    BodyPtr last = sim.GetWorldBody();
    for (int i = 0; i < LINKS; ++i) {
        const float top = -LENGTH * static_cast<float>(i);
        const BodyPtr link = AddBox({0, top - LENGTH / 2}, 0.05f, LENGTH);
        AddHinge(last, link, {0, top});
        last = link;
    }
    const BodyPtr load = AddCircle({0, -LENGTH * LINKS - 0.3f}, 0.3f);
    GeomOf(load)->m_density *= 100 * last->m_mass / load->m_mass;
    GeomOf(load)->UpdateBody();
    AddHinge(last, load, {0, -LENGTH * LINKS});
    load->m_vel = {5, 0};
    float widest = 0;
    for (int i = 0; i < 1000; ++i) {
        sim.Step(true);
        widest = std::max(widest, GetWidestGap());
    }
    EXPECT_LT(widest, 0.01f);
}

TEST_F(Steadiness, NothingCreepsDownAGentleSlope) {
    constexpr float ANGLE = 20 * math::PI / 180;  // below the friction angle of 26.6 degrees
    const Vec2 normal(-std::sin(ANGLE), std::cos(ANGLE));
    AddGround(normal);
    const BodyPtr box = AddBox({0, 0}, 0.4f, 0.4f);
    box->m_angle = ANGLE;
    box->m_pos = normal * 0.2f;
    box->UpdateGeoms();
    Run(1);
    const Vec2 start = box->m_pos;
    Run(10);
    EXPECT_LT(math::Length(box->m_pos - start), 1e-5f);
}

TEST_F(Steadiness, PendulumKeepsMostOfItsEnergy) {
    ClearAir();
    const BodyPtr bob = AddCircle({1, 0}, 0.1f);
    AddHinge(sim.GetWorldBody(), bob, {0, 0});
    float widest = 0;
    for (int i = 0; i < 4000; ++i) {
        sim.Step(true);
        widest = std::max(widest, GetWidestGap());
    }
    const float lost = -(GetKineticEnergy() + bob->m_mass * 9.8f * bob->m_pos.y) / (bob->m_mass * 9.8f);
    EXPECT_LT(std::fabs(lost), 0.04f);
    EXPECT_LT(widest, 0.002f);
}

// Thrown from many distances, straight and aslant, spinning or not.
TEST_F(Steadiness, NothingFastPassesAWall) {
    std::mt19937 random(5);
    const auto draw = [&](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    for (int i = 0; i < 120; ++i) {
        sim.Clear();
        AddBox({0, 0}, 0.1f, 8)->SetHeld(true);
        const Vec2 place(draw(-2.5f, -1), draw(-0.5f, 0.5f));
        const int kind = i % 3;
        const BodyPtr body = kind == 0   ? AddCircle(place, 0.05f)
                             : kind == 1 ? AddBox(place, 0.1f, 0.1f)
                                         : AddBox(place, 0.6f, 0.06f);
        body->m_vel = {draw(20, 60), draw(-10, 10)};
        if (kind != 0) body->m_angVel = draw(-20, 20);
        Run(0.3f);
        EXPECT_LT(body->m_pos.x, 0) << "kind " << kind << ", throw " << i;
    }
}

// Two fast ones that meet, and a fast one that skims a row of boxes: the first bounce, the second is not held
// up by each box.
TEST_F(Steadiness, FastBodiesMeetAndSkim) {
    sim.m_gravitySwitch->Set(false);
    ClearAir();
    const BodyPtr left = AddCircle({-5.03f, 0}, 0.05f);
    const BodyPtr right = AddCircle({5, 0}, 0.05f);
    left->m_vel = {60, 0};
    right->m_vel = {-60, 0};
    Run(0.3f);
    EXPECT_LT(left->m_pos.x, right->m_pos.x);

    sim.Clear();
    for (int i = 0; i < 20; ++i) {
        AddBox({static_cast<float>(i) * 0.5f, -0.2f}, 0.49f, 0.4f)->SetHeld(true);
    }
    const BodyPtr ball = AddCircle({-1, 0.052f}, 0.05f);
    ball->m_vel = {40, -0.1f};
    Run(0.2f);
    EXPECT_GT(ball->m_pos.x, 0.9f * 40 * 0.2f - 1);
}

}  // namespace test
