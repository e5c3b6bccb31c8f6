// Water: the fluid pass at rest and in a breaking dam beside a plain reference, and whole steps.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/Scenes.h"
#include "bench/WaterReference.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"

namespace bench {

using math::Vec2;

static void AddWall(Vec2 normal, float offset) {
    const physics::GeomPtr plane = new physics::Plane(normal, offset);
    physics::Simulation::Instance().AddBody(new physics::Body(plane));
}

// A block of drops in the left of a tank. With less pressure than the default the water comes to rest at
// this step.
static void MakeTank(int drops, float tankWidth, float blockWidth) {
    constexpr float SPACING = 0.055f;
    constexpr float CALM = 0.5f;
    physics::Simulation& simulation = physics::Simulation::Instance();
    simulation.Clear();
    simulation.m_running->Set(true);
    simulation.m_solveIter->Set(SWEEPS);
    simulation.m_timeDelta->Set(TIME_STEP);
    simulation.m_gravity->Set({0, -9.8f});
    physics::SPH::Instance().m_pressMultiplier->Set(CALM);
    AddWall({0, 1}, 0);
    AddWall({1, 0}, 0);
    AddWall({-1, 0}, tankWidth);
    const int columns = static_cast<int>(blockWidth / SPACING);
    for (int i = 0; i < drops; ++i) {
        const Vec2 pos((static_cast<float>(i % columns) + 0.5f) * SPACING,
                       (static_cast<float>(i / columns) + 0.5f) * SPACING);
        simulation.AddParticle(new physics::Particle(pos, Vec2()));
    }
}

static void MakeWater(bool atRest, int drops) {
    // Equally deep whatever the number, so that a drop's neighbours stay as many.
    constexpr float DROPS_PER_METRE = 500;
    const float width = static_cast<float>(drops) / DROPS_PER_METRE;
    MakeTank(drops, atRest ? width : 2 * width, width);
    const int steps = atRest ? 300 : 60;
    for (int i = 0; i < steps; ++i) physics::Simulation::Instance().Step(true);
}

static WaterReference MakeReference() {
    const physics::SPH& sph = physics::SPH::Instance();
    const WaterSettings settings = {sph.m_radius->Get(),
                                    sph.m_influence->Get(),
                                    sph.m_density->Get(),
                                    sph.m_soundSpeed->Get(),
                                    sph.m_viscosity->Get() * sph.m_viscMultiplier->Get(),
                                    sph.m_pressMultiplier->Get()};
    std::vector<WaterReference::Drop> drops;
    for (const physics::ParticlePtr& particle : physics::Simulation::Instance().GetParticles()) {
        drops.push_back({particle->m_pos, particle->m_vel, {}, {}, {}, 0, 0});
    }
    return WaterReference(settings, std::move(drops));
}

static double CountPairs() {
    WaterReference reference = MakeReference();
    reference.Pass();
    return static_cast<double>(reference.GetPairCount());
}

static void BenchPass(benchmark::State& state, bool atRest, int drops) {
    MakeWater(atRest, drops);
    physics::SPH& sph = physics::SPH::Instance();
    for (auto _ : state) sph.Update(physics::Simulation::Instance().GetParticles(), 0.01f);
    const double pairs = CountPairs();
    state.counters["pairs"] = pairs;
    state.counters["perPair"] = benchmark::Counter(
        pairs, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["neighbours"] = sph.GetAverageNeighborCount();
}

static void BenchReference(benchmark::State& state, bool atRest, int drops) {
    MakeWater(atRest, drops);
    WaterReference reference = MakeReference();
    for (auto _ : state) reference.Pass();
    benchmark::DoNotOptimize(reference.GetDrops().data());
    state.counters["pairs"] = static_cast<double>(reference.GetPairCount());
}

static void BenchNeighbours(benchmark::State& state, int drops) {
    MakeWater(true, drops);
    const float h = physics::SPH::Instance().m_radius->Get() * physics::SPH::Instance().m_influence->Get();
    util::VectorPOD<Vec2> points;
    for (const physics::ParticlePtr& particle : physics::Simulation::Instance().GetParticles()) {
        points.push_back(particle->m_pos);
    }
    physics::NeighborGrid grid;
    for (auto _ : state) grid.Build(points, h, h);
    state.counters["pairs"] = static_cast<double>(grid.GetPairCount());
}

static void BenchStep(benchmark::State& state, bool atRest, int drops) {
    MakeWater(atRest, drops);
    for (auto _ : state) physics::Simulation::Instance().Step(true);
    state.counters["contacts"] = static_cast<double>(physics::Simulation::Instance().GetContacts().size());
}

static const bool s_isRegistered = [] {
    const auto add = [](const std::string& name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark(name.c_str(), function, arguments...)
            ->Iterations(100)
            ->Unit(benchmark::kMillisecond);
    };
    for (const int drops : {1000, 4000, 16000}) {
        const std::string size = std::to_string(drops);
        add("water/" + size + "/vexa", BenchPass, true, drops);
        add("water/" + size + "/reference", BenchReference, true, drops);
        add("dam/" + size + "/vexa", BenchPass, false, drops);
        add("dam/" + size + "/reference", BenchReference, false, drops);
        add("water step/" + size + "/vexa", BenchStep, true, drops);
    }
    add("neighbours/4000/vexa", BenchNeighbours, 4000);
    return true;
}();

}  // namespace bench
