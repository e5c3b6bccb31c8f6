// Whole steps of rigid scenes, after settling: scene/size/engine; and how their time grows with their size.

#include <benchmark/benchmark.h>

#include <cmath>
#include <ctime>
#include <stdexcept>
#include <string>

#include "bench/Engine.h"
#include "physics/Simulation.h"

namespace bench {

std::unique_ptr<Engine> MakeEngine(const std::string& name, const Scene& scene) {
    if (name == "vexa") return MakeVexa(scene);
    if (name == "box2d") return MakeBox2D(scene);
    if (name == "chipmunk") return MakeChipmunk(scene);
    throw std::runtime_error("no engine " + name);
}

static std::unique_ptr<Engine> MakeSettled(const std::string& engine, const Scene& scene) {
    std::unique_ptr<Engine> world = MakeEngine(engine, scene);
    for (int i = 0; i < scene.settleSteps; ++i) world->Step();
    return world;
}

static void BenchStep(benchmark::State& state, const std::string& scene, int size,
                      const std::string& engine) {
    const std::unique_ptr<Engine> world = MakeSettled(engine, MakeScene(scene, size));
    double contacts = 0;
    for (auto _ : state) {
        world->Step();
        state.PauseTiming();
        contacts += world->CountContacts();
        state.ResumeTiming();
    }
    state.counters["contacts"] = contacts / static_cast<double>(state.iterations());
    state.counters["perContactSweep"] =
        benchmark::Counter(contacts * SWEEPS, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

static double ReadCpuTime() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// The slope of a step's time over the number of sweeps, per contact.
static void BenchSweep(benchmark::State& state, const std::string& scene, int size) {
    constexpr int MORE_SWEEPS = 100;
    const std::unique_ptr<Engine> world = MakeSettled("vexa", MakeScene(scene, size));
    physics::Simulation& simulation = physics::Simulation::Instance();
    const auto timeStep = [&](int sweeps) {
        simulation.m_solveIter->Set(sweeps);
        const double start = ReadCpuTime();
        world->Step();
        return ReadCpuTime() - start;
    };
    for (auto _ : state) {
        const double few = timeStep(SWEEPS);
        const double many = timeStep(SWEEPS + MORE_SWEEPS);
        state.SetIterationTime((many - few) / MORE_SWEEPS / world->CountContacts());
    }
    simulation.m_solveIter->Set(SWEEPS);
}

static double TimeSteps(Engine& world, int steps) {
    const double start = ReadCpuTime();
    for (int i = 0; i < steps; ++i) world.Step();
    return (ReadCpuTime() - start) / steps;
}

// Twice the bodies take how much longer: the exponent x in time = N^x. What the caches of this machine add is
// in the other engines' as well.
static void BenchGrowth(benchmark::State& state, const std::string& scene, const std::string& engine) {
    constexpr int FEW = 1000, MANY = 8000, STEPS = 100;
    for (auto _ : state) {
        const double few = TimeSteps(*MakeSettled(engine, MakeScene(scene, FEW)), STEPS * (MANY / FEW));
        const double many = TimeSteps(*MakeSettled(engine, MakeScene(scene, MANY)), STEPS);
        state.SetIterationTime(many);
        state.counters["exponent"] = std::log(many / few) / std::log(double(MANY) / FEW);
    }
}

static void RegisterGrowth(const std::string& scene) {
    for (const char* const engine : {"vexa", "chipmunk", "box2d"}) {
        benchmark::RegisterBenchmark(("growth/" + scene + "/" + engine).c_str(), BenchGrowth, scene, engine)
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

static void RegisterScene(const std::string& scene, int size, int steps) {
    for (const char* const engine : {"vexa", "chipmunk", "box2d"}) {
        const std::string name = scene + "/" + std::to_string(size) + "/" + engine;
        benchmark::RegisterBenchmark(name.c_str(), BenchStep, scene, size, engine)
            ->Iterations(steps)
            ->Unit(benchmark::kMillisecond);
    }
}

static const bool s_isRegistered = [] {
    RegisterScene("pile", 1000, 200);
    RegisterScene("pile", 4000, 100);
    RegisterScene("pyramid", 20, 200);
    RegisterScene("pyramid", 40, 100);
    RegisterScene("sparse", 2000, 200);
    RegisterScene("sparse", 8000, 100);
    RegisterScene("stack", 20, 500);
    RegisterScene("mixed", 300, 200);
    RegisterScene("chain at rest", 100, 500);
    RegisterScene("chain swinging", 100, 200);
    RegisterGrowth("sparse");
    RegisterGrowth("pile");
    for (const char* const scene : {"pile/1000", "pyramid/20"}) {
        const std::string text = scene;
        const size_t slash = text.find('/');
        benchmark::RegisterBenchmark(("sweep per contact/" + text.substr(0, slash)).c_str(), BenchSweep,
                                     text.substr(0, slash), std::stoi(text.substr(slash + 1)))
            ->Iterations(50)
            ->UseManualTime()
            ->Unit(benchmark::kNanosecond);
    }
    return true;
}();

}  // namespace bench
