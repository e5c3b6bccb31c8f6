#pragma once

#include <cstddef>

#include "math/Vector.h"

// The innermost loop of the solver: contacts that share no movable body, group after group.
namespace physics {

struct ContactRow8;
struct ContactTrend8;
struct SolverBody;

enum class SweepKind { PLAIN, WITH_TREND, LAST };  // the last makes the step that is left, and no more

// Groups to solve in their order.
struct ContactStretch {
    ContactRow8* groups;
    size_t count;
    ContactTrend8* trends;  // of the groups; null in plain sweeps
    math::real share;       // of the trend, to be stepped along
    math::real* squares;    // per lane, to which the squares of the impulses' changes are added
    SolverBody* bodies;
};

struct ContactSweeps {
    void (*plain)(const ContactStretch&);
    void (*withTrend)(const ContactStretch&);
    void (*last)(const ContactStretch&);
};

// The same bits both: for every processor, and with registers of eight floats, null where the build has none,
// to be called where the processor has them.
const ContactSweeps& GetNarrowContactSweeps();
const ContactSweeps* GetWideContactSweeps();

// The fastest that this processor can run.
const ContactSweeps& GetContactSweeps();

}  // namespace physics
