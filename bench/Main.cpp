#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>

#include "logging/Logger.h"
#include "physics/Simulation.h"
#include "util/FileSystem.h"

// Services are abandoned at exit, as in the program itself.
int main(int argc, char** argv) {
    util::FileSystem::Instance().SetWorkDir("/tmp/");
    logging::Logger::Instance();
    physics::Simulation::Instance();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    std::fflush(nullptr);
    _exit(0);
}
