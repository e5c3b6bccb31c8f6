#pragma once

#include <cstdint>

namespace script {

// A place in a text; line and column count from 1, and 0 stands for an unknown one.
struct SourcePlace {
    uint32_t line = 0;
    uint16_t column = 0;  // bytes; further ones stay at the greatest number
    uint16_t text = 0;    // which text, counted up from 1

    bool IsKnown() const { return line != 0; }
};

}  // namespace script
