#include <gtest/gtest.h>

#include "physics/Body.h"
#include "physics/ConstraintSolver.h"
#include "physics/Geom.h"
#include "physics/Hinge.h"
#include "physics/Integration.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "physics/StepContacts.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;

namespace {

// A world that Simulation knows nothing of: a few bodies, and what a step needs besides them.
class SmallWorld {
  public:
    explicit SmallWorld(const physics::StepSettings& settings) : m_settings(settings) {
        Add(new physics::Plane({0, 1}, 0));
        for (int i = 0; i < 5; ++i) {
            const float y = 0.5f * static_cast<float>(i);
            Add(physics::MakeBoxPolygon(0.03f * y, y, 0.03f * y + 0.4f, y + 0.4f).Get());
        }
        const BodyPtr bob = Add(new physics::Circle(0.3f, {3, 2}));
        const BodyPtr pivot = Add(new physics::Circle(0.1f, {2, 3}));
        pivot->m_held = true;
        m_hinges.insert(new physics::Hinge(pivot->GetParts()[0].geom, bob->GetParts()[0].geom, {2, 3}));
    }
    ~SmallWorld() {
        for (const BodyPtr& body : m_bodies) body->SetGeoms({});
    }
    void Step() {
        physics::AbstractBodyList all;
        for (const BodyPtr& body : m_bodies) {
            all.push_back(body.Get());
            if (!body->IsImmovable()) body->m_force = body->m_mass * Vec2(0, -9.8f);
        }
        m_contacts.Begin();
        for (const physics::BodyPtr& body : m_bodies) m_contacts.Enter(*body);
        m_contacts.Find({});
        physics::IntegrateVelocities(all, m_settings.timeDelta / 2, physics::Forces::KEEP);
        m_solver.Run(all, m_hinges, m_contacts.Get(), m_settings);
        physics::IntegrateVelocities(all, m_settings.timeDelta / 2, physics::Forces::KEEP);
        physics::IntegratePlaces(all, m_settings.timeDelta);
    }
    std::vector<float> GetState() const {
        std::vector<float> state;
        for (const BodyPtr& body : m_bodies) {
            for (const float value : {body->m_pos.x, body->m_pos.y, body->m_angle, body->m_vel.x,
                                      body->m_vel.y, body->m_angVel}) {
                state.push_back(value);
            }
        }
        return state;
    }

  private:
    BodyPtr Add(physics::Geom* geom) {
        m_bodies.push_back(new physics::Body(physics::GeomPtr(geom)));
        return m_bodies.back();
    }

    physics::StepSettings m_settings;
    physics::BodyList m_bodies;
    physics::HingeSet m_hinges;
    physics::StepContacts m_contacts;
    physics::ConstraintSolver m_solver;
};

}  // namespace

// Nothing of a step lives outside the world it belongs to: worlds that take turns, one of them with other
// settings, go the way that each goes alone.
TEST(TwoWorlds, TakingTurnsDoNotDisturbEachOther) {
    constexpr int STEPS = 200;
    const physics::StepSettings settings = physics::Simulation::Instance().GetStepSettings();
    physics::StepSettings other = settings;
    other.timeDelta = 0.004f;
    other.warmStartShare = 0;
    other.stiffness = 1e5f;
    SmallWorld alone(settings), first(settings), second(settings), third(other);
    for (int i = 0; i < STEPS; ++i) alone.Step();
    for (int i = 0; i < STEPS; ++i) {
        first.Step();
        third.Step();
        second.Step();
    }
    EXPECT_EQ(first.GetState(), alone.GetState());
    EXPECT_EQ(second.GetState(), alone.GetState());
    EXPECT_NE(third.GetState(), alone.GetState());
}

}  // namespace test
