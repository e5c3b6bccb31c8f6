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
    void Pass(float dt = 0.01f) { sph.Update(sim.GetParticles(), dt); }
    Vec2 GetTotalForce() const {
        Vec2 sum;
        for (const ParticlePtr& particle : sim.GetParticles()) sum += particle->m_force;
        return sum;
    }
};

// The equations as they are written, from all neighbours, in double precision.
struct Reference {
    explicit Reference(const physics::ParticleList& particles) {
        const physics::SPH& sph = physics::SPH::Instance();
        const double r = sph.m_radius->Get();
        h = r * sph.m_influence->Get();
        m = sph.m_density->Get() * r * r * 3.14159265358979;
        const double poly6 = 315 / (64 * 3.14159265358979 * std::pow(h, 9));
        for (const ParticlePtr& i : particles) {
            double rho = 0;
            for (const ParticlePtr& j : particles) {
                const double d = Distance(*i, *j);
                if (d < h) rho += m * poly6 * std::pow(h * h - d * d, 3);
            }
            density.push_back(rho);
            pressure.push_back(sph.m_soundSpeed->Get() * sph.m_soundSpeed->Get() *
                               (rho - sph.m_density->Get()));
        }
    }
    static double Distance(const Particle& i, const Particle& j) {
        return std::hypot(double(j.m_pos.x) - i.m_pos.x, double(j.m_pos.y) - i.m_pos.y);
    }
    math::TVector2<double> GetForce(const physics::ParticleList& particles, size_t i) const {
        const physics::SPH& sph = physics::SPH::Instance();
        const double spiky = 45 / (3.14159265358979 * std::pow(h, 6));
        math::TVector2<double> sp, sn, sv;
        for (size_t j = 0; j < particles.size(); ++j) {
            const double r = Distance(*particles[i], *particles[j]);
            if (!(r < h)) continue;
            const Particle& a = *particles[i];
            const Particle& b = *particles[j];
            const math::TVector2<double> d(double(b.m_pos.x) - a.m_pos.x, double(b.m_pos.y) - a.m_pos.y);
            const math::TVector2<double> dv(double(b.m_vel.x) - a.m_vel.x, double(b.m_vel.y) - a.m_vel.y);
            const double c =
                sph.m_specialPressure->Get()
                    ? (pressure[i] + pressure[j]) / (2 * density[i] * density[j])
                    : pressure[j] / (density[j] * density[j]) + pressure[i] / (density[i] * density[i]);
            const double g = spiky * (h - r) * (h - r);
            sp += d * (c * g);
            sn += d * (g / density[j]);
            sv += dv * (spiky * (h - r) / (density[i] * density[j]));
        }
        return (sp * (-m * sph.m_pressMultiplier->Get()) +
                sv * (sph.m_viscMultiplier->Get() * sph.m_viscosity->Get() * m) +
                sn * (sph.m_surfaceTension->Get() * m)) *
               m;
    }
    double h;
    double m;
    std::vector<double> density;
    std::vector<double> pressure;
};

TEST_F(SPHTest, LoneParticleIsFarAboveTheDensityAtRest) {
    const ParticlePtr particle = AddParticle({3, 4});
    Pass(0.25f);
    EXPECT_NEAR(particle->m_density, 12.3047f, 1e-3f);
    EXPECT_NEAR(particle->m_pressure, 4521.9f, 0.5f);
    EXPECT_EQ(particle->m_force, Vec2());
    EXPECT_EQ(particle->m_vaporTime, 0.25f);
    ASSERT_EQ(particle->m_neighbors.size(), 1u);
    EXPECT_EQ(particle->m_neighbors[0].particle, particle.Get());
    EXPECT_EQ(particle->m_neighbors[0].dist, 0);
}

TEST_F(SPHTest, PairsRepelAndKnowEachOther) {
    const ParticlePtr a = AddParticle({0, 0});
    const ParticlePtr b = AddParticle({0.0999f, 0});
    a->m_vaporTime = b->m_vaporTime = 3;
    Pass();
    EXPECT_EQ(a->m_vaporTime, 0);
    ASSERT_EQ(a->m_neighbors.size(), 2u);
    ASSERT_EQ(b->m_neighbors.size(), 2u);
    EXPECT_EQ(a->m_neighbors[1].particle, b.Get());
    EXPECT_EQ(a->m_neighbors[1].delta, -b->m_neighbors[1].delta);
    EXPECT_NEAR(a->m_neighbors[1].dist, 0.0999f, 1e-7f);
    EXPECT_LT(a->m_force.x, 0);
    EXPECT_EQ(a->m_force, -b->m_force);
    b->m_pos = {0.1001f, 0};
    Pass();
    EXPECT_EQ(a->m_neighbors.size(), 1u);
}

TEST_F(SPHTest, ForcesFollowTheEquations) {
    struct Case {
        bool special;
        float surface, viscosity;
    };
    for (const Case& c : {Case{true, 0, 0.5f}, {true, 3, 0.5f}, {false, 0, 2}, {false, 5, 0}}) {
        SCOPED_TRACE(testing::Message() << "special " << c.special << ", surface " << c.surface);
        sim.Clear();
        sph.m_specialPressure->Set(c.special);
        sph.m_surfaceTension->Set(c.surface);
        sph.m_viscosity->Set(c.viscosity);
        AddCloud(300, 0.6f, 5);
        Pass();
        const Reference reference(sim.GetParticles());
        for (size_t i = 0; i < sim.GetParticles().size(); ++i) {
            const Particle& particle = *sim.GetParticles()[i];
            const auto force = reference.GetForce(sim.GetParticles(), i);
            const double scale = 1e-4 * (1 + std::hypot(force.x, force.y));
            EXPECT_NEAR(particle.m_density, reference.density[i], 1e-4 * reference.density[i]);
            EXPECT_NEAR(particle.m_pressure, reference.pressure[i], 1e-4 * reference.pressure[i]);
            EXPECT_NEAR(particle.m_force.x, force.x, scale) << "particle " << i;
            EXPECT_NEAR(particle.m_force.y, force.y, scale) << "particle " << i;
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
            std::vector<const Particle*> expected;
            std::vector<const Particle*> found;
            for (const ParticlePtr& j : sim.GetParticles()) {
                if (math::LengthSquared(j->m_pos - i->m_pos) < 0.1f * 0.1f) expected.push_back(j.Get());
            }
            for (const Particle::Neighbor& neighbor : i->m_neighbors) {
                found.push_back(neighbor.particle);
                EXPECT_EQ(neighbor.delta, neighbor.particle->m_pos - i->m_pos);
                EXPECT_FLOAT_EQ(neighbor.dist, math::Length(neighbor.delta));
            }
            std::sort(expected.begin(), expected.end());
            std::sort(found.begin(), found.end());
            EXPECT_EQ(found, expected);
        }
    }
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
    grid.Build(points, 0.1f, 0.1f);
    EXPECT_EQ(grid.GetPairCount(), 1u);
    grid.Build(points, 0.1f, 0);
    EXPECT_LE(grid.GetPairCount(), 1u);
}

TEST_F(SPHTest, LonelyDropsVaporizeAndPairsStay) {
    sim.m_gravitySwitch->Set(false);
    sph.m_vaporizeTime->Set(0.5f);
    sph.m_pressMultiplier->Set(0);
    AddParticle({0, 0});
    AddParticle({5, 0});
    AddParticle({5.01f, 0});
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

TEST_F(SPHTest, UselessSettingsSkipThePass) {
    AddCloud(20, 0.1f, 1);
    for (float* const value : {new float(0), new float(-1)}) {
        sph.m_radius->Set(*value);
        Pass();
        sph.m_radius->Set(0.05f);
        sph.m_density->Set(*value);
        Pass();
        sph.m_density->Set(1);
        delete value;
    }
    EXPECT_EQ(GetTotalForce(), Vec2());
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

// A pool neither leaks through planes nor blows up at the default step; it settles at half of it.
TEST_F(SPHTest, PoolIsContained) {
    for (const float h : {0.01f, 0.005f}) {
        sim.Clear();
        sim.m_timeDelta->Set(h);
        AddGround({0, 1});
        AddGround({1, 0}, 0.5f);
        AddGround({-1, 0}, 0.5f);
        for (int i = 0; i < 200; ++i) {
            AddParticle(
                {-0.45f + 0.06f * static_cast<float>(i % 16), 0.05f + 0.06f * static_cast<float>(i / 16)});
        }
        Run(6);
        EXPECT_EQ(sim.GetParticles().size(), 200u);
        float speed = 0;
        for (const ParticlePtr& particle : sim.GetParticles()) {
            EXPECT_GT(particle->m_pos.y, -0.05f);
            EXPECT_LT(std::fabs(particle->m_pos.x), 0.55f);
            speed += math::Length(particle->m_vel) / 200;
        }
        EXPECT_GT(sph.GetAverageDensity(), 13);
        EXPECT_LT(sph.GetAverageDensity(), 17);
        EXPECT_LT(speed, h == 0.01f ? 1.0f : 0.02f);
    }
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
