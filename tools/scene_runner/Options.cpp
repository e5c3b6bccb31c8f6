#include "Options.h"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace scene_runner {

namespace {

constexpr long MAX_STEPS = 1000000000;

long ParseSteps(const String& option, const String& text) {
    char* end = nullptr;
    errno = 0;
    const long steps = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != 0 || errno != 0 || steps < 0 || steps > MAX_STEPS) {
        throw std::invalid_argument(option + " needs a number from 0 to 1000000000, not \"" + text + "\"");
    }
    return steps;
}

}  // namespace

const char* const USAGE =
    "Usage: vexa-scene SCENE.vxa [options]\n"
    "Loads a scene without a window and runs it.\n"
    "  --steps N            make N steps of Sim.timeDelta (default 0)\n"
    "  --watch N            after every N steps print their number, milliseconds a step since the last line, "
    "the\n"
    "                       memory of the process in kilobytes, bodies and drops, and the fastest in m/s\n"
    "  --run STATEMENT      run a line of script before the steps\n"
    "  --print EXPRESSION   print the value of a script expression at the end\n"
    "  --hash               print a hash of the state of all bodies and drops at the end\n"
    "  --out FILE.vxa       write the scene at the end\n"
    "  --help               print this\n"
    "Exit code: 0 when all went well, 1 when the scene could not be loaded or written, 2 for a bad command\n"
    "line.\n";

Options ParseOptions(const std::vector<String>& args) {
    Options options;
    for (size_t i = 0; i < args.size(); ++i) {
        const String& arg = args[i];
        const auto value = [&]() -> const String& {
            if (i + 1 >= args.size()) throw std::invalid_argument(arg + " needs a value");
            return args[++i];
        };
        if (arg == "--steps") {
            options.m_steps = ParseSteps(arg, value());
        } else if (arg == "--watch") {
            options.m_watch = ParseSteps(arg, value());
        } else if (arg == "--run") {
            options.m_before.push_back(value());
        } else if (arg == "--print") {
            options.m_prints.push_back(value());
        } else if (arg == "--out") {
            options.m_out = value();
        } else if (arg == "--hash") {
            options.m_hash = true;
        } else if (arg == "--help" || arg == "-h") {
            options.m_help = true;
        } else if (arg.compare(0, 1, "-") == 0) {
            throw std::invalid_argument("unknown option " + arg);
        } else if (options.m_scene.empty()) {
            options.m_scene = arg;
        } else {
            throw std::invalid_argument("more than one scene: " + arg);
        }
    }
    if (options.m_scene.empty() && !options.m_help) throw std::invalid_argument("no scene given");
    return options;
}

}  // namespace scene_runner
