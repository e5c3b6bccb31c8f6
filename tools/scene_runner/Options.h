#pragma once

#include <vector>

#include "util/String.h"

namespace scene_runner {

// What the command line asks for.
struct Options {
    String m_scene;
    long m_steps = 0;
    long m_watch = 0;  // steps between two reports; 0 for none
    bool m_hash = false;
    std::vector<String> m_before;  // script run between loading and stepping
    std::vector<String> m_prints;  // script expressions printed at the end
    String m_out;                  // path to write the scene to; empty for none
    bool m_help = false;
};

extern const char* const USAGE;

// Throws std::invalid_argument with a text for the user.
Options ParseOptions(const std::vector<String>& args);

}  // namespace scene_runner
