#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <vector>

#include "bench/Engine.h"
#include "logging/Logger.h"
#include "physics/Simulation.h"
#include "util/FileSystem.h"

// Chipmunk greets on standard output when it makes its first space; that would spoil the report.
static void HearGreetings() {
    std::fflush(stdout);
    const int out = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    bench::MakeChipmunk({});
    std::fflush(stdout);
    dup2(out, STDOUT_FILENO);
    close(out);
}

// Services are abandoned at exit, as in the program itself.
int main(int argc, char** argv) {
    util::FileSystem::Instance().SetWorkDir("/tmp/");
    logging::Logger::Instance();
    physics::Simulation::Instance();
    // What is measured by the minute runs only when it is asked for; a filter of the user's comes later and
    // wins.
    char ordinary[] = "--benchmark_filter=-^(steady|growth)";
    std::vector<char*> args(argv, argv + argc);
    args.insert(args.begin() + 1, ordinary);
    argc = static_cast<int>(args.size());
    args.push_back(nullptr);
    argv = args.data();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    HearGreetings();
    benchmark::RunSpecifiedBenchmarks();
    std::fflush(nullptr);
    _exit(0);
}
