#pragma once

#include <algorithm>
#include <cstdlib>

namespace test {

// How many rounds a random test goes: its short form, or as many as the environment's VEXA_LENGTH says.
inline int GetLength(int shortForm) {
    const char* const asked = std::getenv("VEXA_LENGTH");
    return asked != nullptr ? std::max(std::atoi(asked), 1) : shortForm;
}

}  // namespace test
