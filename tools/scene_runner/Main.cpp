#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "Options.h"
#include "app/App.h"
#include "app/files/SceneLoader.h"
#include "app/files/Serializer.h"
#include "logging/Logger.h"
#include "physics/Body.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "script/Parser.h"
#include "util/FileSystem.h"

// Runs a scene without a window: for tests, benchmarks and anybody who wants to know where things end up.
namespace {

using scene_runner::Options;

constexpr long STEPS_PER_FRAME = 4;  // as at the shipped step and 50 frames a second

enum ExitCode { OK = 0, FAILED = 1, BAD_USAGE = 2 };

// The services in the order in which the program brings them up. Problems with the skin do not concern
// somebody without a window, so the log is heard only from then on.
void BringUp() {
    logging::Logger::Instance();
    physics::Simulation& simulation = physics::Simulation::Instance();
    script::Reflected::AddToRoot(&simulation);
    script::Reflected::AddToRoot(&physics::SPH::Instance());
    script::Reflected::AddToRoot(&app::App::Instance());
    logging::Logger::Instance().AddLogger(
        new logging::StreamLogger(logging::Warning | logging::CodeError | logging::DataError, std::cerr));
}

// The loader looks for bare names in Scenes/; on a command line they mean the current folder.
String AsPath(const String& name) {
    return name.find('/') == String::npos ? "./" + name : name;
}

// What a frame of the program does besides: formulas on attributes, and sweeping.
void TendServices() {
    script::Parser::Instance().Update();
    util::Pointee::SweepHandles();
    logging::Logger::Instance().Update();
}

// The pages of this process that lie in memory, in kilobytes; 0 where the system does not tell.
long GetMemory() {
    long total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// Seconds of the processor, whatever else the machine does.
double GetSpent() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

float GetFastest() {
    float fastest = 0;
    const auto look = [&fastest](const physics::AbstractBody& body) {
        const float speed = math::Length(body.m_vel);
        if (!(speed <= fastest)) fastest = speed;  // a NaN stays
    };
    for (const physics::BodyPtr& body : physics::Simulation::Instance().GetBodies()) look(*body);
    for (const physics::ParticlePtr& drop : physics::Simulation::Instance().GetParticles()) look(*drop);
    return fastest;
}

void Report(long step, double milliseconds) {
    const physics::Simulation& simulation = physics::Simulation::Instance();
    std::printf("%ld %.4f %ld %zu %zu %g\n", step, milliseconds, GetMemory(), simulation.GetBodies().size(),
                simulation.GetParticles().size(), double(GetFastest()));
    std::fflush(stdout);
}

void MakeSteps(long steps, long watch) {
    physics::Simulation& simulation = physics::Simulation::Instance();
    simulation.m_running->Set(true);
    double begin = GetSpent();
    for (long i = 1; i <= steps; ++i) {
        simulation.Step(true);
        if (i % STEPS_PER_FRAME == 0) TendServices();
        if (watch == 0 || i % watch != 0) continue;
        const double now = GetSpent();
        Report(i, (now - begin) * 1000 / static_cast<double>(watch));
        begin = now;
    }
    simulation.m_running->Set(false);
}

int Run(const Options& options) {
    BringUp();
    app::App& application = app::App::Instance();
    if (!app::SceneLoader::Load(application.GetScene(), application.GetView(), AsPath(options.m_scene))) {
        std::fprintf(stderr, "vexa-scene: could not load %s\n", options.m_scene.c_str());
        return FAILED;
    }
    script::Parser& parser = script::Parser::Instance();
    for (const String& statement : options.m_before) parser.Execute(statement);
    MakeSteps(options.m_steps, options.m_watch);
    if (options.m_hash) std::printf("%016" PRIx64 "\n", physics::Simulation::Instance().HashState());
    for (const String& expression : options.m_prints) {
        std::printf("%s\n", parser.ExecuteToString(expression).c_str());
    }
    if (!options.m_out.empty()) {
        util::FileSystem::Instance().WriteFileAtomically(
            options.m_out, app::Serializer::Serialize(application.GetScene())->ToCode());
    }
    return OK;
}

int RunCommandLine(const std::vector<String>& args) {
    try {
        const Options options = scene_runner::ParseOptions(args);
        if (options.m_help) {
            std::fputs(scene_runner::USAGE, stdout);
            return OK;
        }
        return Run(options);
    } catch (const std::invalid_argument& e) {
        std::fprintf(stderr, "vexa-scene: %s\n%s", e.what(), scene_runner::USAGE);
        return BAD_USAGE;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "vexa-scene: %s\n", e.what());
        return FAILED;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int result = RunCommandLine({argv + 1, argv + argc});
    std::fflush(nullptr);
    _exit(result);  // the services are abandoned, as in the program itself
}
