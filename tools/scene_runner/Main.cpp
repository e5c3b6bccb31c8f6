#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <iostream>
#include <stdexcept>

#include "Options.h"
#include "app/App.h"
#include "app/files/SceneLoader.h"
#include "app/files/Serializer.h"
#include "logging/Logger.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "script/Parser.h"
#include "util/FileSystem.h"

// Runs a scene without a window: for tests, benchmarks and anybody who wants to know where things end up.
namespace {

using scene_runner::Options;

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

void MakeSteps(long steps) {
    physics::Simulation& simulation = physics::Simulation::Instance();
    simulation.m_running->Set(true);
    for (long i = 0; i < steps; ++i) simulation.Step(true);
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
    MakeSteps(options.m_steps);
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
