#pragma once

#include <stdexcept>

#include "util/FileSystem.h"

namespace core {

// What the user asked for where the program was started.
struct CommandLine {
    bool m_version = false;
    bool m_help = false;
    // Statements of script that stand for the options, run after the saved settings.
    util::StringList m_settings;
    String m_scene;    // a path, or a name in Scenes/; empty for none
    String m_noScene;  // what was asked for and does not end as a scene does; empty for none
};

extern const char* const COMMAND_LINE_HELP;

// Any argument that holds "-version" or "/version" asks for the version. A scene's path with blanks may
// arrive unquoted, in pieces: they are joined; what does not end in ".vxa" names no scene. Throws
// std::invalid_argument, with a line for the user, for an unknown option or a value that does not fit.
CommandLine ParseCommandLine(const util::StringList& arguments);

}  // namespace core
