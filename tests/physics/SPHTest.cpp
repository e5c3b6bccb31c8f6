#include "physics/SPH.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "physics/NeighborGrid.h"
#include "physics/World.h"

namespace test {

using math::Vec2;
using physics::Particle;
using physics::ParticlePtr;

static const Vec2 GRAVITY(0, -9.8f);

class SPHTest : public World {
  protected:
    void AddCloud(int count, float size, uint32_t seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> place(-size, size);
        std::uniform_real_distribution<float> speed(-1, 1);
        for (int i = 0; i < count; ++i) {
            const Vec2 pos(place(random), place(random));
            const Vec2 vel(speed(random), speed(random));
            AddParticle(pos, vel);
        }
    }
    // Water between walls on a floor, as dense as at rest and a little out of order.
    void AddPool(int count, float width, uint32_t seed = 1) {
        AddGround({0, 1});
        AddGround({1, 0});
        AddGround({-1, 0}, width);
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> jitter(-0.005f, 0.005f);
        const int columns = static_cast<int>(width / SPACING);
        for (int i = 0; i < count; ++i) {
            AddParticle({(static_cast<float>(i % columns) + 0.5f) * SPACING + jitter(random),
                         (static_cast<float>(i / columns) + 0.5f) * SPACING + jitter(random)});
        }
    }
    // Takes the drops out of a box.
    void MakeRoom(Vec2 center, float halfWidth, float halfHeight) {
        constexpr float MARGIN = 0.02f;
        physics::ParticleList kept;
        for (const ParticlePtr& particle : sim.GetParticles()) {
            const Vec2 away = particle->m_pos - center;
            const bool isInside =
                std::fabs(away.x) < halfWidth + MARGIN && std::fabs(away.y) < halfHeight + MARGIN;
            if (!isInside) kept.push_back(particle);
        }
        sim.ClearParticles();
        for (const ParticlePtr& particle : kept) sim.AddParticle(particle);
    }
    void Pass(float dt = 0.01f) {
        sph.Sort(sim.GetParticles());
        sph.FindTouches(sim.GetBodies(), GRAVITY);
        sph.Update(sim.GetParticles(), sim.GetBodies(), GRAVITY, dt);
    }
    Vec2 GetTotalForce() const {
        Vec2 sum;
        for (const ParticlePtr& particle : sim.GetParticles()) sum += particle->m_force;
        return sum;
    }
    float GetEnergyPerMass() const {
        float sum = 0;
        for (const ParticlePtr& particle : sim.GetParticles()) {
            sum += math::LengthSquared(particle->m_vel) / 2;
        }
        return sum / static_cast<float>(sim.GetParticles().size());
    }
    // m: the highest drops, and half of what they stand for, away from x.
    float GetLevel(float x, float distance) const {
        std::vector<float> heights;
        for (const ParticlePtr& particle : sim.GetParticles()) {
            if (std::fabs(particle->m_pos.x - x) > distance) heights.push_back(particle->m_pos.y);
        }
        std::sort(heights.begin(), heights.end());
        return heights[heights.size() - 8] + SPACING / 2;
    }

    static constexpr float SPACING = 0.0886f;  // m, sqrt(pi) radii
};

// The equations as they are written, from all neighbours, in double precision.
struct Reference {
    using Vec2d = math::TVector2<double>;
    static constexpr double PI = 3.14159265358979;

    explicit Reference(const physics::ParticleList& particles) : m_particles(particles) {
        const physics::SPH& sph = physics::SPH::Instance();
        const double r = sph.m_radius->Get();
        h = r * sph.m_influence->Get();
        m = sph.m_density->Get() * r * r * PI;
        for (const ParticlePtr& i : particles) {
            double rho = 0;
            for (const ParticlePtr& j : particles) {
                const double q = Length(GetDelta(*i, *j)) / h;
                if (q < 1) rho += m * 7 / (PI * h * h) * std::pow(1 - q, 4) * (1 + 4 * q);
            }
            density.push_back(rho);
        }
    }
    static Vec2d GetDelta(const Particle& i, const Particle& j) {
        return {double(j.m_pos.x) - i.m_pos.x, double(j.m_pos.y) - i.m_pos.y};
    }
    static double Length(Vec2d v) { return std::hypot(v.x, v.y); }
    double GetGradient(double r) const { return 140 / (PI * std::pow(h, 4)) * std::pow(1 - r / h, 3); }

    // Viscosity, surface tension, what calms slow drops, and pressure as the drops have it.
    Vec2d GetForce(size_t i) const {
        const physics::SPH& sph = physics::SPH::Instance();
        Vec2d sp, sn, sv;
        const Particle& a = *m_particles[i];
        for (size_t j = 0; j < m_particles.size(); ++j) {
            const Particle& b = *m_particles[j];
            const Vec2d d = GetDelta(a, b);
            const double r = Length(d);
            if (!(r < h)) continue;
            const Vec2d dv(double(b.m_vel.x) - a.m_vel.x, double(b.m_vel.y) - a.m_vel.y);
            const double c =
                sph.m_specialPressure->Get()
                    ? (a.m_pressure + b.m_pressure) / (2 * density[i] * density[j])
                    : b.m_pressure / (density[j] * density[j]) + a.m_pressure / (density[i] * density[i]);
            sp += d * (c * GetGradient(r));
            sn += d * (GetGradient(r) / density[j]);
            sv += dv * (40 / (PI * std::pow(h, 5)) * (h - r) / (density[i] * density[j]));
        }
        const Vec2d v(a.m_vel.x, a.m_vel.y);
        return (sp * -m + sv * (sph.m_viscMultiplier->Get() * sph.m_viscosity->Get() * m) +
                sn * (sph.m_surfaceTension->Get() * m) - v * (3 / (1 + math::Dot(v, v) / (0.06 * 0.06)))) *
               m;
    }

    // At the end of a step that the forces on the drops make, to first order.
    double GetNextDensity(size_t i, double dt) const {
        const auto next = [dt](const Particle& p) {
            return Vec2d(p.m_vel.x + dt * p.m_force.x / p.m_mass, p.m_vel.y + dt * p.m_force.y / p.m_mass);
        };
        double rho = density[i];
        for (const ParticlePtr& j : m_particles) {
            const Vec2d d = GetDelta(*m_particles[i], *j);
            if (!(Length(d) < h)) continue;
            rho += dt * m * GetGradient(Length(d)) * math::Dot(d, next(*m_particles[i]) - next(*j));
        }
        return rho;
    }

    const physics::ParticleList& m_particles;
    double h;
    double m;
    std::vector<double> density;
};

TEST_F(SPHTest, LoneParticleFeelsNothing) {
    const ParticlePtr particle = AddParticle({3, 4});
    Pass(0.25f);
    EXPECT_NEAR(particle->m_density, 7 * 0.0025f / 0.04f, 1e-5f) << "its own share of the kernel";
    EXPECT_EQ(particle->m_pressure, 0);
    EXPECT_EQ(particle->m_force, Vec2());
    EXPECT_EQ(particle->m_vaporTime, 0.25f);
    EXPECT_EQ(particle->m_neighborCount, 1u);
}

TEST_F(SPHTest, PairsRepelWhenTheyAreCrowded) {
    const ParticlePtr a = AddParticle({0, 0});
    const ParticlePtr b = AddParticle({0.199f, 0});
    a->m_vaporTime = b->m_vaporTime = 3;
    Pass();
    EXPECT_EQ(a->m_vaporTime, 0);
    EXPECT_EQ(a->m_neighborCount, 2u);
    EXPECT_EQ(b->m_neighborCount, 2u);
    EXPECT_EQ(a->m_force, Vec2()) << "far less dense than water at rest";
    sph.m_density->Set(0.5f);
    sph.m_influence->Set(2);
    b->m_pos = {0.04f, 0};
    Pass();
    EXPECT_LT(a->m_force.x, 0);
    EXPECT_EQ(a->m_force, -b->m_force);
    b->m_pos = {0.1001f, 0};
    Pass();
    EXPECT_EQ(a->m_neighborCount, 1u);
}

TEST_F(SPHTest, ForcesFollowTheEquations) {
    struct Case {
        bool special;
        float surface, viscosity;
    };
    sph.m_pressureSweeps->Set(300);
    for (const Case& c : {Case{true, 0, 0.02f}, {true, 3, 0.02f}, {false, 0, 0.1f}, {false, 5, 0}}) {
        SCOPED_TRACE(testing::Message() << "special " << c.special << ", surface " << c.surface);
        sim.Clear();
        sph.m_specialPressure->Set(c.special);
        sph.m_surfaceTension->Set(c.surface);
        sph.m_viscosity->Set(c.viscosity);
        AddCloud(300, 0.75f, 5);
        Pass();
        const Reference reference(sim.GetParticles());
        const double stiffness = 400;
        for (size_t i = 0; i < sim.GetParticles().size(); ++i) {
            const Particle& particle = *sim.GetParticles()[i];
            const auto force = reference.GetForce(i);
            const double scale = 2e-4 * (1 + std::hypot(force.x, force.y));
            EXPECT_NEAR(particle.m_density, reference.density[i], 1e-4 * reference.density[i]);
            EXPECT_NEAR(particle.m_force.x, force.x, scale) << "particle " << i;
            EXPECT_NEAR(particle.m_force.y, force.y, scale) << "particle " << i;
            // Each pressure is that of the density it leads to.
            const double excess = reference.GetNextDensity(i, 0.01) - 1;
            EXPECT_NEAR(particle.m_pressure, std::max(stiffness * excess, 0.0), 0.01 * stiffness)
                << "particle " << i;
        }
        // Surface tension alone is not the same both ways.
        if (c.surface == 0) {
            EXPECT_LT(math::Length(GetTotalForce()), 1e-2f);
        }
    }
}

TEST_F(SPHTest, NeighborsAreThoseOfBruteForce) {
    for (const float bucketSize : {1.0f, 2.0f, 5.0f}) {
        sim.Clear();
        sph.m_bucketSize->Set(bucketSize);
        AddCloud(500, 1, static_cast<uint32_t>(bucketSize));
        Pass();
        for (const ParticlePtr& i : sim.GetParticles()) {
            uint32_t expected = 0;
            for (const ParticlePtr& j : sim.GetParticles()) {
                if (math::LengthSquared(j->m_pos - i->m_pos) < 0.2f * 0.2f) ++expected;
            }
            EXPECT_EQ(i->m_neighborCount, expected);
        }
    }
}

TEST(NeighborGrid, BoxesAreVisitedCellByCell) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> place(-3, 3);
    util::VectorPOD<Vec2> points;
    for (int i = 0; i < 1000; ++i) points.push_back({place(random), place(random)});
    physics::NeighborGrid grid;
    grid.Sort(points, 0.2f);
    const float infinity = std::numeric_limits<float>::infinity();
    const math::BoundingBox2f boxes[] = {{{-0.3f, 0.1f}, {0.9f, 0.4f}},
                                         {{-9, -0.05f}, {9, 0.05f}},
                                         {{2.5f, -infinity}, {infinity, infinity}},
                                         {{1, 1}, {0.5f, 2}},
                                         {{10, 10}, {20, 20}}};
    for (const math::BoundingBox2f& box : boxes) {
        std::vector<uint32_t> found;
        size_t visited = 0;
        grid.VisitBox(box, [&](uint32_t begin, uint32_t end) {
            visited += end - begin;
            for (uint32_t i = begin; i < end; ++i) {
                if (box.Contains(grid.GetSortedPoints()[i])) found.push_back(grid.GetOrder()[i]);
            }
        });
        std::vector<uint32_t> expected;
        math::BoundingBox2f wide = box;
        wide.Grow(0.4f);
        size_t near = 0;
        for (uint32_t i = 0; i < points.size(); ++i) {
            if (box.Contains(points[i])) expected.push_back(i);
            if (wide.Contains(points[i])) ++near;
        }
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found, expected);
        EXPECT_LE(visited, near);
    }
}

// A crowd costs as much as its number, and parts even where all are in one place.
TEST_F(SPHTest, CrowdsInOnePlaceAreBoundedAndPart) {
    for (int i = 0; i < 3000; ++i) AddParticle({1, 1});
    Pass();
    EXPECT_LE(sph.GetNeighbors().GetPairCount(), 3000u * physics::NeighborGrid::MAX_PARTNERS);
    Run(0.5f);
    EXPECT_EQ(sim.GetParticles().size(), 3000u);
    float farthest = 0;
    for (const ParticlePtr& particle : sim.GetParticles()) {
        farthest = std::max(farthest, math::Length(particle->m_pos - Vec2(1, 1)));
        EXPECT_LT(math::Length(particle->m_vel), 1000);
    }
    EXPECT_GT(farthest, 1);
}

TEST(NeighborGrid, CellsAreCutTowardsZeroAndClamped) {
    const float infinity = std::numeric_limits<float>::infinity();
    const struct {
        float x;
        int32_t cell;
    } cases[] = {{-0.01f, 0},
                 {0.01f, 0},
                 {0.19f, 0},
                 {0.21f, 1},
                 {-0.19f, 0},
                 {-0.41f, -2},
                 {infinity, 1000000000},
                 {-infinity, -1000000000},
                 {1e30f, 1000000000},
                 {std::nanf(""), 0}};
    for (const auto& c : cases) EXPECT_EQ(physics::CellIndex(c.x, 5), c.cell) << c.x;
}

TEST(NeighborGrid, StrangePlacesAreHarmless) {
    util::VectorPOD<Vec2> points;
    const float nan = std::nanf("");
    for (const float x : {nan, 1e30f, -1e30f, 0.0f, 0.05f, 1e9f}) points.push_back({x, 0});
    points.push_back({0, nan});
    physics::NeighborGrid grid;
    grid.Sort(points, 0.1f);
    grid.FindPairs(0.1f);
    EXPECT_EQ(grid.GetPairCount(), 1u);
    grid.Sort(points, 0);
    grid.FindPairs(0.1f);
    EXPECT_LE(grid.GetPairCount(), 1u);
}

TEST_F(SPHTest, LonelyDropsVaporizeAndPairsStay) {
    sim.m_gravitySwitch->Set(false);
    sph.m_vaporizeTime->Set(0.5f);
    AddParticle({0, 0});
    AddParticle({5, 0});
    AddParticle({5.1f, 0});
    Run(0.6f);
    EXPECT_EQ(sim.GetParticles().size(), 2u);
}

TEST_F(SPHTest, SettingsReachAllWater) {
    const ParticlePtr particle = AddParticle({0, 0});
    EXPECT_NEAR(particle->m_mass, math::PI * 0.0025f, 1e-7f);
    sph.m_radius->Set(0.1f);
    sph.m_density->Set(3);
    sph.m_friction->Set(0.7f);
    Pass();
    EXPECT_NEAR(particle->m_mass, 3 * math::PI * 0.01f, 1e-6f);
    EXPECT_NEAR(particle->m_inertiaInv, 1 / particle->m_mass, 1e-3f);
    EXPECT_EQ(particle->m_geom->m_friction, 0.7f);
    EXPECT_EQ(particle->m_geom->m_radius, 0.05f) << "the geom keeps its radius";
}

// What is written beyond a range reads back as its end, and nothing makes a NaN.
TEST_F(SPHTest, SettingsKeepToTheirRanges) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (const auto& attribute :
         {sph.m_radius, sph.m_influence, sph.m_vaporizeTime, sph.m_friction, sph.m_restitution,
          sph.m_soundSpeed, sph.m_density, sph.m_viscosity, sph.m_pressMultiplier, sph.m_viscMultiplier,
          sph.m_surfaceTension, sph.m_jitter, sph.m_bucketSize}) {
        SCOPED_TRACE(attribute->GetName());
        const float before = attribute->Get();
        attribute->Set(std::nanf(""));
        EXPECT_EQ(attribute->Get(), before);
        for (const float extreme : {-infinity, infinity, 0.0f}) {
            sim.Clear();
            AddPool(60, 0.5f);
            attribute->Set(extreme);
            EXPECT_GE(attribute->Get(), attribute->GetRange()->least);
            EXPECT_LE(attribute->Get(), attribute->GetRange()->most);
            EXPECT_EQ(script::ObjectToValue<float>(attribute->GetValue()), attribute->Get());
            Run(0.05f);
            for (const ParticlePtr& particle : sim.GetParticles()) {
                EXPECT_TRUE(IsFinite(particle->m_pos) && IsFinite(particle->m_vel));
            }
        }
        attribute->Set(attribute->GetDefault());
    }
}

TEST_F(SPHTest, JitterPushesWithTheMassOfAParticle) {
    AddCloud(2000, 1000, 3);
    const float mass = sim.GetParticles().front()->m_mass;
    sph.m_jitter->Set(10);
    Pass();
    double sum = 0;
    for (const ParticlePtr& particle : sim.GetParticles()) {
        sum += math::LengthSquared(particle->m_force) / 2;
    }
    const double deviation = std::sqrt(sum / 2000);
    EXPECT_NEAR(deviation / (10 * mass), 1, 0.05);
}

// A pool neither leaks nor simmers, and lies as deep as its drops are many.
TEST_F(SPHTest, PoolComesToRest) {
    for (const float h : {0.01f, 0.005f}) {
        sim.Clear();
        sim.m_timeDelta->Set(h);
        AddPool(300, 2);
        Run(6);
        EXPECT_EQ(sim.GetParticles().size(), 300u);
        for (const ParticlePtr& particle : sim.GetParticles()) {
            EXPECT_GT(particle->m_pos.y, 0);
            EXPECT_LT(std::fabs(particle->m_pos.x - 1), 1);
        }
        EXPECT_NEAR(sph.GetAverageDensity(), 1.02f, 0.02f);
        EXPECT_NEAR(GetLevel(0, 0), 300 * math::PI * 0.0025f / 2, 0.08f);
        EXPECT_LT(GetEnergyPerMass(), 5e-4f) << "still on its way";
    }
}

// Archimedes, from above and from below: what is half as heavy as water sinks in by half.
TEST_F(SPHTest, BoxesFloatByTheirDensity) {
    constexpr float SIZE = 0.6f;
    for (const float density : {0.3f, 0.8f}) {
        for (const bool fromBelow : {false, true}) {
            SCOPED_TRACE(testing::Message() << density << (fromBelow ? " from below" : " from above"));
            sim.Clear();
            AddPool(480, 3);
            sim.m_defaultBodyDensity->Set(density);
            if (fromBelow) MakeRoom({1.5f, 0.65f}, SIZE / 2, SIZE / 2);
            const physics::BodyPtr box = AddBox({1.5f, fromBelow ? 0.65f : 1.7f}, SIZE, SIZE);
            Run(12);
            // Of a box that may have turned: the water it stands in for, by the height of its middle.
            const float level = GetLevel(1.5f, 0.7f);
            const float tilt = std::fabs(std::remainder(box->m_angle, math::PI / 2));
            const float reach = SIZE / 2 * (std::cos(tilt) + std::sin(tilt));
            const float depth = (level - box->m_pos.y + reach) / (2 * reach);
            const float submerged =
                tilt > 0.4f ? (depth < 0.5f ? 2 * depth * depth : 1 - 2 * (1 - depth) * (1 - depth)) : depth;
            EXPECT_NEAR(submerged, density, 0.12f);
            EXPECT_LT(math::Length(box->m_vel), 0.05f);
        }
    }
}

// Water seeps under what lies flat on the floor, and between what lies side by side: what is lighter leaves
// it.
TEST_F(SPHTest, BoxesRiseFromTheFloor) {
    for (const float density : {0.45f, 0.8f}) {
        for (uint32_t seed = 1; seed <= 3; ++seed) {
            SCOPED_TRACE(testing::Message() << density << ", seed " << seed);
            sim.Clear();
            AddPool(480, 3, seed);
            MakeRoom({1.5f, 0.2f}, 0.6f, 0.2f);
            sim.m_defaultBodyDensity->Set(density);
            std::vector<physics::BodyPtr> boxes;
            for (const float x : {1.1f, 1.5f, 1.9f}) boxes.push_back(AddBox({x, 0.199f}, 0.4f, 0.4f));
            Run(12);
            for (const physics::BodyPtr& box : boxes) EXPECT_GT(box->m_pos.y, 0.35f);
        }
    }
}

// The last drops under what comes down bear nothing: it lies flat on the floor soon, and stays.
TEST_F(SPHTest, HeavyBoxesSettleOnWetGround) {
    constexpr float WIDTH = 0.8f, HEIGHT = 0.4f;
    for (const float density : {2.0f, 10.0f, 50.0f}) {
        for (const int drops : {34, 68}) {
            SCOPED_TRACE(testing::Message() << drops << " drops under " << density);
            sim.Clear();
            AddPool(drops, 3);
            Run(1);
            sim.m_defaultBodyDensity->Set(density);
            const physics::BodyPtr box = AddBox({1.5f, 0.6f}, WIDTH, HEIGHT);
            Run(2);
            float fastest = 0;
            for (int i = 0; i < 200; ++i) {
                sim.Step(true);
                fastest = std::max(fastest, math::Length(box->m_vel));
            }
            EXPECT_NEAR(box->m_pos.y, HEIGHT / 2, 0.002f);
            EXPECT_NEAR(box->m_angle, 0, 0.002f);
            EXPECT_LT(fastest, 0.1f);
            // Pulled up, it leaves them where they lay: they run no faster than by the fall of their depth.
            for (int i = 0; i < 40; ++i) {
                box->m_vel = {0, 0.5f};
                sim.Step(true);
            }
            for (const ParticlePtr& particle : sim.GetParticles()) {
                EXPECT_GT(particle->m_pos.y, 0);
                EXPECT_LT(math::Length(particle->m_vel), 1.9f);
            }
        }
    }
}

// The floor bears what the water does not: the weight less that of the water in its place, or all of it where
// the water is not as deep as a drop.
TEST_F(SPHTest, FloorBearsTheRest) {
    constexpr float SIZE = 0.6f, DENSITY = 3;
    for (const bool isDeep : {true, false}) {
        sim.Clear();
        AddPool(480, 3);
        if (!isDeep) sim.ClearParticles();
        MakeRoom({1.5f, SIZE / 2}, SIZE / 2, SIZE / 2);
        if (!isDeep) AddParticle({0.5f, 0.02f});
        sim.m_defaultBodyDensity->Set(DENSITY);
        const physics::BodyPtr box = AddBox({1.5f, SIZE / 2 - 0.001f}, SIZE, SIZE);
        box->SetHeld(true);
        Run(4);  // until the water is quiet
        box->SetHeld(false);
        Run(3);
        float sum = 0;
        for (int i = 0; i < 50; ++i) {
            sim.Step(true);
            for (const physics::ContactPtr& contact : sim.GetContacts()) {
                if (contact->m_bodies[1] == box.Get())
                    sum += contact->m_normalImpulse * contact->m_normal.y / 50;
            }
        }
        const float weight = 9.8f * SIZE * SIZE * 0.01f;  // of water in its place, per step
        EXPECT_NEAR(sum / weight, isDeep ? DENSITY - 1 : DENSITY, 0.25f);
    }
}

// Drops that are caught under what is heavier than water, and the water that seeps in beside them, do not
// carry it together.
TEST_F(SPHTest, WhatIsHeavierSinksToTheFloor) {
    for (uint32_t seed = 1; seed <= 2; ++seed) {
        sim.Clear();
        AddPool(200, 3, seed);
        Run(3);
        sim.m_defaultBodyDensity->Set(1.3f);
        const physics::BodyPtr box = AddBox({1.5f, 1.3f}, 0.5f, 0.5f);
        Run(12);
        EXPECT_NEAR(box->m_pos.y, 0.25f, 0.005f);
    }
}

// What stands on dry land beside water bears its whole weight.
TEST_F(SPHTest, DryGapsHoldNoWater) {
    constexpr float WIDTH = 0.4f, HEIGHT = 0.25f, DENSITY = 0.3f;
    AddPool(33, 3);  // a row of drops on the floor
    MakeRoom({1.5f, 0}, WIDTH, HEIGHT);
    sim.m_defaultBodyDensity->Set(DENSITY);
    AddBox({1.5f, HEIGHT / 2}, WIDTH, HEIGHT);
    const physics::BodyPtr upper = AddBox({1.5f, HEIGHT * 1.5f}, WIDTH, HEIGHT);
    Run(2);
    float sum = 0;
    for (const physics::ContactPtr& contact : sim.GetContacts()) {
        for (const int side : {0, 1}) {
            if (contact->m_bodies[side] != upper.Get()) continue;
            sum += contact->m_normalImpulse * contact->m_normal.y * (side == 0 ? -1.0f : 1.0f);
        }
    }
    EXPECT_NEAR(sum / sim.m_timeDelta->Get(), 9.8f * DENSITY * WIDTH * HEIGHT, 0.01f);
}

TEST_F(SPHTest, HashInfoTellsHowTheGridIsFilled) {
    AddParticle({0.01f, 0});
    AddParticle({-0.01f, 0});  // the same cell: cells are cut towards zero
    AddParticle({1, 0});
    Pass();
    const String info = sph.GetHashInfo();
    EXPECT_EQ(info, "Number of elements:  2\nAverage bucket size: 1.5\nMaximum bucket size: 2\n");
}

}  // namespace test
