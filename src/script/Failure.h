#pragma once

#include <vector>

#include "script/SourcePlace.h"
#include "util/String.h"

namespace script {

// Something in a text that went wrong, for who shows the text and marks the place.
struct Failure {
    String message;
    SourcePlace place;
};
using FailureList = std::vector<Failure>;

// The failures of the latest run of a text. More than a hundred are not kept, nor those in functions from
// other texts.
void NoteFailure(const Failure& failure);
void BeginFailures(uint16_t text);  // of this text, and of none before
const FailureList& GetFailures();

}  // namespace script
