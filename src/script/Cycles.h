#pragma once

#include <cstddef>

namespace script {

// Closures that hold themselves: in `f = { g = { 1 }; g }` the locals of a call hold `g`, and `g` holds the
// locals as the place in which it was made. Counting alone never frees such a ring.
//
// A call's closure that is given up while others still hold it is noted as a suspect (Release.h), and each
// frame asks of the suspects whether all holds on what they reach come from within. Such a closure is
// emptied. Looks at all suspects noted since the last call and at some of the older ones.
void CollectCycles();

size_t GetNumSuspects();

}  // namespace script
