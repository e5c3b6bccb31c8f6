#include "core/CommandLine.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <cctype>
#include <cstdlib>

#include "util/FileNames.h"

namespace core {

namespace {

constexpr float MIN_SCALE = 0.5f, MAX_SCALE = 4;  // of the interface

bool AsksForVersion(const String& argument) {
    return boost::contains(argument, "-version") || boost::contains(argument, "/version");
}

String ScaleSetting(const String& text) {
    char* end = nullptr;
    const float scale = std::strtof(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(scale >= MIN_SCALE && scale <= MAX_SCALE)) {
        throw std::invalid_argument("--scale needs a number from 0.5 to 4, not \"" + text + "\"");
    }
    return "GUI.scale = " + std::to_string(scale);
}

// The name becomes part of a statement: nothing but letters, or it could be any statement.
String LanguageSetting(const String& name) {
    for (const char c : name) {
        if (std::isalpha(static_cast<unsigned char>(c)) == 0) {
            throw std::invalid_argument("--language needs a name like \"English\", not \"" + name + "\"");
        }
    }
    return "App.language = \"" + name + "\"";
}

}  // namespace

const char* const COMMAND_LINE_HELP =
    "Usage: vexa [options] [SCENE.vxa]\n"
    "A two-dimensional physics sandbox. Opens the scene, or the one that was open last.\n"
    "  --no-shaders       draw without shaders\n"
    "  --fullscreen       fill the screen\n"
    "  --scale X          size of the interface, from 0.5 to 4\n"
    "  --language NAME    language of the interface, such as English\n"
    "  --version          print the version\n"
    "  --help             print this\n"
    "What the options set is kept, as if it had been set in the program.\n";

CommandLine ParseCommandLine(const util::StringList& arguments) {
    CommandLine line;
    util::StringList pieces;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const String& argument = arguments[i];
        const auto value = [&]() -> const String& {
            if (i + 1 >= arguments.size()) throw std::invalid_argument(argument + " needs a value");
            return arguments[++i];
        };
        if (AsksForVersion(argument)) {
            line.m_version = true;
        } else if (argument == "--help" || argument == "-h") {
            line.m_help = true;
        } else if (argument == "--no-shaders") {
            line.m_settings.push_back("Resources.shaders = false");
        } else if (argument == "--fullscreen") {
            line.m_settings.push_back("System.fullscreen = true");
        } else if (argument == "--scale") {
            line.m_settings.push_back(ScaleSetting(value()));
        } else if (argument == "--language") {
            line.m_settings.push_back(LanguageSetting(value()));
        } else if (pieces.empty() && boost::starts_with(argument, "-")) {
            throw std::invalid_argument("unknown option " + argument);
        } else {
            pieces.push_back(argument);
        }
    }
    const String path = boost::join(pieces, " ");
    (boost::ends_with(path, SCENE_ENDING) ? line.m_scene : line.m_noScene) = path;
    return line;
}

}  // namespace core
