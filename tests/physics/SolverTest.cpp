#include <algorithm>
#include <cstring>
#include <limits>
#include <random>

#include "math/Geometry.h"
#include "physics/ConstraintSolver.h"
#include "physics/ResidualSort.h"
#include "physics/World.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;
using physics::ContactPool;

namespace {

float Draw(std::mt19937& random, float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
}

struct Motion {
    Vec2 vel;
    float angVel;
    bool operator==(const Motion& other) const { return vel == other.vel && angVel == other.angVel; }
};

}  // namespace

// Bodies with random contacts and hinges between them, some held, and the impulses of an earlier step.
class Solver : public World {
  protected:
    void MakeScene(uint32_t seed, int bodyCount, int contactCount, int hingeCount) {
        std::mt19937 random(seed);
        m_bodies.clear();
        for (int i = 0; i < bodyCount; ++i) {
            const BodyPtr body = AddCircle({Draw(random, -5, 5), Draw(random, -5, 5)}, Draw(random, 0.1f, 1));
            body->m_held = i % 7 == 3;
            m_bodies.push_back(body.Get());
        }
        for (int i = 0; i < contactCount; ++i) MakeContact(random, i);
        for (int i = 0; i < hingeCount; ++i) MakeHinge(random);
        for (physics::AbstractBody* body : m_bodies) {
            if (!body->m_held)
                m_start.push_back({{Draw(random, -1, 1), Draw(random, -1, 1)}, Draw(random, -1, 1)});
            else
                m_start.push_back({});
        }
        Restore();
    }

    physics::Geom* PickGeom(std::mt19937& random) {
        const auto& body = static_cast<physics::Body&>(*m_bodies[random() % m_bodies.size()]);
        return body.GetParts().front().geom.Get();
    }
    void MakeContact(std::mt19937& random, int index) {
        physics::Geom* const a = PickGeom(random);
        physics::Geom* const b = PickGeom(random);
        if (a == b) return;
        const Vec2 normal = math::Normalized(b->GetPos() - a->GetPos());
        const Vec2 point = (a->GetPos() + b->GetPos()) * 0.5f;
        physics::Contact& contact =
            m_contacts.Add(a, b, static_cast<uint32_t>(index), point, normal, Draw(random, 0, 0.01f));
        contact.m_new = index % 3 == 0;
        m_impulses.push_back({Draw(random, 0, 0.1f), Draw(random, -0.05f, 0.05f)});
    }
    void MakeHinge(std::mt19937& random) {
        const physics::GeomPtr a = PickGeom(random);
        const physics::GeomPtr b = PickGeom(random);
        const physics::HingePtr hinge = new physics::Hinge(a, b, (a->GetPos() + b->GetPos()) * 0.5f);
        hinge->SetMotor(random() % 2 == 0);
        hinge->SetMotorSpeed(1);
        m_hinges.insert(hinge);
    }

    // The state before the solve, but for the impulses of hinges.
    void Restore() {
        for (size_t i = 0; i < m_bodies.size(); ++i) {
            m_bodies[i]->m_index = static_cast<uint32_t>(i);
            m_bodies[i]->m_vel = m_start[i].vel;
            m_bodies[i]->m_angVel = m_start[i].angVel;
        }
        for (size_t i = 0; i < m_contacts.size(); ++i) {
            m_contacts[i]->m_normalImpulse = m_impulses[i].x;
            m_contacts[i]->m_tangentImpulse = m_impulses[i].y;
        }
    }
    std::vector<Motion> GetMotions() const {
        std::vector<Motion> motions;
        for (const physics::AbstractBody* body : m_bodies) motions.push_back({body->m_vel, body->m_angVel});
        return motions;
    }

    void Clear() {
        sim.Clear();
        m_contacts.Clear();
        m_hinges.clear();
        m_start.clear();
        m_impulses.clear();
    }

    // A solve without sweep and warm start.
    void ForgetHingeImpulses(physics::ConstraintSolver& solver) {
        sim.m_warmStart->Set(false);
        sim.m_solveIter->Set(0);
        solver.Run(m_bodies, m_hinges, m_contacts, sim.GetStepSettings());
        sim.m_warmStart->Set(true);
        sim.m_solveIter->Set(30);
    }

    // The textbook form of the solve: one constraint after the other through their own operations.
    void SolveOneByOne(bool preSort) {
        for (physics::AbstractBody* body : m_bodies) {
            body->m_deltaVel = Vec2();
            body->m_deltaAngVel = 0;
        }
        const physics::SolveConstants constants(sim.GetStepSettings());
        std::vector<physics::Constraint*> list;
        for (const physics::HingePtr& hinge : m_hinges) list.push_back(hinge.Get());
        for (const physics::ContactPtr& contact : m_contacts) list.push_back(contact.Get());
        for (size_t i = 0; i < list.size(); ++i) {
            while (i < list.size() && !list[i]->SolveInit(constants)) {
                list[i] = list.back();
                list.pop_back();
            }
        }
        if (preSort) {
            for (physics::Constraint* constraint : list) constraint->SolveCalc();
            std::stable_sort(list.begin(), list.end(),
                             [](auto* a, auto* b) { return a->m_residual > b->m_residual; });
        }
        for (int i = 0; i < sim.m_solveIter->Get(); ++i) {
            for (physics::Constraint* constraint : list) {
                constraint->SolveCalc();
                constraint->SolveApply();
            }
        }
        for (physics::AbstractBody* body : m_bodies) {
            if (body->m_held) continue;
            body->m_vel += body->m_deltaVel;
            body->m_angVel += body->m_deltaAngVel;
        }
    }

    physics::AbstractBodyList m_bodies;
    ContactPool m_contacts;
    physics::HingeSet m_hinges;
    std::vector<Motion> m_start;
    std::vector<Vec2> m_impulses;
};

// The packed sweeps, several contacts at a time, give the very bits of the plain order.
TEST_F(Solver, PackedSweepsEqualThePlainOrderBitForBit) {
    struct Case {
        int bodies, contacts, hinges;
        bool preSort;
    };
    uint32_t seed = 1;
    sim.m_solveConjugate->Set(false);
    for (const Case& c : {Case{2, 1, 0, true},
                          {5, 7, 3, true},
                          {20, 60, 10, true},
                          {20, 60, 10, false},
                          {100, 400, 30, true},
                          {300, 200, 0, true}}) {
        SCOPED_TRACE(testing::Message() << c.bodies << " bodies, " << c.contacts << " contacts");
        Clear();
        sim.m_solvePreSortConstraints->Set(c.preSort);
        MakeScene(seed++, c.bodies, c.contacts, c.hinges);
        physics::ConstraintSolver solver;
        ForgetHingeImpulses(solver);

        Restore();
        SolveOneByOne(c.preSort);
        const std::vector<Motion> expected = GetMotions();
        std::vector<Vec2> impulses;
        for (const physics::ContactPtr& contact : m_contacts) {
            impulses.push_back({contact->m_normalImpulse, contact->m_tangentImpulse});
        }
        ForgetHingeImpulses(solver);

        Restore();
        solver.Run(m_bodies, m_hinges, m_contacts, sim.GetStepSettings());
        EXPECT_TRUE(GetMotions() == expected);
        for (size_t i = 0; i < m_contacts.size(); ++i) {
            EXPECT_EQ(m_contacts[i]->m_normalImpulse, impulses[i].x) << "contact " << i;
            EXPECT_EQ(m_contacts[i]->m_tangentImpulse, impulses[i].y) << "contact " << i;
        }
    }
}

// With registers of eight floats as with those of four, trends and hinges between the levels included.
TEST_F(Solver, WideSweepsEqualNarrowOnesBitForBit) {
    const physics::RowSweeps& fastest = physics::GetRowSweeps();
    if (&fastest == &physics::GetNarrowRowSweeps()) GTEST_SKIP() << "this processor has no wide registers";
    uint32_t seed = 1;
    for (const int contacts : {1, 4, 5, 60, 400}) {
        for (const int hinges : {0, 12}) {
            SCOPED_TRACE(testing::Message() << contacts << " contacts, " << hinges << " hinges");
            Clear();
            MakeScene(seed++, 40, contacts, hinges);
            std::vector<Motion> motions[2];
            for (const auto* const sweeps : {&physics::GetNarrowRowSweeps(), &fastest}) {
                physics::ConstraintSolver solver;
                ForgetHingeImpulses(solver);
                Restore();
                solver.SetRowSweeps(*sweeps);
                solver.Run(m_bodies, m_hinges, m_contacts, sim.GetStepSettings());
                motions[sweeps == &fastest ? 1 : 0] = GetMotions();
            }
            EXPECT_TRUE(motions[0] == motions[1]);
        }
    }
}

// Conjugate gradients reach the state that sweeps alone reach, and sooner: at the greatest speed left over
// after a few sweeps, compared with that after many.
TEST_F(Solver, ConjugateGradientsOvertakeSweeps) {
    SetSurface(0.5f, 0);
    AddGround();
    const std::vector<BodyPtr> boxes = AddStack(5);
    Run(1);
    physics::AbstractBodyList bodies;
    for (const BodyPtr& body : sim.GetBodies()) bodies.push_back(body.Get());
    std::vector<Vec2> impulses;
    for (const physics::ContactPtr& contact : sim.GetContacts()) {
        impulses.push_back({contact->m_normalImpulse, contact->m_tangentImpulse});
    }
    const auto solve = [&](int sweeps, bool conjugate) {
        for (physics::AbstractBody* body : bodies) {
            body->m_vel = body->m_massInv == 0 ? Vec2() : Vec2(0, -0.098f);
            body->m_angVel = 0;
        }
        for (size_t i = 0; i < impulses.size(); ++i) {
            sim.GetContacts()[i]->m_normalImpulse = impulses[i].x / 2;
            sim.GetContacts()[i]->m_tangentImpulse = impulses[i].y / 2;
        }
        physics::StepSettings settings = sim.GetStepSettings();
        settings.sweeps = sweeps;
        settings.conjugate = conjugate;
        physics::ConstraintSolver().Run(bodies, {}, sim.GetContacts(), settings);
        std::vector<Vec2> velocities;
        for (const physics::AbstractBody* body : bodies) velocities.push_back(body->m_vel);
        return velocities;
    };
    const auto distance = [](const std::vector<Vec2>& a, const std::vector<Vec2>& b) {
        float most = 0;
        for (size_t i = 0; i < a.size(); ++i) most = std::max(most, math::Length(a[i] - b[i]));
        return most;
    };
    const std::vector<Vec2> solution = solve(10000, false);
    EXPECT_LT(distance(solve(2000, true), solution), 1e-5f);
    EXPECT_LT(distance(solve(500, true), solution), 0.2f * distance(solve(500, false), solution));
}

TEST_F(Solver, RowWeightsFollowTheSettings) {
    const auto weights = [this] { return physics::SolveConstants(sim.GetStepSettings()); };
    EXPECT_FLOAT_EQ(weights().contact.eps, 1.9047619e-5f);
    EXPECT_FLOAT_EQ(weights().contact.vel, 0.95238096f);
    EXPECT_FLOAT_EQ(weights().contact.dist, 19.047619f);
    EXPECT_FLOAT_EQ(weights().contact.acc, 0.005f);
    sim.m_leapFrog->Set(false);
    sim.m_solveDconstraints->Set(0.5f);
    sim.m_solveDistFactor->Set(2);
    sim.m_solveVelFactor->Set(3);
    sim.m_solveRegularizationFactor->Set(4);
    EXPECT_EQ(weights().hinge.acc, 0);
    EXPECT_FLOAT_EQ(weights().hinge.eps, 4 * 4 / (3 * 1e-4f * 1e8f));
    EXPECT_FLOAT_EQ(weights().hinge.vel, 3 * 2.0f / 3);
    EXPECT_FLOAT_EQ(weights().hinge.dist, 2 * 4 / (3 * 0.01f));
    sim.m_adHocSolver->Set(true);
    EXPECT_EQ(weights().contact.eps, 0);
    EXPECT_EQ(weights().contact.vel, 0);
    EXPECT_FLOAT_EQ(weights().contact.dist, 2 * 100);
}

TEST_F(Solver, WithoutSweepsOnlyTheWarmStartActs) {
    AddGround();
    const BodyPtr ball = AddCircle({0, 0.499f}, 0.5f);
    Run(2);
    const float weight = 0.01f * 9.8f * ball->m_mass;  // per step
    sim.m_solveIter->Set(0);
    const float before = ball->m_vel.y;
    sim.Step(true);
    EXPECT_NEAR(ball->m_vel.y - before, (-weight + 0.8f * weight) / ball->m_mass, 0.01f);
}

TEST(ResidualSort, OrdersGreatestFirstAndKeepsTies) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const std::vector<float> residuals = {0, 1e-20f, 3, nan, 1e20f, 3, 0, infinity, 5e-39f, 2};
    physics::ResidualSort sort;
    util::VectorPOD<uint32_t> order;
    sort.Clear(residuals.size());
    for (const float residual : residuals) sort.Add(residual);
    sort.Sort(order);
    const std::vector<uint32_t> expected = {4, 2, 5, 9, 1, 8, 0, 3, 6, 7};
    EXPECT_EQ(std::vector<uint32_t>(order.begin(), order.end()), expected);
}

}  // namespace test
