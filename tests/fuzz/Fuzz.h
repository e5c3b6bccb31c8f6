#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "logging/Logger.h"
#include "script/Parser.h"

// What all fuzzers share. A property that does not hold ends the program, which is how libFuzzer is told.
namespace fuzz {

inline void Require(bool holds, const char* property, const String& detail = String()) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n%s\n", property, detail.c_str());
    std::abort();
}

// A folder of this process, which run.sh puts into memory: hundreds of files a second would wait for the
// disk.
inline String MakeFolder() {
    const auto folder = std::filesystem::temp_directory_path() / ("vexa-fuzz-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    return folder.string() + "/";
}

// Services without output: a logger without sinks, and failures that go nowhere.
inline script::Parser& MakeQuietParser() {
    logging::Logger::Instance();
    script::Parser& parser = script::Parser::Instance();
    parser.SetOnError([](const String&) {});
    return parser;
}

// What a frame does to keep memory level.
inline void Tidy() {
    script::Parser::Instance().Update();
    logging::Logger::Instance().Update();
    util::Pointee::SweepHandles();
}

}  // namespace fuzz
