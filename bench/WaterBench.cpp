// Water: the fluid pass at rest and in a breaking dam beside a plain reference, whole steps, shapes in water;
// and, as "steady/...", what water carries and how it rests, to be asked for by name.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench/Scenes.h"
#include "bench/WaterReference.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/NeighborLists.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"

namespace bench {

using math::Vec2;

static void AddWall(Vec2 normal, float offset) {
    const physics::GeomPtr plane = new physics::Plane(normal, offset);
    physics::Simulation::Instance().AddBody(new physics::Body(plane));
}

constexpr float SPACING = 0.0886f;  // m, of drops at rest
static const Vec2 GRAVITY(0, -9.8f);

// A block of drops in the left of a tank.
static void MakeTank(int drops, float tankWidth, float blockWidth) {
    physics::Simulation& simulation = physics::Simulation::Instance();
    simulation.Clear();
    simulation.m_running->Set(true);
    simulation.m_solveIter->Set(SWEEPS);
    simulation.m_timeDelta->Set(TIME_STEP);
    simulation.m_gravity->Set(GRAVITY);
    AddWall({0, 1}, 0);
    AddWall({1, 0}, 0);
    AddWall({-1, 0}, tankWidth);
    const int columns = static_cast<int>(blockWidth / SPACING);
    std::mt19937 random(1);
    std::uniform_real_distribution<float> jitter(-0.005f, 0.005f);
    for (int i = 0; i < drops; ++i) {
        const float up = jitter(random), aside = jitter(random);  // in this order with every compiler
        const Vec2 pos((static_cast<float>(i % columns) + 0.5f) * SPACING + aside,
                       (static_cast<float>(i / columns) + 0.5f) * SPACING + up);
        simulation.AddParticle(new physics::Particle(pos, Vec2()));
    }
}

static void MakeWater(bool atRest, int drops) {
    // Equally deep whatever the number, so that a drop's neighbours stay as many.
    constexpr float DROPS_PER_METRE = 250;  // two metres deep
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
                                    sph.m_pressMultiplier->Get(),
                                    TIME_STEP,
                                    sph.m_pressureSweeps->Get()};
    std::vector<WaterReference::Drop> drops;
    for (const physics::ParticlePtr& particle : physics::Simulation::Instance().GetParticles()) {
        WaterReference::Drop drop = {};
        drop.pos = particle->m_pos;
        drop.vel = particle->m_vel;
        drop.pressure = particle->m_pressure;
        drops.push_back(drop);
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
    const physics::Simulation& simulation = physics::Simulation::Instance();
    for (auto _ : state) {
        sph.Sort(simulation.GetParticles());
        sph.FindTouches(simulation.GetBodies(), GRAVITY);
        sph.Update(simulation.GetParticles(), simulation.GetBodies(), GRAVITY, TIME_STEP);
    }
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
    physics::NeighborLists lists;
    for (auto _ : state) {
        grid.Sort(points, h);
        lists.Build(grid, h);
    }
    state.counters["pairs"] = static_cast<double>(lists.GetPairCount());
}

static void BenchStep(benchmark::State& state, bool atRest, int drops) {
    MakeWater(atRest, drops);
    for (auto _ : state) physics::Simulation::Instance().Step(true);
    state.counters["contacts"] = static_cast<double>(physics::Simulation::Instance().GetContacts().size());
}

// Boxes that swim in a pool, beside the pool alone.
static void BenchBoxes(benchmark::State& state, int boxes) {
    constexpr float SIZE = 0.1f;
    constexpr int PER_ROW = 100;
    MakeWater(true, 4000);
    physics::Simulation& simulation = physics::Simulation::Instance();
    for (int i = 0; i < boxes; ++i) {
        const float x = 0.4f + 0.15f * static_cast<float>(i % PER_ROW);
        const float y = 2.2f + 0.15f * static_cast<float>(i / PER_ROW);
        const physics::PolygonPtr box = physics::MakeBoxPolygon(x, y, x + SIZE, y + SIZE);
        box->m_density = 0.5f;
        simulation.AddBody(new physics::Body(physics::GeomPtr(box.Get())));
    }
    for (int i = 0; i < 200; ++i) simulation.Step(true);
    for (auto _ : state) simulation.Step(true);
    state.counters["contacts"] = static_cast<double>(simulation.GetContacts().size());
}

// ---- steadiness ------------------------------------------------------------------------------------------

// At the step that ships.
static void RunSeconds(float seconds) {
    physics::Simulation& simulation = physics::Simulation::Instance();
    simulation.m_timeDelta->Set(simulation.m_timeDelta->GetDefault());
    simulation.m_solveIter->Set(simulation.m_solveIter->GetDefault());
    const long steps = std::lround(seconds / simulation.m_timeDelta->Get());
    for (long i = 0; i < steps; ++i) simulation.Step(true);
}

// m: of the highest drops and what they stand for, away from x: the middle of the tops of columns.
static float GetLevel(float x, float distance) {
    constexpr float COLUMN = 0.1f;
    std::map<int, float> tops;
    for (const physics::ParticlePtr& particle : physics::Simulation::Instance().GetParticles()) {
        if (std::fabs(particle->m_pos.x - x) < distance) continue;
        float& top = tops[static_cast<int>(particle->m_pos.x / COLUMN)];
        top = std::max(top, particle->m_pos.y);
    }
    std::vector<float> heights;
    for (const auto& [_, top] : tops) heights.push_back(top);
    std::sort(heights.begin(), heights.end());
    return heights[heights.size() / 2] + SPACING / 2;
}

static double GetShareBelow(const physics::Body& box, float size, float level) {
    constexpr int SIDE = 200;
    int below = 0;
    for (int i = 0; i < SIDE * SIDE; ++i) {
        const float x = ((static_cast<float>(i % SIDE) + 0.5f) / SIDE - 0.5f) * size;
        const float y = ((static_cast<float>(i / SIDE) + 0.5f) / SIDE - 0.5f) * size;
        if (box.m_pos.y + std::sin(box.m_angle) * x + std::cos(box.m_angle) * y < level) ++below;
    }
    return below / static_cast<double>(SIDE * SIDE);
}

// The share of a box under water, 20 s after it was dropped or let go half-way down.
static void BenchFloat(benchmark::State& state, float density, bool fromBelow) {
    constexpr float WIDTH = 3, SIZE = 0.5f;
    physics::Simulation& simulation = physics::Simulation::Instance();
    double share = 0;
    for (auto _ : state) {
        MakeTank(500, WIDTH, WIDTH);
        RunSeconds(5);
        const float level = GetLevel(-1, 0);
        const Vec2 at(WIDTH / 2, fromBelow ? level / 2 : level + 0.1f + SIZE / 2);
        physics::ParticleList kept;
        for (const physics::ParticlePtr& particle : simulation.GetParticles()) {
            const Vec2 away = particle->m_pos - at;
            if (std::max(std::fabs(away.x), std::fabs(away.y)) > SIZE / 2 + 0.02f) kept.push_back(particle);
        }
        simulation.ClearParticles();
        for (const physics::ParticlePtr& particle : kept) simulation.AddParticle(particle);
        const physics::PolygonPtr polygon =
            physics::MakeBoxPolygon(at.x - SIZE / 2, at.y - SIZE / 2, at.x + SIZE / 2, at.y + SIZE / 2);
        polygon->m_density = density;
        const physics::BodyPtr box = new physics::Body(physics::GeomPtr(polygon.Get()));
        simulation.AddBody(box);
        RunSeconds(20);
        share = GetShareBelow(*box, SIZE, GetLevel(WIDTH / 2, SIZE * 0.75f + 0.15f));
    }
    state.counters["submerged"] = share;
    state.counters["wanted"] = static_cast<double>(density);
}

// Kinetic energy per drop's mass, 20 s after a pour.
static void BenchRest(benchmark::State& state, int drops) {
    double energy = 0;
    for (auto _ : state) {
        MakeTank(drops, 4, 2);
        RunSeconds(20);
        energy = 0;
        for (const physics::ParticlePtr& particle : physics::Simulation::Instance().GetParticles()) {
            energy += math::LengthSquared(particle->m_vel) / 2;
        }
    }
    state.counters["J/kg"] = energy / drops;
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
    add("boxes in water/0/vexa", BenchBoxes, 0);
    add("boxes in water/200/vexa", BenchBoxes, 200);
    const auto addSteady = [](const std::string& name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark(name.c_str(), function, arguments...)
            ->Iterations(1)
            ->Unit(benchmark::kSecond);
    };
    for (const float density : {0.3f, 0.5f, 0.8f}) {
        const std::string number = std::to_string(density).substr(0, 3);
        addSteady("steady/float " + number + " from above", BenchFloat, density, false);
        addSteady("steady/float " + number + " from below", BenchFloat, density, true);
    }
    addSteady("steady/pool 2000", BenchRest, 2000);
    return true;
}();

}  // namespace bench
