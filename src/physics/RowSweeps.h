#pragma once

#include <cstddef>

#include "math/Vector.h"

// The innermost loops of the solver: contacts, or hinges, that share no movable body, group after group.
namespace physics {

struct ContactRow8;
struct ContactTrend8;
struct HingeRow8;
struct HingeTrend8;

enum class SweepKind { PLAIN, WITH_TREND, LAST };  // the last makes the step that is left, and no more

// Groups to solve in their order.
template <class Row, class Trend>
struct RowStretch {
    Row* groups;
    size_t count;
    Trend* trends;        // of the groups; null in plain sweeps
    math::real share;     // of the trend, to be stepped along
    math::real* squares;  // per lane, to which the squares of the impulses' changes are added
    math::real* motions;  // of the bodies: four numbers each, velocity, spin and inverse mass
};
using ContactStretch = RowStretch<ContactRow8, ContactTrend8>;
using HingeStretch = RowStretch<HingeRow8, HingeTrend8>;

// Bodies that go on along their trends.
struct MotionStretch {
    math::real* motions;
    math::real* before;  // the last sweep
    math::real* trends;
    size_t count;  // of numbers, a multiple of eight
    math::real share;
};

struct RowSweeps {
    // By SweepKind.
    void (*contacts[3])(const ContactStretch&);
    void (*hinges[3])(const HingeStretch&);
    void (*followTrend)(const MotionStretch&);
};

// The same bits both: for every processor, and with registers of eight floats, null where the build has none,
// to be called where the processor has them.
const RowSweeps& GetNarrowRowSweeps();
const RowSweeps* GetWideRowSweeps();

// The fastest that this processor can run.
const RowSweeps& GetRowSweeps();

}  // namespace physics
